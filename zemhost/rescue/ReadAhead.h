#pragma once

// Asks the system to read the files whose turn comes next, while others are written.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/RescuePlan.h"

namespace zemhost {

class ReadAhead {
 public:
  ReadAhead(const MusicLibrary &library, const std::vector<PlannedFile> &files)
      : library_(library), files_(files) {}

  // It is the turn of the file at this place, which is returned open where that came about; some behind it
  // are asked for. The turns go up one by one.
  carbon::Descriptor turnOf(size_t place);

 private:
  const MusicLibrary &library_;
  const std::vector<PlannedFile> &files_;
  struct Asked {
    size_t place;
    carbon::Descriptor open;
  };

  size_t next_ = 0;          // to be asked for
  std::deque<Asked> asked_;  // whose turn has not come
  uint64_t waiting_ = 0;     // bytes of these
};

}  // namespace zemhost
