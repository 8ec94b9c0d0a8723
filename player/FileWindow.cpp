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

FileWindow::FileWindow(int file) : file_(file), bytes_(kSize, '\0') {
  struct stat status {};
  if (fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
  size_ = static_cast<uint64_t>(status.st_size);
}

std::string_view FileWindow::at(uint64_t offset, size_t count) {
  if (offset < base_ || offset + count > base_ + filled_) {
    base_ = offset;
    filled_ = readAt(file_, offset, bytes_.data(), kSize);
  }
  const auto start = static_cast<size_t>(offset - base_);
  return std::string_view(bytes_).substr(start, std::min(count, filled_ - start));
}

}  // namespace player
