#include "zemhost/CommandLine.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <memory>
#include <string>

#include "host/runtime/Names.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/HelpFormatter.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/export/ExportFormat.h"
#include "zemhost/library/SmartLists.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/TextEncoder.h"

namespace zemhost {

namespace {

// What the command that was asked for does; returns the exit status.
using Action = std::function<int()>;

// A command, and the arguments that its options fill.
template <typename Arguments>
struct Command {
  CLI::App *app;
  std::shared_ptr<Arguments> arguments;

  CLI::App *operator->() const { return app; }
};

// Throws CLI::ValidationError for options that do not go together, and fills in what they imply.
template <typename Arguments>
using Check = void (*)(const CLI::App &command, Arguments &arguments);

// Adds a command. When the command line names it, its work is left in `action`, which must outlive the
// parsing.
template <typename Arguments>
Command<Arguments> addCommand(CLI::App &program, Action &action, const char *name, const char *description,
                              int (*run)(const Arguments &), Check<Arguments> check = nullptr) {
  Command<Arguments> command{program.add_subcommand(name, description), std::make_shared<Arguments>()};
  command->callback([command, run, check, &action] {
    if (check != nullptr) check(*command.app, *command.arguments);
    action = [run, arguments = command.arguments] { return run(*arguments); };
  });
  return command;
}

// Refuses an empty text in place of a name.
CLI::Validator notEmpty() {
  return CLI::Validator([](const std::string &text) { return text.empty() ? "the name is empty" : ""; }, "");
}

// The argument PATH, which every command that reads a database takes.
void addPath(CLI::App &command, std::string &path) {
  command
      .add_option("PATH", path,
                  "A mounted player, its iPod_Control folder, or a database file; of a player's iTunesDB and "
                  "iTunesCDB (compressed) the larger one is read")
      ->required();
}

void addEncoding(CLI::App &command, std::string &encoding) {
  command.add_option(
      "--encoding", encoding,
      "Write text in this encoding: UTF-8, UTF-16, Shift_JIS by the plug-in's table, or one that "
      "iconv knows [UTF-8]");
}

void addJson(CLI::App &command, bool &json) {
  command.add_flag("--json", json, "Write JSON for other programs");
}

template <typename Arguments>
void checkJsonEncoding(const CLI::App & /*command*/, Arguments &arguments) {
  if (arguments.json && !isUtf8Name(arguments.encoding))
    throw CLI::ValidationError("--encoding", "JSON is always UTF-8");
}

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
  command
      ->add_option("PLAYLIST", command.arguments->playlist,
                   "Its number, its name, or the beginning of its name")
      ->required()
      ->check(notEmpty());
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
  command->add_flag("--json", command.arguments->json, "Report as one JSON object");
  command->footer(
      "Ends with 0 when all is accounted for, with 3 when something is wrong, and with 1 when the "
      "database cannot be read.");
}

// The format that an option names, else the ending of the file.
void settleFormat(const CLI::App &command, ExportArguments &arguments) {
  if (command.count("--format") != 0) return;
  arguments.format = formatOfEnding(arguments.output);
  if (!arguments.format.empty()) return;
  if (arguments.writesStandardOutput())
    throw CLI::ValidationError("--format", "it is required where --output names no file");
  throw CLI::ValidationError("--format", "it is required, since the ending of " + inQuotes(arguments.output) +
                                             " stands for no format");
}

void checkExport(const CLI::App &command, ExportArguments &arguments) {
  settleFormat(command, arguments);
  const std::string &format = arguments.format;
  const bool list = format == "m3u8";
  if (list && !arguments.fields.empty())
    throw CLI::ValidationError("--fields", "an m3u8 list has no fields to choose");
  const bool listens = format == "listenbrainz";
  if (listens && !arguments.fields.empty())
    throw CLI::ValidationError("--fields", "a listen has no fields to choose");
  if (listens && !arguments.sinceSync) {
    throw CLI::ValidationError("--format",
                               "listenbrainz is for plays since the last synchronisation: add --since-sync");
  }
  if (!list && command.count("--paths") != 0)
    throw CLI::ValidationError("--paths", "only m3u8 has paths to choose");
  if (arguments.excel && format != "csv")
    throw CLI::ValidationError("--excel", "only csv has a form for spreadsheets");
  const bool hasEncodings = list || format == "csv" || format == "tsv";
  if (!isUtf8Name(arguments.encoding) && (!hasEncodings || arguments.excel))
    throw CLI::ValidationError("--encoding",
                               (arguments.excel ? "csv with --excel" : format) + " is always UTF-8");
  if (format == "sqlite" && arguments.writesStandardOutput())
    throw CLI::ValidationError("--output", "sqlite needs a file to write");
}

void addExport(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "export", "Write songs and playlists in a format that other programs read",
                 exportLibrary, checkExport);
  ExportArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  command
      ->add_option("--format", arguments.format,
                   "What to write; needed where the ending of the file does not say it")
      ->check(CLI::IsMember(exportFormats()));
  command->add_flag("--excel", arguments.excel,
                    "Write csv that spreadsheets open as it is: marked as UTF-8, and no text is a formula");
  command
      ->add_option("-o,--output", arguments.output,
                   "The file to write, whose ending stands for the format; else standard output")
      ->check(notEmpty());
  command
      ->add_option("--playlist", arguments.playlist,
                   "Only the songs of this playlist: its number, its name, or the beginning of its name")
      ->check(notEmpty());
  command->add_flag("--since-sync", arguments.sinceSync,
                    "Only the songs that were played or skipped since the last synchronisation");
  command
      ->add_option(
          "--fields", arguments.fields,
          "The fields of a song, in order, with commas between, or all; else those that a person reads "
          "in csv and tsv, and all in the other formats")
      ->delimiter(',')
      ->allow_extra_args(false);
  command
      ->add_option("--paths", arguments.paths,
                   "Paths in m3u8: host (files on this machine), relative (from the list's folder) or device "
                   "(as on the player) [host]")
      ->check(CLI::IsMember({"host", "relative", "device"}));
  addEncoding(*command.app, arguments.encoding);
}

