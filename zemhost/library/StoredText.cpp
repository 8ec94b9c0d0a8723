#include "zemhost/library/StoredText.h"

#include <algorithm>
#include <utility>

#include "host/text/TextEncoding.h"
#include "platform/carbon/UnicodeForms.h"
#include "player/FileWord.h"
#include "zemhost/library/ClassWords.h"

namespace zemhost {

namespace {

// Encoding words of the file.
constexpr uint32_t kWordUtf16 = 1;
constexpr uint32_t kWordUtf8 = 2;

// The class's code for a text that it keeps as raw bytes.
constexpr uint32_t kRawCode = 0;
// Its code for a name whose form it guesses: plain ASCII comes converted to UTF-16, all else as it stands.
constexpr uint32_t kGuessedCode = 3;

// Adds to `lost`, if there is one, what no character could be made of.
std::string toUtf8(std::string_view bytes, uint32_t encoding, size_t *lost) {
  Conversion conversion = convertText(bytes, encoding, kUtf8);
  if (lost != nullptr) *lost += conversion.replacements;
  return std::move(conversion.bytes);
}

// Mac Roman unless the encoding word says otherwise.
std::string byteText(std::string_view bytes, uint32_t encodingWord, size_t *lost) {
  return toUtf8(bytes, encodingWord == kWordUtf8 ? kUtf8 : kMacRoman, lost);
}

std::string recordText(std::string_view record, bool bigEndian, size_t *lost) {
  constexpr size_t kHeader = 16;
  if (record.size() < kHeader) return toUtf8(record, kMacRoman, lost);
  const uint32_t length = player::wordAt(record, 4, bigEndian);
  return byteText(record.substr(kHeader, length), player::wordAt(record, 0, bigEndian), lost);
}

bool isUtf16OfAscii(std::string_view bytes) {
  if (bytes.size() % 2 != 0) return false;
  for (size_t i = 0; i < bytes.size(); i += 2) {
    if (bytes[i] != '\0') return false;
  }
  return true;
}

// A record that fills the bytes exactly. Only a player's file, little-endian, has texts by number.
bool isRecord(std::string_view bytes) {
  return bytes.size() >= 16 && player::wordAt(bytes, 0, false) <= 3 &&
         player::wordAt(bytes, 4, false) == bytes.size() - 16 && player::wordAt(bytes, 8, false) == 0 &&
         player::wordAt(bytes, 12, false) == 0;
}

bool isControl(char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r'; }

std::string hexadecimal(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text = "0x";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text.append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
  }
  return text;
}

}  // namespace

std::string songText(std::string_view bytes, uint32_t code, int32_t libType, size_t *lost) {
  if (bytes.empty()) return {};
  return code == kRawCode ? recordText(bytes, libType == 0, lost) : toUtf8(bytes, kUtf16, lost);
}

std::string playlistNameText(std::string_view bytes, uint32_t code, int32_t libType, size_t *lost) {
  if (libType == 0) {
    const bool utf16 = code == kWordUtf16 || (code == kGuessedCode && isUtf16OfAscii(bytes));
    return utf16 ? toUtf8(bytes, kUtf16, lost) : byteText(bytes, code, lost);
  }
  // The code is the file's word with its bytes reversed, and every name has had its byte pairs swapped.
  const uint32_t word = reversedWord(code);
  if (word == kWordUtf16) return toUtf8(bytes, kUtf16, lost);
  std::string straight(bytes);
  for (size_t i = 0; i + 1 < straight.size(); i += 2) std::swap(straight[i], straight[i + 1]);
  return byteText(straight, word, lost);
}

std::string pathText(std::string_view bytes, int32_t libType) {
  if (libType == 0) return toUtf8(bytes, kMacRoman, nullptr);
  // The class has reduced each UTF-16 unit below 256 to one byte.
  std::string text;
  for (const char byte : bytes) unicode::appendUtf8(text, static_cast<unsigned char>(byte));
  return text;
}

std::string otherText(std::string_view bytes) {
  if (isRecord(bytes)) return recordText(bytes, false, nullptr);
  const Conversion text = convertText(bytes, kUtf16, kUtf8);
  const bool isText = text.replacements == 0 && std::none_of(text.bytes.begin(), text.bytes.end(), isControl);
  return isText ? text.bytes : hexadecimal(bytes);
}

std::string addressText(std::string_view bytes) {
  const bool plain = isValidUtf8(bytes) && std::none_of(bytes.begin(), bytes.end(), isControl);
  return plain ? std::string(bytes) : otherText(bytes);
}

}  // namespace zemhost
