#include "zemhost/rescue/RescuePlan.h"

#include <cerrno>
#include <utility>

#include "host/runtime/Names.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/NewFiles.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace {

constexpr const char *kUnnamedFolder = "Unnamed";

}  // namespace

RescuePlan::RescuePlan(const MusicLibrary &library, const NamePattern &pattern,
                       const DestinationFolder &destination, const CopyReport &report)
    : library_(library),
      pattern_(pattern),
      songNames_(library, pattern),
      destination_(destination),
      report_(report) {}

void RescuePlan::addSong(int32_t index) {
  if (fileOf_.contains(index)) return;
  const Song song = library_.song(index);
  PlannedFile file;
  file.song = index;
  file.source = library_.file(song.path);
  file.identity = songIdentity(song, file.source);
  const std::string path = file.source.path.string();
  try {
    if (file.source.isUnreadable()) {
      problems_.push_back(unreadableText(index, song, file.source, file.source.error));
      return;
    }
    if (path.empty() || file.source.error == ENOENT || file.source.error == ENOTDIR) {
      problems_.push_back(missingFileText(index, song, file.source));
      return;
    }
    if (!file.source.isThere()) throw CopyFailure(CopyFailure::Reach::ThisFile, file.source.error);
    switch (comparedSize(file.source, song)) {
      case SizeOfFile::Short:
        shortFiles_.push_back(otherSizeText(index, song, file.source));
        break;
      case SizeOfFile::Long:
        remarks_.push_back(otherSizeText(index, song, file.source));
        break;
      case SizeOfFile::AsStated:
        break;
    }
    place(index, song, std::move(file));
  } catch (const CopyFailure &failure) {
    problems_.push_back(songLabel(index, song) + ": " + path + ": " + failure.what());
  }
}

void RescuePlan::place(int32_t index, const Song &song, PlannedFile file) {
  const Naming naming = namingOf(index, song, file.source);
  const std::string wanted = nameOf(naming, "");
  const auto [known, isNew] =
      shared_.try_emplace({file.source.path.string(), foldedText(wanted)}, files_.size());
  if (!isNew) {
    fileOf_[index] = known->second;
    return;
  }
  try {
    takeFreeName(naming, file);
  } catch (const CopyFailure &) {
    shared_.erase(known);
    throw;
  }
  if (!file.there) {
    ++songsLeft_;
    bytesLeft_ += file.source.size;
  }
  const std::string extension = file.source.path.extension().string();
  if (naming.extension != extension) {
    remarks_.push_back(songLabel(index, song) + ": " + file.source.path.string() + ": " +
                       (extension.empty() ? "no extension" : "the extension " + inQuotes(extension)) +
                       " is of neither music nor video; the copy is " + file.target);
  }
  fileOf_[index] = files_.size();
  files_.push_back(std::move(file));
}

void RescuePlan::evade(size_t place) {
  PlannedFile &file = files_[place];
  if (isFree(file.target, file)) return;
  takeFreeName(namingOf(file), file);
}

void RescuePlan::markDamaged(size_t place, const carbon::Descriptor &copy) {
  PlannedFile &file = files_[place];
  file.target = freeName(namingOf(file), " (damaged)", [&](const std::string &target) {
    const Occupant occupant = occupantOf(destination_, target, copy);
    file.there = occupant == Occupant::Same;
    return occupant != Occupant::Other;
  });
}

void RescuePlan::takeFreeName(const Naming &naming, PlannedFile &file) {
  file.target = freeName(naming, "", [&](const std::string &target) { return isFree(target, file); });
}

std::string RescuePlan::freeName(const Naming &naming, const std::string &mark,
                                 const std::function<bool(const std::string &)> &isFree) {
  return names_.take([&](std::string_view suffix) { return nameOf(naming, mark + std::string(suffix)); },
                     isFree);
}

// Whether the file may lie there: nothing does, or a copy of it.
bool RescuePlan::isFree(const std::string &target, PlannedFile &file) {
  const auto status = destination_.statusOf(target);
  file.there = status && isCopy(target, *status, file);
  if (file.there || !status) return true;
  ++evaded_;
  return false;
}

// The same size and time are not enough: two songs of one name can share them. Either the report of the run
// that copied the file says that it is this song, or the contents are the same.
bool RescuePlan::isCopy(const std::string &target, const struct stat &status, const PlannedFile &file) const {
  if (!S_ISREG(status.st_mode)) return false;
  const SongFile &source = file.source;
  const auto size = static_cast<uint64_t>(status.st_size);
  const CopyRecord *const record = report_.ofFile(target);
  if (record != nullptr && size == record->copySize() && record->song == file.identity &&
      record->size == source.size && record->modified.tv_sec == source.modified.tv_sec &&
      record->modified.tv_nsec == source.modified.tv_nsec && isKeptTime(status.st_mtim, source.modified))
    return true;
  if (size != source.size) return false;
  const carbon::Descriptor from = library_.open(source);
  if (!from) throw CopyFailure(CopyFailure::Reach::ThisFile, errno);
  return sameContent(destination_.open(target), from);
}

// A file that no song names goes to a folder of such, and keeps its own name where it has no tags.
RescuePlan::Naming RescuePlan::namingOf(int32_t index, const Song &song, const SongFile &source) {
  std::string extension(safeExtension(source.path.extension().string()));
  if (song.isUnnamed && song.title.empty())
    return {folderFor({kUnnamedFolder}), source.path.stem().string(), "Unknown Title", std::move(extension)};
  NamePattern::Names names = pattern_.names(songNames_.values(index));
  if (song.isUnnamed) names.folders.insert(names.folders.begin(), kUnnamedFolder);
  return {folderFor(names.folders), std::move(names.file), kUnknownName, std::move(extension)};
}

std::string RescuePlan::nameOf(const Naming &naming, std::string_view suffix) {
  return naming.folder + safeName(naming.text, naming.fallback, suffix, naming.extension);
}

// With a slash at the end; empty for the destination itself.
std::string RescuePlan::folderFor(const std::vector<std::string> &names) {
  std::string folder;
  for (const std::string &name : names) {
    const std::string wanted = folder + name + "/";
    folder = folders_.try_emplace(foldedText(wanted), wanted).first->second;
  }
  return folder;
}

std::string RescuePlan::playlistFile(const std::string &name, int32_t number, std::string_view extension,
                                     const std::function<bool(const std::string &)> &isFree) {
  const std::string fallback = "Playlist " + std::to_string(number);
  return names_.take([&](std::string_view suffix) { return safeName(name, fallback, suffix, extension); },
                     isFree);
}

ptrdiff_t RescuePlan::fileOf(int32_t song) const {
  const auto found = fileOf_.find(song);
  return found == fileOf_.end() ? -1 : static_cast<ptrdiff_t>(found->second);
}

std::string RescuePlan::earlierCopy(int32_t index) const {
  const Song song = library_.song(index);
  const CopyRecord *const record = report_.ofSong(songIdentity(song, library_.file(song.path)));
  if (record == nullptr) return {};
  try {
    const auto status = destination_.statusOf(record->file);
    const bool there =
        status && S_ISREG(status->st_mode) && static_cast<uint64_t>(status->st_size) == record->copySize();
    return there ? record->file : std::string();
  } catch (const CopyFailure &) {
    return {};
  }
}

}  // namespace zemhost
