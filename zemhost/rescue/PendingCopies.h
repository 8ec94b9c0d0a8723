#pragma once

// Copies that wait for their names until they are on the disk. To bring each one there by itself takes longer
// than copying it, so many go at once, while the next are copied.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <utility>

#include "zemhost/rescue/DestinationFolder.h"

namespace zemhost {

class PendingCopies {
 public:
  struct Pending {
    size_t place;    // of the song among those planned
    uint64_t bytes;  // of its file
    DestinationFolder::NewCopy copy;
  };

  // `onDisk` gets each copy once it is on the disk, in the order in which they were added.
  PendingCopies(const DestinationFolder &destination, std::function<void(Pending &)> onDisk)
      : destination_(destination), onDisk_(std::move(onDisk)) {}

  // Adds a copy, closes its file, and may hand on earlier ones. Throws CopyFailure (Destination) when copies
  // cannot be brought to the disk, which are gone then, and what `onDisk` throws.
  void add(Pending pending);
  // Hands on all that wait. Throws as add() does; what was not handed on yet waits for another call.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;

  bool isFull() const;
  void send();
  void receive();

  const DestinationFolder &destination_;
  std::function<void(Pending &)> onDisk_;
  std::deque<Pending> gathered_;
  uint64_t bytes_ = 0;         // of these
  Clock::time_point begun_{};  // with the first of these
  std::deque<Pending> onWay_;  // to the disk, or there
  std::future<int> underWay_;  // the system's error at the end; none when all of them are there
};

}  // namespace zemhost
