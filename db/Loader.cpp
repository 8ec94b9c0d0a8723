#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

#include "db/CiTunesDB.h"

namespace {

constexpr uint32_t kChunkHeader = 16;

// Zero bytes kept behind the file: an odd text swaps its last byte with the one after it, and the place where
// a short object's text would begin has an address.
constexpr size_t kSpare = 48;

// The whole file with the spare bytes after it, or null. Throws std::bad_alloc. `size` gets the file's
// length.
LargeBuffer ReadWhole(FILE *fp, uint32_t *size) {
  if (std::fseek(fp, 0, SEEK_END) != 0) return nullptr;
  const long filesize = std::ftell(fp);
  if (filesize < long{kChunkHeader} || filesize > long{INT32_MAX}) return nullptr;
  if (std::fseek(fp, 0, SEEK_SET) != 0) return nullptr;
  const auto bytes = static_cast<size_t>(filesize);
  LargeBuffer contents = MakeLargeBuffer(bytes + kSpare);
  if (std::fread(contents.get(), 1, bytes, fp) != bytes) return nullptr;
  std::memset(&contents[bytes], 0, kSpare);
  *size = static_cast<uint32_t>(bytes);
  return contents;
}

// How many times the file's size may be copied for bodies that reach into other objects. Headers that are
// merely short stay far below; it takes forged lengths to make every object claim the whole file.
constexpr uint32_t kCopiesOfFile = 8;

// Room for the records a list announces, but never for more than the rest of the file could hold, and never
// in steps that would move the records over and over when a file repeats its lists.
template <typename Table>
void Reserve(Table &table, uint32_t announced, uint32_t restOfFile) {
  const size_t wanted = std::min(announced + 1, restOfFile / kChunkHeader);
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
  try {
    uint32_t size = 0;
    LargeBuffer contents = ReadWhole(fp, &size);
    if (contents == nullptr) return 0;
    const FileImage image(contents.get(), size);
    const int32_t variant = LibTypeOf(image.Header(0, 0));
    if (variant < 0) return 0;
    images_.push_back(std::move(contents));
    libType = variant;
    Walk(image, image.Header(0, variant).jump);
    SetSongsObjectIndex();
    songs.IndexIDs();
  } catch (const std::exception &) {  // out of memory, or a text past every length
    return 0;
  }
  return 1;
}

void CiTunesDB::Walk(const FileImage &image, uint32_t at) {
  copied_ = 0;
  for (uint32_t advance = at; advance != 0 && image.Holds(at, kChunkHeader);) {
    const fsbbStruct fsbb = image.Header(at, libType);
    advance = fsbb.jump;
    switch (KindOf(fsbb)) {
      case ChunkKind::DataSet:
        listType = static_cast<int32_t>(fsbb.count);
        break;
      case ChunkKind::TrackList:
        Reserve(songs, fsbb.myLen, image.Size() - at);
        if (!songs.empty()) tarSong = &songs.KeepingID(songs.size() - 1);
        break;
      case ChunkKind::Track:
        infoType = libType == 1 ? 1 : 5;
        odcount = static_cast<int32_t>(fsbb.myLen);
        ReadTrack(image, at);
        break;
      case ChunkKind::PlayListList:
        if (listType != 2) break;
        Reserve(plays, fsbb.myLen, image.Size() - at);
        if (!plays.empty()) tarPlay = &plays.back();
        break;
      case ChunkKind::PlayList:
        infoType = libType == 1 ? 2 : 6;
        if (listType == 2) ReadPlayList(image, at, fsbb);
        break;
      case ChunkKind::PlayListEntry:
        infoType = libType == 1 ? 3 : 7;
        if (listType == 2) {
          odcount = static_cast<int32_t>(fsbb.myLen);
          ReadEntry(image, at);
        }
        break;
      case ChunkKind::DataObject:
        odcount = static_cast<int32_t>(static_cast<uint32_t>(odcount) - 1);
        ReadDataObject(image, at, fsbb);
        advance = fsbb.myLen;
        break;
      case ChunkKind::Other:
        break;
    }
    if (advance > image.Size() - at) break;
    at += advance;
  }
}

void CiTunesDB::ReadTrack(const FileImage &image, uint32_t at) {
  constexpr int32_t kAsStored = 0;
  const auto word = [&](uint32_t offset) { return image.Word(uint64_t{at} + offset, libType); };
  const propertyParam property = {word(0x10),
                                  {word(0x14), word(0x18), word(0x1c), word(0x20), word(0x24), word(0x28)}};
  const rateParam rate = {image.Word(uint64_t{at} + 0x38, kAsStored),
                          image.Word(uint64_t{at} + 0x3c, kAsStored)};

  tarSong = &songs.Append();
  tarSong->id = static_cast<int32_t>(property.item_id);
  for (int i = 0; i < 4; ++i) tarSong->res[i] = static_cast<int32_t>(property.res[i]);
  tarSong->filesize = property.res[4];
  tarSong->duration = property.res[5];
  tarSong->year = word(0x34);
  tarSong->bitrate = rate.bitrate;
  tarSong->samplerate = rate.samplerate;
  tarSong->moviefileflag = image.Byte(uint64_t{at} + 0xb1);
  tarSong->mediaType = word(0xd0);
  tarSong->SetTrack({word(0x2c), word(0x30)});
}

void CiTunesDB::ReadPlayList(const FileImage &image, uint32_t at, const fsbbStruct &fsbb) {
  odcount = static_cast<int32_t>(fsbb.myLen);
  tarPlay = &plays.emplace_back(&fsbb);
  tarPlay->SetTypeII(image.Byte(uint64_t{at} + 0x2c));
}

void CiTunesDB::ReadEntry(const FileImage &image, uint32_t at) {
  if (tarPlay == nullptr) return;
  const playlistParam entry = {
      image.Word(uint64_t{at} + 0x10, libType), 0, image.Word(uint64_t{at} + 0x18, libType), {}};
  const auto ref = static_cast<int32_t>(entry.item_ref);
  tarPlay->SetRefNum({ref, FindRefIdx(ref), static_cast<int32_t>(entry.item_ply), 0});
}

void CiTunesDB::ReadDataObject(const FileImage &image, uint32_t at, const fsbbStruct &fsbb) {
  constexpr uint32_t kRawBody = 0x18;
  constexpr uint32_t kText = 0x28;
  const stringParam param = {
      0, image.Word(uint64_t{at} + 0x14, libType), {image.Word(uint64_t{at} + kRawBody, 0), 0}};
  if (param.strlength != 0 || !image.Holds(at, fsbb.myLen)) return;
  uint8_t *objPtr = image.At(at) + kText;

  if (infoType == 1 || infoType == 5) {
    if (tarSong == nullptr) return;
    ByteString::Keep keep = ByteString::Keep::Borrow;
    if (image.Word(uint64_t{at} + kRawBody, libType) != 1) {
      // A raw body is as long as the object without its header, so a header shorter than usual carries it
      // past the object: as far as the file goes it is taken, but copied, for the bytes behind belong to
      // other objects.
      const uint64_t body = uint64_t{kRawBody} + (fsbb.myLen - fsbb.jump);
      if (!image.Holds(at, body)) return;
      if (body > fsbb.myLen) {
        keep = ByteString::Keep::Copy;
        copied_ += body;
        if (copied_ > uint64_t{kCopiesOfFile} * image.Size()) return;
      }
    }
    tarSong->SetObj(&fsbb, objPtr, param.res2[0], libType, keep);
  } else if ((infoType == 2 || infoType == 6) && listType == 2 && tarPlay != nullptr) {
    tarPlay->SetTitle(&fsbb, objPtr, param.res2[0], libType, ByteString::Keep::Borrow);
  }
}
