// The options of the commands that write a library for other programs, or hold its songs against others.

#include "host/runtime/Names.h"
#include "zemhost/export/ExportFormat.h"
#include "zemhost/options/Parts.h"
#include "zemhost/output/ListFormat.h"

namespace zemhost {

namespace {

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

void checkAllLists(const CLI::App &command, bool list) {
  if (command.count("--all-playlists") == 0) return;
  if (!list) throw CLI::ValidationError("--all-playlists", "only m3u8 and xspf are for lists");
  for (const char *const other : {"--output", "--playlist", "--since-sync", "--encoding"}) {
    if (command.count(other) != 0)
      throw CLI::ValidationError("--all-playlists", std::string(other) + " is for one output");
  }
}

void checkExport(const CLI::App &command, ExportArguments &arguments) {
  settleFormat(command, arguments);
  const std::string &format = arguments.format;
  const bool list = listFormatNamed(format) != nullptr;
  if (list && !arguments.fields.empty())
    throw CLI::ValidationError("--fields", "a list has no fields to choose");
  checkAllLists(command, list);
  const bool listens = format == "listenbrainz";
  if (listens && !arguments.fields.empty())
    throw CLI::ValidationError("--fields", "a listen has no fields to choose");
  if (listens && !arguments.sinceSync) {
    throw CLI::ValidationError("--format",
                               "listenbrainz is for plays since the last synchronisation: add --since-sync");
  }
  if (!list && command.count("--paths") != 0)
    throw CLI::ValidationError("--paths", "only m3u8 and xspf have paths to choose");
  if (arguments.excel && format != "csv")
    throw CLI::ValidationError("--excel", "only csv has a form for spreadsheets");
  const bool hasEncodings = format == "m3u8" || format == "csv" || format == "tsv";
  if (!isUtf8Name(arguments.encoding) && (!hasEncodings || arguments.excel)) {
    throw CLI::ValidationError("--encoding",
                               (arguments.excel ? "csv with --excel" : format) + " is always UTF-8");
  }
  if (format == "sqlite" && arguments.writesStandardOutput())
    throw CLI::ValidationError("--output", "sqlite needs a file to write");
}

}  // namespace

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
  command
      ->add_option("--all-playlists", arguments.listFolder,
                   "Write every playlist into this folder, in the format m3u8 or xspf")
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
      ->add_option(
          "--paths", arguments.paths,
          "Paths in m3u8 and xspf: host (files on this machine), relative (from the list's folder) or "
          "device (as on the player) [host]")
      ->check(CLI::IsMember({"host", "relative", "device"}));
  addEncoding(*command.app, arguments.encoding);
}

void addCompare(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "compare", "List what only one of two libraries has, and what both have",
                 compare, checkJsonEncoding<CompareArguments>);
  CompareArguments &arguments = *command.arguments;
  command->add_option("A", arguments.a, "A player or database, as PATH of the other commands")
      ->check(notEmpty());
  addPlace(*command.app, "B", arguments.b, "Another one");
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

}  // namespace zemhost
