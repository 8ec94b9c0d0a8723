#pragma once

#include <cstdint>
#include <cstdio>
#include <exception>

#include "db/LargePages.h"

// A file could not be read to its end.
class FileUnreadable : public std::exception {
 public:
  const char *what() const noexcept override { return "the file cannot be read"; }
};

// One file, read from front to back through a window that stays small enough for the processor's cache: the
// walk looks at every chunk once, and only the texts it keeps need memory of their own. Every read of the
// file goes through here, so none can leave it.
class FileWindow {
 public:
  // How many bytes past the end of the file may be asked for; they read zero. A whole track header fits, so
  // that one cut short reads zero for what is missing.
  static constexpr uint32_t kSpare = 0x100;

  // The window's size, unless one chunk needs more. Each of its pages is fresh memory, which in a small load
  // costs more than reading what it holds.
  static constexpr size_t kUsualSize = size_t{64} << 10;

  // Takes the stream from its start. Throws FileUnreadable when it cannot seek, or is shorter than a chunk's
  // header or as long as 2 GiB. The stream stays the caller's.
  explicit FileWindow(FILE *fp);

  uint32_t Size() const { return size_; }

  // Whether the n bytes at `at` all belong to the file.
  bool Holds(uint64_t at, uint64_t n) const { return at <= size_ && n <= size_ - at; }

  // The n bytes at `at`, of which no more than kSpare lie past the end of the file. They stay where they are,
  // and keep what is written to them, until a later place is asked for; earlier places are gone. Throws
  // FileUnreadable or std::bad_alloc.
  uint8_t *At(uint32_t at, uint64_t n) {
    if (at + n > end_) Fill(at, n);
    return buffer_.get() + (at - begin_);
  }

  // Reads what is left, so that a file whose end cannot be read is known as such. Throws FileUnreadable.
  void ReadToEnd();

 private:
  void Fill(uint32_t at, uint64_t n);
  void Read(size_t to, size_t n);

  FILE *fp_;
  uint32_t size_ = 0;
  LargeBuffer buffer_;
  size_t capacity_ = 0;  // of the buffer, without the spare bytes
  uint32_t begin_ = 0;   // the window's first byte in the file
  uint64_t end_ = 0;     // past its last one, with the spare bytes when the file's end is in it
  uint32_t read_ = 0;    // how much of the file has been read
};
