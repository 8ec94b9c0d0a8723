#include "zemhost/rescue/ReadAhead.h"

#include <fcntl.h>

namespace zemhost {

void ReadAhead::turnOf(size_t place) {
  constexpr size_t kFiles = 64;
  constexpr uint64_t kBytes = uint64_t{16} << 20;
  if (next_ <= place) {
    next_ = place + 1;
    waiting_ = 0;
  } else if (!files_[place].there) {
    waiting_ -= files_[place].source.size;
  }
  for (; next_ < files_.size() && next_ - place <= kFiles && waiting_ < kBytes; ++next_) {
    const PlannedFile &file = files_[next_];
    if (file.there) continue;
    waiting_ += file.source.size;
    // What fails here fails again when it is the file's turn.
    if (const carbon::Descriptor open = library_.open(file.source)) [[maybe_unused]]
      const int advised = posix_fadvise(open.number(), 0, 0, POSIX_FADV_WILLNEED);
  }
}

}  // namespace zemhost
