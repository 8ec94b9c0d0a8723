#include "db/ChunkFormat.h"

#include "db/ByteOrder.h"

namespace {

constexpr uint16_t Half(uint8_t first, uint8_t second) { return static_cast<uint16_t>(first << 8 | second); }

constexpr uint16_t Half(const char (&text)[3]) {
  return Half(static_cast<uint8_t>(text[0]), static_cast<uint8_t>(text[1]));
}

}  // namespace

// A tag is told by its last two characters alone in the little-endian form, by both halves in the big-endian
// one. Some big-endian halves do not spell the other tag reversed; that is how those files are written.
ChunkKind KindOf(const fsbbStruct &fsbb) {
  const auto padIs = [&](const char(&text)[3]) { return Half(fsbb.pad[0], fsbb.pad[1]) == Half(text); };
  switch (Half(fsbb.code[0], fsbb.code[1])) {
    case Half("od"):
      return ChunkKind::DataObject;
    case Half("ip"):
      return ChunkKind::PlayListEntry;
    case Half("it"):
      return ChunkKind::Track;
    case Half("yp"):
      return ChunkKind::PlayList;
    case Half("sd"):
      return ChunkKind::DataSet;
    case Half("lt"):
      return ChunkKind::TrackList;
    case Half("lp"):
      return ChunkKind::PlayListList;
    case Half("hm"):
      return padIs("ho") ? ChunkKind::DataObject : ChunkKind::Other;
    case Half("tm"):
      return padIs("hp") ? ChunkKind::PlayListEntry : ChunkKind::Other;
    case Half("im"):
      return padIs("ht") ? ChunkKind::Track : padIs("hp") ? ChunkKind::PlayList : ChunkKind::Other;
    case Half("sm"):
      return padIs("hd") ? ChunkKind::DataSet : ChunkKind::Other;
    case Half("lm"):
      return padIs("ht") ? ChunkKind::TrackList : padIs("hp") ? ChunkKind::PlayListList : ChunkKind::Other;
    default:
      return ChunkKind::Other;
  }
}

int32_t LibTypeOf(const fsbbStruct &fsbb) {
  const uint16_t code = Half(fsbb.code[0], fsbb.code[1]);
  if (code == Half("bd")) return 1;
  return code == Half("fm") && Half(fsbb.pad[0], fsbb.pad[1]) == Half("hd") ? 0 : -1;
}

uint32_t FileImage::WordAtEnd(uint64_t at, int32_t libType) const {
  uint8_t bytes[4] = {};
  for (unsigned i = 0; i < 4; ++i) bytes[i] = Byte(at + i);
  return WordOf(bytes, libType);
}
