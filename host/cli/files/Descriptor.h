#pragma once

// An open file of the system, and reading it.

#include <cstddef>
#include <cstdint>
#include <string>

namespace zemhost {

// Owns a file descriptor, or none (a negative number), and closes it.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor &&other) noexcept;
  Descriptor &operator=(Descriptor &&other) noexcept;
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  ~Descriptor();

  int number() const { return number_; }

 private:
  int number_ = -1;
};

// Reads up to `size` bytes at an offset into `bytes` and returns how many there were: fewer only at the end
// of the file. Throws std::system_error on a read error.
size_t readAt(int file, uint64_t offset, char *bytes, size_t size);
std::string readAt(int file, uint64_t offset, size_t size);

}  // namespace zemhost
