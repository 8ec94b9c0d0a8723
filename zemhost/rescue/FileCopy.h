#pragma once

// Copying one file so that its final name never stands for half of it.

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

namespace zemhost {

// Why a file was not copied.
class CopyFailure : public std::runtime_error {
 public:
  enum class Reach {
    ThisFile,     // others may still be copied
    Destination,  // nothing more can be written: the disk is full or broken
  };

  CopyFailure(Reach reach, int error);

  Reach reach() const { return reach_; }
  int error() const { return error_; }

 private:
  Reach reach_;
  int error_;
};

struct FileFacts {
  uint64_t size = 0;
  timespec modified{};
};

// The facts of a regular file, symbolic links followed. Throws CopyFailure (ThisFile) when there is none.
FileFacts factsOf(const std::filesystem::path &file);

// Whether `copy` is a complete copy of `source`, whose facts are given: a regular file of the same size that
// either has the same time of modification, as far as its file system keeps times, or the same content. False
// when there is no such file; throws CopyFailure when one of them cannot be read.
bool isCopyOf(const std::filesystem::path &copy, const std::filesystem::path &source, const FileFacts &facts);

// Copies `source` to `partial`, brings it to the disk, gives it the source's times, and renames it to
// `target`, which must not exist and whose folder is made when it is missing. `onBytes` is told how many
// bytes came through, again and again. Throws CopyFailure; `partial` may then be left, and `target` is not
// there.
void copyFile(const std::filesystem::path &source, const std::filesystem::path &partial,
              const std::filesystem::path &target, const std::function<void(uint64_t)> &onBytes);

}  // namespace zemhost
