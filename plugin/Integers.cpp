#include "plugin/RbiTunesDB.h"

namespace {

constexpr int32_t kCompilationProp = 2;
constexpr int32_t kDateAddedProp = 3;
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

int32_t ZemRbiTunesDB_GetID(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kID, index, 0);
}
int32_t ZemRbiTunesDB_GetProp(REALobject instance, int32_t index, int32_t num) {
  return ZemRbiTunesDB_GetIntegerData(instance, kProp, index, num);
}
int32_t ZemRbiTunesDB_GetIndexFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListEntryIndex, index, playlist);
}
int32_t ZemRbiTunesDB_GetRefNumFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListEntryRef, index, playlist);
}
int32_t ZemRbiTunesDB_GetReferIndex(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferIndex, trackID, 0);
}
int32_t ZemRbiTunesDB_CountSongUnknown(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kUnknownCount, index, 0);
}

int32_t ZemRbiTunesDB_GetNumTrack(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kTrackNumber, index, 0);
}
int32_t ZemRbiTunesDB_GetTotalTrack(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kTrackTotal, index, 0);
}
int32_t ZemRbiTunesDB_GetDuration(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kDuration, index, 0);
}
int32_t ZemRbiTunesDB_GetFileSize(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kFileSize, index, 0);
}
int32_t ZemRbiTunesDB_GetYear(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kYear, index, 0);
}
int32_t ZemRbiTunesDB_GetBitrate(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kBitrate, index, 0);
}
int32_t ZemRbiTunesDB_GetSamplerate(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kSamplerate, index, 0);
}
int32_t ZemRbiTunesDB_GetMediaType(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kMediaType, index, 0);
}
int32_t ZemRbiTunesDB_GetNumTrackFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListTrackNumber, index, playlist);
}
int32_t ZemRbiTunesDB_GetTotalTrackFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListTrackTotal, index, playlist);
}
int32_t ZemRbiTunesDB_GetDurationFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListDuration, index, playlist);
}
int32_t ZemRbiTunesDB_GetFileSizeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListFileSize, index, playlist);
}
int32_t ZemRbiTunesDB_GetYearFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListYear, index, playlist);
}
int32_t ZemRbiTunesDB_GetBitrateFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListBitrate, index, playlist);
}
int32_t ZemRbiTunesDB_GetSamplerateFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListSamplerate, index, playlist);
}
int32_t ZemRbiTunesDB_GetMediaTypeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kPlayListMediaType, index, playlist);
}
int32_t ZemRbiTunesDB_GetReferNumTrack(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferTrackNumber, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferTotalTrack(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferTrackTotal, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferDuration(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferDuration, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferFileSize(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferFileSize, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferYear(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferYear, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferBitrate(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferBitrate, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferSamplerate(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferSamplerate, trackID, 0);
}
int32_t ZemRbiTunesDB_GetReferMediaType(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetIntegerData(instance, kReferMediaType, trackID, 0);
}

int32_t ZemRbiTunesDB_GetDataAdded(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kProp, index, kDateAddedProp);
}
int32_t ZemRbiTunesDB_GetDataAddedFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetDataAdded(instance, ZemRbiTunesDB_GetIndexFromPlayList(instance, playlist, index));
}
int32_t ZemRbiTunesDB_GetReferDateAdded(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetDataAdded(instance, ZemRbiTunesDB_GetReferIndex(instance, trackID));
}

REALboolean ZemRbiTunesDB_GetCompilation(REALobject instance, int32_t index) {
  const int32_t prop = ZemRbiTunesDB_GetIntegerData(instance, kProp, index, kCompilationProp);
  return ToBoolean((static_cast<uint32_t>(prop) & kCompilationBit) != 0);
}
REALboolean ZemRbiTunesDB_GetCompilationFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetCompilation(instance,
                                      ZemRbiTunesDB_GetIndexFromPlayList(instance, playlist, index));
}
REALboolean ZemRbiTunesDB_GetReferCompilation(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetCompilation(instance, ZemRbiTunesDB_GetReferIndex(instance, trackID));
}

// The flag is always looked up by track ID, even where a library index comes in; host code knows it so.
REALboolean ZemRbiTunesDB_GetMovieFileFlag(REALobject instance, int32_t index) {
  return ToBoolean(ZemRbiTunesDB_GetIntegerData(instance, kReferMovieFileFlag, index, 0) == 1);
}
REALboolean ZemRbiTunesDB_GetMovieFileFlagFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetMovieFileFlag(instance,
                                        ZemRbiTunesDB_GetIndexFromPlayList(instance, playlist, index));
}
REALboolean ZemRbiTunesDB_GetReferMovieFileFlag(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetMovieFileFlag(instance, ZemRbiTunesDB_GetReferIndex(instance, trackID));
}

void ZemRbiTunesDB_SetNumTrack(REALobject instance, int32_t index, int32_t number) {
  ZemRbiTunesDB_SetIntegerData(instance, kTrackNumber, index, 0, number);
}
void ZemRbiTunesDB_SetTotalTrack(REALobject instance, int32_t index, int32_t total) {
  ZemRbiTunesDB_SetIntegerData(instance, kTrackTotal, index, 0, total);
}
void ZemRbiTunesDB_SetFileSize(REALobject instance, int32_t index, int32_t filesize) {
  ZemRbiTunesDB_SetIntegerData(instance, kFileSize, index, 0, filesize);
}
void ZemRbiTunesDB_SetYear(REALobject instance, int32_t index, int32_t year) {
  ZemRbiTunesDB_SetIntegerData(instance, kYear, index, 0, year);
}
void ZemRbiTunesDB_SetMediaType(REALobject instance, int32_t index, int32_t flag) {
  ZemRbiTunesDB_SetIntegerData(instance, kMediaType, index, 0, flag);
}

void ZemRbiTunesDB_SetCompilation(REALobject instance, int32_t index, REALboolean compilation) {
  const auto prop =
      static_cast<uint32_t>(ZemRbiTunesDB_GetIntegerData(instance, kProp, index, kCompilationProp));
  const uint32_t changed =
      compilation == REALboolean::False ? prop & ~kCompilationBit : prop | kCompilationBit;
  ZemRbiTunesDB_SetIntegerData(instance, kProp, index, kCompilationProp, static_cast<int32_t>(changed));
}
