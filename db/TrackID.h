#pragma once

#include <cstdint>

// A song's track ID: a signed 32-bit number like any other, but that it counts how often one changes, in
// whatever record. So the index of a library's IDs knows that it may be stale, even after a change through a
// record that was kept.
class TrackID {
 public:
  TrackID() = default;
  TrackID(int32_t id) : id_(id) {}
  TrackID(const TrackID &) = default;
  TrackID &operator=(const TrackID &other) {
    if (id_ != other.id_) ++changes_;
    id_ = other.id_;
    return *this;
  }
  TrackID &operator+=(int32_t n) {
    return *this = static_cast<int32_t>(static_cast<uint32_t>(id_) + static_cast<uint32_t>(n));
  }
  operator int32_t() const { return id_; }

  // How many changes there were since the program began, but for those of SetUncounted.
  static uint64_t Changes() { return changes_; }

  // For the song table, which brings its index up to date itself.
  void SetUncounted(int32_t id) { id_ = id; }

 private:
  int32_t id_ = 0;
  static inline uint64_t changes_ = 0;
};
