#include <string>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/SongGroups.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

void writeText(const std::vector<SongGroup> &groups, const MusicLibrary &library,
               const DuplicatesArguments &arguments) {
  EncodedOutput out(arguments.encoding, library.host());
  using enum Column::Align;
  Table table({{"Group", Right, 0, 0},
               {"#", Right, 0, 0},
               {"Title", Left, 20, 0},
               {"Artist", Left, 16, 1},
               {"Album", Left, 16, 2},
               {"Time", Right, 0, 4},
               {"Size", Right, 0, 3},
               {"Added", Left, 0, 6},
               {"File", Left, 24, 5}},
              out.fitCells());
  Totals spare;  // all but one of each group
  for (size_t number = 0; number < groups.size(); ++number) {
    for (const int32_t index : groups[number].songs) {
      const Song song = library.song(index);
      table.addRow({std::to_string(number + 1), std::to_string(index), song.title, song.artist, song.album,
                    durationText(song.duration), sizeText(song.size),
                    song.facts.added ? dateText(*song.facts.added) : "", song.path});
      if (index != groups[number].songs.front()) spare.add(song.duration, song.size);
    }
  }
  if (groups.empty()) {
    out.write("No song occurs twice.\n");
  } else {
    out.write(table);
    out.write("\n");
    out.write(countText(groups.size(), "song is", "songs are") + " in the library more than once; " +
              countText(spare.songs, "copy", "copies") + " too many, " + totalSizeText(spare.size) + "\n");
  }
  out.finish();
}

void writeJson(const std::vector<SongGroup> &groups, const MusicLibrary &library,
               const DuplicatesArguments &arguments, Sameness by) {
  Json json = {{"path", arguments.path}, {"songs", library.songCount()}, {"groups", Json::array()}};
  for (const SongGroup &group : groups) {
    Json texts = Json::object();
    for (size_t i = 0; i < group.texts.size(); ++i) texts[std::string(textNames(by)[i])] = group.texts[i];
    texts["songs"] = Json::array();
    for (const int32_t index : group.songs) {
      const Song song = library.song(index);
      texts["songs"].push_back({{"song_index", index},
                                {"track_id", song.id ? Json(*song.id) : Json()},
                                {"album", song.album},
                                {"duration_ms", song.duration},
                                {"size_bytes", song.size},
                                {"path", song.path}});
    }
    json["groups"].push_back(std::move(texts));
  }
  EncodedOutput out(arguments.encoding, library.host());
  out.write(jsonText(json, 1) + "\n");
  out.finish();
}

}  // namespace

int listDuplicates(const DuplicatesArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  const Sameness by = arguments.anyAlbum ? Sameness::SongOfArtist : Sameness::Song;
  std::vector<SongGroup> groups = groupSongs(library, by);
  std::erase_if(groups, [](const SongGroup &group) { return group.songs.size() < 2; });
  if (arguments.json) {
    writeJson(groups, library, arguments, by);
  } else {
    writeText(groups, library, arguments);
  }
  return kSuccess;
}

}  // namespace zemhost
