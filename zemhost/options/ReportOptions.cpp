// The options of the commands that show a library at a glance.

#include "zemhost/options/Parts.h"
#include "zemhost/report/Statistics.h"

namespace zemhost {

void addReport(CLI::App &program, Action &action) {
  const auto command = addCommand(
      program, action, "report",
      "Write a page that shows the library: one file for any browser, which needs no network", writeReport);
  ReportArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  command->add_option("-o,--output", arguments.output, "The file to write; - is standard output")
      ->required()
      ->check(notEmpty());
  command->add_option("--title", arguments.title, "The title of the page; else what the player is called")
      ->check(notEmpty());
  command
      ->add_option("--playlist", arguments.playlist,
                   "Only the songs of this playlist: its number, its name, or the beginning of its name")
      ->check(notEmpty());
  command->add_flag("--no-covers", arguments.noCovers, "Leave out the covers of albums");
  command->add_flag(
      "--privacy", arguments.privacy,
      "Leave out what is personal, for a page to give away: the player's name and numbers, mail "
      "addresses, comments, and places on this machine");
}

void addStats(CLI::App &program, Action &action) {
  const auto command =
      addCommand(program, action, "stats",
                 "Show what the songs add up to, by artist, album, genre, year and so on, as "
                 "tables with bars",
                 showStats, checkJsonEncoding<StatsArguments>);
  StatsArguments &arguments = *command.arguments;
  addPath(*command.app, arguments.path);
  command->add_option("--by", arguments.by, "One table, by this; else an overview, or all of them in JSON")
      ->check(CLI::IsMember(groupingNames()));
  command->add_option("--measure", arguments.measure, "What to add up [songs]")
      ->check(CLI::IsMember(measureNames()));
  command->add_option("--top", arguments.top, "The lines of each table; else as many as are easily read")
      ->check(CLI::Range(1, 1'000'000'000));
  addJson(*command.app, arguments.json);
  addEncoding(*command.app, arguments.encoding);
}

}  // namespace zemhost
