#include <algorithm>
#include <array>
#include <bit>
#include <utility>
#include <vector>

#include "db/CiTunesDB.h"
#include "db/KeyedHash.h"

// Compared pair by pair, the first song of every group of equal texts hands its counter on to all later songs
// of the group whose cell is still unnumbered, and nobody numbers that group's cells again. So one pass in
// library order that remembers each group's number gives the same numbers as comparing every pair.

namespace {

// The groups of one cell, over all songs: an open-addressing table from a text to its group.
class Groups {
 public:
  // An album is the same only with the same artist, so albums are given the artists' groups.
  Groups(songInfo CSongList::*cell, const SongTable &songs, const KeyedHash &hash, Groups *artists = nullptr)
      : cell_(cell), songs_(songs), hash_(hash), artists_(artists) {}

  // Sees what there is to number; called for the songs before the first joins. Returns whether it has seen
  // enough.
  bool Consider(const CSongList &song) {
    const songInfo &cell = song.*cell_;
    if (cell.idx < 0) {
      needed_ = true;
      textsNeeded_ = textsNeeded_ || !cell.obj.empty();
    }
    return textsNeeded_;
  }

  bool Needed() const { return needed_; }

  // Where song i's text will be looked for. Asked for a stretch of songs before they join, so that the waits
  // for their texts and slots overlap. The songs of an album follow each other, so most texts need no search:
  // they are those of the song before.
  uint32_t Hash(const CSongList &song, size_t i) {
    if (!Takes(song)) return 0;
    if (!textsNeeded_ && !IsAlbum()) return groups_.empty() ? kHashed : 0;  // no text: there is but one group
    if (i != 0 && SameGroup(songs_[i - 1], song)) return 0;
    uint64_t h = TextHash(song, i);
    if (IsAlbum()) h += std::rotl(artists_->TextHash(song, i), 32);
    const auto hash = static_cast<uint32_t>(h) | kHashed;
    if (!slots_.empty()) __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]);
    return hash;
  }

  // Gives song i's cell the number of its group, when that has one already and the cell has none. Otherwise
  // the group starts with this song, and Start gives it its number.
  void Join(CSongList &song, size_t i, uint32_t hash) {
    started_ = false;
    if (!Takes(song)) return;
    if (hash != 0) {
      if (4 * (groups_.size() + 1) > 3 * slots_.size()) Grow(i);
      Slot &slot = Locate(song, hash);
      if (slot.hash == 0) {
        slot = {hash, static_cast<uint32_t>(groups_.size())};
        groups_.push_back({static_cast<uint32_t>(i), 0});
        started_ = true;
      }
      current_ = slot.group;
    }
    songInfo &cell = song.*cell_;
    if (!started_ && cell.idx < 0) cell.idx = groups_[current_].number;
  }

  void Start(int32_t number) {
    if (started_) groups_.back().number = number;
  }

 private:
  static constexpr size_t kSmallest = 64;
  static constexpr uint32_t kHashed = 0x80000000;  // so that no hash is 0
  struct Group {
    uint32_t first = 0;  // its first song
    int32_t number = 0;
  };
  struct Slot {
    uint32_t hash = 0;  // 0: the slot is free
    uint32_t group = 0;
  };

  bool IsAlbum() const { return artists_ != nullptr; }

  // The hash of song i's text, which both this cell and the album's may ask for.
  uint64_t TextHash(const CSongList &song, size_t i) {
    if (hashedSong_ != i) textHash_ = hash_((song.*cell_).obj);
    hashedSong_ = i;
    return textHash_;
  }

  bool SameGroup(const CSongList &a, const CSongList &b) const {
    return (a.*cell_).obj == (b.*cell_).obj && (!IsAlbum() || a.artist.obj == b.artist.obj);
  }

  bool Takes(const CSongList &song) const { return textsNeeded_ || (needed_ && (song.*cell_).obj.empty()); }

  Slot &Locate(const CSongList &song, uint32_t hash) {
    size_t at = hash & (slots_.size() - 1);
    while (slots_[at].hash != 0 &&
           (slots_[at].hash != hash || !SameGroup(songs_[groups_[slots_[at].group].first], song))) {
      at = (at + 1) & (slots_.size() - 1);
    }
    return slots_[at];
  }

  // Twice the room, or what it takes when the songs to come bring as many groups as those before song i did.
  void Grow(size_t i) {
    const auto foreseen = static_cast<size_t>(uint64_t{groups_.size()} * songs_.size() / (i + 1));
    Table<Slot> old(std::bit_ceil(std::max({kSmallest, 2 * slots_.size(), foreseen + foreseen / 3 + 1})));
    groups_.reserve(3 * old.size() / 4);
    old.swap(slots_);
    for (const Slot &slot : old) {
      if (slot.hash == 0) continue;
      size_t at = slot.hash & (slots_.size() - 1);
      while (slots_[at].hash != 0) at = (at + 1) & (slots_.size() - 1);
      slots_[at] = slot;
    }
  }

  template <typename T>
  using Table = std::vector<T, LargeAllocator<T>>;

  songInfo CSongList::*cell_;
  const SongTable &songs_;
  const KeyedHash &hash_;  // so that no file can be made whose texts all meet in one place
  Groups *artists_;
  uint64_t textHash_ = 0;
  size_t hashedSong_ = SIZE_MAX;  // whose text has it
  bool needed_ = false;           // some song's cell is unnumbered
  bool textsNeeded_ = false;      // and not only cells without a text are
  bool started_ = false;          // the last song to join was the first of its group
  uint32_t current_ = 0;          // the group of the last song that joined
  Table<Group> groups_;
  Table<Slot> slots_;  // a power of two of them
};

}  // namespace

void CiTunesDB::SetSongsObjectIndex() {
  const KeyedHash hash;
  Groups artists(&CSongList::artist, songs, hash);
  Groups albums(&CSongList::album, songs, hash, &artists);
  Groups genres(&CSongList::genre, songs, hash);
  Groups composers(&CSongList::composer, songs, hash);
  Groups filetypes(&CSongList::filetype, songs, hash);
  const std::array<Groups *, 5> all = {&artists, &albums, &genres, &composers, &filetypes};
  for (const CSongList &song : std::as_const(songs)) {
    bool enough = true;
    for (Groups *groups : all) enough = groups->Consider(song) && enough;
    if (enough) break;
  }

  // In a file whose songs have these texts there may be nothing to number but what a few of them lack.
  std::array<Groups *, all.size()> some = {};
  const auto count = static_cast<size_t>(std::copy_if(all.begin(), all.end(), some.begin(),
                                                      [](const Groups *groups) { return groups->Needed(); }) -
                                         some.begin());

  constexpr size_t kStretch = 64;
  std::array<std::array<uint32_t, 5>, kStretch> hashes = {};
  int32_t artist = 0;
  int32_t album = 0;
  int32_t genre = 0;
  int32_t shared = 0;

  for (size_t i = 0; i < songs.size(); ++i) {
    CSongList &song = songs[i];
    if (i % kStretch == 0) {
      const size_t end = std::min(i + kStretch, songs.size());
      for (size_t k = i; k < end; ++k) {
        for (size_t g = 0; g < count; ++g) hashes[k - i][g] = some[g]->Hash(std::as_const(songs)[k], k);
      }
    }
    for (size_t g = 0; g < count; ++g) some[g]->Join(song, i, hashes[i % kStretch][g]);
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
