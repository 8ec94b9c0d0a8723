#include <algorithm>
#include <string>

#include "host/Error.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/library/Phrases.h"
#include "zemhost/library/PlaylistChoice.h"
#include "zemhost/library/PlaylistWords.h"
#include "zemhost/library/PodcastGroups.h"
#include "zemhost/library/SmartLists.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

constexpr size_t kNamedSongs = 20;  // of those that differ

class PlaylistPage {
 public:
  PlaylistPage(const MusicLibrary &library, int32_t playlist, const PlaylistArguments &arguments)
      : library_(library),
        playlist_(playlist),
        arguments_(arguments),
        facts_(library.playlistFacts(playlist)),
        smart_(library),
        out_(arguments.encoding, library.host()) {
    if (arguments.evaluate && !facts_.rules)
      throw HostError(playlistLabel(playlist, library.playlistName(playlist)) + " has no rules to evaluate");
  }

  void write() {
    writeSongs();
    writeFacts();
    if (arguments_.evaluate) writeEvaluation();
    out_.finish();
  }

 private:
  void writeSongs() {
    SongTable table(out_, arguments_.columns);
    for (const EntryGroup &group : entryGroups(library_, playlist_)) {
      if (!group.name.empty()) table.addHeading(group.name);
      for (const int32_t position : group.positions) {
        const PlaylistEntry entry = library_.entry(playlist_, position);
        if (entry.song < 0) {
          table.addMissingSong(position, entry.id);
        } else {
          table.addSong(position, library_.song(entry.song));
        }
      }
    }
    table.write();
  }

  void writeFacts() {
    if (facts_.kind == player::PlaylistKind::OnTheGo)
      out_.writeLine("Made on the player, and not synchronised yet");
    std::string line;
    const auto add = [&line](const std::string &part) { line += (line.empty() ? "" : ", ") + part; };
    if (facts_.created) add("created " + dateText(*facts_.created));
    if (facts_.modified) add("changed " + dateText(*facts_.modified));
    if (facts_.sortOrder) add("order: " + sortOrderText(facts_.sortOrder));
    if (!line.empty()) {
      line.front() = static_cast<char>(line.front() - 'a' + 'A');
      out_.writeLine(line);
    }
    if (facts_.rules) out_.writeLine("Rules: " + smart_.text(*facts_.rules));
  }

  void writeEvaluation() {
    const player::SmartRules &rules = *facts_.rules;
    const std::string day = arguments_.day.empty() ? today() : arguments_.day;
    const player::SmartResult result = smart_.evaluate(rules, endOfDay(day).value_or(0));
    const player::SmartDifference found = player::difference(result, smart_.songsOf(playlist_));
    out_.write("\n");
    if (player::dependsOnDay(rules))
      out_.writeLine("The rules depend on the day; they are looked at as of the end of " + day + ".");
    if (!result.undecided.empty()) {
      out_.writeLine(countText(result.undecided.size(), "song", "songs") +
                     " cannot be judged: the rules ask for what the library does not say.");
    }
    if (!result.possible.empty()) {
      out_.writeLine("The limit leaves a choice among " + countText(result.possible.size(), "song", "songs") +
                     ".");
    }
    if (found.isNone()) {
      out_.writeLine("The list holds what its rules choose.");
      return;
    }
    if (found.isOtherLength) {
      out_.writeLine("The rules choose " + countText(*result.count, "song", "songs") + ".");
    }
    writeSongsOf("missing from the list", found.missing);
    writeSongsOf("in the list, and not chosen by its rules", found.extra);
  }

  void writeSongsOf(const std::string &what, const std::vector<size_t> &songs) {
    if (songs.empty()) return;
    out_.writeLine(countText(songs.size(), "song", "songs") + " " + what + ":");
    for (size_t i = 0; i < std::min(songs.size(), kNamedSongs); ++i) {
      const auto index = static_cast<int32_t>(songs[i]);
      out_.writeLine("- " + songLabel(index, library_.song(index)), 2);
    }
    if (songs.size() > kNamedSongs)
      out_.writeLine("- and " + std::to_string(songs.size() - kNamedSongs) + " more");
  }

  const MusicLibrary &library_;
  int32_t playlist_;
  const PlaylistArguments &arguments_;
  player::PlaylistFacts facts_;
  SmartLists smart_;
  EncodedOutput out_;
};

}  // namespace

int listPlaylist(const PlaylistArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  PlaylistPage(library, choosePlaylist(library, arguments.playlist), arguments).write();
  warnOfCovers(library);
  return kSuccess;
}

}  // namespace zemhost
