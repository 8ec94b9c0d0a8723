#include <functional>
#include <string_view>
#include <unordered_map>

#include "db/CiTunesDB.h"

// Compared pair by pair, the first song of every group of equal texts hands its counter on to all later songs
// of the group whose cell is still unnumbered, and nobody numbers that group's cells again. So one pass in
// library order that remembers each group's number gives the same numbers as comparing every pair.

namespace {

struct GroupKey {
  std::string_view text;
  std::string_view artist;  // an album is the same only with the same artist; empty for the other cells

  friend bool operator==(const GroupKey &, const GroupKey &) = default;
};

struct GroupKeyHash {
  size_t operator()(const GroupKey &key) const {
    const std::hash<std::string_view> hash;
    return hash(key.text) * 31 + hash(key.artist);
  }
};

// The groups of one cell, over all songs.
class Groups {
 public:
  Groups(songInfo CSongList::*cell, const SongTable &songs) : cell_(cell) {
    for (const CSongList &song : songs) {
      if ((song.*cell).idx >= 0) continue;
      needed_ = true;
      if (!(song.*cell).obj.empty()) textsNeeded_ = true;
    }
  }

  // Gives the song's cell the number of its group, when that has one already and the cell has none. Otherwise
  // the group starts with this song, and Start tells its number.
  void Join(CSongList &song) {
    starting_ = nullptr;
    songInfo &cell = song.*cell_;
    if (!needed_ || (!textsNeeded_ && !cell.obj.empty())) return;
    const GroupKey key = {cell.obj.View(), cell_ == &CSongList::album ? song.artist.obj.View() : ""};
    const auto [group, isNew] = numbers_.try_emplace(key, 0);
    if (isNew) {
      starting_ = &group->second;
    } else if (cell.idx < 0) {
      cell.idx = group->second;
    }
  }

  void Start(int32_t number) {
    if (starting_ != nullptr) *starting_ = number;
  }

 private:
  songInfo CSongList::*cell_;
  bool needed_ = false;       // some song's cell is unnumbered
  bool textsNeeded_ = false;  // and not only cells without a text are
  std::unordered_map<GroupKey, int32_t, GroupKeyHash> numbers_;
  int32_t *starting_ = nullptr;
};

}  // namespace

void CiTunesDB::SetSongsObjectIndex() {
  Groups artists(&CSongList::artist, songs);
  Groups albums(&CSongList::album, songs);
  Groups genres(&CSongList::genre, songs);
  Groups composers(&CSongList::composer, songs);
  Groups filetypes(&CSongList::filetype, songs);
  int32_t artist = 0;
  int32_t album = 0;
  int32_t genre = 0;
  int32_t shared = 0;

  for (size_t i = 0; i < songs.size(); ++i) {
    CSongList &song = songs.KeepingID(i);
    for (Groups *groups : {&artists, &albums, &genres, &composers, &filetypes}) groups->Join(song);
    if (i + 1 == songs.size()) break;

    // Every count lands in the artist's cell, and composers and file types share a counter but take the
    // genre's number: host code relies on the numbers that come out of these crossings.
    if (song.artist.idx < 0) song.artist.idx = ++artist;
    if (song.album.idx < 0) song.artist.idx = ++album;
    if (song.genre.idx < 0) song.artist.idx = ++genre;
    if (song.composer.idx < 0) song.artist.idx = ++shared;
    if (song.filetype.idx < 0) song.artist.idx = ++shared;
    artists.Start(artist);
    albums.Start(album);
    for (Groups *groups : {&genres, &composers, &filetypes}) groups->Start(genre);
  }
}
