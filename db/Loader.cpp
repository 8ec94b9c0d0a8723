#include <algorithm>
#include <exception>

#include "db/CiTunesDB.h"

namespace {

// How many times the file's size may be copied for bodies that reach into other objects. Headers that are
// merely short stay far below; it takes forged lengths to make every object claim the whole file.
constexpr uint32_t kCopiesOfFile = 8;

// Room for the records a list announces, but never for more than the rest of the file could hold, and never
// in steps that would move the records over and over when a file repeats its lists.
template <typename Table>
void Reserve(Table &table, uint32_t announced, uint32_t restOfFile) {
  const size_t wanted = std::min(announced + 1, restOfFile / kChunkHeaderSize);
  if (wanted <= table.capacity()) return;
  try {
    table.reserve(table.empty() ? wanted : std::max(wanted, 2 * table.size()));
  } catch (const std::exception &) {
    // The announced count is only a hint; the records that really come find their room one by one.
  }
}

}  // namespace

int32_t CiTunesDB::LoadiTunesDB(FILE *fp) noexcept {
  if (fp == nullptr) return 0;
  const int32_t words[] = {libType, listType, infoType, odcount};
  const size_t songCount = songs.size();
  const size_t playListCount = plays.size();
  try {
    FileWindow file(fp);
    const uint8_t *header = file.At(0, kChunkHeaderSize);
    const int32_t variant = LibTypeOf(ChunkHeader(header, 0));
    if (variant < 0) return 0;
    libType = variant;
    Walk(file, ChunkHeader(header, variant).jump);
    file.ReadToEnd();
    SetSongsObjectIndex();
    songs.IndexIDs();
  } catch (const FileUnreadable &) {
    // Found out on the way; what the file gave until then goes again.
    songs.Truncate(songCount);
    plays.erase(plays.begin() + static_cast<ptrdiff_t>(playListCount), plays.end());
    tarSong = nullptr;
    tarPlay = nullptr;
    libType = words[0];
    listType = words[1];
    infoType = words[2];
    odcount = words[3];
    return 0;
  } catch (const std::exception &) {  // out of memory, or a text past every length
    return 0;
  }
  return 1;
}

void CiTunesDB::Walk(FileWindow &file, uint32_t at) {
  copied_ = 0;
  for (uint32_t advance = at; advance != 0 && file.Holds(at, kChunkHeaderSize);) {
    const fsbbStruct fsbb = ChunkHeader(file.At(at, kChunkHeaderSize), libType);
    advance = fsbb.jump;
    switch (KindOf(fsbb)) {
      case ChunkKind::DataSet:
        listType = static_cast<int32_t>(fsbb.count);
        break;
      case ChunkKind::TrackList:
        Reserve(songs, fsbb.myLen, file.Size() - at);
        if (!songs.empty()) tarSong = &songs.KeepingID(songs.size() - 1);
        break;
      case ChunkKind::Track:
        infoType = libType == 1 ? 1 : 5;
        odcount = static_cast<int32_t>(fsbb.myLen);
        ReadTrack(file, at);
        break;
      case ChunkKind::PlayListList:
        if (listType != 2) break;
        Reserve(plays, fsbb.myLen, file.Size() - at);
        if (!plays.empty()) tarPlay = &plays.back();
        break;
      case ChunkKind::PlayList:
        infoType = libType == 1 ? 2 : 6;
        if (listType == 2) ReadPlayList(file, at, fsbb);
        break;
      case ChunkKind::PlayListEntry:
        infoType = libType == 1 ? 3 : 7;
        if (listType == 2) {
          odcount = static_cast<int32_t>(fsbb.myLen);
          ReadEntry(file, at);
        }
        break;
      case ChunkKind::DataObject:
        odcount = static_cast<int32_t>(static_cast<uint32_t>(odcount) - 1);
        ReadDataObject(file, at, fsbb);
        advance = fsbb.myLen;
        break;
      case ChunkKind::Other:
        break;
    }
    if (advance > file.Size() - at) break;
    at += advance;
  }
}

