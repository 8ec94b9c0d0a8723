#include "player/OnTheGo.h"

#include <algorithm>

#include "player/Error.h"
#include "player/FileWord.h"
#include "player/Folder.h"
#include "player/PlayerFile.h"

namespace player {

namespace {

constexpr const char *kListFile = "OTGPlaylistInfo";
constexpr uint32_t kMostLists = 100;
constexpr size_t kLongestListFile = size_t{1} << 20;
constexpr size_t kShortestListHeader = 0x14;
constexpr size_t kPosition = 4;  // bytes

}  // namespace

std::vector<uint32_t> onTheGoPositions(std::string_view bytes) {
  const bool bigEndian = bytes.starts_with("ohpm");
  if (!bigEndian && !bytes.starts_with("mhpo")) throw PlayerError("it holds no playlist");
  if (bytes.size() < kShortestListHeader) throw PlayerError("it is cut short");
  const size_t header = wordAt(bytes, 4, bigEndian);
  const uint32_t length = wordAt(bytes, 8, bigEndian);
  const size_t count = wordAt(bytes, 12, bigEndian);
  // Some write no length, and entries of the usual one.
  if (header < kShortestListHeader || (length != kPosition && length != 0))
    throw PlayerError("its header is damaged");
  if (header > bytes.size() || count > (bytes.size() - header) / kPosition)
    throw PlayerError("it is cut short");
  if (count < (bytes.size() - header) / kPosition)
    throw PlayerError("it states " + std::to_string(count) + " songs and holds more");
  std::vector<uint32_t> positions(count);
  for (size_t i = 0; i < count; ++i) positions[i] = wordAt(bytes, header + i * kPosition, bigEndian);
  return positions;
}

OnTheGoLists readOnTheGo(const std::filesystem::path &database, const std::filesystem::path &root,
                         size_t songs) {
  OnTheGoLists found;
  if (!isNamed(database, "iTunesDB") && !isNamed(database, "iTunesCDB")) return found;
  for (uint32_t number = 1; number <= kMostLists; ++number) {
    const std::string name =
        number == 1 ? kListFile : std::string(kListFile) + "_" + std::to_string(number - 1);
    const std::filesystem::path file = playerFile(database.parent_path(), name.c_str());
    if (file.empty()) break;
    try {
      const std::vector<uint32_t> positions = onTheGoPositions(readPlayerFile(root, file, kLongestListFile));
      OnTheGoList list{number, {}};
      for (const uint32_t position : positions) {
        if (position < songs) list.songs.push_back(position);
      }
      if (list.songs.size() != positions.size()) {
        const size_t lost = positions.size() - list.songs.size();
        found.warnings.push_back(file.string() + ": " + std::to_string(lost) + " of " +
                                 std::to_string(positions.size()) +
                                 " entries are for songs that the database does not have; they are left out");
      }
      if (!list.songs.empty()) found.lists.push_back(std::move(list));
    } catch (const PlayerError &error) {
      found.warnings.push_back(file.string() + ": " + error.what() + "; the playlist in it is left out");
    }
  }
  return found;
}

}  // namespace player
