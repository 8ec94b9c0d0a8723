#include "player/SongReader.h"

#include <string_view>
#include <utility>

#include "player/FileBytes.h"
#include "player/FileWord.h"

namespace player {

namespace {

constexpr size_t kObjectHeader = 0x28;  // of a text, as far as the text
constexpr size_t kShortestObject = 0x18;
constexpr uint32_t kUtf16 = 1;
constexpr uint64_t kLongestObject = 1U << 20;

void appendUtf8(std::string &text, uint32_t character) {
  const auto add = [&text](uint32_t byte) { text += static_cast<char>(byte); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    add(0x80 | (character & 0x3F));
  } else {
    if (character < 0x10000) {
      add(0xE0 | character >> 12);
    } else {
      add(0xF0 | character >> 18);
      add(0x80 | (character >> 12 & 0x3F));
    }
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  }
}

}  // namespace

std::string utf8OfUtf16(std::string_view bytes, bool bigEndian) {
  const auto unitAt = [&](size_t at) -> uint32_t {
    const uint32_t first = static_cast<unsigned char>(bytes[at]);
    const uint32_t second = static_cast<unsigned char>(bytes[at + 1]);
    return bigEndian ? first << 8 | second : second << 8 | first;
  };
  std::string text;
  for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
    uint32_t character = unitAt(at);
    if (character >= 0xD800 && character < 0xE000) {
      const uint32_t low = character < 0xDC00 && at + 3 < bytes.size() ? unitAt(at + 2) : 0;
      if (low >= 0xDC00 && low < 0xE000) {
        character = 0x10000 + ((character & 0x3FF) << 10 | (low & 0x3FF));
        at += 2;
      } else {
        character = 0xFFFD;
      }
    }
    appendUtf8(text, character);
  }
  return text;
}

SongReader::SongReader(int file, bool bigEndian, std::vector<uint64_t> songs)
    : file_(file), bigEndian_(bigEndian), songs_(std::move(songs)) {}

SongFacts SongReader::facts(size_t index) const {
  return readSongFacts(readAt(file_, songs_[index], kLongestSongHeader), bigEndian_);
}

std::vector<SongText> SongReader::texts(size_t index) const {
  std::vector<SongText> texts;
  const uint64_t song = songs_[index];
  const std::string header = readAt(file_, song, 16);
  if (header.size() < 16) return texts;
  const uint64_t end = song + wordAt(header, 8, bigEndian_);
  const uint32_t objects = wordAt(header, 12, bigEndian_);
  uint64_t at = song + wordAt(header, 4, bigEndian_);
  for (uint32_t i = 0; i < objects; ++i) {
    const std::string object = readAt(file_, at, kObjectHeader);
    if (object.size() < kShortestObject || !object.starts_with(bigEndian_ ? "hohm" : "mhod")) break;
    const uint64_t length = wordAt(object, 8, bigEndian_);
    if (length < kShortestObject || at + length > end) break;
    if (length >= kObjectHeader && length <= kLongestObject && object.size() == kObjectHeader &&
        wordAt(object, 0x14, bigEndian_) == 0 && wordAt(object, 0x18, bigEndian_) == kUtf16) {
      const std::string body = readAt(file_, at + kObjectHeader, static_cast<size_t>(length) - kObjectHeader);
      texts.push_back({wordAt(object, 12, bigEndian_), utf8OfUtf16(body, bigEndian_)});
    }
    at += length;
  }
  return texts;
}

}  // namespace player
