#include "zemhost/rescue/RescuePlan.h"

#include <cerrno>
#include <sys/stat.h>
#include <utility>

#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

constexpr size_t kNoFile = static_cast<size_t>(-1);

std::string numbered(uint32_t number) { return number == 1 ? "" : " (" + std::to_string(number) + ")"; }

bool isThere(const fs::path &path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

}  // namespace

RescuePlan::RescuePlan(const MusicLibrary &library, const NamePattern &pattern, fs::path destination)
    : library_(library), pattern_(pattern), destination_(std::move(destination)) {}

void RescuePlan::addSong(int32_t index) {
  if (fileOf_.contains(index)) return;
  const Song song = library_.song(index);
  const FolderItem item = library_.file(song.path);
  PlannedFile file;
  file.song = index;
  file.source = item.path();
  try {
    file.facts = factsOf(file.source);
    if (file.facts.size != song.size) {
      otherSizes_.push_back(songLabel(index, song) + ": " + std::to_string(file.facts.size) + " bytes, and " +
                            std::to_string(song.size) + " by the database: " + file.source.string());
    }
    place(index, song, std::move(file));
  } catch (const CopyFailure &failure) {
    const bool missing = failure.error() == ENOENT || failure.error() == ENOTDIR;
    problems_.push_back(missing
                            ? missingFileText(index, song, item)
                            : songLabel(index, song) + ": " + item.path().string() + ": " + failure.what());
  }
}

void RescuePlan::place(int32_t index, const Song &song, PlannedFile file) {
  const std::string folder = folderFor(pattern_.names(song));
  const std::string extension = file.source.extension().string();
  uint32_t &number =
      numberToTry_.try_emplace(foldedText(folder + pattern_.fileName(song, "", extension)), 1).first->second;
  for (;; ++number) {
    file.target = folder + pattern_.fileName(song, numbered(number), extension);
    const auto [known, isNew] = taken_.try_emplace(foldedText(file.target), files_.size());
    if (!isNew) {
      if (known->second == kNoFile || files_[known->second].source != file.source) continue;
      fileOf_[index] = known->second;
      return;
    }
    const fs::path target = destination_ / file.target;
    file.there = isCopyOf(target, file.source, file.facts);
    if (file.there || !isThere(target)) break;
    known->second = kNoFile;
    ++evaded_;
  }
  if (!file.there) {
    ++songsLeft_;
    bytesLeft_ += file.facts.size;
  }
  fileOf_[index] = files_.size();
  files_.push_back(std::move(file));
}

// With a slash at the end; empty for the destination itself.
std::string RescuePlan::folderFor(const std::vector<std::string> &names) {
  std::string folder;
  for (size_t i = 0; i + 1 < names.size(); ++i) {
    const std::string wanted = folder + names[i] + "/";
    folder = folders_.try_emplace(foldedText(wanted), wanted).first->second;
  }
  return folder;
}

std::string RescuePlan::playlistFile(const std::string &name, int32_t number) {
  for (uint32_t attempt = 1;; ++attempt) {
    std::string file = safeName(name, "Playlist " + std::to_string(number), numbered(attempt), ".m3u8");
    if (taken_.try_emplace(foldedText(file), kNoFile).second) return file;
  }
}

ptrdiff_t RescuePlan::fileOf(int32_t song) const {
  const auto found = fileOf_.find(song);
  return found == fileOf_.end() ? -1 : static_cast<ptrdiff_t>(found->second);
}

}  // namespace zemhost
