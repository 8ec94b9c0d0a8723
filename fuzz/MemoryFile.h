// A file without a name, in memory, for targets that read or write an open file.
#pragma once

#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fuzz/Require.h"
#include "platform/carbon/Descriptor.h"
#include "player/FileBytes.h"

namespace fuzz {

class MemoryFile {
 public:
  MemoryFile() : file_(memfd_create("fuzz", MFD_CLOEXEC)) { Require(static_cast<bool>(file_), "no file"); }

  [[nodiscard]] int Number() const { return file_.number(); }

  // Makes the bytes its whole content, and stands at their beginning.
  void Set(std::string_view bytes) const {
    Require(ftruncate(Number(), 0) == 0 && lseek(Number(), 0, SEEK_SET) == 0, "cannot empty the file");
    player::writeAll(Number(), bytes);
    Require(lseek(Number(), 0, SEEK_SET) == 0, "cannot go back");
  }

  [[nodiscard]] std::string Content() const {
    struct stat status {};
    Require(fstat(Number(), &status) == 0, "no size");
    return player::readAt(Number(), 0, static_cast<size_t>(status.st_size));
  }

 private:
  carbon::Descriptor file_;
};

}  // namespace fuzz
