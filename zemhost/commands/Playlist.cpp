#include <memory>
#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Command.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/PlaylistChoice.h"

namespace zemhost {

namespace {

struct PlaylistArguments {
  std::string path;
  std::string playlist;
  std::string encoding;
};

int listPlaylist(const PlaylistArguments &arguments) {
  const MusicLibrary library(openDatabase(arguments.path));
  const int32_t playlist = choosePlaylist(library, arguments.playlist);
  EncodedOutput out(arguments.encoding, library.host());
  SongTable table(out);
  const int32_t count = library.entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) {
    const PlaylistEntry entry = library.entry(playlist, position);
    if (entry.song < 0) {
      table.addMissingSong(position, entry.trackID);
    } else {
      table.addSong(position, library.song(entry.song));
    }
  }
  table.finish();
  return kSuccess;
}

}  // namespace

void addPlaylistCommand(CLI::App &program, Action &action) {
  const auto arguments = std::make_shared<PlaylistArguments>();
  CLI::App *const command = program.add_subcommand("playlist", "List the songs of one playlist");
  addPathArgument(*command, arguments->path);
  command->add_option("PLAYLIST", arguments->playlist, "Its number, its name, or the beginning of its name")
      ->required();
  addEncodingOption(*command, arguments->encoding);
  command->callback([arguments, &action] { action = [arguments] { return listPlaylist(*arguments); }; });
}

}  // namespace zemhost
