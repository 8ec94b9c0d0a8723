#include "zemhost/rescue/ListExport.h"

#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "host/Error.h"
#include "zemhost/library/ListedSongs.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/NewFileWriter.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

std::vector<int32_t> allLists(const MusicLibrary &library) {
  std::vector<int32_t> lists;
  const int32_t count = library.playlistCount();
  for (int32_t list = 0; list < count; ++list) {
    if (library.playlistFacts(list).kind != player::PlaylistKind::Library) lists.push_back(list);
  }
  return lists;
}

FilesResult exportLists(const MusicLibrary &library, const ListFormat &format, ListPaths paths,
                        const std::filesystem::path &destination) {
  NewFileWriter writer(destination, library.location().volumeRoot);
  writer.begin();
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::canonical(destination, error);
  if (error) throw HostError(destination.string(), error.value());
  const ListEntries entries(library, paths, folder);
  for (const int32_t list : allLists(library)) {
    const std::string name = library.playlistName(list);
    const std::string label = playlistLabel(list, name);
    std::string text = format.heading(name, "");
    uint64_t missing = 0;
    uint64_t leftOut = 0;
    for (const int32_t song : listedSongs(library, list)) {
      const std::optional<ListedSong> entry = song < 0 ? std::nullopt : entries.of(song);
      if (entry) {
        text += format.entry(*entry);
      } else {
        ++(song < 0 ? missing : leftOut);
      }
    }
    text += format.end();
    if (missing != 0)
      writer.addProblem(label, countText(missing, "entry", "entries") + " whose track ID no song carries");
    if (leftOut != 0)
      writer.addProblem(label, countText(leftOut, "song", "songs") + " left out: " + entries.whyLeftOut());
    writer.write(
        label, [&] { return fileOf(text); },
        [&](std::string_view suffix) {
          return safeName(name, "Playlist " + std::to_string(list), suffix, format.extension);
        });
  }
  return writer.finish();
}

}  // namespace zemhost
