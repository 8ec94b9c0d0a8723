#pragma once

// The player that is meant where a person names none.

#include <string>

#include "player/MountedPlayers.h"

namespace zemhost {

struct PlayerChoice {
  std::string path;
  std::string remark;  // a line to show: which player it is, and what is to be said of its file system
};

// The one player that is mounted. Throws HostError when there is none, with what is connected and not
// mounted, and when there are several, with all of them.
PlayerChoice chooseMountedPlayer(const player::MountSources &sources = {});

// What a person needs to know of a mount: that it is read-only, and that this is enough; empty for others.
std::string mountText(const player::MountedPlayer &mount);

}  // namespace zemhost
