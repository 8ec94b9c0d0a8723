#include "zemhost/rescue/RescuedCovers.h"

#include <cerrno>
#include <map>
#include <set>
#include <string>

#include "host/Error.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/NewFiles.h"

namespace zemhost {

namespace {

// What lies in a folder of the destination.
struct AlbumFolder {
  std::set<std::string> albums;  // in a form in which case has gone; two are enough to know
  std::set<size_t> images;

  bool hasCover() const { return albums.size() == 1 && !albums.begin()->empty() && !images.empty(); }
};

// By their paths, with a slash at the end.
std::map<std::string, AlbumFolder> foldersOf(const MusicLibrary &library, const RescuePlan &plan) {
  std::map<std::string, AlbumFolder> folders;
  for (const PlannedFile &file : plan.files()) {
    const Song song = library.song(file.song);
    AlbumFolder &folder = folders[file.target.substr(0, file.target.rfind('/') + 1)];  // npos + 1 is 0
    if (folder.albums.size() < 2) folder.albums.insert(foldedText(song.album));
    if (const auto image = library.covers().imageOf(song.facts)) folder.images.insert(*image);
  }
  return folders;
}

void writeCover(const std::string &name, const carbon::Descriptor &content,
                const DestinationFolder &destination, RescueResult &result) {
  Occupant occupant = occupantOf(destination, name, content);
  if (occupant == Occupant::None) {
    try {
      destination.add(content, name);
      ++result.covers;
    } catch (const CopyFailure &failure) {
      if (failure.error() != EEXIST) throw;
      occupant = occupantOf(destination, name, content);  // another run was there first
    }
  }
  if (occupant == Occupant::Other)
    result.remarks.push_back(name + ": another file has this name and stays, so the cover is left out");
}

}  // namespace

void writeRescuedCovers(const MusicLibrary &library, const RescuePlan &plan,
                        const DestinationFolder &destination, bool dryRun, RescueResult &result) {
  for (const auto &[folder, content] : foldersOf(library, plan)) {
    if (!content.hasCover()) continue;
    try {
      if (dryRun) {
        if (!destination.statusOf(folder + "cover.png")) ++result.covers;
        continue;
      }
      const PictureFile picture = library.covers().largest(content.images);
      writeCover(folder + "cover" + picture.extension, fileOf(picture.bytes), destination, result);
    } catch (const CopyFailure &failure) {
      if (failure.reach() == CopyFailure::Reach::Destination) throw;
      result.problems.push_back(folder + "cover: " + failure.what());
    } catch (const HostError &failure) {
      result.problems.push_back(folder + "cover: " + failure.what());
    }
  }
}

}  // namespace zemhost
