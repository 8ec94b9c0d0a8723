#include "plugin/Integers.h"

namespace {

constexpr int32_t kCompilationProp = 2;
constexpr uint32_t kCompilationBit = 0x10000;

}  // namespace

void ZemRbiTunesDB_SetIntegerData(REALobject instance, int32_t selector, int32_t index, int32_t num,
                                  int32_t value) {
  CiTunesDB *db = Database(instance);
  if (db == nullptr || !db->songs.Has(index)) return;
  CSongList &song = db->songs[static_cast<size_t>(index)];
  const auto word = static_cast<uint32_t>(value);
  switch (selector) {
    case kProp:
      db->SetSongsProp(index, num, word);
      [[fallthrough]];
    case kTrackNumber:
      song.track.num = word;
      [[fallthrough]];
    case kTrackTotal:
      song.track.total = word;
      [[fallthrough]];
    case kFileSize:
      song.filesize = word;
      [[fallthrough]];
    case kYear:
      song.year = word;
      [[fallthrough]];
    case kMediaType:
      song.mediaType = word;
      break;
    default:
      break;
  }
}

REALboolean ZemRbiTunesDB_GetCompilation(REALobject instance, int32_t index) {
  const int32_t prop = ZemRbiTunesDB_GetIntegerData(instance, kProp, index, kCompilationProp);
  return ToBoolean((static_cast<uint32_t>(prop) & kCompilationBit) != 0);
}

// The flag is always looked up by track ID, even where a library index comes in; host code knows it so.
REALboolean ZemRbiTunesDB_GetMovieFileFlag(REALobject instance, int32_t index) {
  return ToBoolean(ZemRbiTunesDB_GetIntegerData(instance, kReferMovieFileFlag, index, 0) == 1);
}

void ZemRbiTunesDB_SetCompilation(REALobject instance, int32_t index, REALboolean compilation) {
  const auto prop =
      static_cast<uint32_t>(ZemRbiTunesDB_GetIntegerData(instance, kProp, index, kCompilationProp));
  const uint32_t changed =
      compilation == REALboolean::False ? prop & ~kCompilationBit : prop | kCompilationBit;
  ZemRbiTunesDB_SetIntegerData(instance, kProp, index, kCompilationProp, static_cast<int32_t>(changed));
}
