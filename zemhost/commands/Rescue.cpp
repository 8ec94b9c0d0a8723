#include "zemhost/rescue/Rescue.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/PictureSummary.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/PlaylistChoice.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

void writeSummary(const RescueResult &result, bool dryRun) {
  std::cout << countText(result.copied, "song", "songs") << (dryRun ? " to copy, " : " copied, ")
            << totalSizeText(result.copiedBytes) << '\n';
  if (result.alreadyThere > 0) {
    std::cout << countText(result.alreadyThere, "song is", "songs are") << " already there\n";
  }
  if (result.playlists > 0) {
    std::cout << countText(result.playlists, "playlist", "playlists")
              << (dryRun ? " to write\n" : " written\n");
  }
  if (result.covers > 0) {
    std::cout << countText(result.covers, "cover", "covers") << (dryRun ? " to write\n" : " written\n");
  }
  if (result.evaded > 0) {
    std::cout << countText(result.evaded, "name was", "names were")
              << " taken by another file, so a number was added\n";
  }
  if (result.verified > 0)
    std::cout << countText(result.verified, "copy was", "copies were") << " read back, and the same\n";
  writeList(countText(result.shortFiles.size(),
                      "file is empty or shorter than the database states, and is copied as it is",
                      "files are empty or shorter than the database states, and are copied as they are"),
            result.shortFiles);
  writeList(countText(result.damaged.size(), "song is damaged, with zeros for what cannot be read",
                      "songs are damaged, with zeros for what cannot be read"),
            result.damaged);
  writeList(countText(result.remarks.size(), "remark", "remarks"), result.remarks);
  writeList(countText(result.problems.size(), "problem", "problems"), result.problems);
}

}  // namespace

int rescueMusic(const RescueArguments &arguments) {
  RescueRequest request{
      arguments.destination, NamePattern(arguments.pattern), {}, arguments.dryRun, arguments.covers,
      arguments.verify,      arguments.skipDamaged};
  const MusicLibrary library = openAndWarn(arguments.path);
  for (const std::string &wanted : arguments.playlists) {
    const int32_t list = choosePlaylist(library, wanted);
    const auto &chosen = request.playlists;
    if (std::find(chosen.begin(), chosen.end(), list) == chosen.end()) request.playlists.push_back(list);
  }
  const RescueResult result = rescue(library, request);
  warnOfCovers(library);
  writeSummary(result, arguments.dryRun);
  return result.isComplete() ? kSuccess : kIncomplete;
}

}  // namespace zemhost
