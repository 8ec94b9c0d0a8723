#include <utility>

#include "db/CiTunesDB.h"

namespace {

const songInfo kNoObject = {0, 0, {}};
const songInfo kNoUnknown = {-1, 0, {}};

bool Equal(const songInfo &a, const songInfo &b, int32_t mode) {
  switch (mode) {
    case 0:
      return a.idx == b.idx;
    case 1:
      return a.obj == b.obj;
    case 2:
      return a.enc == b.enc;
    default:
      return false;
  }
}

}  // namespace

int32_t CiTunesDB::SongsID(int32_t index) const {
  return songs.Has(index) ? songs[static_cast<size_t>(index)].ID() : 0;
}

int32_t CiTunesDB::SongsProp(int32_t index, int32_t num) const {
  if (!songs.Has(index)) return 0;
  const CSongList &song = songs[static_cast<size_t>(index)];
  switch (num) {
    case -2:
      return song.error;
    case -1:
      return song.ID();
    case 0:
    case 1:
    case 2:
    case 3:
      return song.PROP(num);
    case 4:
      return static_cast<int32_t>(song.NUM_OF_TRACK());
    case 5:
      return static_cast<int32_t>(song.TOTAL_TRACK());
    case 6:
      return static_cast<int32_t>(song.DURATION());
    case 7:
      return static_cast<int32_t>(song.FILESIZE());
    case 8:
      return static_cast<int32_t>(song.BITRATE());
    case 9:
      return static_cast<int32_t>(song.SAMPLERATE());
    default:
      return 0;
  }
}

void CiTunesDB::SetSongsProp(int32_t index, int32_t num, uint32_t value) {
  if (!songs.Has(index)) return;
  const auto i = static_cast<size_t>(index);
  const auto word = static_cast<int32_t>(value);
  CSongList &song = songs[i];
  switch (num) {
    case -2:
      song.error = word;
      break;
    case -1:
      songs.SetID(i, word);
      break;
    case 0:
    case 1:
    case 2:
    case 3:
      song.res[num] = word;
      break;
    case 4:
      song.track.num = value;
      break;
    case 5:
      song.track.total = value;
      break;
    case 6:
      song.duration = value;
      break;
    case 7:
      song.filesize = value;
      break;
    case 8:
      song.bitrate = value;
      break;
    case 9:
      song.samplerate = value;
      break;
    default:
      break;
  }
}

int32_t CiTunesDB::CountSongUnknown(int32_t index) const {
  return songs.Has(index) ? songs[static_cast<size_t>(index)].CountUnkown() : 0;
}

const songInfo &CiTunesDB::SongsCell(int32_t index, int32_t num) const {
  if (!songs.Has(index)) return errSongInfo;
  const songInfo *cell = NamedCell(songs[static_cast<size_t>(index)], num);
  return cell == nullptr ? kNoObject : *cell;
}

std::string_view CiTunesDB::CellText(const songInfo &cell, int32_t num, ScratchText &scratch) const {
  if (num != kObjectPath || libType == 0) return cell.obj.View();
  char *out = scratch.Room(cell.obj.size() / 2);
  return {out, RemoveZeroFromAsciiUTF16(cell.obj.View(), out)};
}

ByteString CiTunesDB::SongsObject(int32_t index, int32_t num) const {
  ScratchText scratch;
  return CellText(SongsCell(index, num), num, scratch);
}

songInfo CiTunesDB::SongsObjectInfo(int32_t index, int32_t num) const {
  const songInfo &cell = SongsCell(index, num);
  return {cell.idx, cell.enc, SongsObject(index, num)};
}

void CiTunesDB::SetSongsObjectInfo(int32_t index, int32_t num, ByteString text, uint32_t encode) {
  if (!songs.Has(index)) return;
  CSongList &song = songs[static_cast<size_t>(index)];
  songInfo *cell = nullptr;
  if (num != kObjectPath) cell = NamedCell(song, num);
  if (cell == nullptr && num >= 0) {
    for (songInfo &other : song.unknown) {
      if (other.idx != num) continue;
      cell = &other;
      break;
    }
  }
  if (cell == nullptr) return;
  cell->enc = encode;
  cell->obj = std::move(text);
}

const songInfo &CiTunesDB::SongsUnknownCell(int32_t index, int32_t num) const {
  if (!songs.Has(index) || num < 0) return errSongInfo;
  for (const songInfo &other : songs[static_cast<size_t>(index)].unknown) {
    if (other.idx == num) return other;
  }
  return kNoUnknown;
}

bool CiTunesDB::CompareSongsObjects(int32_t num, int32_t a, int32_t b, int32_t mode) const {
  if (!songs.Has(a) || !songs.Has(b)) return false;
  const CSongList &songA = songs[static_cast<size_t>(a)];
  const CSongList &songB = songs[static_cast<size_t>(b)];
  switch (num) {
    case kObjectAlbum:
      return Equal(songA.album, songB.album, mode) && Equal(songA.artist, songB.artist, mode);
    case kObjectArtist:
    case kObjectGenre:
    case kObjectFileType:
    case kObjectComposer:
      return Equal(*NamedCell(songA, num), *NamedCell(songB, num), mode);
    default:
      return false;
  }
}
