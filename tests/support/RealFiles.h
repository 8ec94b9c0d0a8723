#pragma once

// The collection of real databases beside the tree, which may be absent, with what its files are known to
// hold. A file that is new there is no fault: tests read it and say that they know nothing of it.

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <vector>

namespace support {

struct RealFile {
  const char *name;
  int32_t libType;
  size_t songs;
  size_t playlists;
  size_t entries;
  const char *text;  // somewhere in the listing of its songs
  bool encrypted = false;
};

void PrintTo(const RealFile &file, std::ostream *out);

const std::vector<RealFile> &RealFiles();

// Whether the collection is there at all.
bool HasRealFiles();

// Where the file is, if it is there.
std::filesystem::path PathOf(const RealFile &file);

// The databases of the collection that RealFiles does not name.
std::vector<std::filesystem::path> UntestedRealFiles();

}  // namespace support
