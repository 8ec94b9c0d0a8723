// A whole database file, exported in every format; the first byte chooses the fields. What comes out is read
// by readers that share nothing with the writers, and holds what the library answers: JSON by a parser,
// SQLite by SQLite, CSV and M3U by a plain reader of their rules here.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "fuzz/Texts.h"
#include "host/Error.h"
#include "host/Host.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/Folders.h"
#include "tests/support/TemporaryFolder.h"
#include "zemhost/export/ExportWriter.h"
#include "zemhost/export/ListEntries.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/ListFormat.h"

namespace {

using fuzz::Require;
using namespace zemhost;
namespace fs = std::filesystem;

std::string ContentOf(const fs::path &path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string PlainText(const Json &value) {
  if (value.is_null()) return {};
  return value.is_string() ? value.get<std::string>() : value.dump();
}

// Whether a cell holds a value; lists and objects are JSON there, in which characters may be escaped.
bool IsValue(const std::string &cell, const Json &value) {
  return value.is_structured() ? Json::parse(cell, nullptr, false) == value : cell == PlainText(value);
}

// The records of RFC 4180: fields with commas between, each record with its CRLF; a field in quotes holds
// anything, its own quotes doubled.
std::vector<std::vector<std::string>> CsvRecords(std::string_view text) {
  std::vector<std::vector<std::string>> records;
  size_t at = 0;
  const auto field = [&] {
    std::string value;
    if (text.substr(at, 1) != "\"") {
      const size_t end = std::min(text.find_first_of(",\r\n\"", at), text.size());
      value = text.substr(at, end - at);
      at = end;
      return value;
    }
    for (++at;; ++at) {
      Require(at < text.size(), "CSV: quotes without an end");
      if (text[at] == '"' && text.substr(at + 1, 1) != "\"") break;
      if (text[at] == '"') ++at;
      value += text[at];
    }
    ++at;
    return value;
  };
  while (at < text.size()) {
    records.emplace_back();
    for (bool more = true; more;) {
      records.back().push_back(field());
      more = text.substr(at, 1) == ",";
      if (more) ++at;
    }
    Require(text.substr(at, 2) == "\r\n", "CSV: a field ends in its middle");
    at += 2;
  }
  return records;
}

// A library with the rows that an export of it should hold.
class Expected {
 public:
  Expected(const MusicLibrary &library, const std::vector<std::string> &fields)
      : songs_(library, fields), playlists_(library), count_(library.songCount()) {
    for (int32_t song = 0; song < count_; ++song) rows_.push_back(songs_.row(song));
    for (int32_t list = 0; list < library.playlistCount(); ++list) {
      lists_.push_back({playlists_.row(list), {}});
      for (int32_t place = 0; place < library.entryCount(list); ++place)
        lists_.back().entries.push_back(playlists_.entryRow(list, place));
    }
  }

  struct List {
    Row row;
    std::vector<Row> entries;
  };

  void WriteTo(ExportWriter &writer) const {
    for (const Row &row : rows_) writer.song(row);
    for (const List &list : lists_) {
      writer.playlist(list.row);
      for (const Row &entry : list.entries) writer.entry(entry);
    }
    writer.finish();
  }

  [[nodiscard]] const SongColumnList &Columns() const { return songs_.columns(); }
  [[nodiscard]] const std::vector<Row> &Rows() const { return rows_; }
  [[nodiscard]] const std::vector<List> &Lists() const { return lists_; }

 private:
  SongColumns songs_;
  PlaylistColumns playlists_;
  int32_t count_;
  std::vector<Row> rows_;
  std::vector<List> lists_;
};

void IsRow(const nlohmann::json &object, const SongColumnList &columns, const Row &row) {
  Require(object.is_object() && object.size() >= columns.size(), "JSON: fields are missing");
  for (size_t i = 0; i < columns.size(); ++i) {
    // By their own text: the two kinds of objects keep their members in different orders.
    Require(object.at(std::string(columns[i].name)) == nlohmann::json::parse(row[i].dump()),
            "JSON: another value");
  }
}

void ReadsJson(const std::string &text, const Expected &expected) {
  const nlohmann::json json = nlohmann::json::parse(text);
  Require(json.at("songs").size() == expected.Rows().size(), "JSON: another number of songs");
  for (size_t i = 0; i < expected.Rows().size(); ++i)
    IsRow(json.at("songs")[i], expected.Columns(), expected.Rows()[i]);
  Require(json.at("playlists").size() == expected.Lists().size(), "JSON: another number of playlists");
  for (size_t i = 0; i < expected.Lists().size(); ++i) {
    const nlohmann::json &list = json.at("playlists")[i];
    IsRow(list, PlaylistColumns::columns(), expected.Lists()[i].row);
    const auto &entries = expected.Lists()[i].entries;
    Require(list.at("entries").size() == entries.size(), "JSON: another number of entries");
    for (size_t k = 0; k < entries.size(); ++k)
      IsRow(list.at("entries")[k], PlaylistColumns::entryColumns(), entries[k]);
  }
}

void ReadsLinesOfJson(std::string_view text, const Expected &expected) {
  for (const Row &row : expected.Rows()) {
    const size_t end = text.find('\n');
    Require(end != std::string_view::npos, "NDJSON: a line is missing");
    IsRow(nlohmann::json::parse(text.substr(0, end)), expected.Columns(), row);
    text.remove_prefix(end + 1);
  }
  Require(text.empty(), "NDJSON: more lines than songs");
}

void ReadsCsv(const std::string &text, const Expected &expected) {
  (void)fuzz::CodePoints(text);
  const auto records = CsvRecords(text);
  Require(records.size() == expected.Rows().size() + 1, "CSV: another number of records");
  for (size_t i = 0; i < records.size(); ++i) {
    Require(records[i].size() == expected.Columns().size(), "CSV: another number of fields");
    for (size_t k = 0; k < records[i].size(); ++k) {
      const bool isThis = i == 0 ? records[i][k] == expected.Columns()[k].name
                                 : IsValue(records[i][k], expected.Rows()[i - 1][k]);
      Require(isThis, "CSV: another value");
    }
  }
}

// Hands on each row of an answer, as texts; null is empty.
void EachRow(sqlite3 *database, const char *sql,
             const std::function<void(size_t row, size_t column, const std::string &value)> &take) {
  sqlite3_stmt *statement = nullptr;
  Require(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) == SQLITE_OK, sqlite3_errmsg(database));
  for (size_t row = 0; sqlite3_step(statement) == SQLITE_ROW; ++row) {
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
      const void *const bytes = sqlite3_column_blob(statement, column);
      const auto size = static_cast<size_t>(sqlite3_column_bytes(statement, column));
      take(row, static_cast<size_t>(column),
           bytes == nullptr ? std::string() : std::string(static_cast<const char *>(bytes), size));
    }
  }
  Require(sqlite3_finalize(statement) == SQLITE_OK, sqlite3_errmsg(database));
}

