#include <memory>
#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Command.h"
#include "zemhost/commands/SongTable.h"

namespace zemhost {

namespace {

int listSongs(const ListingArguments &arguments) {
  const MusicLibrary library(openDatabase(arguments.path));
  EncodedOutput out(arguments.encoding, library.host());
  SongTable table(out);
  const int32_t count = library.songCount();
  for (int32_t index = 0; index < count; ++index) table.addSong(index, library.song(index));
  table.finish();
  return kSuccess;
}

}  // namespace

void addSongsCommand(CLI::App &program, Action &action) {
  const auto arguments = std::make_shared<ListingArguments>();
  CLI::App *const command = program.add_subcommand("songs", "List the songs of a player or database");
  addListingArguments(*command, *arguments);
  command->callback([arguments, &action] { action = [arguments] { return listSongs(*arguments); }; });
}

}  // namespace zemhost
