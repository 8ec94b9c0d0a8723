#include "db/ByteString.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

// Host strings and file offsets are signed 32-bit, so no text of the system is longer.
constexpr size_t kMaxSize = INT32_MAX;

}  // namespace

void ByteString::Append(std::string_view bytes, Keep keep) {
  if (bytes.empty()) return;
  if (bytes.size() > kMaxSize - size_) throw std::length_error("ByteString");
  if (size_ == 0 && keep == Keep::Borrow) {
    Release();
    far_ = bytes.data();
    size_ = static_cast<uint32_t>(bytes.size());
    room_ = kBorrowed;
    return;
  }
  const size_t size = size_ + bytes.size();
  if (room_ == kNear && size <= sizeof near_) {
    std::memcpy(near_ + size_, bytes.data(), bytes.size());
  } else if (room_ != kNear && room_ >= size) {
    std::memcpy(const_cast<char *>(far_) + size_, bytes.data(), bytes.size());
  } else {
    // A text that grows at all may be made of many objects, so its room doubles: appending stays linear.
    const size_t room = size_ == 0 ? size : std::min(kMaxSize, std::max<size_t>(size, size_t{2} * size_));
    char *grown = new char[room];
    std::memcpy(grown, data(), size_);
    std::memcpy(grown + size_, bytes.data(), bytes.size());
    Release();
    far_ = grown;
    room_ = static_cast<uint32_t>(room);
  }
  size_ = static_cast<uint32_t>(size);
}

void ByteString::Take(ByteString &other) noexcept {
  if (other.room_ == kNear) {
    std::memcpy(near_, other.near_, sizeof near_);
  } else {
    far_ = other.far_;
  }
  size_ = other.size_;
  room_ = other.room_;
  std::memset(other.near_, 0, sizeof other.near_);
  other.size_ = 0;
  other.room_ = kNear;
}
