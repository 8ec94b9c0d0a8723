#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/Recordings.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

const std::vector<std::string_view> &namesOfTexts(const DuplicatesArguments &arguments) {
  return textNames(arguments.sameAlbum ? Sameness::Song : Sameness::SongOfArtist);
}

// "2", "0.35".
std::string secondsText(double seconds) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.10g", seconds);
  return text.data();
}

// Why songs count as one recording: "title, artist; length within 0.35 s", "title (loosely), artist; length".
std::string reasonText(const Recording &recording, const std::vector<std::string_view> &names) {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    text.append(i == 0 ? "" : ", ").append(names[i]).append(recording.isExact[i] ? "" : " (loosely)");
  }
  if (!recording.apart) return text + "; length not known";
  if (*recording.apart == 0) return text + "; length";
  return text + "; length within " + secondsText(*recording.apart / 1000.0) + " s";
}

void writeText(const Recordings &found, const MusicLibrary &library, const DuplicatesArguments &arguments) {
  EncodedOutput out(arguments.encoding, library.host());
  using enum Column::Align;
  Table table({{"Group", Right, 0, 0},
               {"#", Right, 0, 0},
               {"Title", Left, 20, 0},
               {"Artist", Left, 16, 1},
               {"Album", Left, 16, 2},
               {"Time", Right, 0, 4},
               {"Size", Right, 0, 5},
               {"Same", Left, 24, 3},
               {"Added", Left, 0, 7},
               {"File", Left, 24, 6}},
              out.fitCells());
  Totals spare;  // all but one of each recording
  for (size_t number = 0; number < found.repeated.size(); ++number) {
    const Recording &recording = found.repeated[number];
    for (const int32_t index : recording.group.songs) {
      const Song song = library.song(index);
      const bool isFirst = index == recording.group.songs.front();
      table.addRow({std::to_string(number + 1), std::to_string(index), song.title, song.artist, song.album,
                    durationText(song.duration), sizeText(song.size),
                    isFirst ? reasonText(recording, namesOfTexts(arguments)) : "",
                    song.facts.added ? dateText(*song.facts.added) : "", song.path});
      if (!isFirst) spare.add(song.duration, song.size);
    }
  }
  if (found.repeated.empty()) {
    out.write("No song occurs twice.\n");
  } else {
    out.write(table);
    out.write("\n");
    out.writeLine(countText(found.repeated.size(), "song is", "songs are") +
                  " in the library more than once; " + countText(spare.songs, "copy", "copies") +
                  " too many, " + totalSizeText(spare.size));
  }
  if (found.toldApart > 0) {
    out.writeLine(countText(found.toldApart, "song has", "songs have") +
                  " recordings whose lengths lie more than " + secondsText(arguments.length) +
                  " s apart; these are not the same");
  }
  out.finish();
}

void writeJson(const Recordings &found, const MusicLibrary &library, const DuplicatesArguments &arguments) {
  const std::vector<std::string_view> &names = namesOfTexts(arguments);
  Json json = {{"path", arguments.path}, {"songs", library.songCount()}, {"groups", Json::array()}};
  for (const Recording &recording : found.repeated) {
    Json group = Json::object();
    for (size_t i = 0; i < names.size(); ++i) group[std::string(names[i])] = recording.group.texts[i];
    group["same"] = Json::array();
    group["loosely_same"] = Json::array();
    for (size_t i = 0; i < names.size(); ++i)
      group[recording.isExact[i] ? "same" : "loosely_same"].push_back(names[i]);
    group["length_difference_ms"] = recording.apart ? Json(*recording.apart) : Json();
    group["songs"] = Json::array();
    for (const int32_t index : recording.group.songs) {
      const Song song = library.song(index);
      group["songs"].push_back({{"song_index", index},
                                {"track_id", song.id ? Json(*song.id) : Json()},
                                {"title", song.title},
                                {"artist", song.artist},
                                {"album", song.album},
                                {"duration_ms", song.duration},
                                {"size_bytes", song.size},
                                {"path", song.path}});
    }
    json["groups"].push_back(std::move(group));
  }
  json["told_apart"] = found.toldApart;
  EncodedOutput out(arguments.encoding, library.host());
  out.write(jsonText(json, 1) + "\n");
  out.finish();
}

}  // namespace

int listDuplicates(const DuplicatesArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  const Recordings found = repeatedRecordings(
      library,
      {arguments.sameAlbum, arguments.loosely, static_cast<uint32_t>(std::lround(arguments.length * 1000))});
  if (arguments.json) {
    writeJson(found, library, arguments);
  } else {
    writeText(found, library, arguments);
  }
  return kSuccess;
}

}  // namespace zemhost
