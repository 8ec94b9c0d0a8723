#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "db/LargePages.h"
#include "db/SongRecords.h"
#include "db/TrackIDIndex.h"

// All tracks in file order, with an index of their IDs that is brought up to date by the first search after a
// change. Whoever asks for a song that can be changed may change its ID, so that access forgets the index; a
// reference got that way is for use before the next search.
class SongTable {
 public:
  using Songs = std::vector<CSongList, LargeAllocator<CSongList>>;

  size_t size() const { return songs_.size(); }
  size_t capacity() const { return songs_.capacity(); }
  bool empty() const { return songs_.empty(); }
  bool Has(int32_t index) const { return index >= 0 && static_cast<size_t>(index) < songs_.size(); }

  const CSongList &operator[](size_t i) const { return songs_[i]; }
  CSongList &operator[](size_t i) {
    ForgetIDs();
    return songs_[i];
  }
  Songs::const_iterator begin() const { return songs_.begin(); }
  Songs::const_iterator end() const { return songs_.end(); }
  Songs::iterator begin() {
    ForgetIDs();
    return songs_.begin();
  }
  Songs::iterator end() { return songs_.end(); }

  // Room for `count` songs in all. Throws std::bad_alloc.
  void reserve(size_t count) { songs_.reserve(count); }
  void push_back(const CSongList &song) { songs_.push_back(song); }
  void push_back(CSongList &&song) { songs_.push_back(std::move(song)); }
  CSongList &back() {
    ForgetIDs();
    return songs_.back();
  }
  void pop_back() {
    ForgetIDs();
    songs_.pop_back();
  }
  void clear() {
    ForgetIDs();
    songs_.clear();
  }

  // Takes songs from the end until `count` are left.
  void Truncate(size_t count) {
    ForgetIDs();
    songs_.erase(songs_.begin() + static_cast<ptrdiff_t>(count), songs_.end());
  }

  // A new default song at the end. The reference holds until the next append, and its ID may be set until the
  // next search.
  CSongList &Append() { return songs_.emplace_back(); }

  // The song at `i`, to be changed in any field but its ID.
  CSongList &KeepingID(size_t i) { return songs_[i]; }

  // Gives the song at `i` another ID.
  void SetID(size_t i, int32_t id);

  // Brings the index up to the last song, so that searches allocate nothing until the next change. Throws
  // std::bad_alloc, and then goes on from where it stopped at the next call.
  void IndexIDs() const;

  // The lowest position whose song carries the ID, or -1. Throws std::bad_alloc when the index cannot grow.
  int32_t FindID(int32_t id) const {
    if (indexed_ != songs_.size()) IndexIDs();
    return ids_.Find(id);
  }

 private:
  void ForgetIDs() {
    if (indexed_ == 0) return;
    ids_.Clear();
    indexed_ = 0;
  }

  Songs songs_;
  mutable TrackIDIndex ids_;
  mutable size_t indexed_ = 0;  // the songs before this position are in ids_
};
