#include "player/FileWindow.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <system_error>

#include "player/FileBytes.h"

namespace player {

namespace {

constexpr size_t kSize = size_t{64} * 1024;

}  // namespace

FileWindow::FileWindow(int file) : file_(file) {
  struct stat status {};
  if (fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
  size_ = static_cast<uint64_t>(status.st_size);
}

std::string_view FileWindow::at(uint64_t offset, size_t count) {
  if (!holds(offset, count)) {
    base_ = offset;
    bytes_.resize(kSize);
    bytes_.resize(readAt(file_, offset, bytes_.data(), kSize));
  }
  return held(offset, count);
}

std::string_view FileWindow::ahead(uint64_t offset, size_t count) {
  if (holds(offset, count)) return held(offset, count);
  ahead_ = readAt(file_, offset, count);
  return ahead_;
}

// Or all that is there of them, where the window reaches the end of the file.
bool FileWindow::holds(uint64_t offset, size_t count) const {
  const uint64_t end = base_ + bytes_.size();
  return offset >= base_ && offset <= end && std::min(offset + count, size_) <= end;
}

std::string_view FileWindow::held(uint64_t offset, size_t count) const {
  return std::string_view(bytes_).substr(static_cast<size_t>(offset - base_), count);
}

}  // namespace player
