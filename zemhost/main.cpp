#include <CLI/CLI.hpp>
#include <cerrno>
#include <exception>
#include <iostream>
#include <string>
#include <system_error>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Command.h"
#include "zemhost/files/Signals.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

namespace {

void addCommands(CLI::App &program, Action &action) {
  addInfoCommand(program, action);
  addSongsCommand(program, action);
  addPlaylistsCommand(program, action);
  addPlaylistCommand(program, action);
  addCheckCommand(program, action);
  addExportCommand(program, action);
  addRescueCommand(program, action);
  addCompareCommand(program, action);
  addDuplicatesCommand(program, action);
  addCallCommand(program, action);
  addClassCommand(program, action);
}

int wrongUsage(const std::string &message) {
  printError(message);
  std::cerr << "Run \"zemhost --help\" to see what can be asked.\n";
  return kUsage;
}

int run(int count, char **arguments) {
  CLI::App program("Shows the music library of an iPod, read by the ZemiTunesDB plug-in.", "zemhost");
  program.set_version_flag("--version", "zemhost " ZEM_VERSION);
  program.require_subcommand(0, 1);  // none at all has a better message below
  Action action;
  addCommands(program, action);
  try {
    program.parse(count, arguments);
  } catch (const CLI::ParseError &error) {
    if (error.get_exit_code() == 0) {
      program.exit(error);  // --help or --version
      return kSuccess;
    }
    return wrongUsage(error.what());
  }
  return action ? action() : wrongUsage("a command is needed");
}

}  // namespace

}  // namespace zemhost

int main(int count, char **arguments) {
  std::ios::sync_with_stdio(false);
  zemhost::handleSignals();
  try {
    const int status = zemhost::run(count, arguments);
    if (std::cout.flush()) return status;
    std::cout.clear();
    errno = 0;
    std::cout.flush();  // once more, for the reason
    zemhost::printError("standard output: " + std::generic_category().message(errno != 0 ? errno : EIO));
  } catch (const std::exception &error) {
    std::cout.flush();
    zemhost::printError(error.what());
  }
  return zemhost::kFailure;
}
