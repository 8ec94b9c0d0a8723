#pragma once

// Playlists as M3U8 files: UTF-8 text with a line that describes each song before the line with its path.

#include <string>
#include <string_view>

#include "zemhost/output/ListedSong.h"

namespace zemhost {

// The first line of every list, with its end.
std::string m3uHeading();

// The two lines of a song: "#EXTINF:221,Artist - Title" and the path. Whole seconds, rounded, or -1; the
// title alone where there is no artist, the path's last part where there is no title. Control characters,
// line breaks among them, become blanks, and a path that would read as a comment, an address, a drive or a
// network share, or lose its first blank, gets "./" in front. So a song is always two lines, and names a
// file.
std::string m3uEntry(const ListedSong &song);

}  // namespace zemhost
