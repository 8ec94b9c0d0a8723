#pragma once

// Asks the system to read the files whose turn comes next, while others are written.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/RescuePlan.h"

namespace zemhost {

class ReadAhead {
 public:
  ReadAhead(const MusicLibrary &library, const std::vector<PlannedFile> &files)
      : library_(library), files_(files) {}

  // It is the turn of the file at this place; some behind it are asked for. The turns must go upwards.
  void turnOf(size_t place);

 private:
  const MusicLibrary &library_;
  const std::vector<PlannedFile> &files_;
  size_t next_ = 0;       // to be asked for
  uint64_t waiting_ = 0;  // bytes that were asked for, of files whose turn has not come
};

}  // namespace zemhost
