#include "zemhost/rescue/Rescue.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <optional>
#include <sys/file.h>
#include <sys/statvfs.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "host/Error.h"
#include "platform/carbon/Descriptor.h"
#include "player/FileBytes.h"
#include "zemhost/files/OutputFile.h"
#include "zemhost/files/Signals.h"
#include "zemhost/files/TemporaryPath.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/M3u.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/Progress.h"
#include "zemhost/rescue/RescuePlan.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

constexpr const char *kPartialName = ".zemhost-rescue.part";
constexpr const char *kContinue = "run the same command again to go on where it ended";
// Tells a list that was written here, and may be written anew, from another file.
constexpr const char *kListMark = "# written by zemhost rescue\n";

[[noreturn]] void fail(const fs::path &path, int error) {
  throw HostError(path.string() + ": " + std::generic_category().message(error));
}

bool isBelow(const fs::path &path, const fs::path &folder) {
  const auto [end, unused] = std::mismatch(folder.begin(), folder.end(), path.begin(), path.end());
  return end == folder.end();
}

bool isOwnList(const fs::path &file) {
  const carbon::Descriptor list(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (list.number() < 0) return false;
  const std::string start = m3uHeading() + kListMark;
  try {
    return player::readAt(list.number(), 0, start.size()) == start;
  } catch (const std::system_error &) {
    return false;
  }
}

class Rescue {
 public:
  Rescue(const MusicLibrary &library, const RescueRequest &request)
      : library_(library), request_(request), plan_(library, request.pattern, request.destination) {}

  RescueResult run() {
    checkPlaces();
    if (!request_.dryRun) openDestination();
    planSongs();
    result_.problems = plan_.problems();
    result_.otherSizes = plan_.otherSizes();
    result_.evaded = plan_.evaded();
    if (request_.dryRun) {
      tellPlan();
    } else {
      warnOfSpace();
      copySongs();
      writePlaylists();
    }
    return std::move(result_);
  }

 private:
  void checkPlaces() const {
    const fs::path &root = library_.location().volumeRoot;
    if (root.empty() && library_.libType() != 0) {
      throw HostError(library_.location().name +
                      ": the database is on no player, so the files of its songs cannot be found");
    }
    std::error_code error;
    const fs::path destination = fs::weakly_canonical(fs::absolute(request_.destination), error);
    if (error) fail(request_.destination, error.value());
    if (!root.empty() && isBelow(destination, fs::canonical(root, error)))
      throw HostError(request_.destination.string() + ": this lies on the player, which is only read");
  }

  void openDestination() {
    std::error_code error;
    fs::create_directories(request_.destination, error);
    if (error) fail(request_.destination, error.value());
    folder_ = carbon::Descriptor(open(request_.destination.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder_.number() < 0) fail(request_.destination, errno);
    // Where a file system knows no locks, there is none.
    if (flock(folder_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
      throw HostError(request_.destination.string() + ": another rescue is writing here");
    partial_ = TemporaryPath(request_.destination / kPartialName);
    setInterruptionAdvice(kContinue);
  }

  void planSongs() {
    if (request_.playlists.empty()) {
      const int32_t songs = library_.songCount();
      for (int32_t index = 0; index < songs; ++index) plan_.addSong(index);
    }
    for (const int32_t list : request_.playlists) {
      const int32_t entries = library_.entryCount(list);
      for (int32_t position = 0; position < entries; ++position) {
        const PlaylistEntry entry = library_.entry(list, position);
        if (entry.song >= 0) plan_.addSong(entry.song);
      }
    }
    stopIfPlayerIsGone("it does not answer");
  }

  void tellPlan() {
    for (const PlannedFile &file : plan_.files()) {
      if (file.there) {
        ++result_.alreadyThere;
        continue;
      }
      ++result_.copied;
      result_.copiedBytes += file.facts.size;
      std::cout << safeText(file.source.string()) << " -> "
                << safeText((request_.destination / file.target).string()) << '\n';
    }
    result_.playlists = chosenLists().size();
  }

  void warnOfSpace() const {
    struct statvfs room {};
    if (fstatvfs(folder_.number(), &room) != 0) return;
    const uint64_t free = static_cast<uint64_t>(room.f_bavail) * static_cast<uint64_t>(room.f_frsize);
    if (free >= plan_.bytesLeft()) return;
    printError(request_.destination.string() + ": " + totalSizeText(plan_.bytesLeft()) +
               " are still to be copied and only " + totalSizeText(free) +
               " are free; copying until it is full");
  }

  void copySongs() {
    Progress progress(plan_.songsLeft(), plan_.bytesLeft());
    for (const PlannedFile &file : plan_.files()) {
      if (file.there) {
        ++result_.alreadyThere;
        arrived_.push_back(true);
        continue;
      }
      arrived_.push_back(false);
      try {
        copyFile(file.source, partial_.path(), request_.destination / file.target,
                 [&](uint64_t bytes) { progress.addBytes(bytes); });
        arrived_.back() = true;
        ++result_.copied;
        result_.copiedBytes += file.facts.size;
        progress.addSong(file.target);
      } catch (const CopyFailure &failure) {
        if (failure.reach() == CopyFailure::Reach::Destination)
          stop(request_.destination.string() + ": " + failure.what());
        stopIfPlayerIsGone(failure.what());
        const std::string label = songLabel(file.song, library_.song(file.song));
        result_.problems.push_back(label + ": " + file.source.string() + ": " + failure.what());
      }
    }
    partial_.remove();
  }

  [[noreturn]] void stop(const std::string &why) const {
    const uint64_t there = result_.copied + result_.alreadyThere;
    throw HostError(why + "; " + std::to_string(there) + " of " + std::to_string(plan_.files().size()) +
                    " songs are there; " + kContinue);
  }

  void stopIfPlayerIsGone(const std::string &why) const {
    const fs::path &database = library_.location().file;
    if (access(database.c_str(), F_OK) != 0)
      stop("the player is gone: " + database.parent_path().string() + ": " + why);
  }

  std::vector<int32_t> chosenLists() const {
    if (!request_.playlists.empty()) return request_.playlists;
    std::vector<int32_t> lists;
    for (int32_t list = 1; list < library_.playlistCount(); ++list) lists.push_back(list);
    return lists;
  }

  void writePlaylists() {
    for (const int32_t list : chosenLists()) {
      const std::string name = library_.playlistName(list);
      fs::path file = request_.destination / plan_.playlistFile(name, list);
      std::error_code error;
      while (fs::exists(fs::symlink_status(file, error)) && !isOwnList(file)) {
        ++result_.evaded;
        file = request_.destination / plan_.playlistFile(name, list);
      }
      try {
        writePlaylist(list, name, file);
        ++result_.playlists;
      } catch (const HostError &failure) {
        result_.problems.push_back(playlistLabel(list, name) + ": " + failure.what());
      }
    }
  }

  void writePlaylist(int32_t list, const std::string &name, const fs::path &file) {
    OutputFile out(file);
    out.write(m3uHeading());
    out.write(kListMark);
    out.write("#PLAYLIST:" + safeText(name) + "\n");
    uint64_t missing = 0;
    const int32_t entries = library_.entryCount(list);
    for (int32_t position = 0; position < entries; ++position) {
      const int32_t index = library_.entry(list, position).song;
      const ptrdiff_t place = index < 0 ? -1 : plan_.fileOf(index);
      if (place < 0 || !arrived_[static_cast<size_t>(place)]) {
        ++missing;
        continue;
      }
      const Song song = library_.song(index);
      out.write(m3uEntry(
          {song.duration, song.artist, song.title, plan_.files()[static_cast<size_t>(place)].target}));
    }
    out.finish();
    if (missing > 0) {
      result_.problems.push_back(playlistLabel(list, name) + " lacks " + countText(missing, "song", "songs"));
    }
  }

  const MusicLibrary &library_;
  const RescueRequest &request_;
  RescuePlan plan_;
  RescueResult result_;
  carbon::Descriptor folder_;  // the destination, locked
  TemporaryPath partial_;
  std::vector<bool> arrived_;  // beside the planned files
};

}  // namespace

RescueResult rescue(const MusicLibrary &library, const RescueRequest &request) {
  return Rescue(library, request).run();
}

}  // namespace zemhost
