// A whole database file for the walk over its chunks, behind a first byte that means nothing here, so that
// the mutator of whole files serves. Every byte of the file is accounted for once, and no finding lies
// outside it.

#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>

#include "fuzz/MemoryFile.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "player/Chunk.h"
#include "player/ChunkWalk.h"

namespace {

using fuzz::Require;

void CountsEveryByteOnce(const player::FileAccount &account, uint64_t size) {
  uint64_t sum = account.rawBytes + account.unexplainedBytes;
  uint64_t chunks = 0;
  for (const player::ChunkCount &count : account.chunks) {
    sum += count.bytes;
    chunks += count.chunks;
  }
  Require(account.size == size, "another size");
  Require(sum == size, "bytes counted twice or not at all");
  Require(chunks <= size / player::kListHeader, "more chunks than there is room for");
  Require(account.tracks <= chunks && account.playlists <= chunks && account.entries <= chunks,
          "more records than chunks");
}

void CountsEntriesOfEachPlaylist(const player::FileAccount &account) {
  Require(account.entriesOf.size() == account.playlists, "a playlist without its number of entries");
  const uint64_t entries = std::accumulate(account.entriesOf.begin(), account.entriesOf.end(), uint64_t{0});
  Require(entries <= account.entries, "playlists with more entries than there are");
}

void FindingsLieInside(const player::Findings &findings, uint64_t size) {
  uint64_t unexplained = 0;
  for (const player::Finding &finding : findings.kept()) {
    Require(!finding.text.empty(), "a finding without words");
    if (!finding.offset) continue;
    Require(*finding.offset <= size, "a finding past the end");
    if (!finding.size) continue;
    Require(*finding.size <= size - *finding.offset, "bytes of a finding past the end");
    Require(*finding.offset >= unexplained, "unexplained bytes out of order");
    unexplained = *finding.offset + *finding.size;
  }
}

}  // namespace

FUZZ_TARGET(walk) {
  static fuzz::MemoryFile file;
  if (size == 0) return;
  file.Set({reinterpret_cast<const char *>(data) + 1, size - 1});
  const player::FileAccount account = player::walkChunks(file.Number());
  CountsEveryByteOnce(account, size - 1);
  CountsEntriesOfEachPlaylist(account);
  FindingsLieInside(account.findings, size - 1);
}
