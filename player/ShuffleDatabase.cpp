#include "player/ShuffleDatabase.h"

#include <algorithm>

#include "player/Fields.h"
#include "player/Utf16.h"

namespace player {

namespace {

// Of the older form, with numbers of three bytes.
constexpr size_t kOldHeader = 0x12;
constexpr uint32_t kOldSong = 0x22e;
constexpr size_t kOldPathAt = 0x21;
constexpr size_t kOldPath = 522;
constexpr uint32_t kOldCount = 0x12;

// Of the newer one.
constexpr size_t kSongListHeader = 0x14;
constexpr size_t kPathFrom = 0x18;
constexpr size_t kPathSize = 256;
constexpr size_t kPersistentIdAt = 0x148;
constexpr uint32_t kNewCount = 0x20;

uint32_t octetAt(std::string_view bytes, size_t at) { return static_cast<unsigned char>(bytes[at]); }

uint32_t bigThree(std::string_view bytes, size_t at) {
  return octetAt(bytes, at) << 16 | octetAt(bytes, at + 1) << 8 | octetAt(bytes, at + 2);
}
uint32_t littleThree(std::string_view bytes, size_t at) {
  return octetAt(bytes, at + 2) << 16 | octetAt(bytes, at + 1) << 8 | octetAt(bytes, at);
}

bool isOldForm(std::string_view bytes) {
  if (bytes.size() < kOldHeader) return false;
  const uint32_t version = bigThree(bytes, 3);
  return (version == 0x010600 || version == 0x010800) && bigThree(bytes, 6) == kOldHeader;
}

ShuffleDatabase readOld(std::string_view bytes) {
  ShuffleDatabase found;
  found.declaredSongs = bigThree(bytes, 0);
  size_t at = kOldHeader;
  while (found.songs.size() < found.declaredSongs) {
    const std::string_view song = bytes.substr(std::min(at, bytes.size()), kOldSong);
    if (song.size() < kOldSong || bigThree(song, 0) != kOldSong) break;
    const std::string path = utf8OfUtf16(song.substr(kOldPathAt, kOldPath), false);
    found.songs.push_back({path.substr(0, path.find('\0')), {}});
    at += kOldSong;
  }
  found.isCutShort = found.songs.size() < found.declaredSongs;
  return found;
}

std::optional<ShuffleSong> songAt(std::string_view bytes, size_t at) {
  if (at >= bytes.size() || !bytes.substr(at).starts_with("rths")) return std::nullopt;
  const uint32_t length = Fields(bytes.substr(at)).word(4).value_or(0);
  if (length < kPathFrom + kPathSize || length > bytes.size() - at) return std::nullopt;
  const std::string_view song = bytes.substr(at, length);
  const std::string_view path = song.substr(kPathFrom, kPathSize);
  const auto id = Fields(song).twoWords(kPersistentIdAt);
  return ShuffleSong{std::string(path.substr(0, path.find('\0'))), id.value_or(0) == 0 ? std::nullopt : id};
}

// The header, and a list of where the songs begin.
ShuffleDatabase readNew(std::string_view bytes) {
  const Fields header(bytes);
  ShuffleDatabase found;
  found.declaredSongs = header.word(0x0c).value_or(0);
  const size_t at = header.word(0x24).value_or(0);
  if (found.declaredSongs == 0) return found;
  found.isCutShort = true;
  if (at >= bytes.size() || !bytes.substr(at).starts_with("hths")) return found;
  const std::string_view list = bytes.substr(at);
  const Fields fields(list);
  for (uint64_t i = 0; i < found.declaredSongs; ++i) {
    const size_t place = kSongListHeader + 4 * static_cast<size_t>(i);
    // Songs that share a place could fill the memory.
    const bool hasRoom = (i + 1) * (kPathFrom + kPathSize) <= bytes.size();
    if (!hasRoom || place + 4 > fields.word(4).value_or(0)) return found;
    const auto song = songAt(bytes, fields.word(place).value_or(0));
    if (!song) return found;
    found.songs.push_back(*song);
  }
  found.isCutShort = false;
  return found;
}

}  // namespace

std::string ShuffleDatabase::summary() const {
  const std::string number = std::to_string(songs.size());
  return "it lists " + number + (songs.size() == 1 ? " song" : " songs") +
         (isCutShort ? ", and announces " + std::to_string(declaredSongs) : "");
}

std::optional<ShuffleDatabase> readShuffleDatabase(std::string_view bytes) {
  if (bytes.size() > kMostShuffleBytes) return std::nullopt;
  if (bytes.starts_with("bdhs")) return readNew(bytes);
  return isOldForm(bytes) ? std::optional(readOld(bytes)) : std::nullopt;
}

// The two forms are told apart by the length that their first entry states, else by where it would be.
std::optional<std::vector<ShuffleCount>> readShuffleCounts(std::string_view bytes) {
  constexpr size_t kOldStatsHeader = 6;
  constexpr size_t kStatsHeader = 8;
  if (bytes.size() > kMostShuffleBytes || bytes.size() < kOldStatsHeader) return std::nullopt;
  std::vector<ShuffleCount> counts;
  const Fields fields(bytes);
  const bool isNew = bytes.size() >= kStatsHeader + kNewCount
                         ? fields.word(kStatsHeader) == kNewCount
                         : bytes == std::string_view("\0\0\0\0\0\0\0\0", 8);
  if (isNew) {
    for (size_t at = kStatsHeader; counts.size() < *fields.word(0); at += kNewCount) {
      if (fields.word(at) != kNewCount || !fields.word(at + kNewCount - 4)) break;
      counts.push_back({*fields.word(at + 0x08), *fields.word(at + 0x10)});
    }
    return counts;
  }
  const uint32_t number = littleThree(bytes, 0);
  if (number != 0 &&
      (bytes.size() < kOldStatsHeader + kOldCount || littleThree(bytes, kOldStatsHeader) != kOldCount))
    return std::nullopt;
  for (size_t at = kOldStatsHeader; counts.size() < number && bytes.size() - at >= kOldCount;
       at += kOldCount) {
    if (littleThree(bytes, at) != kOldCount) break;
    counts.push_back({littleThree(bytes, at + 0x0c), littleThree(bytes, at + 0x0f)});
  }
  return counts;
}

}  // namespace player
