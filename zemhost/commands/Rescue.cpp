#include "zemhost/rescue/Rescue.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Command.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/PlaylistChoice.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

struct RescueArguments {
  std::string path;
  std::string destination;
  std::string pattern{kUsualPattern};
  std::vector<std::string> playlists;
  bool dryRun = false;
};

void writeList(const std::string &heading, const std::vector<std::string> &lines) {
  if (lines.empty()) return;
  std::cout << heading << ":\n";
  for (const std::string &line : lines) std::cout << "- " << safeText(line) << '\n';
}

void writeSummary(const RescueResult &result, bool dryRun) {
  std::cout << countText(result.copied, "song", "songs") << (dryRun ? " to copy, " : " copied, ")
            << totalSizeText(result.copiedBytes) << '\n';
  if (result.alreadyThere > 0) {
    std::cout << countText(result.alreadyThere, "song is", "songs are") << " there already\n";
  }
  if (result.playlists > 0) {
    std::cout << countText(result.playlists, "playlist", "playlists")
              << (dryRun ? " to write\n" : " written\n");
  }
  if (result.evaded > 0) {
    std::cout << countText(result.evaded, "name was", "names were")
              << " taken by another file, so a number was added\n";
  }
  writeList(countText(result.otherSizes.size(), "file has", "files have") +
                " another size than the database tells, and is copied as it is",
            result.otherSizes);
  writeList(countText(result.problems.size(), "problem", "problems"), result.problems);
}

int rescueMusic(const RescueArguments &arguments) {
  RescueRequest request{arguments.destination, NamePattern(arguments.pattern), {}, arguments.dryRun};
  const MusicLibrary library(openDatabase(arguments.path));
  for (const std::string &wanted : arguments.playlists) {
    const int32_t list = choosePlaylist(library, wanted);
    const auto &chosen = request.playlists;
    if (std::find(chosen.begin(), chosen.end(), list) == chosen.end()) request.playlists.push_back(list);
  }
  const RescueResult result = rescue(library, request);
  writeSummary(result, arguments.dryRun);
  return result.problems.empty() ? kSuccess : kIncomplete;
}

}  // namespace

void addRescueCommand(CLI::App &program, Action &action) {
  const auto arguments = std::make_shared<RescueArguments>();
  CLI::App *const command =
      program.add_subcommand("rescue", "Copy the music off a player under its real names, and its playlists");
  addPathArgument(*command, arguments->path);
  command->add_option("DEST", arguments->destination, "The folder to copy to; it is made when it is missing")
      ->required();
  command->add_option("--pattern", arguments->pattern,
                      "How files are called, " + std::string(kUsualPattern) +
                          " when not told: text, '/' between folders, and the fields " + patternFields() +
                          "; numbers may have a width, as in {track:02}");
  command
      ->add_option("--playlist", arguments->playlists,
                   "Only the songs of this playlist: its number, its name, or the beginning of its name; may "
                   "be given again")
      ->allow_extra_args(false);
  command->add_flag("--dry-run", arguments->dryRun, "Tell what would be copied, and write nothing");
  command->footer(
      "Copies that are complete are left alone, and no other file is ever replaced, so the same command goes "
      "on "
      "after an interruption. Ends with 0 when all is copied, with 3 when some songs could not be, and with "
      "1 "
      "when it had to stop.");
  command->callback([arguments, &action] { action = [arguments] { return rescueMusic(*arguments); }; });
}

}  // namespace zemhost
