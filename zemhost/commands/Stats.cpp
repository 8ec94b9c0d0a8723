#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/output/Bar.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Terminal.h"
#include "zemhost/output/Units.h"
#include "zemhost/report/Statistics.h"

namespace zemhost {

namespace {

struct Heading {
  Grouping by;
  const char *text;
  size_t usualTop;  // in the overview; 0: all
};
// In the order of the overview.
constexpr std::array<Heading, 8> kHeadings = {{{Grouping::Artist, "Artist", 10},
                                               {Grouping::Album, "Album", 10},
                                               {Grouping::Genre, "Genre", 10},
                                               {Grouping::Decade, "Decade", 0},
                                               {Grouping::Rating, "Rating", 0},
                                               {Grouping::Kind, "Kind", 10},
                                               {Grouping::Month, "Added", 12},
                                               {Grouping::Year, "Year", 0}}};
constexpr const char *kMeasureHeadings[] = {"Songs", "Time", "Size", "Plays"};
constexpr const char *kUnknown = "not known";

template <typename Name>
Name named(const std::vector<std::string> &names, const std::string &name) {
  return static_cast<Name>(std::find(names.begin(), names.end(), name) - names.begin());
}

std::string valueText(const Figures &figures, Measure measure) {
  const std::optional<uint64_t> value = figures.value(measure);
  if (!value) return kUnknown;
  if (measure == Measure::Time) return totalTimeText(*value);
  return measure == Measure::Size ? totalSizeText(*value) : std::to_string(*value);
}

std::string nameText(const FigureGroup &group, Grouping by) {
  if (group.name.empty()) return std::string("(") + kUnknown + ")";
  if (by != Grouping::Rating) return group.name;
  return group.name == "0" ? "no stars" : ratingText(static_cast<uint32_t>(std::stoul(group.name)));
}

class StatsReport {
 public:
  StatsReport(const StatsArguments &arguments, const MusicLibrary &library)
      : out_(arguments.encoding, library.host()),
        style_(barStyle(arguments.encoding)),
        measure_(named<Measure>(measureNames(), arguments.measure)) {}

  void writeTotals(const Figures &all, const std::vector<std::pair<const char *, size_t>> &counts) {
    writeFact("Songs", std::to_string(all.songs));
    for (const auto &[label, count] : counts) writeFact(label, std::to_string(count));
    for (const Measure measure : {Measure::Time, Measure::Size, Measure::Plays}) {
      std::string text = valueText(all, measure);
      const uint64_t unstated = all.unstated(measure);
      if (all.value(measure) && unstated != 0)
        text += ", and not known of " + countText(unstated, "song", "songs");
      writeFact(kMeasureHeadings[static_cast<size_t>(measure)], text);
    }
  }

  // The groups as they are given, with how many more there are.
  void writeGroups(const Heading &heading, const std::vector<FigureGroup> &groups, size_t more) {
    const bool isAlbum = heading.by == Grouping::Album;
    using enum Column::Align;
    std::vector<Column> columns = {{heading.text, Left, 8, 0}};
    if (isAlbum) columns.push_back({"Artist", Left, 8, 1});
    columns.push_back({kMeasureHeadings[static_cast<size_t>(measure_)], Right, 0, 0});
    columns.push_back({"", Left, 0, 0});
    uint64_t most = 0;
    std::vector<std::vector<std::string>> rows;
    for (const FigureGroup &group : groups) {
      most = std::max(most, group.figures.value(measure_).value_or(0));
      rows.push_back({nameText(group, heading.by)});
      if (isAlbum) rows.back().push_back(group.artist);
      rows.back().push_back(valueText(group.figures, measure_));
    }
    const size_t width = barWidth(columns, rows);
    Table table(columns, out_.fitCells());
    for (size_t i = 0; i < rows.size(); ++i) {
      rows[i].push_back(barText(groups[i].figures.value(measure_).value_or(0), most, width, style_));
      table.addRow(std::move(rows[i]));
    }
    out_.write(table);
    if (more == 0) return;
    std::string line = "and " + std::to_string(more) + " more";
    if (isInOrder(heading.by)) line += ", each with no more than these";
    out_.writeLine(line);
  }

  void writeBlank() { out_.write("\n"); }
  void writeLine(const std::string &text) { out_.writeLine(text); }
  void finish() { out_.finish(); }
  Measure measure() const { return measure_; }

 private:
  void writeFact(const std::string &label, const std::string &text) {
    std::string line = label;
    line.resize(std::max<size_t>(line.size() + 1, 9), ' ');
    const size_t indent = line.size();
    out_.writeLine(line + text, indent);
  }

