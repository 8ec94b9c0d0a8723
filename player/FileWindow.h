#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace player {

// An open file seen through a small buffer, for reading it mostly forwards. Throws std::system_error when it
// cannot be read.
class FileWindow {
 public:
  explicit FileWindow(int file);

  uint64_t size() const { return size_; }

  // Up to `count` bytes from an offset on, fewer at the end of the file; valid until the next call.
  std::string_view at(uint64_t offset, size_t count);

 private:
  int file_;
  uint64_t size_ = 0;
  uint64_t base_ = 0;
  size_t filled_ = 0;
  std::string bytes_;
};

}  // namespace player
