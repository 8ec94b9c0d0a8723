#include "player/FileBytes.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace player {

size_t readAt(int file, uint64_t offset, char *bytes, size_t size) {
  size_t filled = 0;
  while (filled < size) {
    const ssize_t got = pread(file, bytes + filled, size - filled, static_cast<off_t>(offset + filled));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw std::system_error(errno, std::generic_category());
    if (got == 0) break;
    filled += static_cast<size_t>(got);
  }
  return filled;
}

std::string readAt(int file, uint64_t offset, size_t size) {
  std::string bytes(size, '\0');
  bytes.resize(readAt(file, offset, bytes.data(), size));
  return bytes;
}

void writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw std::system_error(errno, std::generic_category());
    bytes.remove_prefix(static_cast<size_t>(written));
  }
}

}  // namespace player
