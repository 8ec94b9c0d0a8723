#pragma once

#include <unistd.h>
#include <utility>

namespace carbon {

// Owns a file descriptor, or none (a negative number), and closes it.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor &operator=(Descriptor &&other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }

  explicit operator bool() const { return number_ >= 0; }
  int number() const { return number_; }
  // Hands the descriptor to the caller, who closes it.
  int release() { return std::exchange(number_, -1); }

 private:
  int number_ = -1;
};

}  // namespace carbon
