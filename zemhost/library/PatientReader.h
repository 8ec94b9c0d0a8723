#pragma once

// Reads a file of a disk that fails: tries again, and then goes around what cannot be read.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

// Bytes of a file that could not be read.
struct Gap {
  uint64_t offset = 0;
  uint64_t size = 0;

  bool operator==(const Gap &) const = default;
};

// "4096 bytes at 8192 and 512 bytes at 40960 cannot be read".
std::string gapsText(const std::vector<Gap> &gaps);

class PatientReader {
 public:
  static constexpr size_t kBlock = size_t{256} * 1024;
  static constexpr size_t kPiece = 4096;

  // Of an open file with this many bytes.
  PatientReader(const carbon::Descriptor &file, uint64_t size);

  // The block at a multiple of kBlock, valid until the next call; fewer bytes at the file's end alone. A
  // block that cannot be read is tried again, then read piece by piece; a piece that cannot be read adds to
  // gaps(), and zeros stand in its place. Where a whole block of pieces has failed, the blocks that follow
  // are tried once each: a disk may take long for every failure.
  std::string_view block(uint64_t at);

  // Reads a part of a gap once more, at most a block; nothing when that fails again.
  std::string_view retry(const Gap &part);

  // What could not be read, in the order of the file.
  const std::vector<Gap> &gaps() const { return gaps_; }
  uint64_t bytesLost() const;
  // The error of the last failure.
  int error() const { return error_; }

 private:
  bool read(uint64_t at, char *bytes, size_t size, size_t &got);
  void lose(uint64_t at, size_t size);

  const carbon::Descriptor &file_;
  uint64_t size_;
  std::vector<char> block_;
  std::vector<Gap> gaps_;
  int error_ = 0;
  size_t failedPieces_ = 0;  // one behind another, up to here
};

}  // namespace zemhost