bool IsSqlValue(const std::string &cell, const Json &value) {
  return value.is_boolean() ? cell == (value.get<bool>() ? "1" : "0") : IsValue(cell, value);
}

void ReadsSqlite(const fs::path &file, const Expected &expected) {
  sqlite3 *handle = nullptr;
  Require(sqlite3_open_v2(file.c_str(), &handle, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK, "no database");
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(handle, &sqlite3_close);
  EachRow(handle, "PRAGMA integrity_check",
          [](size_t, size_t, const std::string &value) { Require(value == "ok", value); });
  EachRow(handle, "PRAGMA foreign_key_check", [](size_t, size_t, const std::string &value) {
    Require(false, "SQLite: refers to nothing: " + value);
  });
  size_t values = 0;
  EachRow(handle, "SELECT * FROM songs ORDER BY rowid",
          [&](size_t row, size_t column, const std::string &value) {
            Require(row < expected.Rows().size() && IsSqlValue(value, expected.Rows()[row][column]),
                    "SQLite: another value");
            ++values;
          });
  Require(values == expected.Rows().size() * expected.Columns().size(), "SQLite: another number of values");
  std::vector<Row> entries;
  for (const Expected::List &list : expected.Lists())
    entries.insert(entries.end(), list.entries.begin(), list.entries.end());
  size_t entryValues = 0;
  EachRow(handle, "SELECT * FROM entries ORDER BY playlist_number, position",
          [&](size_t row, size_t column, const std::string &value) {
            if (column == 0) return;
            Require(row < entries.size() && IsSqlValue(value, entries[row][column - 1]),
                    "SQLite: another entry");
            ++entryValues;
          });
  Require(entryValues == entries.size() * PlaylistColumns::entryColumns().size(),
          "SQLite: another number of entries");
}

void ReadsM3u(const std::string &text, const MusicLibrary &library, uint64_t leftOut) {
  std::u32string line;
  size_t lines = 0;
  for (const char32_t c : fuzz::CodePoints(text)) {
    if ((c < '\n' || c > '\r') && c != 0x85 && c != 0x2028 && c != 0x2029) {
      line += c;
      continue;
    }
    const bool isPath = lines != 0 && lines % 2 == 0;
    Require(isPath ? !line.empty() && line[0] != '#' && line[0] != ' ' : line.starts_with(U"#EXT"),
            "M3U: a line where another belongs");
    line.clear();
    ++lines;
  }
  const uint64_t songs = static_cast<uint64_t>(library.songCount()) - leftOut;
  Require(line.empty() && lines == 1 + 2 * songs, "M3U: not two lines for each song");
}

class Player {
 public:
  Player() {
    folder_.makeDirectory("player/iPod_Control/iTunes");
    folder_.makeDirectory("player/iPod_Control/Music/F00");
    // Without a plug-in that works here, every input would be refused, and nothing tried.
    samples::Track track{.id = 1};
    folder_.write(
        "player/iPod_Control/iTunes/iTunesDB",
        samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), samples::Variant::LittleEndian));
    const MusicLibrary library(loadDatabase(host_, folder_.path() / "player"));
    Require(library.songCount() == 1, "the plug-in does not read a sound database");
  }

  void Try(uint8_t options, const std::string &bytes) {
    folder_.write("player/iPod_Control/iTunes/iTunesDB", bytes);
    try {
      const MusicLibrary library(loadDatabase(host_, folder_.path() / "player"));
      TryFormats(library, options);
    } catch (const HostError &error) {
      const std::string_view words = error.what();
      Require(
          words.find("iTunesDB: ") != std::string_view::npos && words.find('\n') == std::string_view::npos,
          words);
    }
  }

 private:
  void TryFormats(const MusicLibrary &library, uint8_t options) {
    const std::vector<std::string> few = {"song_index", "track_id", "title", "path", "other_texts"};
    const Expected expected(library, options % 2 == 0 ? std::vector<std::string>() : few);
    const fs::path file = folder_.path() / "out";
    const auto output = [&] { return std::make_unique<EncodedOutput>("UTF-8", library.host(), file); };
    expected.WriteTo(*makeJsonWriter(output(), expected.Columns()));
    ReadsJson(ContentOf(file), expected);
    expected.WriteTo(*makeNdjsonWriter(output(), expected.Columns()));
    ReadsLinesOfJson(ContentOf(file), expected);
    expected.WriteTo(*makeTextTableWriter(TextTable::Csv, output(), expected.Columns()));
    ReadsCsv(ContentOf(file), expected);
    expected.WriteTo(*makeSqliteWriter(file, expected.Columns()));
    ReadsSqlite(file, expected);
    const ListFormat &format = *listFormatNamed("m3u8");
    for (const ListPaths paths : {ListPaths::Host, ListPaths::Relative, ListPaths::Device}) {
      const ListEntries entries(library, paths, folder_.path());
      std::string list = format.heading("", "");
      uint64_t leftOut = 0;
      for (int32_t song = 0; song < library.songCount(); ++song) {
        const std::optional<ListedSong> entry = entries.of(song);
        if (entry) list += format.entry(*entry);
        leftOut += entry ? 0 : 1;
      }
      ReadsM3u(list + format.end(), library, leftOut);
    }
  }

  Host host_ = Host::load({support::PluginFile(), 5.9, {}});
  support::TemporaryFolder folder_;
};

}  // namespace

FUZZ_TARGET(exports) {
  static Player player;
  if (size == 0) return;
  player.Try(data[0], {reinterpret_cast<const char *>(data) + 1, size - 1});
}
