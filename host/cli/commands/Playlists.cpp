#include <iostream>
#include <memory>
#include <string>

#include "host/cli/ExitStatus.h"
#include "host/cli/commands/Command.h"
#include "host/cli/library/MusicLibrary.h"
#include "host/cli/text/Table.h"
#include "host/cli/text/Units.h"

namespace zemhost {

namespace {

int listPlaylists(const std::string &path) {
  const MusicLibrary library(openDatabase(path));
  using enum Column::Align;
  Table table({{"#", Right, 0, 0},
               {"Name", Left, 12, 0},
               {"Kind", Left, 0, 3},
               {"Songs", Right, 0, 0},
               {"Time", Right, 0, 1},
               {"Size", Right, 0, 2}});
  const int32_t count = library.playlistCount();
  for (int32_t number = 0; number < count; ++number) {
    const Totals totals = library.playlistTotals(number);
    // Players and desktop programs store the list of everything before all others.
    table.addRow({std::to_string(number), library.playlistName(number), number == 0 ? "library" : "playlist",
                  std::to_string(library.entryCount(number)), totalTimeText(totals.duration),
                  totalSizeText(totals.size)});
  }
  table.show(std::cout);
  return kSuccess;
}

}  // namespace

void addPlaylistsCommand(CLI::App &program, Action &action) {
  const auto path = std::make_shared<std::string>();
  CLI::App *const command = program.add_subcommand("playlists", "List the playlists of a player or database");
  addPathArgument(*command, *path);
  command->callback([path, &action] { action = [path] { return listPlaylists(*path); }; });
}

}  // namespace zemhost
