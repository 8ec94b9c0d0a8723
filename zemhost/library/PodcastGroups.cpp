#include "zemhost/library/PodcastGroups.h"

#include <map>

namespace zemhost {

std::vector<EntryGroup> entryGroups(const MusicLibrary &library, int32_t playlist) {
  std::vector<EntryGroup> groups(1);
  std::map<uint32_t, size_t> groupOf;  // by the ID of a song
  for (const player::PodcastGroup &group : library.podcastGroups(playlist)) {
    for (const uint32_t song : group.songs) groupOf.try_emplace(song, groups.size());
    groups.push_back({group.name, {}});
  }
  const int32_t count = library.entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) {
    const auto id = groupOf.empty() ? std::nullopt : library.trackID(playlist, position);
    const auto found = id ? groupOf.find(static_cast<uint32_t>(*id)) : groupOf.end();
    groups[found == groupOf.end() ? 0 : found->second].positions.push_back(position);
  }
  return groups;
}

}  // namespace zemhost
