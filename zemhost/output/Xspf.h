#pragma once

// Playlists as XSPF files: XML in UTF-8, an element for each song.

#include <string>
#include <string_view>

#include "zemhost/output/ListedSong.h"

namespace zemhost {

// What stands before the songs: the XML declaration, `remark` as a comment when it is not empty (it must hold
// no two hyphens in a row), and the name.
std::string xspfHeading(std::string_view name, std::string_view remark);

// A song's element, on lines of its own. Its location, alone on its line, is the path with all but letters,
// digits, '/' and "-._~" as their bytes ("%20"), so that it is no address of another place whatever it holds.
// What XML cannot hold, and what would steer a terminal, is shown as safeText shows it.
std::string xspfEntry(const ListedSong &song);

// What stands behind the songs.
std::string xspfEnd();

}  // namespace zemhost
