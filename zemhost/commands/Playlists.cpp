#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/library/PlaylistWords.h"
#include "zemhost/library/SmartLists.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Table.h"
#include "zemhost/output/Units.h"

namespace zemhost {

int listPlaylists(const ListingArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  EncodedOutput out(arguments.encoding, library.host());
  using enum Column::Align;
  Table table({{"#", Right, 0, 0},
               {"Name", Left, 12, 0},
               {"Kind", Left, 0, 3},
               {"Songs", Right, 0, 0},
               {"Time", Right, 0, 1},
               {"Size", Right, 0, 2},
               {"Created", Left, 0, 5},
               {"Changed", Left, 0, 6},
               {"Order", Left, 0, 7},
               {"Rules", Left, 20, 4}},
              out.fitCells());
  const SmartLists smart(library);
  const auto dateOf = [](const std::optional<uint32_t> &date) {
    return date ? dateText(*date) : std::string();
  };
  const int32_t count = library.playlistCount();
  for (int32_t number = 0; number < count; ++number) {
    const Totals totals = library.playlistTotals(number);
    const player::PlaylistFacts facts = library.playlistFacts(number);
    table.addRow({std::to_string(number), library.playlistName(number), playlistKindText(facts.kind),
                  std::to_string(library.entryCount(number)), totalTimeText(totals.duration),
                  totalSizeText(totals.size), dateOf(facts.created), dateOf(facts.modified),
                  sortOrderText(facts.sortOrder), facts.rules ? smart.text(*facts.rules) : std::string()});
  }
  out.write(table);
  out.finish();
  return kSuccess;
}

}  // namespace zemhost
