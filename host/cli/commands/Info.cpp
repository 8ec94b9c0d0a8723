#include <iostream>
#include <memory>
#include <string>

#include "host/cli/ExitStatus.h"
#include "host/cli/commands/Command.h"
#include "host/cli/commands/SongTable.h"
#include "host/cli/library/MusicLibrary.h"
#include "host/cli/text/DisplayText.h"
#include "host/cli/text/Units.h"

namespace zemhost {

namespace {

void writeLine(const char *label, const std::string &text) { std::cout << label << safeText(text) << '\n'; }

// What the class calls the volume of a file that lies on no player is the file's own path or name.
std::string volumeText(const MusicLibrary &library) {
  if (library.location().volumeRoot.empty()) return "none, a database file by itself";
  return library.object().get("VolumeName").text();
}

int showInfo(const std::string &path) {
  const MusicLibrary library(openDatabase(path));
  Totals totals;
  const int32_t songs = library.songCount();
  for (int32_t index = 0; index < songs; ++index) totals.add(library.duration(index), library.size(index));
  const int32_t playlists = library.playlistCount();
  int64_t entries = 0;
  for (int32_t number = 0; number < playlists; ++number) entries += library.entryCount(number);

  writeLine("Database   ", library.location().file.string());
  writeLine("Volume     ", volumeText(library));
  writeLine("Variant    ", variantText(library.libType() == 0));
  writeLine("Songs      ", std::to_string(songs));
  writeLine("Playlists  ", std::to_string(playlists) + " with " + std::to_string(entries) +
                               (entries == 1 ? " entry" : " entries"));
  writeLine("Time       ", totalTimeText(totals.duration));
  writeLine("Size       ", totalSizeText(totals.size));
  return kSuccess;
}

}  // namespace

void addInfoCommand(CLI::App &program, Action &action) {
  const auto path = std::make_shared<std::string>();
  CLI::App *const command = program.add_subcommand("info", "Sum up a player or database");
  addPathArgument(*command, *path);
  command->callback([path, &action] { action = [path] { return showInfo(*path); }; });
}

}  // namespace zemhost
