#include "db/TrackIDIndex.h"

#include <algorithm>
#include <utility>

namespace {

constexpr uint32_t kSmallest = 64;

}  // namespace

// Mixes every bit of the ID into every bit of the slot number (the finaliser of the MurmurHash3 family). The
// table's address is mixed in, so that a file cannot be made whose IDs all meet in one place.
uint32_t TrackIDIndex::Home(int32_t id) const {
  uint32_t h =
      static_cast<uint32_t>(id) ^ static_cast<uint32_t>(reinterpret_cast<uintptr_t>(slots_.get()) >> 4);
  h = (h ^ h >> 16) * 0x85ebca6bU;
  h = (h ^ h >> 13) * 0xc2b2ae35U;
  return (h ^ h >> 16) & (capacity_ - 1);
}

TrackIDIndex::Slot *TrackIDIndex::Locate(int32_t id) const {
  uint32_t at = Home(id);
  while (slots_[at].songs != 0 && slots_[at].id != id) at = (at + 1) & (capacity_ - 1);
  return &slots_[at];
}

int32_t TrackIDIndex::Find(int32_t id) const {
  if (used_ == 0) return -1;
  const Slot *slot = Locate(id);
  return slot->songs == 0 ? -1 : slot->lowest;
}

void TrackIDIndex::Add(int32_t id, int32_t index) {
  if (2 * (used_ + 1) > capacity_) Resize(std::max(2 * capacity_, kSmallest));
  Slot *slot = Locate(id);
  if (slot->songs == 0) {
    *slot = {id, index, 1};
    ++used_;
    return;
  }
  ++slot->songs;
  if (index < slot->lowest) slot->lowest = index;
}

uint32_t TrackIDIndex::Remove(int32_t id) {
  if (used_ == 0) return 0;
  Slot *slot = Locate(id);
  if (slot->songs == 0) return 0;
  if (--slot->songs != 0) return slot->songs;
  --used_;
  // Later slots of the same run move back into the hole, so that every look-up still ends at a free slot.
  auto hole = static_cast<uint32_t>(slot - slots_.get());
  for (uint32_t at = (hole + 1) & (capacity_ - 1); slots_[at].songs != 0; at = (at + 1) & (capacity_ - 1)) {
    const uint32_t home = Home(slots_[at].id);
    if (((at - home) & (capacity_ - 1)) < ((at - hole) & (capacity_ - 1))) continue;
    slots_[hole] = slots_[at];
    slots_[at].songs = 0;
    hole = at;
  }
  return 0;
}

void TrackIDIndex::SetLowest(int32_t id, int32_t index) { Locate(id)->lowest = index; }

void TrackIDIndex::Clear() {
  slots_.reset();
  capacity_ = 0;
  used_ = 0;
}

void TrackIDIndex::Reserve(size_t ids) {
  uint32_t capacity = std::max(capacity_, kSmallest);
  while (2 * ids > capacity) capacity *= 2;
  if (capacity != capacity_) Resize(capacity);
}

void TrackIDIndex::Resize(uint32_t capacity) {
  TrackIDIndex resized;
  resized.capacity_ = capacity;
  resized.slots_ = std::make_unique<Slot[]>(capacity);
  resized.used_ = used_;
  for (uint32_t i = 0; i < capacity_; ++i) {
    if (slots_[i].songs != 0) *resized.Locate(slots_[i].id) = slots_[i];
  }
  *this = std::move(resized);
}
