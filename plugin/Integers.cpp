#include "plugin/RbiTunesDB.h"

namespace {

constexpr int32_t kCompilationProp = 2;
constexpr uint32_t kCompilationBit = 0x10000;

enum class Family { Library, PlayList, Refer };

const CSongList *SongAt(const CiTunesDB &db, Family family, int32_t index, int32_t playlist) {
  if (family == Family::PlayList) {
    const refidx *entry = db.Entry(PlayNum(playlist), index);
    if (entry == nullptr) return nullptr;
    index = entry->idx;
  } else if (family == Family::Refer) {
    index = db.FindRefIdx(index);
  }
  return db.songs.Has(index) ? &db.songs[static_cast<size_t>(index)] : nullptr;
}

// A field of a song by the selector of its library form.
uint32_t Field(const CSongList &song, int32_t selector) {
  switch (selector) {
    case kTrackNumber:
      return song.NUM_OF_TRACK();
    case kTrackTotal:
      return song.TOTAL_TRACK();
    case kDuration:
      return song.DURATION();
    case kFileSize:
      return song.FILESIZE();
    case kYear:
      return song.YEAR();
    case kDateAdded:
      return static_cast<uint32_t>(song.PROP(kDateAddedProp));
    case kBitrate:
      return song.BITRATE();
    case kSamplerate:
      return song.SAMPLERATE();
    case kMediaType:
      return song.MEDIA_TYPE();
    case kMovieFileFlag:
      return song.MOVIE_FILE_FLAG();
    default:
      return 0;
  }
}

int32_t SongField(const CiTunesDB &db, Family family, int32_t librarySelector, int32_t index,
                  int32_t playlist) {
  const CSongList *song = SongAt(db, family, index, playlist);
  return song == nullptr ? 0 : static_cast<int32_t>(Field(*song, librarySelector));
}

}  // namespace

int32_t ZemRbiTunesDB_GetIntegerData(REALobject instance, int32_t selector, int32_t index, int32_t playlist) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr) return 0;
  switch (selector) {
    case kID:
      return db->SongsID(index);
    case kTrackNumber:
    case kTrackTotal:
      return SongField(*db, Family::Library, selector, index, playlist);
    case kPlayListTrackNumber:
    case kPlayListTrackTotal:
      return SongField(*db, Family::PlayList, selector - 4, index, playlist);
    case kReferTrackNumber:
    case kReferTrackTotal:
      return SongField(*db, Family::Refer, selector - 7, index, playlist);
    case kPlayListEntryIndex:
    case kPlayListEntryRef: {
      const refidx *entry = db->Entry(PlayNum(playlist), index);
      if (entry == nullptr) return 0;
      return selector == kPlayListEntryIndex ? entry->idx : entry->ref;
    }
    case kReferIndex:
      return db->FindRefIdx(index);
    case kUnknownCount:
      return db->CountSongUnknown(index);
    case kProp:
      return db->SongsProp(index, playlist);
    default:
      break;
  }
  if (selector < kDuration || selector > kReferMovieFileFlag) return 0;
  // From here on the selectors come in threes: library, playlist, track ID.
  const int32_t family = (selector - kDuration) % 3;
  return SongField(*db, static_cast<Family>(family), selector - family, index, playlist);
}

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
