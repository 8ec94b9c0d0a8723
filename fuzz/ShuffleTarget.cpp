// What the reader makes of the files of shuffles: the input is taken as a list of songs, and as counts.

#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "player/ShuffleDatabase.h"

FUZZ_TARGET(shuffle) {
  using fuzz::Require;
  const std::string_view bytes(reinterpret_cast<const char *>(data), size);
  if (const auto found = player::readShuffleDatabase(bytes)) {
    Require(found->songs.size() <= found->declaredSongs, "more songs than announced");
    Require(found->isCutShort == (found->songs.size() < found->declaredSongs), "songs are missing unsaid");
    Require(found->songs.size() * 0x118 <= size, "more songs than the file has room for");
    for (const player::ShuffleSong &song : found->songs) {
      Require(song.path.size() <= size_t{261} * 3 && song.path.find('\0') == std::string::npos,
              "a path is too long");
    }
  }
  if (const auto counts = player::readShuffleCounts(bytes))
    Require(counts->size() * 18 <= size, "more counts than the file holds");
}
