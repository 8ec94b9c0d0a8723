#include "zemhost/rescue/Rescue.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/Error.h"
#include "player/DatabaseLocation.h"
#include "player/Error.h"
#include "player/Folder.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/FilesSummary.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/OpenLibrary.h"
#include "zemhost/library/PlaylistChoice.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/UnnamedSongs.h"

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
  if (result.tagged > 0) {
    std::cout << "tags were written into " << countText(result.tagged, "copy", "copies") << '\n';
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

// The library, if there is one, with the music files that no song of it names.
MusicLibrary withUnnamed(const Host &host, std::shared_ptr<const LibrarySource> library,
                         const player::DatabaseLocation &location, RescueRequest &request) {
  const auto songs = std::make_shared<const UnnamedSongs>(std::move(library), location);
  request.problems.insert(request.problems.end(), songs->problems().begin(), songs->problems().end());
  request.remarks = songs->remarks();
  request.unnamed = songs->unnamedCount();
  return {host, songs};
}

// The music files of a player whose database, for this reason, cannot be read. Throws the reason where there
// is no player, or no music on it.
MusicLibrary withoutDatabase(const std::string &path, const std::string &reason, RescueRequest &request) {
  const std::filesystem::path root = player::playerRootOf(path);
  if (root.empty()) throw HostError(reason);
  const std::filesystem::path control = player::controlFolderOf(root).value_or(root);
  MusicLibrary library = withUnnamed(Host::load(), nullptr, {control, path, root}, request);
  if (request.unnamed == 0) throw HostError(reason);
  printError(reason + "; copying the music files under the names in their own tags");
  request.problems.insert(request.problems.begin(), reason);
  return library;
}

MusicLibrary openToRescue(const RescueArguments &arguments, RescueRequest &request) {
  const bool isAll = arguments.playlists.empty();
  std::optional<MusicLibrary> library;
  try {
    const OpenedLibrary opened = openLibrary(Host::load(), arguments.path);
    for (const std::string &warning : opened.warnings) printError(warning);
    library = opened.library;
    if (opened.salvage && opened.salvage->isShort()) {
      request.problems.push_back(library->location().name +
                                 ": the file is damaged: " + opened.salvage->text());
    }
  } catch (const HostError &error) {
    if (!isAll) throw;
    return withoutDatabase(arguments.path, error.what(), request);
  } catch (const player::PlayerError &error) {
    if (!isAll) throw;
    return withoutDatabase(arguments.path, error.what(), request);
  }
  const player::DatabaseLocation &location = library->location();
  if (!isAll || location.volumeRoot.empty() || library->form() == LibraryForm::Desktop) return *library;
  return withUnnamed(library->host(), library->source(), location, request);
}

}  // namespace

int rescueMusic(const RescueArguments &arguments) {
  RescueRequest request{arguments.destination,
                        NamePattern(arguments.pattern),
                        {},
                        arguments.dryRun,
                        arguments.covers,
                        arguments.verify,
                        arguments.skipDamaged,
                        {},
                        listFormatNamed(arguments.lists)};
  if (!arguments.tags.empty())
    request.tags = arguments.tags == "replace" ? TagMode::Replace : TagMode::Missing;
  const MusicLibrary library = openToRescue(arguments, request);
  for (const std::string &wanted : arguments.playlists) {
    const int32_t list = choosePlaylist(library, wanted);
    const auto &chosen = request.playlists;
    if (std::find(chosen.begin(), chosen.end(), list) == chosen.end()) request.playlists.push_back(list);
  }
  const RescueResult result = rescue(library, request);
  warnOfCovers(library);
  if (request.unnamed > 0) {
    std::cout << countText(request.unnamed, "music file that no song names belongs",
                           "music files that no song names belong")
              << " into Unnamed\n";
  }
  writeSummary(result, arguments.dryRun);
  return result.isComplete() ? kSuccess : kIncomplete;
}

}  // namespace zemhost
