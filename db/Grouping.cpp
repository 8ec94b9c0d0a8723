#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "db/CiTunesDB.h"

// Compared pair by pair, the first song of every group of equal texts hands its counter on to all later songs
// of the group whose cell is still unnumbered, and nobody numbers that group's cells again. So one pass in
// library order that remembers each group's number gives the same numbers as comparing every pair.

namespace {

uint64_t Mix(uint64_t h) {
  h *= 0x9e3779b97f4a7c15;
  return h ^ h >> 32;
}

// Eight bytes at a step; the result serves tables of this process only.
uint64_t HashText(std::string_view text, uint64_t h) {
  size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    uint64_t word = 0;
    std::memcpy(&word, text.data() + i, sizeof word);
    h = Mix(h ^ word);
  }
  uint64_t tail = 0;
  std::memcpy(&tail, text.data() + i, text.size() - i);
  return Mix(Mix(h ^ tail) ^ text.size());
}

// The groups of one cell, over all songs: an open-addressing table from a text to the group's number.
class Groups {
 public:
  Groups(songInfo CSongList::*cell, const SongTable &songs)
      : cell_(cell), songs_(songs), seed_(Mix(reinterpret_cast<uintptr_t>(&songs))) {}

  // Sees what there is to number; called for every song before the first joins.
  void Consider(const CSongList &song) {
    const songInfo &cell = song.*cell_;
    if (cell.idx >= 0) return;
    needed_ = true;
    if (!cell.obj.empty()) textsNeeded_ = true;
  }

  // Where the song's text will be looked for. Asked for a stretch of songs before they join, so that the
  // waits for their texts and slots overlap.
  uint32_t Hash(const CSongList &song) {
    if (!Takes(song)) return 0;
    uint64_t h = HashText((song.*cell_).obj, seed_);
    if (IsAlbum()) h = HashText(song.artist.obj, h);
    const auto hash = static_cast<uint32_t>(h);
    if (!slots_.empty()) __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]);
    return hash;
  }

  // Gives song i's cell the number of its group, when that has one already and the cell has none. Otherwise
  // the group starts with this song, and Start tells its number.
  void Join(CSongList &song, size_t i, uint32_t hash) {
    starting_ = nullptr;
    if (!Takes(song)) return;
    if (2 * (used_ + 1) > slots_.size()) Grow();
    Slot &slot = Locate(song, hash);
    songInfo &cell = song.*cell_;
    if (slot.first == kFree) {
      slot = {hash, static_cast<uint32_t>(i), 0};
      ++used_;
      starting_ = &slot;
    } else if (cell.idx < 0) {
      cell.idx = slot.number;
    }
  }

  void Start(int32_t number) {
    if (starting_ != nullptr) starting_->number = number;
  }

 private:
  static constexpr uint32_t kFree = UINT32_MAX;
  struct Slot {
    uint32_t hash = 0;
    uint32_t first = kFree;  // the group's first song
    int32_t number = 0;
  };

  // An album is the same only with the same artist.
  bool IsAlbum() const { return cell_ == &CSongList::album; }

  bool SameGroup(const CSongList &a, const CSongList &b) const {
    return (a.*cell_).obj == (b.*cell_).obj && (!IsAlbum() || a.artist.obj == b.artist.obj);
  }

  bool Takes(const CSongList &song) const { return textsNeeded_ || (needed_ && (song.*cell_).obj.empty()); }

  Slot &Locate(const CSongList &song, uint32_t hash) {
    size_t at = hash & (slots_.size() - 1);
    while (slots_[at].first != kFree &&
           (slots_[at].hash != hash || !SameGroup(songs_[slots_[at].first], song))) {
      at = (at + 1) & (slots_.size() - 1);
    }
    return slots_[at];
  }

  void Grow() {
    std::vector<Slot> old(slots_.empty() ? 64 : 2 * slots_.size());
    old.swap(slots_);
    for (const Slot &slot : old) {
      if (slot.first == kFree) continue;
      size_t at = slot.hash & (slots_.size() - 1);
      while (slots_[at].first != kFree) at = (at + 1) & (slots_.size() - 1);
      slots_[at] = slot;
    }
  }

  songInfo CSongList::*cell_;
  const SongTable &songs_;
  uint64_t seed_;             // so that no file can be made whose texts all meet in one place
  bool needed_ = false;       // some song's cell is unnumbered
  bool textsNeeded_ = false;  // and not only cells without a text are
  std::vector<Slot> slots_;   // a power of two of them
  size_t used_ = 0;
  Slot *starting_ = nullptr;
};

}  // namespace

void CiTunesDB::SetSongsObjectIndex() {
  Groups artists(&CSongList::artist, songs);
  Groups albums(&CSongList::album, songs);
  Groups genres(&CSongList::genre, songs);
  Groups composers(&CSongList::composer, songs);
  Groups filetypes(&CSongList::filetype, songs);
  const std::array<Groups *, 5> all = {&artists, &albums, &genres, &composers, &filetypes};
  for (const CSongList &song : std::as_const(songs)) {
    for (Groups *groups : all) groups->Consider(song);
  }

  constexpr size_t kStretch = 64;
  std::array<std::array<uint32_t, 5>, kStretch> hashes = {};
  int32_t artist = 0;
  int32_t album = 0;
  int32_t genre = 0;
  int32_t shared = 0;

  for (size_t i = 0; i < songs.size(); ++i) {
    CSongList &song = songs.KeepingID(i);
    if (i % kStretch == 0) {
      const size_t end = std::min(i + kStretch, songs.size());
      for (size_t k = i; k < end; ++k) {
        for (size_t g = 0; g < all.size(); ++g) hashes[k - i][g] = all[g]->Hash(std::as_const(songs)[k]);
      }
    }
    for (size_t g = 0; g < all.size(); ++g) all[g]->Join(song, i, hashes[i % kStretch][g]);
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
