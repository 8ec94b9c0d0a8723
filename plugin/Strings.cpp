#include "platform/carbon/CarbonFiles.h"
#include "plugin/RbiTunesDB.h"
#include "unicode/ZemUnicode.h"

namespace {

// The code of a text whose form the file does not tell.
constexpr uint32_t kUnknownForm = 3;

REALstring Build(std::string_view bytes, uint32_t encoding) {
  REALstring string = REALBuildString(bytes.data(), static_cast<int32_t>(bytes.size()));
  if (string != nullptr) REALSetStringEncoding(string, encoding);
  return string;
}

// The library index a source means; an entry that does not exist means song 0.
int32_t SongOf(const CiTunesDB &db, int32_t dataType, int32_t playlist, int32_t index) {
  switch (dataType) {
    case kFromPlayList:
    case kUnknownFromPlayList: {
      const refidx *entry = db.Entry(PlayNum(playlist), index);
      return entry == nullptr ? 0 : entry->idx;
    }
    case kFromTrackID:
    case kUnknownFromTrackID:
      return db.FindRefIdx(index);
    default:
      return index;
  }
}

const songInfo &Cell(const CiTunesDB &db, int32_t dataType, int32_t param, int32_t playlist, int32_t index) {
  switch (dataType) {
    case kFromPlayListName:
      return db.PlayListNameCell(PlayNum(playlist));
    case kFromSong:
    case kFromPlayList:
    case kFromTrackID:
      return db.SongsCell(SongOf(db, dataType, playlist, index), param);
    case kUnknownFromSong:
    case kUnknownFromPlayList:
    case kUnknownFromTrackID:
      return db.SongsUnknownCell(SongOf(db, dataType, playlist, index), param);
    default:
      return errSongInfo;
  }
}

}  // namespace

REALstring CutOffZeroInString(const std::string_view *d) {
  ScratchText scratch;
  char *single = scratch.Room(d->size() / 2);
  size_t units = 0;
  while (2 * units + 1 < d->size() && (*d)[2 * units] == 0 && (*d)[2 * units + 1] != 0) {
    single[units] = (*d)[2 * units + 1];
    ++units;
  }
  if (2 * units == d->size()) return Build({single, units}, kCFStringEncodingASCII);
  bool printable = true;
  for (const char c : *d) printable = printable && c >= 0x20 && c <= 0x7e;
  return Build(*d, printable ? kCFStringEncodingASCII : kCFStringEncodingUnicode);
}

REALstring GetEncodingStringData(const std::string_view *d, uint32_t encode, int32_t param,
                                 const RbiTunesDBData *iTunes) {
  if (d == nullptr || d->empty()) return nullptr;
  REALstring result = nullptr;
  uint32_t code = 0;
  if (param == kObjectPath) {
    code = kCFStringEncodingASCII;
    result = Build(*d, code);
  } else if (encode == kUnknownForm) {
    result = CutOffZeroInString(d);
    if (result != nullptr) code = REALGetStringEncoding(result);
  } else if (iTunes->db->UseSJIS() != 0) {
    code = kCFStringEncodingShiftJIS;
    if (encode == kCFStringEncodingShiftJIS) {
      result = Build(*d, code);
    } else {
      const SJISText text = ConvSJIS(*d, static_cast<int32_t>(encode));
      if (text.OutOfMemory()) return nullptr;
      result = Build(text.View(), code);
    }
  } else if (encode == kTrackInfoEncode) {
    // The code stays 0, so even a host that asks for ASCII gets this text by way of its conversion.
    result = Build(*d, kCFStringEncodingASCII);
  } else if (encode == kCFStringEncodingShiftJIS || encode == kCFStringEncodingUTF8) {
    code = encode;
    result = Build(*d, code);
  } else {
    code = kCFStringEncodingUnicode;
    result = Build(*d, code);
  }
  if (result == nullptr || code == iTunes->ecd) return result;
  REALstring converted = REALConvertString(result, iTunes->ecd);
  REALUnlockString(result);
  return converted;
}

REALstring ZemRbiTunesDB_GetEncodingStringData(REALobject instance, int32_t dataType, int32_t param,
                                               int32_t playlist, int32_t index) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr) return nullptr;
  const songInfo &cell = Cell(*db, dataType, param, playlist, index);
  const bool isNamed = dataType == kFromSong || dataType == kFromPlayList || dataType == kFromTrackID;
  ScratchText scratch;
  const std::string_view text = isNamed ? db->CellText(cell, param, scratch) : cell.obj.View();
  return GetEncodingStringData(&text, cell.enc, param, InstanceData(instance));
}

int32_t ZemRbiTunesDB_GetEncodingStringNumber(REALobject instance, int32_t dataType, int32_t param,
                                              int32_t playlist, int32_t index) {
  const CiTunesDB *db = Database(instance);
  if (db == nullptr || dataType < kFromPlayListName || dataType > kFromTrackID) return 0;
  return static_cast<int32_t>(Cell(*db, dataType, param, playlist, index).enc);
}

void ZemRbiTunesDB_SetEncodingStringData(REALobject instance, int32_t dataType, int32_t param,
                                         int32_t /*playlist*/, int32_t index, REALstring data) {
  CiTunesDB *db = Database(instance);
  if (db == nullptr || dataType != kFromSong) return;
  const std::string_view text(REALstringStruct::CString(data),
                              static_cast<size_t>(REALstringStruct::Length(data)));
  db->SetSongsObjectInfo(index, param, text, REALGetStringEncoding(data));
}

