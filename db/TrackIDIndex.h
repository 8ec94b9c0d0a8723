#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

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

  uint32_t Home(int32_t id) const;
  Slot *Locate(int32_t id) const;  // the ID's slot, or the free slot it would take
  void Resize(uint32_t capacity);

  std::unique_ptr<Slot[]> slots_;
  uint32_t capacity_ = 0;  // a power of two, or 0
  uint32_t used_ = 0;
};
