#include "host/cli/files/Descriptor.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zemhost {

Descriptor::Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

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

}  // namespace zemhost