  // What the columns before it leave of the terminal; at least an eighth of it, for which names are cut.
  static size_t barWidth(const std::vector<Column> &columns,
                         const std::vector<std::vector<std::string>> &rows) {
    constexpr size_t kWidest = 60;
    constexpr size_t kGap = 2;
    const std::optional<size_t> terminal = terminalWidth();
    if (!terminal) return 40;
    size_t used = 0;
    for (size_t column = 0; column + 1 < columns.size(); ++column) {
      size_t widest = displayWidth(columns[column].heading);
      for (const std::vector<std::string> &row : rows)
        widest = std::max(widest, displayWidth(safeText(row[column])));
      used += widest + kGap;
    }
    const size_t least = std::max<size_t>(1, *terminal / 8);
    return std::min(kWidest, used < *terminal ? std::max(least, *terminal - used) : least);
  }

  EncodedOutput out_;
  BarStyle style_;
  Measure measure_;
};

// With as many groups as are asked for, else as a person reads.
size_t writeTop(StatsReport &report, const Statistics &statistics, const Heading &heading, size_t top) {
  const std::vector<FigureGroup> all = statistics.by(heading.by);
  const std::vector<FigureGroup> chosen = highest(all, heading.by, report.measure(), top);
  report.writeGroups(heading, chosen, all.size() - chosen.size());
  return all.size();
}

void writeUnstated(StatsReport &report, const Statistics &statistics) {
  const uint64_t unstated = statistics.all().unstated(report.measure());
  if (unstated == 0) return;
  constexpr const char *kWhat[] = {"", "how long ", "how large ", "how often "};
  constexpr const char *kVerb[] = {"", " is", " is", " was played"};
  constexpr const char *kVerbs[] = {"", " are", " are", " were played"};
  const auto measure = static_cast<size_t>(report.measure());
  report.writeBlank();
  report.writeLine(
      std::string("The database does not say ") + kWhat[measure] +
      countText(unstated, std::string("song") + kVerb[measure], std::string("songs") + kVerbs[measure]) +
      ".");
}

void writeText(const Statistics &statistics, const MusicLibrary &library, const StatsArguments &arguments) {
  StatsReport report(arguments, library);
  if (!arguments.by.empty()) {
    const auto by = named<Grouping>(groupingNames(), arguments.by);
    const Heading &heading =
        *std::find_if(kHeadings.begin(), kHeadings.end(), [&](const Heading &one) { return one.by == by; });
    writeTop(report, statistics, heading, arguments.top.value_or(isInOrder(by) ? 0 : 20));
    writeUnstated(report, statistics);
  } else {
    const auto count = [&](Grouping by) {
      const std::vector<FigureGroup> groups = statistics.by(by);
      return groups.size() - (!groups.empty() && groups.back().name.empty() ? 1 : 0);
    };
    report.writeTotals(statistics.all(), {{"Artists", count(Grouping::Artist)},
                                          {"Albums", count(Grouping::Album)},
                                          {"Genres", count(Grouping::Genre)}});
    for (const Heading &heading : kHeadings) {
      if (heading.by == Grouping::Year || statistics.all().songs == 0) continue;
      report.writeBlank();
      writeTop(report, statistics, heading, arguments.top.value_or(heading.usualTop));
    }
  }
  report.finish();
}

Json figuresJson(const Figures &figures) {
  const auto value = [&](Measure measure) {
    const std::optional<uint64_t> known = figures.value(measure);
    return known ? Json(*known) : Json();
  };
  return {{"songs", figures.songs},
          {"duration_ms", value(Measure::Time)},
          {"size_bytes", value(Measure::Size)},
          {"plays", value(Measure::Plays)},
          {"songs_without",
           {{"duration_ms", figures.unstated(Measure::Time)},
            {"size_bytes", figures.unstated(Measure::Size)},
            {"plays", figures.unstated(Measure::Plays)}}}};
}

void writeJson(const Statistics &statistics, const MusicLibrary &library, const StatsArguments &arguments) {
  const auto measure = named<Measure>(measureNames(), arguments.measure);
  Json json = {{"path", arguments.path},
               {"measure", arguments.measure},
               {"all", figuresJson(statistics.all())},
               {"groups", Json::object()}};
  for (size_t i = 0; i < groupingNames().size(); ++i) {
    const std::string &name = groupingNames()[i];
    if (!arguments.by.empty() && arguments.by != name) continue;
    const auto by = static_cast<Grouping>(i);
    Json list = Json::array();
    for (const FigureGroup &group : highest(statistics.by(by), by, measure, arguments.top.value_or(0))) {
      Json entry = {{"name", group.name.empty() ? Json() : Json(group.name)}};
      if (by == Grouping::Album) entry["artist"] = group.artist.empty() ? Json() : Json(group.artist);
      entry.update(figuresJson(group.figures));
      list.push_back(std::move(entry));
    }
    json["groups"][name] = std::move(list);
  }
  EncodedOutput out(arguments.encoding, library.host());
  out.write(jsonText(json, 1) + "\n");
  out.finish();
}

}  // namespace

int showStats(const StatsArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  const Statistics statistics(library);
  if (arguments.json) {
    writeJson(statistics, library, arguments);
  } else {
    writeText(statistics, library, arguments);
  }
  return kSuccess;
}

}  // namespace zemhost
