#include "zemhost/rescue/SongTags.h"

#include <cerrno>
#include <csignal>
#include <exception>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/Error.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/TagWriter.h"

namespace zemhost {

namespace {

constexpr int32_t kComment = 8;
constexpr unsigned kSeconds = 60;

std::string dateAdded(const Song &song) {
  std::string date = song.facts.added ? dateText(*song.facts.added) : std::string();
  if (const size_t blank = date.find(' '); blank != std::string::npos) date[blank] = 'T';
  return date;
}

std::string coverOf(const MusicLibrary &library, const Song &song) {
  try {
    const auto image = library.covers().imageOf(song.facts);
    return image ? library.covers().largest({*image}).bytes : std::string();
  } catch (const HostError &) {
    return {};
  }
}

// What the process of its own does, and its exit status.
[[noreturn]] void runApart(int file, std::string_view extension, const SongTags &tags, TagMode mode) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGXCPU}) signal(number, SIG_DFL);
  const rlimit noCore{0, 0};
  const rlimit time{kSeconds, kSeconds};
  setrlimit(RLIMIT_CORE, &noCore);
  setrlimit(RLIMIT_CPU, &time);
  alarm(kSeconds);
  try {
    _exit(static_cast<int>(writeTagsHere(file, extension, tags, mode)));
  } catch (const std::exception &) {
    _exit(static_cast<int>(TagOutcome::Broken));
  }
}

}  // namespace

SongTags songTags(const MusicLibrary &library, int32_t index) {
  const Song song = library.song(index);
  SongTags tags;
  tags.title = song.title;
  tags.artist = song.artist;
  tags.albumArtist = library.numberedText(index, kAlbumArtistText).value_or("");
  tags.album = song.album;
  tags.genre = song.genre;
  tags.composer = song.composer;
  tags.comment = library.numberedText(index, kComment).value_or("");
  tags.track = song.track;
  tags.trackTotal = song.trackTotal;
  tags.disc = song.facts.disc.value_or(0);
  tags.discs = song.facts.discs.value_or(0);
  tags.year = song.year;
  tags.compilation = song.facts.compilation.value_or(false);
  tags.rating = song.facts.rating.value_or(0);
  tags.plays = song.facts.plays.value_or(0);
  tags.dateAdded = dateAdded(song);
  tags.cover = coverOf(library, song);
  return tags;
}

TagOutcome writeTags(const carbon::Descriptor &copy, std::string_view extension, const SongTags &tags,
                     TagMode mode) {
  const pid_t child = fork();
  if (child < 0) throw HostError("tags: no process can be made", errno);
  if (child == 0) runApart(copy.number(), extension, tags, mode);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return TagOutcome::Broken;
  }
  if (!WIFEXITED(status)) return TagOutcome::Broken;
  const int outcome = WEXITSTATUS(status);
  const bool isKnown = outcome <= static_cast<int>(TagOutcome::Broken);
  return isKnown ? static_cast<TagOutcome>(outcome) : TagOutcome::Broken;
}

}  // namespace zemhost
