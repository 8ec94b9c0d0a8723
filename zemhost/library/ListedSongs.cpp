#include "zemhost/library/ListedSongs.h"

#include <cstddef>
#include <map>
#include <set>
#include <utility>

namespace zemhost {

namespace {

// The lists in each folder, by the folder's persistent ID.
std::map<uint64_t, std::vector<int32_t>> contentsOfFolders(const MusicLibrary &library) {
  std::map<uint64_t, std::vector<int32_t>> contents;
  const int32_t count = library.playlistCount();
  for (int32_t list = 0; list < count; ++list) {
    const player::PlaylistFacts facts = library.playlistFacts(list);
    if (facts.folder && facts.kind != player::PlaylistKind::Library) contents[*facts.folder].push_back(list);
  }
  return contents;
}

}  // namespace

std::vector<int32_t> storedSongs(const MusicLibrary &library, int32_t playlist) {
  std::vector<int32_t> songs;
  const int32_t entries = library.entryCount(playlist);
  songs.reserve(static_cast<size_t>(entries));
  for (int32_t position = 0; position < entries; ++position)
    songs.push_back(library.entry(playlist, position).song);
  return songs;
}

std::vector<int32_t> listedSongs(const MusicLibrary &library, int32_t playlist) {
  std::vector<int32_t> songs = storedSongs(library, playlist);
  if (!songs.empty() || library.playlistFacts(playlist).kind != player::PlaylistKind::Folder) return songs;
  const auto contents = contentsOfFolders(library);
  std::set<int32_t> seenLists;  // a folder may lie in itself in a damaged file
  std::set<int32_t> seenSongs;
  std::vector<int32_t> waiting = {playlist};  // the next one last
  while (!waiting.empty()) {
    const int32_t list = waiting.back();
    waiting.pop_back();
    if (!seenLists.insert(list).second) continue;
    const std::vector<int32_t> stored = storedSongs(library, list);
    for (const int32_t song : stored) {
      if (song >= 0 && seenSongs.insert(song).second) songs.push_back(song);
    }
    const player::PlaylistFacts facts = library.playlistFacts(list);
    if (!stored.empty() || facts.kind != player::PlaylistKind::Folder || !facts.persistentId) continue;
    const auto inside = contents.find(*facts.persistentId);
    if (inside != contents.end())
      waiting.insert(waiting.end(), inside->second.rbegin(), inside->second.rend());
  }
  return songs;
}

}  // namespace zemhost
