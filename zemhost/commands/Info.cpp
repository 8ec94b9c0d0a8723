#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "player/Device.h"
#include "player/Folder.h"
#include "player/PlayerFolders.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/library/PlayerChoice.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Messages.h"
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

std::string modelText(const player::Device &device) {
  std::string text = device.model ? device.model->text() : std::string();
  if (!device.modelNumber.empty()) text += (text.empty() ? "number " : ", number ") + device.modelNumber;
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

// What the player says of itself; a line for each thing that is known.
template <typename Write>
void writePlayer(const MusicLibrary &library, const Write &writeLine) {
  const std::filesystem::path &root = library.location().volumeRoot;
  if (root.empty()) return;
  const player::Device device = player::readDevice(root);
  for (const std::string &warning : device.warnings) printError(warning);
  const auto zone = library.syncZone();
  const std::pair<const char *, std::string> lines[] = {
      {"Name       ", device.name.empty() ? library.playlistName(0) : device.name},
      {"Model      ", modelText(device)},
      {"Serial     ", device.serialNumber},
      {"Firmware   ", device.firmware},
      {"Last sync  ", zone ? "in the zone " + zoneText(*zone) : std::string()},
      {"Clock      ", device.clockZone ? zoneText(*device.clockZone) : std::string()},
      {"Files      ", filesText(device)},
      {"Free       ", spaceText(root)},
      {"Mounted    ", mountText(player::mountAt(root))}};
  for (const auto &[label, text] : lines) {
    if (!text.empty()) writeLine(label, text);
  }
}

}  // namespace

int showInfo(const ListingArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  Totals totals;
  const int32_t songs = library.songCount();
  for (int32_t index = 0; index < songs; ++index) totals.add(library.duration(index), library.size(index));
  const int32_t playlists = library.playlistCount();
  uint64_t entries = 0;
  for (int32_t number = 0; number < playlists; ++number)
    entries += static_cast<uint64_t>(library.entryCount(number));

  EncodedOutput out(arguments.encoding, library.host());
  const auto writeLine = [&out](const std::string &label, const std::string &text) {
    out.writeLine(label + text, label.size());
  };
  writeLine("Database   ", library.location().file.string());
  writeLine("Volume     ", volumeText(library));
  writeLine("Variant    ", variantText(library.form()));
  if (const std::string others = otherDatabases(library); !others.empty())
    writeLine("Not read   ", others + ": the SQLite files are the player's own library");
  writeLine("Songs      ", std::to_string(songs));
  writeLine("Playlists  ", std::to_string(playlists) + " with " + countText(entries, "entry", "entries"));
  writeLine("Time       ", totalTimeText(totals.duration));
  const bool isSizeKnown = totals.size != 0 || songs == 0 || library.form() != LibraryForm::Sqlite;
  writeLine("Size       ", isSizeKnown ? totalSizeText(totals.size) : "not known");
  writePlayer(library, writeLine);
  out.finish();
  return kSuccess;
}

}  // namespace zemhost
