#include "zemhost/rescue/Rescue.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <optional>
#include <sys/stat.h>
#include <utility>

#include "host/Error.h"
#include "zemhost/files/Signals.h"
#include "zemhost/library/ListedSongs.h"
#include "zemhost/library/PatientReader.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/CopyReport.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/ListExport.h"
#include "zemhost/rescue/PendingCopies.h"
#include "zemhost/rescue/PlayerAnswer.h"
#include "zemhost/rescue/Progress.h"
#include "zemhost/rescue/ReadAhead.h"
#include "zemhost/rescue/RescuePlan.h"
#include "zemhost/rescue/RescueReport.h"
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
        plan_(library, request.pattern, destination_, report_),
        pending_(destination_, [this](PendingCopies::Pending &pending) { settle(pending); }) {}

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
    result_.problems = request_.problems;
    result_.problems.insert(result_.problems.end(), plan_.problems().begin(), plan_.problems().end());
    result_.shortFiles = plan_.shortFiles();
    result_.remarks = request_.remarks;
    result_.remarks.insert(result_.remarks.end(), plan_.remarks().begin(), plan_.remarks().end());
    if (request_.dryRun) {
      showPlan();
      writeCovers();
    } else {
      warnOfSpace();
      copySongs();
      writeCovers();
      writeLists();
    }
    result_.evaded += plan_.evaded();
    if (!request_.dryRun) writeReport("");
    return std::move(result_);
  }

 private:
  void planSongs() {
    if (request_.playlists.empty()) {
      const int32_t songs = library_.songCount();
      for (int32_t index = 0; index < songs; ++index) plan_.addSong(index);
    }
    for (const int32_t list : request_.playlists) {
      for (const int32_t song : listedSongs(library_, list)) {
        if (song >= 0) plan_.addSong(song);
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
    result_.playlists = request_.lists == nullptr ? 0 : chosenLists().size();
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
    progress_ = &progress;
    for (const std::string &name : destination_.leftovers()) {
      result_.remarks.push_back((destination_.path() / name).string() +
                                ": an interrupted run may have left it; it can go if no other is at work");
    }
    copies_.resize(plan_.files().size());
    ReadAhead ahead(library_, plan_.files());
    for (size_t place = 0; place < copies_.size(); ++place) {
      opened_ = ahead.turnOf(place);
      if (tryToCopy(place, false)) tryToCopy(place, true);
    }
    try {
      pending_.finish();
      destination_.sync();
    } catch (const CopyFailure &failure) {
      fail(failure);
    }
    progress_ = nullptr;
  }

  // Whether it is worth trying again, since the player was away for a moment.
  bool tryToCopy(size_t place, bool isLast) {
    const PlannedFile &file = plan_.files()[place];
    try {
      if (!file.there) copySong(place);
      if (file.there) arrive(place, false);
    } catch (const CopyFailure &failure) {
      if (failure.reach() == CopyFailure::Reach::Destination) fail(failure);
      const bool wasAway = std::exchange(wasAway_, false) || stopIfPlayerIsGone(failure.what());
      if (wasAway && !copies_[place].isThere && !isLast) return true;
      result_.problems.push_back(labelOf(file) + ": " + failure.what());
    }
    return false;
  }

  [[noreturn]] void fail(const CopyFailure &failure) {
    stop(request_.destination.string() + ": " + failure.what());
  }

  // Gives a copy that is on the disk its name.
  void settle(PendingCopies::Pending &pending) {
    const PlannedFile &file = plan_.files()[pending.place];
    try {
      if (request_.verify) expectReadsBack(pending.copy);
      arrive(pending.place, giveName(pending));
    } catch (const CopyFailure &failure) {
      if (failure.reach() == CopyFailure::Reach::Destination) throw;
      result_.problems.push_back(labelOf(file) + ": " + failure.what());
    }
  }

  // The copy of a song is there under its name, by this run or since an earlier one.
  void arrive(size_t place, bool isNew) {
    const PlannedFile &file = plan_.files()[place];
    copies_[place].isThere = true;
    ++(isNew ? result_.copied : result_.alreadyThere);
    if (isNew) {
      result_.copiedBytes += file.source.size;
      progress_->addSong(file.target);
    } else {
      lookAgain(place);
    }
    addToReport(file, copies_[place]);
  }

  void writeCovers() {
    if (!request_.covers) return;
    try {
      writeRescuedCovers(library_, plan_, destination_, request_.dryRun, result_);
    } catch (const CopyFailure &failure) {
      stop(request_.destination.string() + ": " + failure.what());
    }
  }

  void writeLists() {
    if (request_.lists == nullptr) return;
    try {
      RescuedLists(
          library_, *request_.lists, plan_, destination_, [this](int32_t song) { return copyOf(song); },
          result_)
          .write(chosenLists());
    } catch (const HostError &failure) {
      result_.problems.push_back(std::string(failure.what()) + "; playlists are missing");
    }
  }

  // False where the copy cannot be used any more.
  bool tagCopy(const PlannedFile &file, DestinationFolder::NewCopy &copy) {
    const std::string extension = file.source.path.extension().string();
    const TagOutcome outcome =
        writeTags(copy.part.content(), extension, songTags(library_, file.song), *request_.tags);
    if (outcome == TagOutcome::Broken) return false;
    if (outcome == TagOutcome::Refused) addTagRemark(file, "no tags can be written into it");
    if (outcome != TagOutcome::Written) return true;
    const timespec times[] = {{0, UTIME_OMIT}, file.source.modified};
    // As where it is copied: a file system that keeps no times is no reason to do without the copy.
    [[maybe_unused]] const int kept = futimens(copy.part.content().number(), times);
    struct stat status {};
    if (fstat(copy.part.content().number(), &status) != 0) failTarget(errno);
    copy.content.taggedSize = static_cast<uint64_t>(status.st_size);
    copy.content.sha256 = sha256OnDisk(copy.part.content());
    ++result_.tagged;
    return true;
  }

  void addTagRemark(const PlannedFile &file, const std::string &what) {
    result_.remarks.push_back(labelOf(file) + ": " + what + "; it is copied as it is");
  }

  // Makes a copy that waits for its name; none of a damaged song whose damaged copy is there.
  void copySong(size_t place) {
    const PlannedFile &file = plan_.files()[place];
    DestinationFolder::NewCopy copy = copyOfSource(file);
    if (!copy.content.gaps.empty()) {
      nameAsDamaged(place, copy);
    } else if (request_.tags && !tagCopy(file, copy)) {
      addTagRemark(file, "its own tags are damaged, so none can be written");
      copy = copyOfSource(file);
    }
    copies_[place].content = copy.content;
    if (file.there) return;
    pending_.add({place, file.source.size, std::move(copy)});
  }

  // False when a copy is there already.
  bool giveName(PendingCopies::Pending &pending) {
    const PlannedFile &file = plan_.files()[pending.place];
    while (!file.there) {
      try {
        destination_.name(pending.copy, file.target);
        return true;
      } catch (const CopyFailure &failure) {
        if (failure.error() != EEXIST) throw;
        // Another run was there first.
        if (pending.copy.content.gaps.empty()) {
          plan_.evade(pending.place);
        } else {
          plan_.markDamaged(pending.place, pending.copy.part.reopen());
        }
      }
    }
    return false;
  }

  DestinationFolder::NewCopy copyOfSource(const PlannedFile &file) {
    const carbon::Descriptor source = opened_ ? std::exchange(opened_, {}) : library_.open(file.source);
    if (!source) throw CopyFailure(CopyFailure::Reach::ThisFile, errno);
    return destination_.copy(source, [&](uint64_t bytes) { progress_->addBytes(bytes); });
  }

  void expectReadsBack(const DestinationFolder::NewCopy &copy) {
    if (sha256OnDisk(copy.part.reopen()) != copy.content.sha256) {
      throw CopyFailure(CopyFailure::Reach::ThisFile, EIO,
                        "the copy does not read back as it was written, and is left out");
    }
    ++result_.verified;
  }

  void nameAsDamaged(size_t place, const DestinationFolder::NewCopy &copy) {
    const PlannedFile &file = plan_.files()[place];
    const std::string gaps = gapsText(copy.content.gaps);
    wasAway_ = stopIfPlayerIsGone(gaps);
    if (wasAway_) throw CopyFailure(CopyFailure::Reach::ThisFile, EIO, gaps);
    if (request_.skipDamaged)
      throw CopyFailure(CopyFailure::Reach::ThisFile, EIO, gaps + "; the song is left out");
    plan_.markDamaged(place, copy.part.content());
    result_.damaged.push_back(labelOf(file) + ": " + gaps + "; the copy is " + file.target);
  }

  // At a copy that was there: its sum, where no report has it, or when all are to be read back.
  void lookAgain(size_t place) {
    const PlannedFile &file = plan_.files()[place];
    CopiedContent &content = copies_[place].content;
    const CopyRecord *const record = report_.ofFile(file.target);
    const bool isKnown = record != nullptr && record->song == file.identity && !record->sha256.empty();
    if (isKnown) content = {record->sha256, record->gaps, record->taggedSize};
    if (isKnown && !request_.verify) return;
    const std::string sum = sha256OnDisk(destination_.open(file.target));
    if (request_.verify && sum != (isKnown ? content.sha256 : sumOfSource(file)))
      throw CopyFailure(CopyFailure::Reach::ThisFile, EIO, "the copy " + file.target + " has changed");
    if (request_.verify) ++result_.verified;
    content.sha256 = sum;
  }

  std::string sumOfSource(const PlannedFile &file) const {
    const carbon::Descriptor source = library_.open(file.source);
    if (!source) throw CopyFailure(CopyFailure::Reach::ThisFile, errno);
    return sha256OnDisk(source);
  }

  // "song 3 "T" by A: /media/IPOD/..."
  std::string labelOf(const PlannedFile &file) const {
    return songLabel(file.song, library_.song(file.song)) + ": " + file.source.path.string();
  }

  void addToReport(const PlannedFile &file, const Copy &copy) {
    if (reportFailed_) return;
    try {
      report_.add({file.target, file.identity, file.source.size, file.source.modified, copy.content.sha256,
                   copy.content.gaps, copy.content.taggedSize});
    } catch (const HostError &failure) {
      // The copies are as good without it; the next run compares their contents.
      reportFailed_ = true;
      result_.remarks.emplace_back(failure.what());
    }
  }

  // What the run leaves beside the music. `stopped` says why it had to stop, if it had to.
  void writeReport(const std::string &stopped) {
    // Another run may make a file of the name just now; it is read the next time.
    constexpr int kAttempts = 3;
    for (int tries = 1; !tryToReport(stopped, tries == kAttempts) && tries < kAttempts; ++tries) {
    }
  }

  bool tryToReport(const std::string &stopped, bool isLast) {
    try {
      const FinishedRescue finished{library_, plan_, copies_, result_, stopped};
      writeChecksums(destination_, report_, finished);
      writeRescueReport(destination_, finished);
      return true;
    } catch (const std::runtime_error &failure) {
      if (isLast) result_.problems.emplace_back(failure.what());
      return false;
    }
  }

  // The copy of a song, of this run or an earlier one.
  std::string copyOf(int32_t song) const {
    const ptrdiff_t place = plan_.fileOf(song);
    const bool arrived = place >= 0 && copies_[static_cast<size_t>(place)].isThere;
    return arrived ? plan_.files()[static_cast<size_t>(place)].target : plan_.earlierCopy(song);
  }

  // What is copied already arrives as far as it can.
  [[noreturn]] void stop(const std::string &why) {
    try {
      if (progress_ != nullptr) pending_.finish();
    } catch (const CopyFailure &) {  // of the destination, which may be the reason
    }
    if (!copies_.empty()) writeReport(why);
    const uint64_t there = result_.copied + result_.alreadyThere;
    throw HostError(why + "; " + std::to_string(there) + " of " + std::to_string(plan_.files().size()) +
                    " songs are there; " + kContinue);
  }

  // Whether the player was away for a moment, and what failed may be tried again.
  bool stopIfPlayerIsGone(const std::string &why) {
    const std::filesystem::path &database = library_.location().file;
    const Answer answer = answerOf(database);
    if (answer == Answer::None) stop("the player is gone: " + database.parent_path().string() + ": " + why);
    return answer == Answer::AfterAMoment;
  }

  std::vector<int32_t> chosenLists() const {
    return request_.playlists.empty() ? allLists(library_) : request_.playlists;
  }

  const MusicLibrary &library_;
  const RescueRequest &request_;
  DestinationFolder destination_;
  CopyReport report_;
  RescuePlan plan_;
  RescueResult result_;
  std::vector<Copy> copies_;  // beside the planned files
  PendingCopies pending_;
  Progress *progress_ = nullptr;  // while songs are copied
  bool reportFailed_ = false;
  bool wasAway_ = false;       // the player, while a song was copied
  carbon::Descriptor opened_;  // the file whose turn it is, until it is copied; perhaps none
};

}  // namespace

RescueResult rescue(const MusicLibrary &library, const RescueRequest &request) {
  return Rescue(library, request).run();
}

}  // namespace zemhost
