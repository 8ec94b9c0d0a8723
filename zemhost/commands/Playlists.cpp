#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/library/MusicLibrary.h"
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
               {"Size", Right, 0, 2}},
              out.fitCells());
  const int32_t count = library.playlistCount();
  for (int32_t number = 0; number < count; ++number) {
    const Totals totals = library.playlistTotals(number);
    table.addRow({std::to_string(number), library.playlistName(number), library.playlistKind(number),
                  std::to_string(library.entryCount(number)), totalTimeText(totals.duration),
                  totalSizeText(totals.size)});
  }
  out.write(table);
  out.finish();
  return kSuccess;
}

}  // namespace zemhost
