#include <fcntl.h>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/PlayerSongs.h"
#include "tests/player/Printers.h"

namespace player {

Json songsJson(const std::string &path) {
  const carbon::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  const FileAccount account = walkChunks(file.number());
  const PlayerSongs songs(file.number(), account, locateDatabase(path));
  Json list = Json::array();
  for (size_t i = 0; i < songs.count(); ++i) {
    Json song = jsonOf(songs.facts(i));
    song["at"] = account.tracksAt[i];
    song["texts"] = Json::array();
    for (const SongText &text : songs.texts(i)) song["texts"].push_back({text.type, text.text});
    list.push_back(std::move(song));
  }
  return {{"has_counts", songs.hasCounts()}, {"is_warned", !songs.warning().empty()}, {"songs", list}};
}

}  // namespace player
