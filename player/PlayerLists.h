#pragma once

// The playlists of a player: those of its database, and those that were made on it and wait for the next
// synchronisation.

#include <filesystem>
#include <string>
#include <vector>

#include "player/ChunkWalk.h"
#include "player/OnTheGo.h"
#include "player/Playlists.h"

namespace player {

class PlayerLists {
 public:
  // `content` is the database, plain or inflated, and must stay open; `account` is what a walk over it found,
  // `database` where it lies, and `root` that of the player's disk, or empty. Throws std::system_error when
  // it cannot be read.
  PlayerLists(int content, const FileAccount &account, const std::filesystem::path &database,
              const std::filesystem::path &root);

  const PlaylistReader &stored() const { return stored_; }
  const std::vector<OnTheGoList> &onTheGo() const { return onTheGo_.lists; }

  // A line for each file with such a list of which something is left out.
  const std::vector<std::string> &warnings() const { return onTheGo_.warnings; }

 private:
  PlaylistReader stored_;
  OnTheGoLists onTheGo_;
};

}  // namespace player
