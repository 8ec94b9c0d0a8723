#include "db/TrackIDIndex.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace {

constexpr uint32_t kSmallest = 64;

}  // namespace

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
  resized.shift_ = static_cast<uint32_t>(64 - std::countr_zero(capacity / kNeighbours));
  resized.used_ = used_;
  for (uint32_t i = 0; i < capacity_; ++i) {
    if (slots_[i].songs != 0) *resized.Locate(slots_[i].id) = slots_[i];
  }
  *this = std::move(resized);
}
