#pragma once

// The formats that playlists are written in, as one.

#include <string>
#include <string_view>

#include "zemhost/output/ListedSong.h"

namespace zemhost {

struct ListFormat {
  std::string_view name;       // as a person asks for it
  std::string_view extension;  // ".m3u8"

  // What stands before the songs; the name may be empty. The remark stands in the first two lines, so that a
  // program knows its own lists again; it is one line of ASCII without two hyphens in a row, or empty.
  std::string (*heading)(std::string_view name, std::string_view remark);
  // A song. The path stands alone on its line, which is no part of a line of anything else.
  std::string (*entry)(const ListedSong &song);
  std::string (*end)();
  // Whether a line of a list holds a song's path.
  bool (*isPath)(std::string_view line);
};

// The format of a name, "m3u8" or "xspf"; null for any other.
const ListFormat *listFormatNamed(std::string_view name);

}  // namespace zemhost
