#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/library/SongGroups.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

// What was played of one song, artist or album.
struct Played {
  std::vector<std::string> texts;  // as its group has them
  uint64_t songs = 0;
  uint64_t plays = 0;
  uint64_t skips = 0;
  uint32_t lastPlayed = 0;
  uint32_t lastSkipped = 0;
};

Sameness samenessOf(const std::string &by) {
  if (by == "artist") return Sameness::Artist;
  return by == "album" ? Sameness::Album : Sameness::Song;
}

// Songs of which the database does not say how often they were played are left out, and counted.
std::vector<Played> playedIn(const MusicLibrary &library, Sameness by, uint64_t &unknown) {
  std::vector<Played> all;
  for (const SongGroup &group : groupSongs(library, by)) {
    Played played{group.texts};
    for (const int32_t index : group.songs) {
      const player::SongFacts facts = library.song(index).facts;
      if (!facts.plays) {
        ++unknown;
        continue;
      }
      ++played.songs;
      played.plays += *facts.plays;
      played.skips += facts.skips.value_or(0);
      played.lastPlayed = std::max(played.lastPlayed, facts.lastPlayed.value_or(0));
      played.lastSkipped = std::max(played.lastSkipped, facts.lastSkipped.value_or(0));
    }
    if (played.songs != 0) all.push_back(std::move(played));
  }
  return all;
}

class PlaysReport {
 public:
  PlaysReport(EncodedOutput &out, Sameness by, size_t top) : out_(out), by_(by), top_(top) {}

  // A list of those for which `belongs` holds, the highest by `order` first, those of the same in the order
  // of the library; nothing without any.
  template <typename Belongs, typename Order>
  void write(const char *title, const std::vector<Played> &all, const Belongs &belongs, const Order &order) {
    std::vector<const Played *> chosen;
    for (const Played &played : all) {
      if (belongs(played)) chosen.push_back(&played);
    }
    if (chosen.empty()) return;
    std::stable_sort(chosen.begin(), chosen.end(),
                     [&](const Played *a, const Played *b) { return order(*a) > order(*b); });
    out_.write(isFirst_ ? "" : "\n");
    isFirst_ = false;
    const size_t shown = std::min(top_, chosen.size());
    out_.write(
        std::string(title) +
        (shown < chosen.size() ? ", " + std::to_string(shown) + " of " + std::to_string(chosen.size()) : "") +
        "\n");
    Table table(columns(), out_.fitCells());
    for (size_t i = 0; i < shown; ++i) addRow(table, *chosen[i]);
    out_.write(table);
  }

 private:
  std::vector<Column> columns() const {
    using enum Column::Align;
    std::vector<Column> columns = {{"Plays", Right, 0, 0},
                                   {"Last played", Left, 0, 1},
                                   {"Skips", Right, 0, 2},
                                   {"Last skipped", Left, 0, 3}};
    if (by_ != Sameness::Song) columns.push_back({"Songs", Right, 0, 2});
    for (const std::string_view name : textNames(by_)) {
      std::string heading(name);
      heading[0] = static_cast<char>(heading[0] - 'a' + 'A');
      columns.push_back({heading, Left, 16, name == textNames(by_).front() ? 0 : 1});
    }
    return columns;
  }

  void addRow(Table &table, const Played &played) const {
    std::vector<std::string> row = {std::to_string(played.plays), dateText(played.lastPlayed),
                                    played.skips == 0 ? std::string() : std::to_string(played.skips),
                                    dateText(played.lastSkipped)};
    if (by_ != Sameness::Song) row.push_back(std::to_string(played.songs));
    row.insert(row.end(), played.texts.begin(), played.texts.end());
    table.addRow(std::move(row));
  }

  EncodedOutput &out_;
  Sameness by_;
  size_t top_;
  bool isFirst_ = true;
};

}  // namespace

int showPlays(const PlaysArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  const Sameness by = samenessOf(arguments.by);
  uint64_t unknown = 0;
  const std::vector<Played> all = playedIn(library, by, unknown);
  EncodedOutput out(arguments.encoding, library.host());
  PlaysReport report(out, by, arguments.top);
  const auto isPlayed = [](const Played &played) { return played.plays != 0; };
  report.write("Most played", all, isPlayed, [](const Played &played) { return played.plays; });
  report.write(
      "Lately played", all, [](const Played &played) { return played.lastPlayed != 0; },
      [](const Played &played) { return played.lastPlayed; });
  report.write(
      "Skipped", all, [](const Played &played) { return played.skips != 0; },
      [](const Played &played) { return played.skips; });
  report.write(
      "Never played", all, [](const Played &played) { return played.plays == 0; },
      [](const Played & /*played*/) { return 0; });
  if (unknown != 0) {
    out.write("The database does not say how often " + countText(unknown, "song was", "songs were") +
              " played.\n");
  }
  if (all.empty() && unknown == 0) out.write("There are no songs.\n");
  out.finish();
  return kSuccess;
}

}  // namespace zemhost
