#pragma once

// The players that are mounted on this machine, and those that could be.

#include <filesystem>
#include <string>
#include <vector>

namespace player {

// Where the system says what it has. A folder of mounts is searched so many levels deep.
struct MountSources {
  struct Folder {
    std::filesystem::path path;
    int levels;
  };

  std::filesystem::path mounts = "/proc/self/mounts";
  // Where desktops mount disks, for systems that say it in no such file, and for copies of players.
  std::vector<Folder> folders = {{"/media", 2}, {"/run/media", 2}, {"/mnt", 1}, {"/Volumes", 1}};
  std::filesystem::path blockDevices = "/sys/class/block";
  std::filesystem::path udev = "/run/udev/data";            // what is known of each device
  std::filesystem::path fileSystems = "/proc/filesystems";  // whose drivers are loaded
  std::filesystem::path modules = "/lib/modules";           // folders of drivers, by the system's release
};

struct MountedPlayer {
  std::filesystem::path root;
  std::string fileSystem;  // as the system calls it, "vfat"; empty when the root is no mount of its own
  bool isReadOnly = false;
};

struct UnmountedPlayer {
  std::filesystem::path device;
  std::string fileSystem;
  bool hasDriver = true;  // whether this system can mount it, as far as is known
};

// The folders with a player's control folder among the mounts of disks and in the folders of desktops, each
// once, by name. What cannot be read is passed over; network mounts are not asked, since they may not answer.
std::vector<MountedPlayer> mountedPlayers(const MountSources &sources = {});

// The partitions of disks that call themselves players and are not mounted, as far as it is known without
// the superuser's rights.
std::vector<UnmountedPlayer> unmountedPlayers(const MountSources &sources = {});

// The mount whose root the folder is; one without a file system when it is none.
MountedPlayer mountAt(const std::filesystem::path &folder, const MountSources &sources = {});

}  // namespace player
