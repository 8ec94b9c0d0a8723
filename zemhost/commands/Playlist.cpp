#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/PlaylistChoice.h"

namespace zemhost {

int listPlaylist(const PlaylistArguments &arguments) {
  const MusicLibrary library(openAndWarn(arguments.path));
  const int32_t playlist = choosePlaylist(library, arguments.playlist);
  EncodedOutput out(arguments.encoding, library.host());
  SongTable table(out, arguments.columns);
  const int32_t count = library.entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) {
    const PlaylistEntry entry = library.entry(playlist, position);
    if (entry.song < 0) {
      table.addMissingSong(position, entry.trackID);
    } else {
      table.addSong(position, library.song(entry.song));
    }
  }
  table.finish();
  warnOfCovers(library);
  return kSuccess;
}

}  // namespace zemhost
