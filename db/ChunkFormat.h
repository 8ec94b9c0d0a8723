#pragma once

#include <cstdint>

#include "db/ByteOrder.h"

// The records the loader reads from a file, in values: words already in the machine's order.

// The first 16 bytes of every chunk. `jump` is the header's length, the distance to the first child or the
// body; `myLen` is the chunk's total length or its number of children, and `count` a type, as the kind has
// it.
struct fsbbStruct {
  uint8_t pad[2];
  uint8_t code[2];
  uint32_t jump;
  uint32_t myLen;
  uint32_t count;
};

// A track, from offset 0x10.
struct propertyParam {
  uint32_t item_id;
  uint32_t res[6];
};

// A track, from offset 0x38. Most significant byte first in both variants.
struct rateParam {
  uint32_t bitrate;
  uint32_t samplerate;
};

// A playlist entry, from offset 0x10.
struct playlistParam {
  uint32_t item_ply;
  uint32_t res1;
  uint32_t item_ref;
  uint16_t res2[2];
};

// A data object, from offset 0x10. The encoding word res2[0] stays most significant byte first.
struct stringParam {
  uint32_t res1;
  uint32_t strlength;
  uint32_t res2[2];
};

enum class ChunkKind { DataSet, TrackList, Track, PlayListList, PlayList, PlayListEntry, DataObject, Other };

// The kind of a chunk by its tag, in either variant's form whatever the file's variant is.
ChunkKind KindOf(const fsbbStruct &fsbb);

// The variant a file's first chunk announces: 1 little-endian, 0 big-endian, -1 neither.
int32_t LibTypeOf(const fsbbStruct &fsbb);

// One loaded file. Every read of it goes through here, so none can leave it.
class FileImage {
 public:
  // `bytes` holds `size` bytes of the file and one spare zero byte after them.
  FileImage(uint8_t *bytes, uint32_t size) : bytes_(bytes), size_(size) {}

  uint32_t Size() const { return size_; }

  // Whether the n bytes at `at` all belong to the file.
  bool Holds(uint64_t at, uint64_t n) const { return at <= size_ && n <= size_ - at; }

  // The bytes at `at`; the caller has asked Holds for the range it uses.
  uint8_t *At(uint32_t at) const { return bytes_ + at; }

  // The word at `at`, in the byte order of libType; a byte past the end reads as zero.
  uint32_t Word(uint64_t at, int32_t libType) const {
    return Holds(at, 4) ? WordOf(bytes_ + at, libType) : WordAtEnd(at, libType);
  }

  // The byte at `at`, or zero past the end.
  uint8_t Byte(uint64_t at) const { return at < size_ ? bytes_[at] : uint8_t{0}; }

  // The chunk header at `at`, with its three words in the order of libType; the caller has asked Holds for
  // it.
  fsbbStruct Header(uint32_t at, int32_t libType) const {
    const uint8_t *header = bytes_ + at;
    return {{header[0], header[1]},
            {header[2], header[3]},
            WordOf(header + 4, libType),
            WordOf(header + 8, libType),
            WordOf(header + 12, libType)};
  }

 private:
  static uint32_t WordOf(const uint8_t *bytes, int32_t libType) {
    uint32_t word = BigEndianWord(bytes);
    if (libType == 1) Swap4Byte(&word);
    return word;
  }
  uint32_t WordAtEnd(uint64_t at, int32_t libType) const;

  uint8_t *bytes_;
  uint32_t size_;
};
