#include "player/SongReader.h"

#include <algorithm>
#include <utility>

#include "player/FileWord.h"

namespace player {

namespace {

constexpr uint32_t kPathObject = 2;

}  // namespace

SongReader::SongReader(int file, bool bigEndian, std::vector<uint64_t> songs)
    : file_(file), bigEndian_(bigEndian), songs_(std::move(songs)) {}

SongFacts SongReader::facts(size_t index) const {
  return readSongFacts(file_.at(songs_[index], kLongestSongHeader), bigEndian_);
}

std::vector<StoredObject> SongReader::objects(size_t index) const {
  const uint64_t song = songs_[index];
  const std::string_view header = file_.at(song, 12);
  if (header.size() < 12) return {};
  // What reaches into the next song is not this one's, so that no byte is read for two.
  const uint64_t next = index + 1 < songs_.size() ? songs_[index + 1] : UINT64_MAX;
  return objectsOf(file_, bigEndian_, song, std::min(song + wordAt(header, 8, bigEndian_), next));
}

std::vector<SongText> SongReader::texts(size_t index) const {
  const std::vector<StoredObject> stored = objects(index);
  std::vector<SongText> texts;
  texts.reserve(stored.size());
  for (const StoredObject &object : stored) {
    if (auto text = textOf(file_, bigEndian_, object)) texts.push_back({object.type, std::move(*text)});
  }
  return texts;
}

std::optional<std::string> SongReader::path(size_t index) const {
  std::optional<std::string> path;
  if (bigEndian_) return path;
  for (const StoredObject &object : objects(index)) {
    if (object.type == kPathObject && object.isText) path = textOf(file_, bigEndian_, object);
  }
  return path;
}

std::vector<Chapter> SongReader::chapters(size_t index) const {
  if (bigEndian_) return {};
  for (const StoredObject &object : objects(index)) {
    if (object.type == kChapterObject) return readChapters(chapterAtoms(bodyOf(file_, object)));
  }
  return {};
}

}  // namespace player
