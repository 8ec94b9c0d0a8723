#include "zemhost/library/PlayerChoice.h"

#include <vector>

#include "host/Error.h"

namespace zemhost {

namespace {

std::string noneText(const player::MountSources &sources) {
  std::string text = "no player is mounted; mount one, or give its PATH";
  for (const player::UnmountedPlayer &player : player::unmountedPlayers(sources)) {
    const std::string device = player.device.string();
    text.append("; ").append(device).append(" (").append(player.fileSystem);
    text.append(") is a player that is not mounted: ");
    if (!player.hasDriver) {
      text += "this system has no driver for its file system; install the extra modules of its kernel";
      continue;
    }
    text.append("udisksctl mount -b ").append(device);
    if (player.fileSystem == "hfsplus")
      text += " does it, read-only if it has a journal, which is enough for zemhost";
  }
  return text;
}

}  // namespace

PlayerChoice chooseMountedPlayer(const player::MountSources &sources) {
  const std::vector<player::MountedPlayer> players = player::mountedPlayers(sources);
  if (players.empty()) throw HostError(noneText(sources));
  if (players.size() > 1) {
    std::string text = "several players are mounted; give the PATH of one:";
    for (const player::MountedPlayer &player : players) text.append(" ").append(player.root.string());
    throw HostError(text);
  }
  const std::string mount = mountText(players.front());
  const std::string path = players.front().root.string();
  std::string remark = std::string("the player at ").append(path);
  if (!mount.empty()) remark.append(": ").append(mount);
  return {path, remark};
}

std::string mountText(const player::MountedPlayer &mount) {
  if (!mount.isReadOnly || mount.fileSystem.empty()) return {};
  if (mount.fileSystem == "hfsplus")
    return "HFS+, read-only as Linux mounts it with a journal, which is enough for zemhost";
  return mount.fileSystem + ", read-only, which is enough for zemhost";
}

}  // namespace zemhost
