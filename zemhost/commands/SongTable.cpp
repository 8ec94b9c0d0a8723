#include "zemhost/commands/SongTable.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

std::string orNothing(uint32_t number) { return number == 0 ? std::string() : numberText(number); }

template <typename Number>
std::string orNothing(const std::optional<Number> &number) {
  return number ? numberText(*number) : std::string();
}

std::string dateOrNothing(const std::optional<uint32_t> &date) {
  return date ? dateText(*date) : std::string();
}

std::string yesOrNo(const std::optional<bool> &fact) {
  if (!fact) return {};
  return *fact ? "yes" : "no";
}

std::string ofTotal(uint32_t number, uint32_t total) {
  return total == 0 ? orNothing(number) : numberText(number) + "/" + numberText(total);
}

// A column of songs: what options call it, how it looks, and its text for a song. The ranks are those of the
// columns that are shown without being asked for, others have none.
struct SongColumn {
  std::string_view name;
  Column column;
  std::string (*cell)(const Song &);
};

constexpr int kOnRequest = -1;

const std::vector<SongColumn> &songColumns() {
  using S = const Song;
  using enum Column::Align;
  static const std::vector<SongColumn> kColumns = {
      {"title", {"Title", Left, 28, 0}, [](S &s) { return s.title; }},
      {"artist", {"Artist", Left, 16, 1}, [](S &s) { return s.artist; }},
      {"album", {"Album", Left, 16, 2}, [](S &s) { return s.album; }},
      {"disc",
       {"Disc", Right, 0, kOnRequest},
       [](S &s) { return s.facts.disc ? ofTotal(*s.facts.disc, s.facts.discs.value_or(0)) : std::string(); }},
      {"track", {"Track", Right, 0, 5}, [](S &s) { return ofTotal(s.track, s.trackTotal); }},
      {"duration_ms", {"Time", Right, 0, 3}, [](S &s) { return durationText(s.duration); }},
      {"genre", {"Genre", Left, 10, 9}, [](S &s) { return s.genre; }},
      {"year", {"Year", Right, 0, 8}, [](S &s) { return orNothing(s.year); }},
      {"size_bytes", {"Size", Right, 0, 4}, [](S &s) { return sizeText(s.size); }},
      {"rating", {"Rating", Left, 0, 6}, [](S &s) { return ratingText(s.facts.rating.value_or(0)); }},
      {"play_count", {"Plays", Right, 0, 7}, [](S &s) { return orNothing(s.facts.plays.value_or(0)); }},
      {"last_played", {"Last played", Left, 0, 10}, [](S &s) { return dateOrNothing(s.facts.lastPlayed); }},
      {"skip_count",
       {"Skips", Right, 0, kOnRequest},
       [](S &s) { return orNothing(s.facts.skips.value_or(0)); }},
      {"last_skipped",
       {"Last skipped", Left, 0, kOnRequest},
       [](S &s) { return dateOrNothing(s.facts.lastSkipped); }},
      {"heard", {"Heard", Left, 0, kOnRequest}, [](S &s) { return yesOrNo(s.facts.heard); }},
      {"bookmark",
       {"Bookmark", Right, 0, kOnRequest},
       [](S &s) { return durationText(s.facts.bookmark.value_or(0)); }},
      {"date_added", {"Added", Left, 0, 11}, [](S &s) { return dateOrNothing(s.facts.added); }},
      {"date_modified", {"Modified", Left, 0, kOnRequest}, [](S &s) { return dateText(s.modified); }},
      {"bit_rate_kbps", {"Bit rate", Right, 0, 12}, [](S &s) { return bitRateText(s.bitRate); }},
      {"sample_rate_hz", {"Sample rate", Right, 0, 13}, [](S &s) { return sampleRateText(s.sampleRate); }},
      {"file_type", {"Kind", Left, 12, 15}, [](S &s) { return s.fileType; }},
      {"media_kind",
       {"Medium", Left, 0, kOnRequest},
       [](S &s) { return mediaKindText(s.facts.mediaType.value_or(0)); }},
      {"bpm", {"BPM", Right, 0, kOnRequest}, [](S &s) { return orNothing(s.facts.bpm); }},
      {"has_cover", {"Cover", Left, 0, kOnRequest}, [](S &s) { return yesOrNo(s.hasCover()); }},
      {"composer", {"Composer", Left, 12, 14}, [](S &s) { return s.composer; }},
      {"path", {"File", Left, 33, 16}, [](S &s) { return s.path; }}};
  return kColumns;
}

std::vector<SongColumn> columnsToShow(const std::vector<std::string> &names) {
  std::vector<SongColumn> columns;
  for (const SongColumn &column : songColumns()) {
    if (names.empty() && column.column.rank != kOnRequest) columns.push_back(column);
  }
  if (names == std::vector<std::string>{"all"}) {
    columns = songColumns();
    for (SongColumn &column : columns) column.column.rank = 0;
    return columns;
  }
  for (const std::string &name : names) {
    const auto found = std::find_if(songColumns().begin(), songColumns().end(),
                                    [&](const SongColumn &column) { return column.name == name; });
    if (found == songColumns().end()) {
      std::string message = "--columns: no column is named " + inQuotes(name) + "; there are: ";
      for (const SongColumn &column : songColumns())
        message.append(&column == songColumns().data() ? "" : ", ").append(column.name);
      throw HostError(message);
    }
    columns.push_back(*found);
    columns.back().column.rank = 0;
  }
  return columns;
}

Table tableOf(const std::vector<SongColumn> &columns, const Table::Fit &fit) {
  std::vector<Column> all = {{"#", Column::Align::Right, 0, 0}};
  for (const SongColumn &column : columns) all.push_back(column.column);
  return Table(std::move(all), fit);
}

}  // namespace

SongTable::SongTable(EncodedOutput &out, const std::vector<std::string> &names)
    : out_(out), table_(tableOf(columnsToShow(names), out.fitCells())) {
  for (const SongColumn &column : columnsToShow(names)) cells_.push_back(column.cell);
}

void SongTable::addSong(int32_t number, const Song &song) {
  totals_.add(song.duration, song.size);
  std::vector<std::string> row = {std::to_string(number)};
  for (const Cell cell : cells_) row.push_back(cell(song));
  table_.addRow(std::move(row));
}

void SongTable::addMissingSong(int32_t number, const std::string &id) {
  ++missing_;
  std::vector<std::string> row(cells_.size() + 1);
  row[0] = std::to_string(number);
  row[1] = "(no song has the ID " + id + ")";
  table_.addRow(std::move(row));
}

void SongTable::addHeading(const std::string &text) {
  std::vector<std::string> row(cells_.size() + 1);
  row[1] = text;
  table_.addRow(std::move(row));
}

void SongTable::write() {
  out_.write(table_);
  std::string line = countText(totals_.songs, "song", "songs");
  if (missing_ > 0) line += ", " + countText(missing_, "entry", "entries") + " without a song";
  out_.write("\n");
  out_.write(line + ", " + totalTimeText(totals_.duration) + ", " + totalSizeText(totals_.size) + "\n");
}

}  // namespace zemhost