void addRescue(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "rescue",
                 "Copy the music off a player under its real names, and its playlists", rescueMusic);
  RescueArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  command->add_option("DEST", arguments.destination, "The folder to copy to; it is made when it is missing")
      ->required()
      ->check(notEmpty());
  command->add_option("--pattern", arguments.pattern,
                      "How to name the files: text, '/' between folders, and the fields " + patternFields() +
                          "; numbers may have a width, as in {track:02} [" + arguments.pattern + "]");
  command
      ->add_option("--playlist", arguments.playlists,
                   "Only the songs of this playlist: its number, its name, or the beginning of its name; may "
                   "be given again")
      ->allow_extra_args(false)
      ->check(notEmpty());
  command->add_flag("--covers", arguments.covers,
                    "Write the cover of each album beside its songs, as cover.png");
  command->add_flag("--dry-run", arguments.dryRun, "Show what would be copied, and write nothing");
  command->footer(
      "Complete copies are left alone and no other file is ever replaced, so after an interruption the same "
      "command continues. Ends with 0 when everything is copied, with 3 when some songs could not be copied, "
      "and with 1 when it had to stop.");
}

void addPictures(CLI::App &program, Action &action, const char *name, const char *description,
                 int (*run)(const PictureArguments &)) {
  const auto command = addCommand(program, action, name, description, run);
  addPath(*command.app, command.arguments->path);
  command
      ->add_option("DEST", command.arguments->destination,
                   "The folder to write to; it is made when it is missing")
      ->required()
      ->check(notEmpty());
  command->footer(
      "Pictures that are there already are left alone and no other file is ever replaced. Ends with 0 when "
      "everything is written, with 3 when some pictures could not be, and with 1 when it had to stop.");
}

void addCompare(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "compare", "List what only one of two libraries has, and what both have",
                 compare, checkJsonEncoding<CompareArguments>);
  CompareArguments &arguments = *command.arguments;
  command->add_option("A", arguments.a, "A player or database, as PATH of the other commands")->required();
  command->add_option("B", arguments.b, "Another one")->required();
  command->add_option("--by", arguments.by, "What to compare [song: title, artist and album]")
      ->check(CLI::IsMember({"song", "artist", "album", "genre", "composer"}));
  addJson(*command.app, arguments.json);
  addEncoding(*command.app, arguments.encoding);
}

void addDuplicates(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "duplicates",
                 "List the recordings that occur more than once: songs of the same title and "
                 "artist, and of nearly the same length",
                 listDuplicates, checkJsonEncoding<DuplicatesArguments>);
  DuplicatesArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  command
      ->add_option("--length", arguments.length,
                   "How many seconds apart the lengths of one recording may lie [2]")
      ->check(CLI::Range(0.0, 1'000'000.0));
  command->add_flag(
      "--loose", arguments.loosely,
      "Compare texts without regard to case, blanks, Unicode form, and brackets at their end such "
      "as (Live)");
  command->add_flag("--same-album", arguments.sameAlbum,
                    "Only songs on albums of the same name are the same");
  addJson(*command.app, arguments.json);
  addEncoding(*command.app, arguments.encoding);
}

void addCall(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "call", "Run lines of host code on an object that has loaded the database",
                 callObject);
  addPath(*command.app, command.arguments->path);
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
  addCheck(program, action);
  addExport(program, action);
  addRescue(program, action);
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
