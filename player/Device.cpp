#include "player/Device.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <map>
#include <system_error>

#include "player/Error.h"
#include "player/Fields.h"
#include "player/FileBytes.h"
#include "player/Folder.h"
#include "player/PlayerFile.h"
#include "player/PlayerFolders.h"
#include "player/PropertyList.h"
#include "player/Utf16.h"

namespace player {

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostDeviceBytes = size_t{1} << 20;  // of a file that says what the player is
constexpr int32_t kWidestOffset = 14 * 3600;
constexpr size_t kNameRoom = 0x200;  // bytes for each name in DeviceInfo

// The files that players keep.
struct FileOfFolder {
  const char *folder;
  const char *name;
};
constexpr FileOfFolder kFilesOfPlayers[] = {{"iPod_Control/iTunes", "iTunesDB"},
                                            {"iPod_Control/iTunes", "iTunesCDB"},
                                            {"iPod_Control/iTunes", "iTunes Library.itlp"},
                                            {"iPod_Control/iTunes", "iTunesSD"},
                                            {"iPod_Control/iTunes", "Play Counts"},
                                            {"iPod_Control/iTunes", "PlayCounts.plist"},
                                            {"iPod_Control/iTunes", "OTGPlaylistInfo"},
                                            {"iPod_Control/iTunes", "iTunesStats"},
                                            {"iPod_Control/iTunes", "iTunesPState"},
                                            {"iPod_Control/iTunes", "iTunesShuffle"},
                                            {"iPod_Control/iTunes", "iTunesPrefs"},
                                            {"iPod_Control/iTunes", "DeviceInfo"},
                                            {"iPod_Control/Device", "SysInfo"},
                                            {"iPod_Control/Device", "SysInfoExtended"},
                                            {"iPod_Control/Device", "Preferences"},
                                            {"iPod_Control/Artwork", "ArtworkDB"},
                                            {"Photos", "Photo Database"}};

using Properties = std::map<std::string, std::string>;

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\0";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

void setOnce(std::string &known, std::string_view found) {
  if (known.empty()) known = trimmed(found);
}

std::string_view firstOf(const Properties &properties, std::initializer_list<const char *> keys) {
  for (const char *const key : keys) {
    const auto found = properties.find(key);
    if (found != properties.end() && !trimmed(found->second).empty()) return found->second;
  }
  return {};
}

// "0x02308000 (2.3)" is version 2.3.
std::string_view versionIn(std::string_view text) {
  const size_t open = text.find('(');
  if (open == std::string_view::npos) return text;
  return text.substr(open + 1, text.find(')', open) - open - 1);
}

// Decimal, whatever zeros stand before it, or hexadecimal behind "0x"; 0 for what is no number.
unsigned familyNumber(std::string_view text) {
  text = trimmed(text);
  const bool isHex = text.starts_with("0x");
  if (isHex) text.remove_prefix(2);
  unsigned number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number, isHex ? 16 : 10);
  return number;
}

void addFamily(std::string_view text, Device &device) {
  if (device.family == 0) device.family = familyNumber(text);
}

bool saysAny(const Properties &properties, std::initializer_list<const char *> keys) {
  return std::any_of(keys.begin(), keys.end(), [&](const char *key) { return properties.contains(key); });
}

std::optional<int32_t> zoneWithin(int64_t seconds) {
  if (seconds < -kWidestOffset || seconds > kWidestOffset) return std::nullopt;
  return static_cast<int32_t>(seconds);
}

// Empty when there is none, or when the root cannot be searched.
fs::path controlOf(const fs::path &root) {
  try {
    return controlFolderOf(root).value_or(fs::path());
  } catch (const PlayerError &) {
    return {};
  }
}

fs::path folderOf(const fs::path &root, std::string_view folder) {
  fs::path path = root;
  while (!folder.empty() && !path.empty()) {
    const std::string name(folder.substr(0, folder.find('/')));
    folder.remove_prefix(std::min(folder.size(), name.size() + 1));
    path = isControlFolder(name) ? controlOf(path) : playerFile(path, name.c_str());
  }
  return path;
}

}  // namespace

bool addSysInfo(std::string_view bytes, Device &device) {
  Properties properties;
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    bytes.remove_prefix(std::min(bytes.size(), line.size() + 1));
    const size_t colon = line.find(':');
    if (colon != std::string_view::npos)
      properties.try_emplace(std::string(trimmed(line.substr(0, colon))), trimmed(line.substr(colon + 1)));
  }
  setOnce(device.modelNumber, firstOf(properties, {"ModelNumStr"}));
  setOnce(device.serialNumber, firstOf(properties, {"pszSerialNumber"}));
  setOnce(device.firmware, versionIn(firstOf(properties, {"visibleBuildID", "buildID"})));
  setOnce(device.guid, firstOf(properties, {"FirewireGuid", "pu8FirewireGuid"}));
  addFamily(firstOf(properties, {"iPodFamily"}), device);
  return saysAny(properties, {"ModelNumStr", "pszSerialNumber", "visibleBuildID", "buildID", "iPodFamily"});
}

