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

  // Up to `count` bytes from an offset on, fewer at the end of the file; valid until the next call. The
  // buffer is filled anew where it does not hold them, so offsets that never go back read the file about
  // once.
  std::string_view at(uint64_t offset, size_t count);

  // The same of a place further on, for which the buffer stays as it is: reads just these bytes.
  std::string_view ahead(uint64_t offset, size_t count);

 private:
  bool holds(uint64_t offset, size_t count) const;
  std::string_view held(uint64_t offset, size_t count) const;

  int file_;
  uint64_t size_ = 0;
  uint64_t base_ = 0;
  std::string bytes_;  // from base_ on
  std::string ahead_;
};

}  // namespace player
