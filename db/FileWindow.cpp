#include "db/FileWindow.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "db/ChunkFormat.h"

FileWindow::FileWindow(FILE *fp) : fp_(fp) {
  if (std::fseek(fp, 0, SEEK_END) != 0) throw FileUnreadable();
  const long filesize = std::ftell(fp);
  if (filesize < long{kChunkHeaderSize} || filesize > long{INT32_MAX}) throw FileUnreadable();
  if (std::fseek(fp, 0, SEEK_SET) != 0) throw FileUnreadable();
  size_ = static_cast<uint32_t>(filesize);
  capacity_ = std::min<size_t>(size_, kUsualSize);
  buffer_ = MakeLargeBuffer(capacity_ + kSpare);
}

void FileWindow::Read(size_t to, size_t n) {
  if (std::fread(buffer_.get() + to, 1, n, fp_) != n) throw FileUnreadable();
  read_ += static_cast<uint32_t>(n);
}

void FileWindow::Fill(uint32_t at, uint64_t n) {
  const size_t wanted = static_cast<size_t>(std::min<uint64_t>(n, size_ - at));
  size_t kept = 0;
  size_t from = 0;
  if (read_ >= at) {
    kept = read_ - at;
    from = at - begin_;
  }
  // What the walk steps over is read all the same.
  while (read_ < at) Read(0, std::min<size_t>(capacity_, at - read_));
  if (wanted > capacity_) {
    const size_t capacity = std::min<size_t>(size_ - at, std::max(wanted, 2 * capacity_));
    LargeBuffer grown = MakeLargeBuffer(capacity + kSpare);
    std::memcpy(grown.get(), buffer_.get() + from, kept);
    buffer_ = std::move(grown);
    capacity_ = capacity;
  } else {
    std::memmove(buffer_.get(), buffer_.get() + from, kept);
  }
  begin_ = at;
  Read(kept, std::min<size_t>(capacity_ - kept, size_ - read_));
  end_ = read_;
  if (read_ == size_) {
    std::memset(buffer_.get() + (size_ - begin_), 0, kSpare);
    end_ += kSpare;
  }
}

void FileWindow::ReadToEnd() {
  while (read_ < size_) Read(0, std::min<size_t>(capacity_, size_ - read_));
}
