// A damaged database for the salvage, behind a first byte that means nothing here, so that the mutator of
// whole files serves. What is found lies inside the file and is found once, and what is made of it is a sound
// database with the same records.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "player/ChunkWalk.h"
#include "player/MendedDatabase.h"
#include "player/Salvage.h"

namespace {

using fuzz::Require;

// The header and the objects of a record, added to those of others.
void AddParts(const player::Salvage &found, const player::SalvagedRecord &record,
              std::vector<player::Span> &parts) {
  uint64_t size = record.header;
  parts.push_back({record.at, record.header});
  Require(record.spans <= record.objects, "more spans than objects");
  for (size_t i = record.firstSpan; i < record.firstSpan + record.spans; ++i) {
    parts.push_back(found.spans[i]);
    size += found.spans[i].size;
  }
  Require(size == record.size, "a record of another size");
}

void EveryByteIsTakenOnce(const player::Salvage &found, uint64_t size) {
  std::vector<player::Span> parts;
  for (const player::SalvagedRecord &song : found.songs) AddParts(found, song, parts);
  for (const player::SalvagedRecord &entry : found.entries) AddParts(found, entry, parts);
  size_t next = 0;
  for (const player::SalvagedList &list : found.lists) {
    AddParts(found, list, parts);
    Require(list.firstEntry >= next && list.entries <= found.entries.size() - list.firstEntry,
            "entries of two lists");
    next = list.firstEntry + list.entries;
  }
  std::sort(parts.begin(), parts.end(),
            [](const player::Span &one, const player::Span &other) { return one.at < other.at; });
  uint64_t end = found.fileHeader;
  for (const player::Span &part : parts) {
    Require(part.at >= end, "bytes taken twice");
    end = part.at + part.size;
  }
  Require(end <= std::max<uint64_t>(size, found.fileHeader), "bytes past the end");
}

}  // namespace

FUZZ_TARGET(salvage) {
  static fuzz::MemoryFile file;
  if (size == 0) return;
  const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  const player::Salvage found = player::salvage(bytes);
  EveryByteIsTakenOnce(found, bytes.size());
  const player::MendedDatabase database(bytes, found);
  std::string mended;
  database.write([&mended](std::string_view piece) { mended += piece; });
  file.Set(mended);
  const player::FileAccount account = player::walkChunks(file.Number());
  Require(account.tracks == found.songs.size() && account.declaredTracks == account.tracks, "other songs");
  Require(account.playlists == account.declaredPlaylists && account.playlists >= database.lists(),
          "other playlists");
  Require(account.entries == account.declaredEntries, "other entries");
  Require(account.unexplainedBytes == 0, "bytes that no chunk explains");
}
