#include "zemhost/commands/Command.h"

namespace zemhost {

void addPathArgument(CLI::App &command, std::string &path) {
  command
      .add_option("PATH", path,
                  "A mounted player, its iPod_Control folder, or a database file; of a player's iTunesDB and "
                  "iTunesCDB (compressed) the larger one is read")
      ->required();
}

}  // namespace zemhost
