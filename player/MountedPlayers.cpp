#include "player/MountedPlayers.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <system_error>
#include <utility>

#include "player/Error.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"

namespace player {

namespace fs = std::filesystem;

namespace {

struct Mount {
  std::string device;
  std::string fileSystem;
  bool isReadOnly = false;
};

// A word of the list of mounts: blanks and the like stand there as "\040".
std::string unescaped(std::string_view word) {
  std::string text;
  const auto digit = [&](size_t at) { return word[at] >= '0' && word[at] <= '7'; };
  for (size_t i = 0; i < word.size(); ++i) {
    if (word[i] == '\\' && i + 3 < word.size() && digit(i + 1) && digit(i + 2) && digit(i + 3)) {
      text += static_cast<char>((word[i + 1] - '0') * 64 + (word[i + 2] - '0') * 8 + (word[i + 3] - '0'));
      i += 3;
    } else {
      text += word[i];
    }
  }
  return text;
}

// By their places. Of several mounts on one place the last is seen.
std::map<fs::path, Mount> mountsIn(const fs::path &file) {
  std::map<fs::path, Mount> mounts;
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string device, place, type, options;
    if (!(words >> device >> place >> type >> options)) continue;
    const bool isReadOnly = std::string(",").append(options).append(",").find(",ro,") != std::string::npos;
    mounts[unescaped(place)] = {unescaped(device), type, isReadOnly};
  }
  return mounts;
}

bool isOfADisk(const Mount &mount) {
  const bool isLocal = mount.device.starts_with('/') && !mount.device.starts_with("//");
  return (isLocal || mount.fileSystem.starts_with("fuse")) && mount.fileSystem != "fuse.sshfs";
}

bool isPlayer(const fs::path &folder) {
  try {
    const std::optional<fs::path> control = childNamed(folder, kControlFolder);
    std::error_code error;
    return control && fs::is_directory(*control, error);
  } catch (const PlayerError &) {
    return false;
  }
}

std::vector<fs::path> foldersIn(const fs::path &folder) {
  std::vector<fs::path> found;
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_directory(unknown)) found.push_back(entry->path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

// The value of a property in what is known of a device.
std::string property(const std::string &facts, const std::string &name) {
  const std::string before = std::string("\nE:").append(name).append("=");
  const size_t at = facts.find(before);
  if (at == std::string::npos) return {};
  const size_t start = at + before.size();
  return facts.substr(start, facts.find('\n', start) - start);
}

std::string contentOf(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

// Whether the system has a driver, loaded or to be loaded; true where it does not say.
bool hasDriver(const std::string &fileSystem, const MountSources &sources) {
  const std::string loaded = contentOf(sources.fileSystems);
  if (loaded.empty() || loaded.find("\t" + fileSystem + "\n") != std::string::npos) return true;
  struct utsname system {};
  if (uname(&system) != 0) return true;
  const fs::path folder = sources.modules / static_cast<const char *>(system.release);
  const std::string modules = contentOf(folder / "modules.dep") + contentOf(folder / "modules.builtin");
  return modules.empty() || modules.find("/" + fileSystem + ".ko") != std::string::npos;
}

}  // namespace

std::vector<MountedPlayer> mountedPlayers(const MountSources &sources) {
  std::vector<MountedPlayer> players;
  std::set<std::pair<dev_t, ino_t>> known;
  const auto add = [&](const fs::path &folder, const Mount &mount) {
    struct stat status {};
    if (!isPlayer(folder) || stat(folder.c_str(), &status) != 0) return;
    if (known.emplace(status.st_dev, status.st_ino).second)
      players.push_back({folder, mount.fileSystem, mount.isReadOnly});
  };
  for (const auto &[place, mount] : mountsIn(sources.mounts)) {
    if (isOfADisk(mount)) add(place, mount);
  }
  for (const MountSources::Folder &top : sources.folders) {
    std::vector<fs::path> level = {top.path};
    for (int depth = 0; depth < top.levels; ++depth) {
      std::vector<fs::path> below;
      for (const fs::path &folder : level) {
        if (isPlayer(folder)) continue;  // what lies on it is its own
        for (const fs::path &child : foldersIn(folder)) {
          add(child, {});
          below.push_back(child);
        }
      }
      level = std::move(below);
    }
  }
  std::sort(players.begin(), players.end(),
            [](const MountedPlayer &one, const MountedPlayer &other) { return one.root < other.root; });
  return players;
}

std::vector<UnmountedPlayer> unmountedPlayers(const MountSources &sources) {
  std::set<std::string> mounted;
  for (const auto &[place, mount] : mountsIn(sources.mounts)) mounted.insert(mount.device);
  std::vector<UnmountedPlayer> players;
  for (const fs::path &entry : foldersIn(sources.blockDevices)) {
    std::string number = contentOf(entry / "dev");
    number.erase(std::min(number.find('\n'), number.size()));
    if (number.empty()) continue;
    const std::string facts =
        std::string("\n").append(contentOf(sources.udev / std::string("b").append(number)));
    const std::string fileSystem = property(facts, "ID_FS_TYPE");
    const std::string device = std::string("/dev/").append(entry.filename().string());
    const bool saysSo = property(facts, "ID_MODEL").find("iPod") != std::string::npos;
    if (saysSo && !fileSystem.empty() && !mounted.contains(device))
      players.push_back({device, fileSystem, hasDriver(fileSystem, sources)});
  }
  return players;
}

MountedPlayer mountAt(const fs::path &folder, const MountSources &sources) {
  const auto mounts = mountsIn(sources.mounts);
  const auto found = mounts.find(folder);
  if (found == mounts.end()) return {folder, {}, false};
  return {folder, found->second.fileSystem, found->second.isReadOnly};
}

}  // namespace player
