#include "zemhost/rescue/Rescue.h"

#include <cerrno>
#include <iostream>
#include <optional>
#include <unistd.h>
#include <utility>

#include "host/Error.h"
#include "zemhost/files/Signals.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/CopyReport.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/Progress.h"
#include "zemhost/rescue/RescuePlan.h"
#include "zemhost/rescue/RescuedCovers.h"
#include "zemhost/rescue/RescuedLists.h"

namespace zemhost {

namespace {

class Rescue {
 public:
  Rescue(const MusicLibrary &library, const RescueRequest &request)
      : library_(library),
        request_(request),
        destination_(request.destination, library.location().volumeRoot),
        report_(destination_),
        plan_(library, request.pattern, destination_, report_) {}

  RescueResult run() {
    if (library_.location().volumeRoot.empty() && library_.form() != LibraryForm::Desktop) {
      throw HostError(library_.location().name +
                      ": the database is on no player, so the files of its songs cannot be found");
    }
    if (!request_.dryRun) {
      destination_.make();
      setInterruptionAdvice(kContinue);
    }
    planSongs();
    result_.problems = plan_.problems();
    result_.otherSizes = plan_.otherSizes();
    result_.remarks = plan_.remarks();
    if (request_.dryRun) {
      showPlan();
      writeCovers();
    } else {
      warnOfSpace();
      copySongs();
      writeCovers();
      RescuedLists(
          library_, plan_, destination_, [this](int32_t song) { return copyOf(song); }, result_)
          .write(chosenLists());
    }
    result_.evaded += plan_.evaded();
    return std::move(result_);
  }

 private:
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

  void showPlan() {
    for (const PlannedFile &file : plan_.files()) {
      if (file.there) {
        ++result_.alreadyThere;
        continue;
      }
      ++result_.copied;
      result_.copiedBytes += file.source.size;
      std::cout << safeText(file.source.path.string()) << " -> "
                << safeText((request_.destination / file.target).string()) << '\n';
    }
    result_.playlists = chosenLists().size();
  }

  void warnOfSpace() const {
    const std::optional<uint64_t> free = destination_.bytesFree();
    if (!free || *free >= plan_.bytesLeft()) return;
    printError(request_.destination.string() + ": " + totalSizeText(plan_.bytesLeft()) +
               " are still to be copied and only " + totalSizeText(*free) +
               " are free; copying until it is full");
  }

  void copySongs() {
    Progress progress(plan_.songsLeft(), plan_.bytesLeft());
    arrived_.resize(plan_.files().size());
    for (size_t place = 0; place < arrived_.size(); ++place) {
      const PlannedFile &file = plan_.files()[place];
      try {
        const bool copied = copySong(place, progress);
        arrived_[place] = true;
        ++(copied ? result_.copied : result_.alreadyThere);
        if (copied) {
          result_.copiedBytes += file.source.size;
          progress.addSong(file.target);
        }
        addToReport(file);
      } catch (const CopyFailure &failure) {
        if (failure.reach() == CopyFailure::Reach::Destination)
          stop(request_.destination.string() + ": " + failure.what());
        stopIfPlayerIsGone(failure.what());
        const std::string label = songLabel(file.song, library_.song(file.song));
        result_.problems.push_back(label + ": " + file.source.path.string() + ": " + failure.what());
      }
    }
  }

  void writeCovers() {
    if (!request_.covers) return;
    try {
      writeRescuedCovers(library_, plan_, destination_, request_.dryRun, result_);
    } catch (const CopyFailure &failure) {
      stop(request_.destination.string() + ": " + failure.what());
    }
  }

  // False when a copy is there already.
  bool copySong(size_t place, Progress &progress) {
    while (!plan_.files()[place].there) {
      const PlannedFile &file = plan_.files()[place];
      const carbon::Descriptor source = library_.open(file.source);
      if (!source) throw CopyFailure(CopyFailure::Reach::ThisFile, errno);
      try {
        destination_.copy(source, file.target, [&](uint64_t bytes) { progress.addBytes(bytes); });
        return true;
      } catch (const CopyFailure &failure) {
        if (failure.error() != EEXIST) throw;
        plan_.evade(place);  // another run was there first
      }
    }
    return false;
  }

  void addToReport(const PlannedFile &file) {
    if (reportFailed_) return;
    try {
      report_.add({file.target, file.identity, file.source.size, file.source.modified});
    } catch (const HostError &failure) {
      // The copies are as good without it; the next run compares their contents.
      reportFailed_ = true;
      result_.remarks.emplace_back(failure.what());
    }
  }

  // The copy of a song, of this run or an earlier one.
  std::string copyOf(int32_t song) const {
    const ptrdiff_t place = plan_.fileOf(song);
    const bool arrived = place >= 0 && arrived_[static_cast<size_t>(place)];
    return arrived ? plan_.files()[static_cast<size_t>(place)].target : plan_.earlierCopy(song);
  }

  [[noreturn]] void stop(const std::string &why) const {
    const uint64_t there = result_.copied + result_.alreadyThere;
    throw HostError(why + "; " + std::to_string(there) + " of " + std::to_string(plan_.files().size()) +
                    " songs are there; " + kContinue);
  }

  void stopIfPlayerIsGone(const std::string &why) const {
    const std::filesystem::path &database = library_.location().file;
    if (access(database.c_str(), F_OK) != 0)
      stop("the player is gone: " + database.parent_path().string() + ": " + why);
  }

  std::vector<int32_t> chosenLists() const {
    if (!request_.playlists.empty()) return request_.playlists;
    std::vector<int32_t> lists;
    for (int32_t list = 0; list < library_.playlistCount(); ++list) {
      if (library_.playlistFacts(list).kind != player::PlaylistKind::Library) lists.push_back(list);
    }
    return lists;
  }

  const MusicLibrary &library_;
  const RescueRequest &request_;
  DestinationFolder destination_;
  CopyReport report_;
  RescuePlan plan_;
  RescueResult result_;
  std::vector<bool> arrived_;  // beside the planned files
  bool reportFailed_ = false;
};

}  // namespace

RescueResult rescue(const MusicLibrary &library, const RescueRequest &request) {
  return Rescue(library, request).run();
}

}  // namespace zemhost
