#include "zemhost/rescue/PendingCopies.h"

#include <string>
#include <utility>
#include <vector>

#include "zemhost/files/Signals.h"

namespace zemhost {

bool PendingCopies::isFull() const {
  // What is pending when the program is killed has to be copied again.
  constexpr size_t kCopies = 1000;
  constexpr uint64_t kBytes = uint64_t{128} << 20;
  constexpr std::chrono::seconds kTime(2);
  return gathered_.size() >= kCopies || bytes_ >= kBytes || Clock::now() - begun_ >= kTime;
}

void PendingCopies::add(Pending pending) {
  DestinationFolder::close(pending.copy);
  if (gathered_.empty()) begun_ = Clock::now();
  bytes_ += pending.bytes;
  gathered_.push_back(std::move(pending));
  if (!isFull()) return;
  receive();
  send();
}

void PendingCopies::finish() {
  receive();
  if (gathered_.empty()) return;
  send();
  receive();
}

void PendingCopies::send() {
  onWay_ = std::exchange(gathered_, {});
  bytes_ = 0;
  std::vector<std::string> names;
  names.reserve(onWay_.size());
  for (const Pending &pending : onWay_) names.push_back(pending.copy.part.name());
  // Where no thread can be made it is done when the result is asked for.
  underWay_ = std::async(std::launch::async | std::launch::deferred,
                         [&destination = destination_, names = std::move(names)] {
                           const SignalsHeld held;  // they are for the thread that copies
                           return destination.sync(names);
                         });
}

void PendingCopies::receive() {
  if (underWay_.valid()) {
    if (const int error = underWay_.get(); error != 0) {
      onWay_.clear();
      throw CopyFailure(CopyFailure::Reach::Destination, error);
    }
  }
  while (!onWay_.empty()) {
    Pending next = std::move(onWay_.front());
    onWay_.pop_front();
    onDisk_(next);
  }
}

}  // namespace zemhost
