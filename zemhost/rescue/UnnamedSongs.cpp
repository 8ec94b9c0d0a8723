#include "zemhost/rescue/UnnamedSongs.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include "host/runtime/MacPaths.h"
#include "player/Folder.h"
#include "player/MusicFiles.h"
#include "player/PlayerFolders.h"
#include "zemhost/rescue/FileTags.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

// Of a path below the player's root.
bool isInMusicFolder(const fs::path &below) {
  return std::any_of(below.begin(), below.end(),
                     [](const fs::path &part) { return player::isNamed(part, player::kMusicFolder); });
}

// A file below the player's root as a song names it: ":iPod_Control:Music:F00:ABCD.mp3".
std::string songPathOf(const std::string &file, const std::string &root) {
  return std::string(":").append(diskPath(file.substr(root.size())));
}

// Takes those that songs name away from the files of the player.
void removeNamed(const LibrarySource &library, SongFiles &files, const std::string &root,
                 std::set<std::string> &paths) {
  const int32_t songs = library.songCount();
  for (int32_t index = 0; index < songs; ++index) {
    const std::string path = library.song(index).path;
    if (paths.erase(path) > 0) continue;
    // In another case, perhaps, or through a link.
    const SongFile file = files.find(path);
    if (file.isThere() && file.path.string().starts_with(root))
      paths.erase(songPathOf(file.path.string(), root));
  }
}

}  // namespace

UnnamedSongs::UnnamedSongs(std::shared_ptr<const LibrarySource> library, player::DatabaseLocation location)
    : library_(std::move(library)),
      location_(std::move(location)),
      named_(library_ ? library_->songCount() : 0) {
  SongFiles files(location_, false);
  std::error_code error;
  const std::string root = (fs::canonical(location_.volumeRoot, error) / "").string();
  std::set<std::string> paths = filesOfPlayer(root);
  if (library_) removeNamed(*library_, files, root, paths);
  std::set<fs::path> unnamed;
  for (const std::string &path : paths) unnamed.insert(diskPath(path.substr(1)));
  for (const fs::path &below : unnamed) {
    // Beside a file, other systems keep what they know of it under such a name.
    if (below.filename().string().starts_with('.')) continue;
    const std::string extension = below.extension().string();
    if (safeExtension(extension) == extension) {
      unnamed_.push_back(unnamedOf(below.string(), files));
    } else if (isInMusicFolder(below)) {
      remarks_.push_back(root + below.string() +
                         ": no song names it, and its extension is of neither music nor video, so it "
                         "is left out");
    }
  }
}

// As songs name them. `root`, with a slash at its end, is the player's without symbolic links.
std::set<std::string> UnnamedSongs::filesOfPlayer(const std::string &root) {
  std::set<std::string> paths;
  player::MusicFileSink sink;
  sink.onFile = [&](const fs::path &file) { paths.insert(songPathOf(file.string(), root)); };
  sink.onFailure = [&](const fs::path &path, int error) {
    problems_.push_back(path.string() + " cannot be read: " + std::generic_category().message(error));
  };
  player::eachFileOfPlayer(location_.volumeRoot, sink);
  return paths;
}

UnnamedSongs::Unnamed UnnamedSongs::unnamedOf(const std::string &below, SongFiles &files) {
  Unnamed unnamed;
  unnamed.song.isUnnamed = true;
  unnamed.song.path = std::string(":").append(diskPath(below));
  const SongFile file = files.find(unnamed.song.path);
  if (!file.isThere()) return unnamed;
  if (const carbon::Descriptor open = files.open(file))
    unnamed.albumArtist = readTags(open, unnamed.song).albumArtist;
  return unnamed;
}

std::string UnnamedSongs::volumeName() const {
  return library_ ? library_->volumeName() : zemhost::volumeName(location_.volumeRoot);
}

Song UnnamedSongs::song(int32_t index) const {
  if (!isNamed(index)) return unnamed(index).song;
  if (last_.first != index) last_ = {index, library_->song(index)};
  return last_.second;
}

std::optional<std::string> UnnamedSongs::numberedText(int32_t index, int32_t number) const {
  if (isNamed(index)) return library_->numberedText(index, number);
  const std::string &artist = unnamed(index).albumArtist;
  return number == kAlbumArtistText && !artist.empty() ? std::optional(artist) : std::nullopt;
}

int32_t UnnamedSongs::numberedTextCount(int32_t index) const {
  return isNamed(index) ? library_->numberedTextCount(index) : 0;
}

std::vector<player::SongText> UnnamedSongs::textsInFile(int32_t index) const {
  return isNamed(index) ? library_->textsInFile(index) : std::vector<player::SongText>();
}

std::string UnnamedSongs::storedText(SongTextField field, int32_t index) const {
  if (isNamed(index)) return library_->storedText(field, index);
  return textOf(unnamed(index).song, field);
}

bool UnnamedSongs::isSame(SongTextField by, int32_t one, int32_t other) const {
  return isNamed(one) && isNamed(other) ? library_->isSame(by, one, other)
                                        : storedText(by, one) == storedText(by, other);
}

std::string UnnamedSongs::answeredPath(int32_t index) const {
  return isNamed(index) ? library_->answeredPath(index) : unnamed(index).song.path;
}

std::vector<player::Chapter> UnnamedSongs::chapters(int32_t index) const {
  return isNamed(index) ? library_->chapters(index) : std::vector<player::Chapter>();
}

player::SongFacts UnnamedSongs::storedFacts(int32_t index) const {
  return isNamed(index) ? library_->storedFacts(index) : unnamed(index).song.facts;
}

}  // namespace zemhost
