// Prints what the reader makes of files of shuffles, for a reader of another making to compare: for each file
// one line of JSON.

#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "player/ShuffleDatabase.h"

namespace {

using Json = nlohmann::ordered_json;

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

int main(int argc, char **argv) {
  for (int i = 1; i < argc; ++i) {
    std::ifstream in(argv[i], std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    std::cout << Json{{"list", songsIn(bytes)}, {"counts", countsIn(bytes)}}.dump() << '\n';
  }
  return 0;
}
