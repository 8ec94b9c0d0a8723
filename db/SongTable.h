#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "db/LargePages.h"
#include "db/SongRecords.h"
#include "db/TrackIDIndex.h"

// All tracks in file order, with an index of their IDs that is brought up to date by the first search after a
// change. A search is as good as a walk over the songs, however an ID was changed.
class SongTable {
 public:
  using Songs = std::vector<CSongList, LargeAllocator<CSongList>>;

  SongTable() = default;
  SongTable(const SongTable &) = delete;
  SongTable &operator=(const SongTable &) = delete;

  size_t size() const { return songs_.size(); }
  size_t capacity() const { return songs_.capacity(); }
  bool empty() const { return songs_.empty(); }
  bool Has(int32_t index) const { return index >= 0 && static_cast<size_t>(index) < songs_.size(); }

  const CSongList &operator[](size_t i) const { return songs_[i]; }
  CSongList &operator[](size_t i) { return songs_[i]; }
  Songs::const_iterator begin() const { return songs_.begin(); }
  Songs::const_iterator end() const { return songs_.end(); }
  Songs::iterator begin() { return songs_.begin(); }
  Songs::iterator end() { return songs_.end(); }

  // Room for `count` songs in all. Throws std::bad_alloc.
  void reserve(size_t count) { songs_.reserve(count); }
  void push_back(const CSongList &song) { songs_.push_back(song); }
  void push_back(CSongList &&song) { songs_.push_back(std::move(song)); }
  CSongList &back() { return songs_.back(); }
  void pop_back() {
    ForgetIDs();
    songs_.pop_back();
  }
  void clear() {
    ForgetIDs();
    songs_.clear();
  }

  // A new song with the ID at the end, and nothing else in it. The reference holds until the next append.
  CSongList &Append(int32_t id) {
    CSongList &song = songs_.emplace_back();
    song.id.SetUncounted(id);
    return song;
  }

  // Gives the song at `i` another ID, at the cost of a search or two.
  void SetID(size_t i, int32_t id);

  // Brings the index up to the last song and the last change, so that searches allocate nothing until the
  // next. Throws std::bad_alloc, and then goes on from where it stopped at the next call.
  void IndexIDs() const;

  // The lowest position whose song carries the ID, or -1. Throws std::bad_alloc when the index cannot grow.
  int32_t FindID(int32_t id) const {
    if (indexed_ != songs_.size() || changes_ != TrackID::Changes()) IndexIDs();
    return ids_.Find(id);
  }

 private:
  void ForgetIDs() const {
    if (indexed_ == 0) return;
    ids_.Clear();
    indexed_ = 0;
  }

  Songs songs_;
  mutable TrackIDIndex ids_;
  mutable size_t indexed_ = 0;    // the songs before this position are in ids_
  mutable uint64_t changes_ = 0;  // with the IDs they had when so many had been changed
};
