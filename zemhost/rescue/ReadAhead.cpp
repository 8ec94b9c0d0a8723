#include "zemhost/rescue/ReadAhead.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace zemhost {

carbon::Descriptor ReadAhead::turnOf(size_t place) {
  constexpr size_t kFiles = 64;
  constexpr uint64_t kBytes = uint64_t{16} << 20;
  // Copying takes some descriptors too, of those that the program may have.
  static const long kMostOpen = sysconf(_SC_OPEN_MAX) / 2;
  carbon::Descriptor own;
  if (!asked_.empty() && asked_.front().place == place) {
    own = std::move(asked_.front().open);
    asked_.pop_front();
    waiting_ -= files_[place].source.size;
  }
  next_ = std::max(next_, place + 1);
  for (; next_ < files_.size() && asked_.size() < kFiles && waiting_ < kBytes; ++next_) {
    const PlannedFile &file = files_[next_];
    if (file.there) continue;
    carbon::Descriptor open = library_.open(file.source);
    // What fails here fails again when it is the file's turn.
    if (open) [[maybe_unused]]
      const int advised = posix_fadvise(open.number(), 0, 0, POSIX_FADV_WILLNEED);
    if (open.number() > kMostOpen) open = {};
    waiting_ += file.source.size;
    asked_.push_back({next_, std::move(open)});
  }
  return own;
}

}  // namespace zemhost
