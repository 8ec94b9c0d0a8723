#pragma once

// The chapters of an audiobook or a podcast: a tree of atoms, in big-endian order in every file.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace player {

struct Chapter {
  uint32_t start = 0;  // milliseconds from the beginning of the song
  std::string title;   // UTF-8; empty when it has none
  std::string url;     // an address to show with it; empty for most
};

constexpr uint32_t kChapterObject = 17;  // the type of the object that holds them

// The atoms in the body of that object, which begins behind the first 0x18 bytes.
std::string_view chapterAtoms(std::string_view body);

// The chapters, in the order of the file, as far as the atoms are whole; atoms that are not known are passed
// over.
std::vector<Chapter> readChapters(std::string_view atoms);

}  // namespace player
