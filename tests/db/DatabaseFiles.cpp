#include "tests/db/DatabaseFiles.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace db_test {

using samples::DataObject;
using samples::Variant;

std::string HighByteFirst(const std::u16string &text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit >> 8 & 0xff);
    bytes += static_cast<char>(unit & 0xff);
  }
  return bytes;
}

ssize_t FailingFile::Read(void *cookie, char *buffer, size_t n) {
  auto *file = static_cast<FailingFile *>(cookie);
  if (file->at >= file->failsAt) return -1;
  n = std::min(n, file->failsAt - file->at);
  file->bytes.copy(buffer, n, file->at);
  file->at += n;
  return static_cast<ssize_t>(n);
}

int FailingFile::Seek(void *cookie, off64_t *offset, int whence) {
  auto *file = static_cast<FailingFile *>(cookie);
  const size_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file->at : file->bytes.size();
  file->at = base + static_cast<size_t>(*offset);
  *offset = static_cast<off64_t>(file->at);
  return 0;
}

std::string SmallLibrary(Variant variant) {
  const bool little = variant == Variant::LittleEndian;
  constexpr uint32_t kTrackHeader = 0xd4;
  constexpr uint32_t kShort = 0x30;

  samples::Track first;
  first.id = 52;
  first.number = 5;
  first.total = 12;
  first.headerLength = kTrackHeader;
  first.objects = samples::SongObjects(variant, {.title = u"Te",
                                                 .path = little ? u":A:B" : u"D:A",
                                                 .album = u"Al",
                                                 .artist = u"Ar",
                                                 .genre = u"G",
                                                 .filetype = u"F",
                                                 .composer = u"C"});
  first.objects.push_back(samples::RawObject(100, "raw"));
  first.objects.push_back(samples::TextObject(13, u"x"));

  samples::Track second;
  second.id = 53;
  second.headerLength = kTrackHeader;

  samples::Track third;
  third.id = 53;
  third.res = {1, 2, 0x10000, 4};
  third.headerLength = kTrackHeader;
  DataObject odd = samples::EightBitObject(little ? 4 : 5, "Odd", 1);
  DataObject skipped = samples::TextObject(3, u"no");
  skipped.usedWord = 1;
  third.objects = {odd, skipped, samples::EightBitObject(little ? 5 : 4, "8b")};

  samples::DataSet others;
  others.type = 4;
  others.headerLength = 16;
  samples::ChunkWriter chunk(variant);
  chunk.Begin("abcd", 20);
  others.content = chunk.TakeBytes();

  samples::DataSet tracks;
  tracks.headerLength = 16;
  tracks.listHeaderLength = 16;
  tracks.content = std::vector<samples::Track>{first, second, third};

  samples::Playlist all;
  all.name = u"All";
  all.headerLength = kShort;
  all.entries = {{.ref = 52, .headerLength = 0x20},
                 {.ref = 53, .ply = 1, .headerLength = 0x20},
                 {.ref = 99, .objects = {samples::PositionObject(variant, 1)}, .headerLength = 0x20}};
  samples::Playlist empty;
  empty.name = u"";
  empty.headerLength = kShort;
  samples::Playlist nameless;
  nameless.headerLength = kShort;
  nameless.typeII = 0xfe;
  nameless.entries = {{.ref = 53, .headerLength = 0x1c}};

  samples::DataSet playlists;
  playlists.type = 2;
  playlists.headerLength = 16;
  playlists.listHeaderLength = 16;
  playlists.content = std::vector<samples::Playlist>{all, empty, nameless};

  samples::DataSet podcasts = playlists;
  podcasts.type = 3;
  podcasts.content = std::vector<samples::Playlist>{empty};

  samples::Library library;
  library.headerLength = 0x18;
  library.sets = {others, tracks, playlists, podcasts};
  return samples::WriteLibrary(library, variant);
}

}  // namespace db_test
