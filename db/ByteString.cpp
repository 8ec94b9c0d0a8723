#include "db/ByteString.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

#include "db/LargePages.h"

TextBlock *TextBlock::Make(size_t room) {
  const size_t size = sizeof(TextBlock) + room;
  return new (AllocateLarge(size)) TextBlock(size);
}

void TextBlock::Free() noexcept { FreeLarge(this, size_); }

void ByteString::Append(std::string_view bytes) {
  if (bytes.empty()) return;
  if (bytes.size() > kMaxSize - size_) throw std::length_error("ByteString");
  const size_t size = size_ + bytes.size();
  if (room_ == kNear && size <= sizeof near_) {
    std::memcpy(near_ + size_, bytes.data(), bytes.size());
  } else if (room_ < kShared && room_ >= size) {
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
