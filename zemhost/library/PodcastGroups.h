#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// Entries of one podcast, by their positions in the list, in its order.
struct EntryGroup {
  std::string name;  // empty for those of no podcast
  std::vector<int32_t> positions;
};

// All entries of a playlist: those of a list of podcasts in its groups, those of others in one without a
// name. An entry stands in one group, the first that names its song.
std::vector<EntryGroup> entryGroups(const MusicLibrary &library, int32_t playlist);

}  // namespace zemhost
