#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// The number of the playlist that a person means among these names, whose positions are the numbers: a
// number that exists, else the exact name, else the one name that begins with the text, without regard to
// case and composition. Throws HostError when none fits, or when several do, listing these.
int32_t choosePlaylist(const std::vector<std::string> &names, std::string_view wanted);

// The same among the playlists of a library; the message names its file.
int32_t choosePlaylist(const MusicLibrary &library, std::string_view wanted);

}  // namespace zemhost
