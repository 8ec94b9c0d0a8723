#pragma once

#include <cstdint>
#include <string>

namespace zemhost {

// A song as an entry of a playlist's file says what it is. Texts are UTF-8, empty where not known.
struct ListedSong {
  uint32_t duration = 0;  // milliseconds; 0: not known
  std::string artist;
  std::string title;
  std::string path;     // of its file, with '/' between the parts
  std::string album{};  // not in every format
};

}  // namespace zemhost
