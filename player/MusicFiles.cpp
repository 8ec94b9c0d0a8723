#include "player/MusicFiles.h"

#include <algorithm>
#include <new>
#include <optional>
#include <system_error>
#include <vector>

#include "player/Error.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"

namespace player {

namespace fs = std::filesystem;

namespace {

constexpr const char *kSpokenFolder = "Speakable";  // the names of songs and lists, spoken
constexpr const char *kRecordings = "Recordings";   // in the root

void throwWithoutMemory(const std::error_code &error) {
  if (error == std::errc::not_enough_memory) throw std::bad_alloc();
}

// Adds the folder without symbolic links on its way; nothing when there is none on the player.
void addFolder(const fs::path &root, const std::optional<fs::path> &named, std::vector<fs::path> &folders) {
  std::error_code error;
  if (!named || !fs::is_directory(*named, error)) return;
  const fs::path folder = fs::canonical(*named, error);
  const fs::path top = error ? fs::path() : fs::canonical(root, error);
  const bool isInside =
      !error && std::mismatch(top.begin(), top.end(), folder.begin(), folder.end()).first == top.end();
  if (isInside) folders.push_back(folder);
}

// What a folder calls so; nothing where that cannot be asked: nor was a database found through it then.
std::optional<fs::path> known(const std::optional<fs::path> &folder, const char *name) {
  try {
    return folder ? childNamed(*folder, name) : std::nullopt;
  } catch (const PlayerError &) {
    return std::nullopt;
  }
}

std::optional<fs::path> knownControl(const fs::path &root) {
  try {
    return controlFolderOf(root);
  } catch (const PlayerError &) {
    return std::nullopt;
  }
}

// The folders in it go to `folders`.
void readFolder(const fs::path &folder, const MusicFileSink &sink, std::vector<fs::path> &folders) {
  std::error_code error;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    const fs::file_status status = entry->symlink_status(unknown);
    throwWithoutMemory(unknown);
    if (unknown) {
      sink.onFailure(entry->path(), unknown.value());
    } else if (fs::is_directory(status)) {
      if (!isNamed(entry->path(), kSpokenFolder)) folders.push_back(entry->path());
    } else if (fs::is_regular_file(status)) {
      sink.onFile(entry->path());
    }
  }
  throwWithoutMemory(error);
  if (error) sink.onFailure(folder, error.value());
}

void walk(std::vector<fs::path> folders, const MusicFileSink &sink) {
  while (!folders.empty()) {
    const fs::path folder = std::move(folders.back());
    folders.pop_back();
    readFolder(folder, sink, folders);
  }
}

}  // namespace

void eachMusicFile(const fs::path &root, const MusicFileSink &sink) {
  std::vector<fs::path> folders;
  addFolder(root, known(knownControl(root), kMusicFolder), folders);
  walk(std::move(folders), sink);
}

void eachFileOfPlayer(const fs::path &root, const MusicFileSink &sink) {
  std::vector<fs::path> folders;
  addFolder(root, knownControl(root), folders);
  addFolder(root, known(root, kRecordings), folders);
  walk(std::move(folders), sink);
}

}  // namespace player
