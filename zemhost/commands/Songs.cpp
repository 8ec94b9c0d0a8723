#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"

namespace zemhost {

int listSongs(const SongsArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  EncodedOutput out(arguments.encoding, library.host());
  SongTable table(out, arguments.columns);
  const int32_t count = library.songCount();
  for (int32_t index = 0; index < count; ++index) table.addSong(index, library.song(index));
  table.write();
  out.finish();
  warnOfCovers(library);
  return kSuccess;
}

}  // namespace zemhost
