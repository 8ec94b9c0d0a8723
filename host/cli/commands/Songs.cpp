#include <iostream>
#include <memory>
#include <string>

#include "host/cli/ExitStatus.h"
#include "host/cli/commands/Command.h"
#include "host/cli/commands/SongTable.h"

namespace zemhost {

namespace {

int listSongs(const std::string &path) {
  const MusicLibrary library(openDatabase(path));
  SongTable table;
  const int32_t count = library.songCount();
  for (int32_t index = 0; index < count; ++index) table.addSong(index, library.song(index));
  table.write(std::cout);
  return kSuccess;
}

}  // namespace

void addSongsCommand(CLI::App &program, Action &action) {
  const auto path = std::make_shared<std::string>();
  CLI::App *const command = program.add_subcommand("songs", "List the songs of a player or database");
  addPathArgument(*command, *path);
  command->callback([path, &action] { action = [path] { return listSongs(*path); }; });
}

}  // namespace zemhost