void CiTunesDB::ReadTrack(FileWindow &file, uint32_t at) {
  constexpr uint32_t kTrack = 0xd4;
  static_assert(kTrack - kChunkHeaderSize <= FileWindow::kSpare);
  const uint8_t *chunk = file.At(at, kTrack);
  const auto word = [&](uint32_t offset) { return FileWord(chunk + offset, libType); };
  const propertyParam property = {word(0x10),
                                  {word(0x14), word(0x18), word(0x1c), word(0x20), word(0x24), word(0x28)}};
  const rateParam rate = {BigEndianWord(chunk + 0x38), BigEndianWord(chunk + 0x3c)};

  tarSong = &songs.Append();
  tarSong->id = static_cast<int32_t>(property.item_id);
  for (int i = 0; i < 4; ++i) tarSong->res[i] = static_cast<int32_t>(property.res[i]);
  tarSong->filesize = property.res[4];
  tarSong->duration = property.res[5];
  tarSong->year = word(0x34);
  tarSong->bitrate = rate.bitrate;
  tarSong->samplerate = rate.samplerate;
  tarSong->moviefileflag = chunk[0xb1];
  tarSong->mediaType = word(0xd0);
  tarSong->SetTrack({word(0x2c), word(0x30)});
}

void CiTunesDB::ReadPlayList(FileWindow &file, uint32_t at, const fsbbStruct &fsbb) {
  odcount = static_cast<int32_t>(fsbb.myLen);
  tarPlay = &plays.emplace_back(&fsbb);
  tarPlay->SetTypeII(file.At(at, 0x2d)[0x2c]);
}

void CiTunesDB::ReadEntry(FileWindow &file, uint32_t at) {
  if (tarPlay == nullptr) return;
  const uint8_t *chunk = file.At(at, 0x20);
  const playlistParam entry = {FileWord(chunk + 0x10, libType), 0, FileWord(chunk + 0x18, libType), {}};
  const auto ref = static_cast<int32_t>(entry.item_ref);
  tarPlay->SetRefNum({ref, FindRefIdx(ref), static_cast<int32_t>(entry.item_ply), 0});
}

void CiTunesDB::ReadDataObject(FileWindow &file, uint32_t at, const fsbbStruct &fsbb) {
  constexpr uint32_t kRawBody = 0x18;
  constexpr uint32_t kText = 0x28;
  const bool isSongs = infoType == 1 || infoType == 5;
  const bool isPlayLists = (infoType == 2 || infoType == 6) && listType == 2;
  if (!(isSongs && tarSong != nullptr) && !(isPlayLists && tarPlay != nullptr)) return;
  const uint8_t *chunk = file.At(at, 0x20);
  const stringParam param = {0, FileWord(chunk + 0x14, libType), {BigEndianWord(chunk + kRawBody), 0}};
  if (param.strlength != 0 || !file.Holds(at, fsbb.myLen)) return;

  // One byte more than the object, for an odd text swaps its last byte with the one after it.
  uint64_t needed = std::max<uint64_t>(fsbb.myLen, kText) + 1;
  if (isSongs) {
    if (FileWord(chunk + kRawBody, libType) != 1) {
      // A raw body is as long as the object without its header, so a header shorter than usual carries it
      // past the object: as far as the file goes it is taken.
      const uint64_t body = uint64_t{kRawBody} + (fsbb.myLen - fsbb.jump);
      if (!file.Holds(at, body)) return;
      if (body > fsbb.myLen) {
        copied_ += body;
        if (copied_ > uint64_t{kCopiesOfFile} * file.Size()) return;
      }
      needed = std::max(needed, body);
    }
    tarSong->SetObj(&fsbb, file.At(at, needed) + kText, param.res2[0], libType, &texts_);
  } else {
    tarPlay->SetTitle(&fsbb, file.At(at, needed) + kText, param.res2[0], libType, &texts_);
  }
}
