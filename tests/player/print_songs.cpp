// Prints what the reader of a player knows of the songs of databases, for a reader of another making to
// compare: for each file one line of JSON.

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/PlayerSongs.h"
#include "tests/player/FactsJson.h"

namespace {

using player::Json;

Json songsOf(const std::string &path) {
  const carbon::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  const player::FileAccount account = player::walkChunks(file.number());
  const player::PlayerSongs songs(file.number(), account, player::locateDatabase(path));
  Json list = Json::array();
  for (size_t i = 0; i < songs.count(); ++i) {
    Json song = player::jsonOf(songs.facts(i));
    song["at"] = account.tracksAt[i];
    song["texts"] = Json::array();
    for (const player::SongText &text : songs.texts(i)) song["texts"].push_back({text.type, text.text});
    list.push_back(std::move(song));
  }
  return {{"has_counts", songs.hasCounts()}, {"is_warned", !songs.warning().empty()}, {"songs", list}};
}

}  // namespace

int main(int argc, char **argv) {
  try {
    for (int i = 1; i < argc; ++i) std::puts(songsOf(argv[i]).dump().c_str());
  } catch (const std::exception &error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
