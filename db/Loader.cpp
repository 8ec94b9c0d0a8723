#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "db/CiTunesDB.h"

namespace {

// How many times the file's size may be copied for bodies that reach into other objects. Headers that are
// merely short stay far below; it takes forged lengths to make every object claim the whole file.
constexpr uint32_t kCopiesOfFile = 8;

// Room for the records a list announces, but never for more than the rest of the file could hold, and never
// in steps that would move the records over and over when a file repeats its lists. `open` is the record
// being filled, or null, and moves with the others.
template <typename Table, typename Record>
void Reserve(Table &table, Record *&open, uint32_t announced, uint32_t restOfFile) {
  const size_t wanted = std::min(announced + 1, restOfFile / kChunkHeaderSize);
  if (wanted <= table.capacity()) return;
  const ptrdiff_t position = open == nullptr ? 0 : open - &table[0];
  try {
    table.reserve(table.empty() ? wanted : std::max(wanted, 2 * table.size()));
  } catch (const std::exception &) {
    // The announced count is only a hint; the records that really come find their room one by one.
  }
  if (open != nullptr) open = &table[static_cast<size_t>(position)];
}

// A table as it was before a load, which may add to the record that the load before it filled last, and then
// adds records.
template <typename Table, typename Record>
class TableBefore {
 public:
  // A record that is not of the table any more is forgotten.
  TableBefore(Table &table, Record *&open) : table_(table), open_(open), size_(table.size()) {
    position_ = size_;
    while (position_ > 0 && &table[position_ - 1] != open) --position_;
    if (position_ == 0) {
      open = nullptr;
    } else {
      record_.emplace(*open);
    }
  }

  void Restore() {
    while (table_.size() > size_) table_.pop_back();
    open_ = nullptr;
    if (!record_) return;
    open_ = &table_[position_ - 1];
    *open_ = std::move(*record_);
  }

 private:
  Table &table_;
  Record *&open_;
  size_t size_;
  size_t position_;  // of the open record, counted from 1; 0 for none
  std::optional<Record> record_;
};

}  // namespace

int32_t CiTunesDB::LoadiTunesDB(FILE *fp) noexcept {
  if (fp == nullptr) return 0;
  try {
    FileWindow file(fp);
    const uint8_t *header = file.At(0, kChunkHeaderSize);
    const int32_t variant = LibTypeOf(ChunkHeader(header, 0));
    if (variant < 0) return 0;
    TableBefore songsBefore(songs, tarSong);
    TableBefore playsBefore(plays, tarPlay);
    const int32_t before[] = {libType, listType, infoType, odcount};
    libType = variant;
    try {
      Walk(file, ChunkHeader(header, variant).jump);
      file.ReadToEnd();
    } catch (const FileUnreadable &) {
      // Found out on the way; what the file gave until then goes again.
      songsBefore.Restore();
      playsBefore.Restore();
      libType = before[0];
      listType = before[1];
      infoType = before[2];
      odcount = before[3];
      return 0;
    }
    SetSongsObjectIndex();
    songs.IndexIDs();
  } catch (const std::exception &) {  // an unreadable file, out of memory, or a text past every length
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
        Reserve(songs, tarSong, fsbb.myLen, file.Size() - at);
        break;
      case ChunkKind::Track:
        infoType = libType == 1 ? 1 : 5;
        odcount = static_cast<int32_t>(fsbb.myLen);
        ReadTrack(file, at);
        break;
      case ChunkKind::PlayListList:
        if (listType != 2) break;
        Reserve(plays, tarPlay, fsbb.myLen, file.Size() - at);
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
        // An object of no length ends the walk before it is looked at.
        if (fsbb.myLen != 0) ReadDataObject(file, at, fsbb);
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

  tarSong = &songs.Append(static_cast<int32_t>(property.item_id));
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