REALstring ZemRbiTunesDB_GetTrackTotalInfo(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectTrackInfo, 0, index);
}
REALstring ZemRbiTunesDB_GetTitle(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectTitle, 0, index);
}
REALstring ZemRbiTunesDB_GetPath(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectPath, 0, index);
}
REALstring ZemRbiTunesDB_GetAlbum(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectAlbum, 0, index);
}
REALstring ZemRbiTunesDB_GetArtist(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectArtist, 0, index);
}
REALstring ZemRbiTunesDB_GetGenre(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectGenre, 0, index);
}
REALstring ZemRbiTunesDB_GetComposer(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectComposer, 0, index);
}
REALstring ZemRbiTunesDB_GetFileType(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromSong, kObjectFileType, 0, index);
}
REALstring ZemRbiTunesDB_GetUnknown(REALobject instance, int32_t index, int32_t num) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kUnknownFromSong, num, 0, index);
}
int32_t ZemRbiTunesDB_GetTitleEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectTitle, 0, index);
}
int32_t ZemRbiTunesDB_GetPathEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectPath, 0, index);
}
int32_t ZemRbiTunesDB_GetAlbumEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectAlbum, 0, index);
}
int32_t ZemRbiTunesDB_GetArtistEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectArtist, 0, index);
}
int32_t ZemRbiTunesDB_GetGenreEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectGenre, 0, index);
}
int32_t ZemRbiTunesDB_GetComposerEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectComposer, 0, index);
}
int32_t ZemRbiTunesDB_GetFileTypeEncode(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromSong, kObjectFileType, 0, index);
}
void ZemRbiTunesDB_SetTitle(REALobject instance, int32_t index, REALstring title) {
  ZemRbiTunesDB_SetEncodingStringData(instance, kFromSong, kObjectTitle, 0, index, title);
}
void ZemRbiTunesDB_SetAlbum(REALobject instance, int32_t index, REALstring album) {
  ZemRbiTunesDB_SetEncodingStringData(instance, kFromSong, kObjectAlbum, 0, index, album);
}
void ZemRbiTunesDB_SetArtist(REALobject instance, int32_t index, REALstring artist) {
  ZemRbiTunesDB_SetEncodingStringData(instance, kFromSong, kObjectArtist, 0, index, artist);
}
void ZemRbiTunesDB_SetGenre(REALobject instance, int32_t index, REALstring genre) {
  ZemRbiTunesDB_SetEncodingStringData(instance, kFromSong, kObjectGenre, 0, index, genre);
}
void ZemRbiTunesDB_SetComposer(REALobject instance, int32_t index, REALstring composer) {
  ZemRbiTunesDB_SetEncodingStringData(instance, kFromSong, kObjectComposer, 0, index, composer);
}
REALstring ZemRbiTunesDB_GetTrackTotalInfoFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectTrackInfo, playlist, index);
}
REALstring ZemRbiTunesDB_GetTitleFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectTitle, playlist, index);
}
REALstring ZemRbiTunesDB_GetPathFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectPath, playlist, index);
}
REALstring ZemRbiTunesDB_GetAlbumFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectAlbum, playlist, index);
}
REALstring ZemRbiTunesDB_GetArtistFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectArtist, playlist, index);
}
REALstring ZemRbiTunesDB_GetGenreFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectGenre, playlist, index);
}
REALstring ZemRbiTunesDB_GetComposerFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectComposer, playlist, index);
}
REALstring ZemRbiTunesDB_GetFileTypeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObjectFileType, playlist, index);
}
REALstring ZemRbiTunesDB_GetUnknownFromPlayList(REALobject instance, int32_t playlist, int32_t index,
                                                int32_t num) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kUnknownFromPlayList, num, playlist, index);
}
int32_t ZemRbiTunesDB_GetTitleEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectTitle, playlist, index);
}
int32_t ZemRbiTunesDB_GetPathEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectPath, playlist, index);
}
int32_t ZemRbiTunesDB_GetAlbumEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectAlbum, playlist, index);
}
int32_t ZemRbiTunesDB_GetArtistEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectArtist, playlist, index);
}
int32_t ZemRbiTunesDB_GetGenreEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectGenre, playlist, index);
}
int32_t ZemRbiTunesDB_GetComposerEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectComposer, playlist, index);
}
int32_t ZemRbiTunesDB_GetFileTypeEncodeFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObjectFileType, playlist, index);
}
REALstring ZemRbiTunesDB_GetReferTrackTotalInfo(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectTrackInfo, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferTitle(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectTitle, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferPath(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectPath, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferAlbum(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectAlbum, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferArtist(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectArtist, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferGenre(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectGenre, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferComposer(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectComposer, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferFileType(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromTrackID, kObjectFileType, 0, trackID);
}
REALstring ZemRbiTunesDB_GetReferUnknown(REALobject instance, int32_t trackID, int32_t num) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kUnknownFromTrackID, num, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferTitleEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectTitle, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferPathEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectPath, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferAlbumEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectAlbum, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferArtistEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectArtist, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferGenreEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectGenre, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferComposerEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectComposer, 0, trackID);
}
int32_t ZemRbiTunesDB_GetReferFileTypeEncode(REALobject instance, int32_t trackID) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromTrackID, kObjectFileType, 0, trackID);
}

REALstring ZemRbiTunesDB_GetPlayListName(REALobject instance, int32_t playlist) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayListName, kObjectPlayListName, playlist, 0);
}
int32_t ZemRbiTunesDB_GetPlayListEncode(REALobject instance, int32_t playlist) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayListName, kObjectPlayListName, playlist, 0);
}
