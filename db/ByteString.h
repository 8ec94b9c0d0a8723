#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// The raw bytes of one stored text. A library holds about ten of them for each song, so most borrow their
// bytes from the database's arena instead of owning a copy: loading then allocates nothing per text. A
// copy of a ByteString always owns its bytes; only a move passes a borrowed range on.
class ByteString {
 public:
  // The longest text that needs no memory of its own.
  static constexpr size_t kNearRoom = 8;

  // Whether bytes given to a ByteString are copied, or only pointed at because they outlive it.
  enum class Keep { Copy, Borrow };

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

  // Adds bytes at the end. With Keep::Borrow an empty ByteString only points at them, and the caller keeps
  // them alive and unchanged; otherwise they are copied. Throws std::bad_alloc or std::length_error and then
  // leaves the text as it was. The bytes must not be part of this text.
  void Append(std::string_view bytes, Keep keep = Keep::Copy);

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
  static constexpr uint32_t kNear = UINT32_MAX;  // value of room_: the bytes stand in near_
  static constexpr uint32_t kBorrowed = 0;       // value of room_: the bytes at far_ belong to somebody else

  void Release() noexcept {
    if (room_ != kNear && room_ != kBorrowed) delete[] far_;
  }
  void Take(ByteString &other) noexcept;

  union {
    const char *far_;
    char near_[kNearRoom] = {};
  };
  uint32_t size_ = 0;
  uint32_t room_ = kNear;
};

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
