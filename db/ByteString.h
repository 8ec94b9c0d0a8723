#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// A block of bytes that texts share, each its own piece. Whoever uses the block is counted, and it goes with
// the last of them, so a text keeps its bytes wherever it is moved to and however long it lives.
class TextBlock {
 public:
  // A new block with that much room, not initialised, in use by the caller. Throws std::bad_alloc.
  static TextBlock *Make(size_t room);

  void Use() noexcept { ++uses_; }
  void Drop() noexcept {
    if (--uses_ == 0) Free();
  }
  char *Bytes() noexcept { return reinterpret_cast<char *>(this + 1); }

 private:
  explicit TextBlock(size_t size) : size_(size) {}
  void Free() noexcept;

  size_t size_;  // of the block with this record
  size_t uses_ = 1;
};

// Bytes that stand in a block.
struct BlockText {
  std::string_view bytes;
  TextBlock *block = nullptr;
};

// The raw bytes of one stored text. A library holds about ten of them for each song, so most share a block of
// the database's arena instead of having memory of their own: loading then allocates nothing per text. A move
// passes the share on; a copy has memory of its own.
class ByteString {
 public:
  // The longest text that needs no memory of its own.
  static constexpr size_t kNearRoom = 8;

  ByteString() noexcept = default;
  ByteString(std::string_view bytes) { Append(bytes); }
  ByteString(const std::string &bytes) { Append(bytes); }
  ByteString(const char *bytes) { Append(bytes); }
  ByteString(const ByteString &other) { Append(other.View()); }
  ByteString(ByteString &&other) noexcept { Take(other); }
  ~ByteString() { Release(); }

  ByteString &operator=(const ByteString &other) {
    if (this != &other) *this = ByteString(other);
    return *this;
  }
  ByteString &operator=(ByteString &&other) noexcept {
    if (this != &other) {
      Release();
      Take(other);
    }
    return *this;
  }

  // Adds a copy of the bytes at the end. Throws std::bad_alloc or std::length_error and then leaves the text
  // as it was. The bytes must not be part of this text.
  void Append(std::string_view bytes);

  // The same; an empty text shares the block instead of copying. Nobody may change the bytes any more.
  void Append(const BlockText &text);

  const char *data() const noexcept { return room_ == kNear ? near_ : far_; }
  size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  std::string_view View() const noexcept { return {data(), size_}; }
  operator std::string_view() const noexcept { return View(); }

  template <std::convertible_to<std::string_view> Text>
  friend bool operator==(const ByteString &a, const Text &b) noexcept {
    const std::string_view view = b;
    if (a.size_ != view.size()) return false;
    return a.size_ == 0 || a.data() == view.data() || a.View() == view;
  }

 private:
  // Values of room_ from here on: the bytes at far_ stand in a block, the rest of the value behind its begin.
  static constexpr uint32_t kShared = 0x80000000;
  static constexpr uint32_t kNear = UINT32_MAX;  // the greatest: the bytes stand in near_

  // Host strings and file offsets are signed 32-bit, so no text of the system is longer.
  static constexpr size_t kMaxSize = INT32_MAX;

  TextBlock *Block() const noexcept {
    return reinterpret_cast<TextBlock *>(const_cast<char *>(far_) - (room_ - kShared));
  }
  void Release() noexcept {
    if (room_ < kShared) {
      delete[] far_;
    } else if (room_ != kNear) {
      Block()->Drop();
    }
  }
  void Take(ByteString &other) noexcept;

  union {
    const char *far_;
    char near_[kNearRoom] = {};
  };
  uint32_t size_ = 0;
  uint32_t room_ = kNear;  // of the memory at far_, when that is this text's own
};

inline void ByteString::Append(const BlockText &text) {
  const auto offset = static_cast<size_t>(text.bytes.data() - reinterpret_cast<const char *>(text.block));
  if (size_ != 0 || text.bytes.empty() || text.bytes.size() > kMaxSize || offset >= kNear - kShared) {
    Append(text.bytes);
    return;
  }
  Release();
  text.block->Use();
  far_ = text.bytes.data();
  size_ = static_cast<uint32_t>(text.bytes.size());
  room_ = kShared + static_cast<uint32_t>(offset);
}

// Room for one text that is made on the way out: on the stack for any usual length, on the heap beyond.
class ScratchText {
 public:
  // At least `size` bytes, valid until the next call. Throws std::bad_alloc.
  char *Room(size_t size) {
    if (size <= sizeof near_) return near_;
    far_ = std::make_unique_for_overwrite<char[]>(size);
    return far_.get();
  }

 private:
  char near_[512];
  std::unique_ptr<char[]> far_;
};
