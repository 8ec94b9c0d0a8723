#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "db/RandomKey.h"

// Track ID to the lowest library index that carries it: an open-addressing table, so a look-up costs the same
// for known, unknown, duplicate and hostile IDs.
class TrackIDIndex {
 public:
  // The lowest index added for the ID and not removed, or -1.
  int32_t Find(int32_t id) const;

  // Makes room for that many IDs in all. Throws std::bad_alloc and then changes nothing.
  void Reserve(size_t ids);

  // Notes that the song at `index` carries the ID. Throws std::bad_alloc and then changes nothing.
  void Add(int32_t id, int32_t index);

  // Takes one song of the ID away. Returns how many are left; when there are any and the lowest was taken,
  // the caller names the next one with SetLowest.
  uint32_t Remove(int32_t id);

  // Names the lowest index of an ID that Find knows.
  void SetLowest(int32_t id, int32_t index);

  void Clear();

 private:
  struct Slot {
    int32_t id;
    int32_t lowest;
    uint32_t songs;  // 0: the slot is free
  };

  // IDs that differ in these bits alone stand side by side: devices number songs one after the other, and
  // playlists and host code ask for them in that order, so most look-ups find their slot in the cache.
  static constexpr uint32_t kNeighbours = 8;

  // Where the search for an ID begins: its place among its neighbours, whose run is scattered by two rounds
  // of multiplication. Random numbers go into it, a factor among them, so that no file is known to be
  // possible whose IDs all meet in one place; the worst it can do is to use one slot of each run.
  uint32_t Home(int32_t id) const {
    const auto bits = static_cast<uint32_t>(id);
    uint64_t h = (bits / kNeighbours ^ randomKey.ids[0]) * (randomKey.ids[1] | 1);
    h = (h ^ h >> 32) * 0xc4ceb9fe1a85ec53;
    return static_cast<uint32_t>(h >> shift_) * kNeighbours + bits % kNeighbours;
  }

  // The ID's slot, or the free slot it would take. The table is never full.
  Slot *Locate(int32_t id) const {
    uint32_t at = Home(id);
    while (slots_[at].songs != 0 && slots_[at].id != id) at = (at + 1) & (capacity_ - 1);
    return &slots_[at];
  }

  void Resize(uint32_t capacity);

  std::unique_ptr<Slot[]> slots_;
  uint32_t capacity_ = 0;  // a power of two, or 0
  uint32_t used_ = 0;
  uint32_t shift_ = 0;
};

inline int32_t TrackIDIndex::Find(int32_t id) const {
  if (used_ == 0) return -1;
  const Slot *slot = Locate(id);
  return slot->songs == 0 ? -1 : slot->lowest;
}
