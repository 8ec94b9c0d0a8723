#include "player/SongReader.h"

#include <string_view>
#include <utility>

#include "platform/carbon/UnicodeForms.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"

namespace player {

namespace {

constexpr size_t kObjectHeader = 0x28;  // of a text, as far as the text
constexpr size_t kShortestObject = 0x18;
constexpr uint32_t kUtf16 = 1;
constexpr uint64_t kLongestObject = 1U << 20;

}  // namespace

std::string utf8OfUtf16(std::string_view bytes, bool bigEndian) {
  const auto read = bigEndian ? unicode::readUtf16<true> : unicode::readUtf16<false>;
  bytes.remove_suffix(bytes.size() % 2);
  std::string text;
  for (size_t at = 0; at < bytes.size();) {
    const char32_t c = read(bytes, at);
    unicode::appendUtf8(text, c == unicode::kNoCharacter ? unicode::kReplacement : c);
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
