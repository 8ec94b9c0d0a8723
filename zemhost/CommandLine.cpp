#include "zemhost/CommandLine.h"

#include <iostream>
#include <memory>
#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/library/SmartLists.h"
#include "zemhost/options/HelpFormatter.h"
#include "zemhost/options/Parts.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

namespace {

void addListing(CLI::App &program, Action &action, const char *name, const char *description,
                int (*run)(const ListingArguments &)) {
  const auto command = addCommand(program, action, name, description, run);
  addPath(*command.app, command.arguments->path);
  addEncoding(*command.app, command.arguments->encoding);
}

void addColumns(CLI::App &command, std::vector<std::string> &columns) {
  command
      .add_option(
          "--columns", columns,
          "The columns to show, by the names of an export's fields, with commas between, or all; else those "
          "that fit")
      ->delimiter(',')
      ->allow_extra_args(false);
}

void addSongs(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "songs", "List the songs of a player or database", listSongs);
  addPath(*command.app, command.arguments->path);
  addColumns(*command.app, command.arguments->columns);
  addEncoding(*command.app, command.arguments->encoding);
}

void addPlays(CLI::App &program, Action &action) {
  const auto command = addCommand(
      program, action, "plays", "List what was played most, lately, never, and what was skipped", showPlays);
  PlaysArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  command->add_option("--by", arguments.by, "What to list [song]")
      ->check(CLI::IsMember({"song", "artist", "album"}));
  command->add_option("--top", arguments.top, "The lines of each list [10]")
      ->check(CLI::Range(1, 1'000'000'000));
  addEncoding(*command.app, arguments.encoding);
}

void checkPlaylist(const CLI::App & /*command*/, PlaylistArguments &arguments) {
  if (arguments.day.empty()) return;
  if (!arguments.evaluate) throw CLI::ValidationError("--day", "only --evaluate asks for a day");
  if (!endOfDay(arguments.day)) throw CLI::ValidationError("--day", "write the day as 2006-07-22");
}

void addPlaylist(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "playlist", "List the songs of one playlist", listPlaylist, checkPlaylist);
  addPath(*command.app, command.arguments->path);
  addPlace(*command.app, "PLAYLIST", command.arguments->playlist,
           "Its number, its name, or the beginning of its name");
  addColumns(*command.app, command.arguments->columns);
  command->add_flag("--evaluate", command.arguments->evaluate,
                    "Compare a smart playlist with the songs that its rules choose");
  command->add_option("--day", command.arguments->day,
                      "The day, as 2006-07-22, at the end of which --evaluate looks at the rules [today]");
  addEncoding(*command.app, command.arguments->encoding);
}

void addCheck(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "check",
                 "Account for every byte of a database, every entry and every song's file", checkDatabase);
  addPath(*command.app, command.arguments->path);
  command->add_flag("--read", command.arguments->read,
                    "Read every music file to its end, and report what cannot be read by its offset");
  command->add_flag("--json", command.arguments->json, "Report as one JSON object");
  command->footer(
      "Ends with 0 when all is accounted for, with 3 when something is wrong, and with 1 when the "
      "database cannot be read.");
}

