#include "player/PlayCounts.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "platform/carbon/Descriptor.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"

namespace player {

namespace {

constexpr const char *kFileName = "Play Counts";
constexpr std::string_view kTag = "mhdp";
constexpr size_t kShortestHeader = 16;
constexpr uint32_t kShortestEntry = 0x0c;
constexpr uint32_t kLongestEntry = 0x400;
constexpr size_t kEntriesAtOnce = 1024;

std::optional<uint32_t> wordIn(std::string_view entry, size_t at) {
  return entry.size() < at + 4 ? std::nullopt : std::optional(wordAt(entry, at, false));
}

std::optional<uint32_t> eventIn(std::string_view entry, size_t at) {
  const auto date = wordIn(entry, at);
  return date ? knownEvent(*date) : std::nullopt;
}

// A date of the entry that is one, and no event.
std::optional<uint32_t> neverIn(std::string_view entry) {
  for (const size_t at : {size_t{4}, size_t{0x18}}) {
    const auto date = wordIn(entry, at);
    if (date && knownDate(*date) && !knownEvent(*date)) return date;
  }
  return std::nullopt;
}

PlayCount countIn(std::string_view entry) {
  PlayCount count;
  count.plays = wordAt(entry, 0, false);
  count.lastPlayed = eventIn(entry, 4);
  if (const auto bookmark = wordIn(entry, 8); bookmark.value_or(0) != 0) count.bookmark = bookmark;
  const auto rating = wordIn(entry, 0xc);
  if (rating && *rating <= 100) count.rating = static_cast<uint8_t>(*rating);
  if (entry.size() >= 0x14 && (entry[0x11] == 1 || entry[0x11] == 2)) count.heard = entry[0x11] == 1;
  count.skips = wordIn(entry, 0x14);
  count.lastSkipped = eventIn(entry, 0x18);
  count.never = neverIn(entry);
  return count;
}

std::vector<PlayCount> readOpenFile(int file, uint64_t size, uint64_t songs) {
  const std::string header = readAt(file, 0, kShortestHeader);
  if (header.size() < kShortestHeader || !header.starts_with(kTag))
    throw PlayerError("it holds no play counts");
  const uint64_t jump = wordAt(header, 4, false);
  const uint32_t length = wordAt(header, 8, false);
  const uint64_t entries = wordAt(header, 12, false);
  if (jump < kShortestHeader || length < kShortestEntry || length > kLongestEntry)
    throw PlayerError("its header is damaged");
  if (entries != songs) {
    throw PlayerError("it counts " + std::to_string(entries) + " songs, and the database has " +
                      std::to_string(songs));
  }
  if (jump > size || entries * length > size - jump) throw PlayerError("it is cut short");
  std::vector<PlayCount> counts;
  counts.reserve(static_cast<size_t>(entries));
  while (counts.size() < entries) {
    const size_t some = std::min<size_t>(kEntriesAtOnce, static_cast<size_t>(entries) - counts.size());
    const std::string bytes = readAt(file, jump + counts.size() * uint64_t{length}, some * length);
    if (bytes.size() != some * length) throw PlayerError("it is cut short");
    for (size_t i = 0; i < some; ++i)
      counts.push_back(countIn(std::string_view(bytes).substr(i * length, length)));
  }
  return counts;
}

bool isLater(uint32_t one, uint32_t other, uint32_t slack) { return one > uint64_t{other} + slack; }

void takeLater(std::optional<uint32_t> &date, std::optional<uint32_t> newer, uint32_t slack) {
  if (newer && (!date || isLater(*newer, *date, slack))) date = newer;
}

// A sum of counters does not start anew.
void add(std::optional<uint32_t> &counter, uint32_t more) {
  if (counter) counter = *counter > UINT32_MAX - more ? UINT32_MAX : *counter + more;
}

}  // namespace

std::filesystem::path playCountsBeside(const std::filesystem::path &database) {
  std::filesystem::path folder = database.parent_path();
  if (isNamed(database, kSqliteFile)) {
    if (isNamed(folder, kSqliteFolder)) folder = folder.parent_path();
  } else if (!isNamed(database, kDatabaseFile) && !isNamed(database, kCompressedFile)) {
    return {};
  }
  try {
    return childNamed(folder, kFileName).value_or(std::filesystem::path());
  } catch (const PlayerError &) {
    return {};  // a folder that can be entered, but not listed
  }
}

std::vector<PlayCount> readPlayCounts(const std::filesystem::path &file, uint64_t songs) {
  const auto fail = [&file](const std::string &reason) { throw PlayerError(file.string() + ": " + reason); };
  const carbon::Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (descriptor.number() < 0 || fstat(descriptor.number(), &status) != 0)
    fail(std::generic_category().message(errno));
  if (!S_ISREG(status.st_mode)) fail("it is no regular file");
  try {
    return readOpenFile(descriptor.number(), static_cast<uint64_t>(status.st_size), songs);
  } catch (const PlayerError &error) {
    fail(error.what());
  } catch (const std::system_error &error) {
    fail(error.code().message());
  }
  return {};
}

std::optional<int32_t> zoneOf(const std::vector<PlayCount> &counts) {
  constexpr uint32_t kStartOf2001 = 0xB675'7900;
  std::map<uint32_t, uint64_t> times;
  for (const PlayCount &count : counts) {
    if (count.never) ++times[*count.never];
  }
  const auto most = std::max_element(times.begin(), times.end(), [](const auto &one, const auto &other) {
    return one.second < other.second;
  });
  return most == times.end() ? std::nullopt : std::optional(static_cast<int32_t>(most->first - kStartOf2001));
}

void makeUtc(std::vector<PlayCount> &counts, int32_t zone) {
  const auto shift = [zone](std::optional<uint32_t> &date) {
    if (date) *date -= static_cast<uint32_t>(zone);
  };
  for (PlayCount &count : counts) {
    shift(count.lastPlayed);
    shift(count.lastSkipped);
  }
}

PlayCountMerge::PlayCountMerge(std::vector<PlayCount> counts, const std::function<SongFacts(size_t)> &facts,
                               uint32_t slack)
    : counts_(std::move(counts)), slack_(slack) {
  uint64_t older = 0;
  uint64_t newer = 0;
  bool isAnyRated = false;
  for (size_t i = 0; i < counts_.size(); ++i) {
    const PlayCount &count = counts_[i];
    const SongFacts song = facts(i);
    if (song.rating.value_or(0) != 0) {
      isAnyRated = true;
      if (count.rating == song.rating) carriesRatings_ = true;
    }
    if (count.lastPlayed && song.lastPlayed)
      ++(isLater(*song.lastPlayed, *count.lastPlayed, slack) ? older : newer);
  }
  if (!isAnyRated) carriesRatings_ = true;
  isLeftOver_ = older > newer;
}

SongFacts PlayCountMerge::merged(size_t song, SongFacts facts) const {
  const PlayCount &count = counts_[song];
  add(facts.plays, count.plays);
  takeLater(facts.lastPlayed, count.lastPlayed, slack_);
  add(facts.skips, count.skips.value_or(0));
  takeLater(facts.lastSkipped, count.lastSkipped, slack_);
  if (count.bookmark) facts.bookmark = count.bookmark;
  if (count.rating && (carriesRatings_ || *count.rating != 0)) facts.rating = count.rating;
  if (count.heard) facts.heard = count.heard;
  return facts;
}

}  // namespace player
