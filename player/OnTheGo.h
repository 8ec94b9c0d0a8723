#pragma once

// The lists that were made on the player and wait for the next synchronisation: OTGPlaylistInfo,
// OTGPlaylistInfo_1, and so on.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace player {

struct OnTheGoList {
  uint32_t number = 0;        // as the player counts them, from 1
  std::vector<size_t> songs;  // by their positions in the library, in the order of the list

  std::string name() const { return "On-The-Go " + std::to_string(number); }
};

struct OnTheGoLists {
  std::vector<OnTheGoList> lists;     // those that hold songs
  std::vector<std::string> warnings;  // a line for each file of which something is left out
};

// The positions in the bytes of one such file, of either byte order. Throws PlayerError, saying what is
// wrong, when they are none, or when the number of entries does not fit them.
std::vector<uint32_t> onTheGoPositions(std::string_view bytes);

// The lists beside a player's database of so many songs; none when the database has another name than on a
// player. `root` is that of the player's disk: a file to which a link leads from outside is left out. Entries
// for songs that there are not are left out.
OnTheGoLists readOnTheGo(const std::filesystem::path &database, const std::filesystem::path &root,
                         size_t songs);

}  // namespace player
