#include "db/ChunkFormat.h"

#include "db/ByteOrder.h"

namespace {

constexpr uint16_t Half(uint8_t first, uint8_t second) { return static_cast<uint16_t>(first << 8 | second); }

constexpr uint16_t Half(const char (&text)[3]) {
  return Half(static_cast<uint8_t>(text[0]), static_cast<uint8_t>(text[1]));
}

// The last two characters of a kind's little-endian tag, then the two halves of its big-endian one. Some
// pairs do not spell the little-endian tag reversed; that is how the big-endian files are written.
struct Tag {
  ChunkKind kind;
  uint16_t littleCode;
  uint16_t bigCode;
  uint16_t bigPad;
};

constexpr Tag kTags[] = {
    {ChunkKind::DataSet, Half("sd"), Half("sm"), Half("hd")},
    {ChunkKind::TrackList, Half("lt"), Half("lm"), Half("ht")},
    {ChunkKind::Track, Half("it"), Half("im"), Half("ht")},
    {ChunkKind::PlayListList, Half("lp"), Half("lm"), Half("hp")},
    {ChunkKind::PlayList, Half("yp"), Half("im"), Half("hp")},
    {ChunkKind::PlayListEntry, Half("ip"), Half("tm"), Half("hp")},
    {ChunkKind::DataObject, Half("od"), Half("hm"), Half("ho")},
};

}  // namespace

ChunkKind KindOf(const fsbbStruct &fsbb) {
  const uint16_t pad = Half(fsbb.pad[0], fsbb.pad[1]);
  const uint16_t code = Half(fsbb.code[0], fsbb.code[1]);
  for (const Tag &tag : kTags) {
    if (code == tag.littleCode || (code == tag.bigCode && pad == tag.bigPad)) return tag.kind;
  }
  return ChunkKind::Other;
}

int32_t LibTypeOf(const fsbbStruct &fsbb) {
  const uint16_t code = Half(fsbb.code[0], fsbb.code[1]);
  if (code == Half("bd")) return 1;
  return code == Half("fm") && Half(fsbb.pad[0], fsbb.pad[1]) == Half("hd") ? 0 : -1;
}

uint32_t FileImage::Word(uint64_t at, int32_t libType) const {
  uint8_t bytes[4] = {};
  const uint8_t *from = bytes;
  if (Holds(at, 4)) {
    from = bytes_ + at;
  } else {
    for (unsigned i = 0; i < 4; ++i) bytes[i] = Byte(at + i);
  }
  uint32_t word = BigEndianWord(from);
  if (libType == 1) Swap4Byte(&word);
  return word;
}

fsbbStruct FileImage::Header(uint32_t at, int32_t libType) const {
  return {{Byte(at), Byte(at + 1)},
          {Byte(at + 2), Byte(at + 3)},
          Word(at + 4, libType),
          Word(at + 8, libType),
          Word(at + 12, libType)};
}
