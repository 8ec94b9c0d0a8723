#include <chrono>
#include <ctime>
#include <string>
#include <string_view>

#include "zemhost/ExitStatus.h"
#include "zemhost/check/DatabaseCheck.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/library/PlaylistChoice.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"
#include "zemhost/report/Page.h"
#include "zemhost/report/PageData.h"
#include "zemhost/report/PageJson.h"

namespace zemhost {

namespace {

// "2026-11-22T10:00:00", by the clock and the zone of this machine.
std::string momentText() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm parts{};
  std::string text(19, ' ');
  if (localtime_r(&now, &parts) != nullptr)
    std::strftime(text.data(), text.size() + 1, "%Y-%m-%dT%H:%M:%S", &parts);
  return text;
}

// Writes the page up to a place to fill in, and what is filled in; `page` is then what stands behind it.
void fillIn(OutputFile &out, std::string_view &page, std::string_view place, std::string_view text) {
  const size_t at = page.find(place);
  out.write(page.substr(0, at));
  out.write(text);
  page.remove_prefix(at + place.size());
}

}  // namespace

int writeReport(const ReportArguments &arguments) {
  const CheckedLibrary checked = openAndCheck(Host::load(), arguments.path, false);
  for (const std::string &warning : checked.opened.warnings) printError(warning);
  const MusicLibrary &library = checked.opened.library;
  PageOptions options{"zemhost " ZEM_VERSION, momentText(), arguments.title};
  if (!arguments.playlist.empty()) options.playlist = choosePlaylist(library, arguments.playlist);
  options.covers = !arguments.noCovers;
  options.privacy = arguments.privacy;
  OutputFile out(arguments.output);
  const PageData data = pageData(checked, options);
  std::string_view page = reportPage();
  fillIn(out, page, "@TITLE@", markupText(data.title));
  fillIn(out, page, "@LIBRARY@", data.json);
  out.write(page);
  out.finish();
  if (options.covers) warnOfCovers(library);
  if (data.unreadableCovers != 0) {
    printError(library.location().name + ": " + countText(data.unreadableCovers, "cover", "covers") +
               " left out that cannot be read");
  }
  return kSuccess;
}

}  // namespace zemhost
