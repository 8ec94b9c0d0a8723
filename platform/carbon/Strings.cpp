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

struct CarbonString {
  std::u16string units;
};

namespace {

using Bytes = std::span<const uint8_t>;

bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

void appendCodePoint(std::u16string &units, uint32_t point) {
  if (point < 0x10000) {
    units.push_back(static_cast<char16_t>(point));
    return;
  }
  units.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10U)));
  units.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FFU)));
}

// How a UTF-8 sequence begins, and the smallest code point that needs its length.
struct SequenceForm {
  uint8_t mask;
  uint8_t lead;
  uint32_t smallest;
};
constexpr SequenceForm kForms[] = {
    {0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};

// Reads one code point off the front of the bytes; nothing when they do not begin with a valid sequence.
std::optional<uint32_t> takeCodePoint(Bytes &bytes) {
  size_t length = 1;
  while (length <= std::size(kForms) && (bytes[0] & kForms[length - 1].mask) != kForms[length - 1].lead)
    ++length;
  if (length > std::size(kForms) || length > bytes.size()) return std::nullopt;
  const SequenceForm &form = kForms[length - 1];
  uint32_t point = bytes[0] & static_cast<uint8_t>(~form.mask);
  for (const uint8_t byte : bytes.subspan(1, length - 1)) {
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    point = point << 6U | (byte & 0x3FU);
  }
  if (point < form.smallest || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000)) return std::nullopt;
  bytes = bytes.subspan(length);
  return point;
}

bool decodeUtf8(Bytes bytes, std::u16string &units) {
  while (!bytes.empty()) {
    const std::optional<uint32_t> point = takeCodePoint(bytes);
    if (!point) return false;
    appendCodePoint(units, *point);
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
  bool highFirst = isExternal || std::endian::native == std::endian::big;
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
      return decodeUtf8(isExternal && marked ? bytes.subspan(3) : bytes, units);
    }
    default:
      return false;
  }
}

void appendUtf8(std::string &text, uint32_t point) {
  const auto append = [&text](uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto appendTail = [&append](uint32_t bits) { append(0x80U | (bits & 0x3FU)); };
  if (point < 0x80) {
    append(point);
  } else if (point < 0x800) {
    append(0xC0U | point >> 6U);
    appendTail(point);
  } else if (point < 0x10000) {
    append(0xE0U | point >> 12U);
    appendTail(point >> 6U);
    appendTail(point);
  } else {
    append(0xF0U | point >> 18U);
    appendTail(point >> 12U);
    appendTail(point >> 6U);
    appendTail(point);
  }
}

// The text in an 8-bit encoding; nothing when it has no form there.
std::optional<std::string> encoded(std::u16string_view units, CFStringEncoding encoding) {
  if (encoding != kCFStringEncodingASCII && encoding != kCFStringEncodingUTF8) return std::nullopt;
  std::string text;
  for (size_t i = 0; i < units.size(); ++i) {
    uint32_t point = units[i];
    if (encoding == kCFStringEncodingASCII && point >= 0x80) return std::nullopt;
    if (isLowSurrogate(units[i])) return std::nullopt;
    if (isHighSurrogate(units[i])) {
      if (i + 1 == units.size() || !isLowSurrogate(units[i + 1])) return std::nullopt;
      point = 0x10000 + ((point & 0x3FFU) << 10U) + (units[++i] & 0x3FFU);
    }
    appendUtf8(text, point);
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
