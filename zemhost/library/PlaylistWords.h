#pragma once

// What is known of playlists, in words.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "player/Playlists.h"

namespace zemhost {

// "library", "playlist", "smart", "folder", "podcasts" or "on-the-go": the last is one that was made on the
// player and not synchronised yet.
std::string playlistKindText(player::PlaylistKind kind);

// What a list is sorted by: "manual", "artist"; the number where it is not known, empty where there is none.
std::string sortOrderText(const std::optional<uint32_t> &order);

// The rules of a smart playlist: "Artist contains 'Bach' and Rating is at least 4 stars, limited to 25 songs,
// most recently played first". `nameOf` gives the name of the list with a persistent ID, empty where there is
// none.
std::string rulesText(const player::SmartRules &rules,
                      const std::function<std::string(uint64_t list)> &nameOf);

}  // namespace zemhost
