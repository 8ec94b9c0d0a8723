#include "zemhost/library/Facts.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "player/Folder.h"
#include "player/PlayerFolders.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/library/PlayerChoice.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

// What the class calls the volume of a file that is on no player is the file's own path or name.
std::string volumeText(const MusicLibrary &library) {
  if (library.location().volumeRoot.empty()) return "none, a database file by itself";
  return library.volumeName();
}

// Of a newest nano: the databases beside the SQLite files, which such players do not read themselves.
std::string otherDatabases(const MusicLibrary &library) {
  const std::filesystem::path folder = library.location().file.parent_path();
  if (library.form() != LibraryForm::Sqlite || !player::isNamed(folder, player::kSqliteFolder)) return {};
  std::string names;
  for (const char *const name : {player::kCompressedFile, player::kDatabaseFile}) {
    if (!player::childNamed(folder.parent_path(), name)) continue;
    names += names.empty() ? name : std::string(" and ") + name;
  }
  return names;
}

// "UTC-5", "UTC+5:30".
std::string zoneText(int32_t seconds) {
  const int32_t minutes = std::abs(seconds) / 60;
  std::string text = seconds < 0 ? "UTC-" : "UTC+";
  text += std::to_string(minutes / 60);
  if (minutes % 60 != 0) text += std::string(minutes % 60 < 10 ? ":0" : ":") + std::to_string(minutes % 60);
  return text;
}

std::string filesText(const player::Device &device) {
  std::string text;
  for (const std::string &file : device.files) text += (text.empty() ? "" : ", ") + file;
  return text;
}

std::string spaceText(const std::filesystem::path &root) {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(root, error);
  return error ? std::string() : totalSizeText(space.available) + " of " + totalSizeText(space.capacity);
}

class FactList {
 public:
  explicit FactList(const MusicLibrary &library) : library_(library) {}

  LibraryFacts take() {
    addLibrary();
    addCounts();
    if (!library_.location().volumeRoot.empty()) addPlayer(library_.location().volumeRoot);
    return std::move(found_);
  }

 private:
  void add(const char *label, std::string text) {
    if (!text.empty()) found_.facts.push_back({label, std::move(text), false});
  }
  void addPersonal(const char *label, std::string text) {
    if (!text.empty()) found_.facts.push_back({label, std::move(text), true});
  }

  void addLibrary() {
    addPersonal("Database", library_.location().file.string());
    addPersonal("Volume", volumeText(library_));
    add("Variant", variantText(library_.form()));
    if (const std::string others = otherDatabases(library_); !others.empty())
      add("Not read", others + ": the SQLite files are the player's own library");
  }

  void addCounts() {
    Totals totals;
    const int32_t songs = library_.songCount();
    for (int32_t index = 0; index < songs; ++index)
      totals.add(library_.duration(index), library_.size(index));
    const int32_t playlists = library_.playlistCount();
    uint64_t entries = 0;
    for (int32_t number = 0; number < playlists; ++number)
      entries += static_cast<uint64_t>(library_.entryCount(number));
    add("Songs", std::to_string(songs));
    add("Playlists", std::to_string(playlists) + " with " + countText(entries, "entry", "entries"));
    add("Time", totalTimeText(totals.duration));
    const bool isSizeKnown = totals.size != 0 || songs == 0 || library_.form() != LibraryForm::Sqlite;
    add("Size", isSizeKnown ? totalSizeText(totals.size) : "not known");
  }

  void addPlayer(const std::filesystem::path &root) {
    found_.device = player::readDevice(root);
    const player::Device &device = found_.device;
    const auto zone = library_.syncZone();
    addPersonal("Name", playerName(library_, device));
    add("Model", modelText(device));
    addPersonal("Serial", device.serialNumber);
    add("Firmware", device.firmware);
    addPersonal("Last sync", zone ? "in the zone " + zoneText(*zone) : std::string());
    addPersonal("Clock", device.clockZone ? zoneText(*device.clockZone) : std::string());
    add("Files", filesText(device));
    add("Free", spaceText(root));
    add("Mounted", mountText(player::mountAt(root)));
  }

  const MusicLibrary &library_;
  LibraryFacts found_;
};

}  // namespace

LibraryFacts libraryFacts(const MusicLibrary &library) { return FactList(library).take(); }

std::string playerName(const MusicLibrary &library, const player::Device &device) {
  return device.name.empty() ? library.playlistName(0) : device.name;
}

std::string modelText(const player::Device &device) {
  std::string text = device.model ? device.model->text() : std::string();
  if (!device.modelNumber.empty()) text += (text.empty() ? "number " : ", number ") + device.modelNumber;
  return text;
}

}  // namespace zemhost
