#include "platform/carbon/CarbonFiles.h"
#include "plugin/RbiTunesDB.h"
#include "unicode/ZemUnicode.h"

namespace {

// The code of a text whose form the file does not state.
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
