#include "host/cli/commands/Command.h"

namespace zemhost {

void addPathArgument(CLI::App &command, std::string &path) {
  command.add_option("PATH", path, "A mounted player, its iPod_Control folder, or a database file")
      ->required();
}

}  // namespace zemhost
