// CoreFoundation strings: immutable UTF-16 text, made from bytes and read back as a C string.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/carbon/CarbonFiles.h"
#include "platform/carbon/UnicodeForms.h"

struct CarbonString {
  std::u16string units;
};

namespace {

using Bytes = std::span<const uint8_t>;

constexpr bool kNativeHighFirst = std::endian::native == std::endian::big;

bool decodeUtf8(std::string_view bytes, std::u16string &units) {
  for (size_t at = 0; at < bytes.size();) {
    const char32_t c = unicode::readUtf8(bytes, at);
    if (c == unicode::kNoCharacter) return false;
    if (c < 0x10000) {
      units += static_cast<char16_t>(c);
    } else {
      units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return true;
}

bool decodeAscii(Bytes bytes, std::u16string &units) {
  for (const uint8_t byte : bytes) {
    if (byte >= 0x80) return false;
    units.push_back(byte);
  }
  return true;
}

bool decodeUtf16(Bytes bytes, bool isExternal, std::u16string &units) {
  if (bytes.size() % 2 != 0) return false;
  bool highFirst = isExternal || kNativeHighFirst;
  if (isExternal && bytes.size() >= 2) {
    const bool lowMark = bytes[0] == 0xFF && bytes[1] == 0xFE;
    const bool highMark = bytes[0] == 0xFE && bytes[1] == 0xFF;
    if (lowMark) highFirst = false;
    if (lowMark || highMark) bytes = bytes.subspan(2);
  }
  for (; !bytes.empty(); bytes = bytes.subspan(2)) {
    const uint32_t high = bytes[highFirst ? 0 : 1];
    const uint32_t low = bytes[highFirst ? 1 : 0];
    units.push_back(static_cast<char16_t>(high << 8U | low));
  }
  return true;
}

bool decode(Bytes bytes, CFStringEncoding encoding, bool isExternal, std::u16string &units) {
  switch (encoding) {
    case kCFStringEncodingASCII:
      return decodeAscii(bytes, units);
    case kCFStringEncodingUnicode:
      return decodeUtf16(bytes, isExternal, units);
    case kCFStringEncodingUTF8: {
      const bool marked = bytes.size() >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF;
      const Bytes text = isExternal && marked ? bytes.subspan(3) : bytes;
      return decodeUtf8({reinterpret_cast<const char *>(text.data()), text.size()}, units);
    }
    default:
      return false;
  }
}

// The text in an 8-bit encoding; nothing when it has no form there.
std::optional<std::string> encoded(std::u16string_view units, CFStringEncoding encoding) {
  if (encoding != kCFStringEncodingASCII && encoding != kCFStringEncodingUTF8) return std::nullopt;
  const std::string_view bytes(reinterpret_cast<const char *>(units.data()), 2 * units.size());
  std::string text;
  for (size_t at = 0; at < bytes.size();) {
    const char32_t c = unicode::readUtf16<kNativeHighFirst>(bytes, at);
    if (c == unicode::kNoCharacter || (encoding == kCFStringEncodingASCII && c >= 0x80)) return std::nullopt;
    unicode::appendUtf8(text, c);
  }
  return text;
}

}  // namespace

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const uint8_t *bytes, CFIndex byteCount,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
  if (byteCount < 0 || (bytes == nullptr && byteCount > 0)) return nullptr;
  try {
    auto string = std::make_unique<CarbonString>();
    const Bytes all(bytes, static_cast<size_t>(byteCount));
    return decode(all, encoding, isExternalRepresentation != 0, string->units) ? string.release() : nullptr;
  } catch (...) {  // no memory
    return nullptr;
  }
}

CFIndex CFStringGetLength(CFStringRef string) {
  return string == nullptr ? 0 : static_cast<CFIndex>(string->units.size());
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
  CFIndex perUnit = 0;
  switch (encoding) {
    case kCFStringEncodingASCII:
      perUnit = 1;
      break;
    case kCFStringEncodingUnicode:
      perUnit = 2;
      break;
    case kCFStringEncodingUTF8:
      perUnit = 3;
      break;
    default:
      return kCFNotFound;
  }
  if (length < 0 || length > std::numeric_limits<CFIndex>::max() / perUnit) return kCFNotFound;
  return length * perUnit;
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex bufferSize, CFStringEncoding encoding) {
  if (string == nullptr || buffer == nullptr || bufferSize <= 0) return 0;
  try {
    const std::optional<std::string> text = encoded(string->units, encoding);
    if (!text || text->size() >= static_cast<size_t>(bufferSize)) return 0;
    std::memcpy(buffer, text->c_str(), text->size() + 1);
    return 1;
  } catch (...) {  // no memory
    return 0;
  }
}

void CFRelease(CFTypeRef object) { delete static_cast<CFStringRef>(object); }