bool addSysInfoExtended(std::string_view bytes, Device &device) {
  const Properties properties = propertiesOf(bytes);
  setOnce(device.modelNumber, firstOf(properties, {"ModelNumStr"}));
  setOnce(device.serialNumber, firstOf(properties, {"SerialNumber"}));
  setOnce(device.firmware, versionIn(firstOf(properties, {"VisibleBuildID", "BuildID"})));
  setOnce(device.guid, firstOf(properties, {"FireWireGUID"}));
  addFamily(firstOf(properties, {"FamilyID"}), device);
  return saysAny(properties,
                 {"ModelNumStr", "SerialNumber", "VisibleBuildID", "BuildID", "FamilyID", "FireWireGUID"});
}

bool addDeviceInfo(std::string_view bytes, Device &device) {
  std::string *const names[] = {&device.name, &device.user, &device.computer};
  for (std::string *const name : names) {
    const auto characters = Fields(bytes).half(0);
    if (!characters) break;
    const std::string_view room = bytes.substr(0, kNameRoom);
    setOnce(*name, utf8OfUtf16(room.substr(2, size_t{*characters} * 2), false));
    bytes.remove_prefix(room.size());
  }
  return !device.name.empty() || !device.user.empty() || !device.computer.empty();
}

bool addPreferences(std::string_view bytes, Device &device) {
  // Minutes east of a zone that lies eight hours west of UTC. The place depends on the kind of player.
  constexpr int64_t kEightHours = 480;
  size_t at = 0;
  if (bytes.size() == 2924) at = 0xb22;
  if (bytes.size() == 2892) at = 0xb10;
  if (at == 0) return true;  // of a player of which it is not known
  const auto minutes = static_cast<int16_t>(*Fields(bytes).half(at));
  if (!device.clockZone) device.clockZone = zoneWithin((minutes - kEightHours) * 60);
  return true;
}

void findModel(Device &device) {
  device.model = modelOfNumber(device.modelNumber);
  if (!device.model) device.model = modelOfSerial(device.serialNumber);
  if (!device.model) device.model = modelOfFamily(device.family);
}

std::optional<int32_t> syncZoneOf(int database) {
  const std::string bytes = readAt(database, 0, 0x70);
  if (bytes.size() < 12 || !std::string_view(bytes).substr(2, 2).starts_with("bd")) return std::nullopt;
  const uint32_t header = wordAt(bytes, 4, false);
  const auto zone = Fields(bytes).word(0x6c);
  return zone && header >= bytes.size() ? zoneWithin(static_cast<int32_t>(*zone)) : std::nullopt;
}

Device readDevice(const fs::path &root) {
  Device device;
  const fs::path control = controlOf(root);
  struct Source {
    const char *folder;
    const char *name;
    bool (*add)(std::string_view, Device &);
  };
  constexpr Source kSources[] = {{"Device", "SysInfo", addSysInfo},
                                 {"Device", "SysInfoExtended", addSysInfoExtended},
                                 {kDatabaseFolder, "DeviceInfo", addDeviceInfo},
                                 {"Device", "Preferences", addPreferences}};
  for (const Source &source : kSources) {
    if (control.empty()) break;
    const fs::path folder = playerFile(control, source.folder);
    const fs::path file = folder.empty() ? fs::path() : playerFile(folder, source.name);
    if (file.empty()) continue;
    try {
      const std::string bytes = readPlayerFile(root, file, kMostDeviceBytes);
      // Many players leave one of these empty.
      if (!bytes.empty() && !source.add(bytes, device))
        throw PlayerError("it does not say what the player is");
    } catch (const PlayerError &error) {
      device.warnings.push_back(file.string() + ": " + error.what() +
                                "; what it says of the player is left out");
    }
  }
  findModel(device);
  for (const FileOfFolder &known : kFilesOfPlayers) {
    const fs::path folder = folderOf(root, known.folder);
    const fs::path file = folder.empty() ? fs::path() : playerFile(folder, known.name);
    if (file.empty()) continue;
    std::error_code error;
    const bool isEmpty = fs::is_regular_file(file, error) && fs::file_size(file, error) == 0;
    device.files.push_back(file.lexically_relative(root).string() + (isEmpty ? " (empty)" : ""));
  }
  return device;
}

}  // namespace player
