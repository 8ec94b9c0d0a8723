#pragma once

#include "plugin/RbiTunesDB.h"

// What a song holds in numbers. It stands in a header because host code asks for these more often than for
// anything else: where the selector is known, the compiler leaves one field's way of it.

namespace integers {

enum class Family { Library, PlayList, Refer };

inline const CSongList *SongAt(const CiTunesDB &db, Family family, int32_t index, int32_t playlist) {
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
inline uint32_t Field(const CSongList &song, int32_t selector) {
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

inline int32_t SongField(const CiTunesDB &db, Family family, int32_t librarySelector, int32_t index,
                         int32_t playlist) {
  const CSongList *song = SongAt(db, family, index, playlist);
  return song == nullptr ? 0 : static_cast<int32_t>(Field(*song, librarySelector));
}

}  // namespace integers

// The value of a selector, as the loader stored it; 0 for a selector outside 0 to 35 and an index out of
// range.
inline int32_t ZemRbiTunesDB_GetIntegerData(REALobject instance, int32_t selector, int32_t index,
                                            int32_t playlist) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr) return 0;
  switch (selector) {
    case kID:
      return db->SongsID(index);
    case kTrackNumber:
    case kTrackTotal:
      return integers::SongField(*db, integers::Family::Library, selector, index, playlist);
    case kPlayListTrackNumber:
    case kPlayListTrackTotal:
      return integers::SongField(*db, integers::Family::PlayList, selector - 4, index, playlist);
    case kReferTrackNumber:
    case kReferTrackTotal:
      return integers::SongField(*db, integers::Family::Refer, selector - 7, index, playlist);
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
  return integers::SongField(*db, static_cast<integers::Family>(family), selector - family, index, playlist);
}
