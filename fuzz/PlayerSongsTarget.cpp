// What the reader of a player makes of its files. The first byte chooses: an even one is followed by a
// database, an odd one by a file of play counts.

#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "platform/carbon/Descriptor.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"
#include "player/PlayerSongs.h"

namespace {

using fuzz::Require;

carbon::Descriptor FileOf(std::string_view bytes) {
  carbon::Descriptor file(memfd_create("input", MFD_CLOEXEC));
  Require(file.number() >= 0, "no file in memory");
  player::writeAll(file.number(), bytes);
  return file;
}

void ReadDatabase(std::string_view bytes) {
  const carbon::Descriptor file = FileOf(bytes);
  const player::FileAccount account = player::walkChunks(file.number());
  const player::PlayerSongs songs(file.number(), account,
                                  player::DatabaseLocation{"database", "database", {}});
  Require(songs.count() == account.tracks, "a track was counted and is no song");
  size_t texts = 0;
  for (size_t song = 0; song < songs.count(); ++song) {
    Require(song == 0 || account.tracksAt[song] > account.tracksAt[song - 1], "songs stand in no order");
    const player::SongFacts facts = songs.facts(song);
    Require(!facts.rating || *facts.rating <= 100, "a rating of more than 100");
    for (const player::SongText &text : songs.texts(song)) texts += text.text.size();
  }
  // A unit of two bytes becomes three at most, and no byte belongs to two songs.
  Require(texts <= bytes.size() / 2 * 3, "the texts are longer than the file");
}

void ReadCounts(std::string_view bytes) {
  const carbon::Descriptor file = FileOf(bytes);
  const uint64_t songs = bytes.size() < 16 ? 0 : player::wordAt(bytes, 12, false);
  try {
    auto counts = player::readPlayCounts("/proc/self/fd/" + std::to_string(file.number()), songs);
    Require(counts.size() == songs && songs * 12 <= bytes.size(), "more entries than the file holds");
    const player::PlayCountMerge merge(std::move(counts), [](size_t) { return player::SongFacts(); });
    for (size_t song = 0; song < songs; ++song)
      Require(!merge.merged(song, {}).plays, "plays of a song of which none are known");
  } catch (const player::PlayerError &) {
    return;  // one line about what is wrong
  }
}

}  // namespace

FUZZ_TARGET(player_songs) {
  if (size == 0) return;
  const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  if (data[0] % 2 == 0) {
    ReadDatabase(bytes);
  } else {
    ReadCounts(bytes);
  }
}
