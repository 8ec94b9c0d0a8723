#include "zemhost/rescue/SongNames.h"

#include <utility>

namespace zemhost {

namespace {

bool isOfLayout(const std::string &field) { return field == kAlbumArtistField || field == kAlbumDiscField; }

}  // namespace

SongNames::SongNames(const MusicLibrary &library, const NamePattern &pattern) : pattern_(pattern) {
  std::vector<std::string> columns;
  for (const std::string &field : pattern.fields()) {
    if (!isOfLayout(field)) columns.push_back(field);
  }
  if (!columns.empty()) columns_ = std::make_unique<const SongColumns>(library, columns);
  if (columns.size() == pattern.fields().size()) return;
  std::vector<AlbumSong> songs;
  const int32_t count = library.songCount();
  songs.reserve(static_cast<size_t>(count));
  for (int32_t index = 0; index < count; ++index) {
    songs.push_back(
        albumSong(library.song(index), library.numberedText(index, kAlbumArtistText).value_or("")));
  }
  layout_ = std::make_unique<const AlbumLayout>(songs);
}

Row SongNames::values(int32_t song) const {
  Row read = columns_ ? columns_->row(song) : Row();
  Row values;
  auto next = read.begin();
  const auto place = static_cast<size_t>(song);
  for (const std::string &field : pattern_.fields()) {
    if (field == kAlbumArtistField) {
      values.emplace_back(layout_->artistOf(place));
    } else if (field == kAlbumDiscField) {
      values.emplace_back(layout_->discOf(place));
    } else {
      values.push_back(std::move(*next++));
    }
  }
  return values;
}

}  // namespace zemhost
