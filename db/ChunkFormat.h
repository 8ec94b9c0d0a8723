#pragma once

#include <cstdint>

#include "db/ByteOrder.h"

// The records the loader reads from a file, in values: words already in the machine's order.

constexpr uint32_t kChunkHeaderSize = 16;

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

// Two characters of a tag as one word.
constexpr uint16_t HalfTag(uint8_t first, uint8_t second) {
  return static_cast<uint16_t>(first << 8 | second);
}

constexpr uint16_t HalfTag(const char (&text)[3]) {
  return HalfTag(static_cast<uint8_t>(text[0]), static_cast<uint8_t>(text[1]));
}

// The kind of a chunk by its tag, in either variant's form whatever the file's variant is.
// A tag is told by its last two characters alone in the little-endian form, by both halves in the big-endian
// one. Some big-endian halves do not spell the other tag reversed; that is how those files are written.
inline ChunkKind KindOf(const fsbbStruct &fsbb) {
  const auto padIs = [&](const char(&text)[3]) { return HalfTag(fsbb.pad[0], fsbb.pad[1]) == HalfTag(text); };
  switch (HalfTag(fsbb.code[0], fsbb.code[1])) {
    case HalfTag("od"):
      return ChunkKind::DataObject;
    case HalfTag("ip"):
      return ChunkKind::PlayListEntry;
    case HalfTag("it"):
      return ChunkKind::Track;
    case HalfTag("yp"):
      return ChunkKind::PlayList;
    case HalfTag("sd"):
      return ChunkKind::DataSet;
    case HalfTag("lt"):
      return ChunkKind::TrackList;
    case HalfTag("lp"):
      return ChunkKind::PlayListList;
    case HalfTag("hm"):
      return padIs("ho") ? ChunkKind::DataObject : ChunkKind::Other;
    case HalfTag("tm"):
      return padIs("hp") ? ChunkKind::PlayListEntry : ChunkKind::Other;
    case HalfTag("im"):
      return padIs("ht") ? ChunkKind::Track : padIs("hp") ? ChunkKind::PlayList : ChunkKind::Other;
    case HalfTag("sm"):
      return padIs("hd") ? ChunkKind::DataSet : ChunkKind::Other;
    case HalfTag("lm"):
      return padIs("ht") ? ChunkKind::TrackList : padIs("hp") ? ChunkKind::PlayListList : ChunkKind::Other;
    default:
      return ChunkKind::Other;
  }
}

// The variant a file's first chunk announces: 1 little-endian, 0 big-endian, -1 neither.
int32_t LibTypeOf(const fsbbStruct &fsbb);

// The word at `bytes`, in the byte order of libType.
inline uint32_t FileWord(const uint8_t *bytes, int32_t libType) {
  uint32_t word = BigEndianWord(bytes);
  if (libType == 1) Swap4Byte(&word);
  return word;
}

// The chunk header at `bytes`, with its three words in the order of libType.
inline fsbbStruct ChunkHeader(const uint8_t *bytes, int32_t libType) {
  return {{bytes[0], bytes[1]},
          {bytes[2], bytes[3]},
          FileWord(bytes + 4, libType),
          FileWord(bytes + 8, libType),
          FileWord(bytes + 12, libType)};
}
