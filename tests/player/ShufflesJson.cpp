#include <fstream>
#include <iterator>
#include <string>

#include "player/ShuffleDatabase.h"
#include "tests/player/Printers.h"

namespace {

using player::Json;

Json songsIn(const std::string &bytes) {
  const auto found = player::readShuffleDatabase(bytes);
  if (!found) return nullptr;
  Json songs = Json::array();
  for (const player::ShuffleSong &song : found->songs) {
    // A damaged path need not be valid text: its bytes.
    Json path = Json::array();
    for (const char byte : song.path) path.push_back(static_cast<unsigned char>(byte));
    songs.push_back({path, song.persistentId ? Json(*song.persistentId) : Json()});
  }
  return {{"songs", songs}, {"declared", found->declaredSongs}, {"is_cut_short", found->isCutShort}};
}

Json countsIn(const std::string &bytes) {
  const auto found = player::readShuffleCounts(bytes);
  if (!found) return nullptr;
  Json counts = Json::array();
  for (const player::ShuffleCount &count : *found) counts.push_back({count.plays, count.skips});
  return counts;
}

}  // namespace

namespace player {

Json shufflesJson(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  return {{"list", songsIn(bytes)}, {"counts", countsIn(bytes)}};
}

}  // namespace player
