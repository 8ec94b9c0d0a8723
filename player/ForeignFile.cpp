#include "player/ForeignFile.h"

#include "player/Folder.h"

namespace player {

namespace {

using namespace std::string_view_literals;

struct KnownFile {
  std::string_view sign;
  const char *text;
};

constexpr const char *kShuffleList = "iTunesSD, the songs of a shuffle in the order of playing";

constexpr KnownFile kByBeginning[] = {
    {"mhdp", "Play Counts, what the player counted since the last synchronisation"},
    {"mhpo", "OTGPlaylistInfo, a playlist made on the player"},
    {"ohpm", "OTGPlaylistInfo, a playlist made on the player"},
    {"mhfd", "ArtworkDB or Photo Database, a list of pictures"},
    {"bdhs", kShuffleList},
    {"SQLite format 3\0"sv, "a SQLite file, such as the newest players have in iTunes Library.itlp"},
    {"bplist", "a property list"},
    {"<?xml", "a property list or another file in XML"}};

// Without a sign of their own.
constexpr KnownFile kByName[] = {{"SysInfo", "SysInfo, what the player says of itself"},
                                 {"SysInfoExtended", "SysInfoExtended, what the player says of itself"},
                                 {"DeviceInfo", "DeviceInfo, the names of the player and its owner"},
                                 {"Preferences", "Preferences, the player's settings"},
                                 {"iTunesPrefs", "iTunesPrefs, settings of the synchronisation"},
                                 {"iTunesSD", kShuffleList},
                                 {"iTunesStats", "iTunesStats, what a shuffle counted"},
                                 {"iTunesPState", "iTunesPState, where a shuffle stopped"},
                                 {"iTunesShuffle", "iTunesShuffle, the shuffled order of a shuffle"}};

// The older form begins with the number of songs, a version and the length of the header, three bytes each.
bool isOlderShuffleList(std::string_view head) {
  constexpr std::string_view kHeaderLength = "\x00\x00\x12"sv;
  return head.size() >= 9 && head[3] == 1 && (head[4] == 6 || head[4] == 8) && head[5] == 0 &&
         head.substr(6, 3) == kHeaderLength;
}

}  // namespace

std::string foreignFileText(std::string_view head, const std::filesystem::path &file) {
  for (const KnownFile &known : kByBeginning) {
    if (head.starts_with(known.sign)) return known.text;
  }
  if (isOlderShuffleList(head)) return kShuffleList;
  for (const KnownFile &known : kByName) {
    if (isNamed(file, known.sign.data())) return known.text;
  }
  return file.extension() == ".ithmb" ? "a file of pictures in the player's own form" : "";
}

}  // namespace player