void addRescue(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "rescue",
                 "Copy the music off a player under its real names, and its playlists", rescueMusic);
  RescueArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  addPlace(*command.app, "DEST", arguments.destination,
           "The folder to copy to; it is made when it is missing");
  command->add_option(
      "--pattern", arguments.pattern,
      "How to name the files: text, '/' between folders, the fields of an export as in {year}, "
      "{albumartist} and {albumdisc} of the whole album; {a|b} is a, else b, what stands in [] "
      "goes when its fields are empty, and numbers may have a width, as in {track:02} [" +
          arguments.pattern + "]");
  command
      ->add_option("--playlist", arguments.playlists,
                   "Only the songs of this playlist: its number, its name, or the beginning of its name; may "
                   "be given again")
      ->allow_extra_args(false)
      ->check(notEmpty());
  command
      ->add_option("--playlists", arguments.lists,
                   "How to write the playlists beside the music: none, m3u8 or xspf [m3u8]")
      ->check(CLI::IsMember({"none", "m3u8", "xspf"}));
  command
      ->add_flag("--tags{missing}", arguments.tags,
                 "Write what the library says of a song into the tags of its copy where these lack it; "
                 "--tags=replace: in any case")
      ->option_text("[=missing|replace]")
      ->check(CLI::IsMember({"missing", "replace"}));
  command->add_flag("--covers", arguments.covers,
                    "Write the cover of each album beside its songs, as cover.png");
  command->add_flag("--verify", arguments.verify,
                    "Read every copy back, and compare it with what was read from the player");
  command->add_flag("--skip-damaged", arguments.skipDamaged,
                    "Leave out songs of which a part cannot be read; else their copies are marked (damaged)");
  command->add_flag("--dry-run", arguments.dryRun, "Show what would be copied, and write nothing");
  command->footer(
      "Complete copies are left alone and no other file is ever replaced, so after an interruption the same "
      "command continues. Ends with 0 when everything is copied, with 3 when some songs could not be copied, "
      "or not whole, and with 1 when it had to stop.");
}

void addVerify(CLI::App &program, Action &action) {
  const auto command = addCommand(program, action, "verify",
                                  "Check a folder of rescued music against its SHA256SUMS", verifyCopies);
  command->add_option("DEST", command.arguments->destination, "The folder that rescue copied to")
      ->required()
      ->check(notEmpty());
  command->footer(
      "Ends with 0 when every file is as it was copied, with 3 when one is missing or has changed, and with "
      "1 "
      "when the folder has no sums.");
}

void addPictures(CLI::App &program, Action &action, const char *name, const char *description,
                 int (*run)(const PictureArguments &)) {
  const auto command = addCommand(program, action, name, description, run);
  addPath(*command.app, command.arguments->path);
  addPlace(*command.app, "DEST", command.arguments->destination,
           "The folder to write to; it is made when it is missing");
  command->footer(
      "Pictures that are there already are left alone and no other file is ever replaced. Ends with 0 when "
      "everything is written, with 3 when some pictures could not be, and with 1 when it had to stop.");
}

void addCall(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "call", "Run lines of host code on an object that has loaded the database",
                 callObject);
  addPath(*command.app, command.arguments->path)
      ->description("A mounted player, its iPod_Control folder, or a database file")
      ->required();
  command
      ->add_option("LINE", command.arguments->lines,
                   "A method call, or a property to read or set: 'GetTitle(0)', 'ResultEncode = &h0100'")
      ->required();
}

void addCommands(CLI::App &program, Action &action) {
  addListing(program, action, "info", "Sum up a player or database", showInfo);
  addSongs(program, action);
  addListing(program, action, "playlists", "List the playlists of a player or database", listPlaylists);
  addPlaylist(program, action);
  addPlays(program, action);
  addStats(program, action);
  addReport(program, action);
  addCheck(program, action);
  addExport(program, action);
  addRescue(program, action);
  addVerify(program, action);
  addPictures(program, action, "covers", "Write the cover of each album as a PNG file", exportCovers);
  addPictures(program, action, "photos", "Write the photos of a player, in folders by album", exportPhotos);
  addCompare(program, action);
  addDuplicates(program, action);
  addCall(program, action);
  addCommand(program, action, "class", "Show the class that the plug-in registers: properties and methods",
             showClass);
}

int wrongUsage(const std::string &message) {
  printError(message);
  std::cerr << "Run \"zemhost --help\" to see the commands.\n";
  return kUsage;
}

}  // namespace

int runCommandLine(int count, char **arguments) {
  CLI::App program("Shows the music library of an iPod, read by the ZemiTunesDB plug-in.", "zemhost");
  program.set_version_flag("--version", "zemhost " ZEM_VERSION);
  program.require_subcommand(0, 1);  // none at all has a better message below
  program.formatter(std::make_shared<HelpFormatter>());
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

}  // namespace zemhost
