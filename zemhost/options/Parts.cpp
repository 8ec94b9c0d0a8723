#include "zemhost/options/Parts.h"

#include <algorithm>

#include "host/Error.h"
#include "zemhost/library/PlayerChoice.h"
#include "zemhost/options/HelpFormatter.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

void settlePlaces(const CLI::App &command, const std::vector<std::string *> &places) {
  const auto options =
      command.get_options([](const CLI::Option *option) { return option->get_positional(); });
  const auto isGiven = [](const CLI::Option *option) { return option->count() != 0; };
  const auto given = static_cast<size_t>(std::count_if(options.begin(), options.end(), isGiven));
  if (places.empty() || given == places.size()) return;
  if (given + 1 < places.size()) throw CLI::RequiredError(options.back()->get_name());
  for (size_t i = places.size() - 1; i > 0; --i) *places[i] = *places[i - 1];
  try {
    const PlayerChoice choice = chooseMountedPlayer();
    printError(choice.remark);
    *places.front() = choice.path;
  } catch (const HostError &error) {
    throw CLI::ValidationError(options.front()->get_name(), error.what());
  }
}

CLI::Validator notEmpty() {
  return {[](const std::string &text) { return text.empty() ? "the name is empty" : ""; }, ""};
}

CLI::Option *addPath(CLI::App &command, std::string &path) {
  return command
      .add_option("PATH", path,
                  "A mounted player, its iPod_Control folder, or a database file; of a player's iTunesDB and "
                  "iTunesCDB (compressed) the larger one is read. Without it the one player that is mounted")
      ->check(notEmpty());
}

CLI::Option *addPlace(CLI::App &command, const char *name, std::string &place, const char *description) {
  return command.add_option(name, place, description)->option_text(kRequiredText)->check(notEmpty());
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

}  // namespace zemhost
