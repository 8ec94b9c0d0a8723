#include "player/SqliteLibrary.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

#include "player/Error.h"
#include "player/Folder.h"
#include "player/SqliteLists.h"
#include "player/SqliteSongs.h"

namespace player {

namespace fs = std::filesystem;

namespace {

struct Member {
  const char *name;
  fs::path SqliteFiles::*path;
};
constexpr Member kBesides[] = {{"Locations.itdb", &SqliteFiles::locations},
                               {"Dynamic.itdb", &SqliteFiles::dynamic},
                               {"Extras.itdb", &SqliteFiles::extras},
                               {"Genius.itdb", &SqliteFiles::genius}};

// Without these a library shows next to nothing; others come and go with the version of the program.
constexpr const char *kExpectedTables[] = {"item",     "container",     "item_to_container",
                                           "location", "base_location", "item_stats"};

bool isExpected(const std::string &table) {
  return std::find(std::begin(kExpectedTables), std::end(kExpectedTables), table) !=
         std::end(kExpectedTables);
}

uint64_t sizeOf(const fs::path &file) {
  std::error_code error;
  const uintmax_t size = fs::file_size(file, error);
  return error ? 0 : size;
}

void expectAllInside(const SqliteFiles &files) {
  if (files.root.empty()) return;
  expectInside(files.root, files.library, files.library.string());
  for (const Member &member : kBesides) {
    const fs::path &file = files.*member.path;
    if (!file.empty()) expectInside(files.root, file, file.string());
  }
}

}  // namespace

SqliteFiles sqliteFilesBeside(const fs::path &library) {
  SqliteFiles files;
  files.library = library;
  for (const Member &member : kBesides)
    files.*member.path = childNamed(library.parent_path(), member.name).value_or(fs::path());
  return files;
}

SqliteLibrary::SqliteLibrary(const SqliteFiles &files) {
  const TableReport report = [this](const SqliteFile &file, const std::string &table, TableState state) {
    this->report(file, table, state);
  };
  expectAllInside(files);
  SqliteSongs songs(report, findings_);
  bytes_ = sizeOf(files.library);
  {
    SqliteFile file(files.library);
    songs.readLibrary(file);
    if (tables_.empty() || tables_.front().table != "item")
      throw PlayerError(file.name() + ": it has no table of songs");
    const SongFinder find = [&songs](int64_t pid) { return songs.find(pid); };
    lists_ = readSqliteLists(file, find, songs.songs().size(), report, findings_);
    readVersion(file);
  }
  warnOfAbsentFiles(files);
  const auto read = [&](const fs::path &path, void (SqliteSongs::*step)(SqliteFile &)) {
    if (path.empty()) return;
    bytes_ += sizeOf(path);
    try {
      SqliteFile file(path);
      if (step != nullptr) (songs.*step)(file);
    } catch (const PlayerError &error) {
      warn(FindingKind::DamagedFile, std::string(error.what()) + "; what it says is left out");
    }
  };
  read(files.locations, &SqliteSongs::readLocations);
  read(files.dynamic, &SqliteSongs::readDynamic);
  read(files.extras, &SqliteSongs::readExtras);
  read(files.genius, nullptr);
  songs_ = std::move(songs.songs());
  const auto isCategory = [](const SqliteList &list) { return list.isCategory; };
  categories_ = static_cast<uint64_t>(std::erase_if(lists_, isCategory));
  joinCounts(files);
}

void SqliteLibrary::warn(FindingKind kind, const std::string &line) {
  warnings_.push_back(line);
  findings_.add(kind, line);
}

void SqliteLibrary::report(const SqliteFile &file, const std::string &table, TableState state) {
  if (state != TableState::Missing)
    tables_.push_back({fs::path(file.name()).filename().string(), table, file.rowsOfTable()});
  if (state == TableState::Damaged) {
    warn(FindingKind::DamagedFile, file.name() + ": the table " + table + " is damaged; " +
                                       std::to_string(file.rowsOfTable()) + " of its rows can be read");
  } else if (state == TableState::Missing && isExpected(table)) {
    warn(FindingKind::DamagedFile, file.name() + ": it has no table " + table);
  }
}

void SqliteLibrary::warnOfAbsentFiles(const SqliteFiles &files) {
  std::string names;
  for (const Member &member : kBesides) {
    if ((files.*member.path).empty()) names.append(names.empty() ? "" : ", ").append(member.name);
  }
  if (names.empty()) return;
  warn(FindingKind::AbsentFile,
       files.library.parent_path().string() + ": it has no " + names + "; what belongs there is not known");
}

void SqliteLibrary::readVersion(SqliteFile &file) {
  const TableState state = file.each("version_info", {"major", "minor"}, [this](const SqliteRow &row) {
    const auto major = row[0].integer();
    const auto minor = row[1].integer();
    if (major && minor) version_ = std::to_string(*major) + "." + std::to_string(*minor);
  });
  report(file, "version_info", state);
}

// An entry belongs to the song of its place.
void SqliteLibrary::joinCounts(const SqliteFiles &files) {
  const fs::path file = playCountsBeside(files.library);
  if (file.empty()) return;
  constexpr uint32_t kSummerTime = 2 * 3600;
  constexpr uint32_t kAnyZone = 14 * 3600;
  try {
    if (!files.root.empty()) expectInside(files.root, file, file.string());
    std::vector<PlayCount> counts = readPlayCounts(file, songs_.size());
    for (size_t i = 0; i < songs_.size(); ++i) {
      if (songs_[i].place != static_cast<int64_t>(i))
        throw PlayerError(file.string() + ": the songs are not numbered as its entries are");
    }
    const std::optional<int32_t> zone = zoneOf(counts);
    if (zone) makeUtc(counts, *zone);
    PlayCountMerge merge(
        std::move(counts), [this](size_t song) { return songs_[song].facts; }, zone ? kSummerTime : kAnyZone);
    if (merge.isLeftOver()) throw PlayerError(file.string() + ": its dates are older than the database");
    for (size_t i = 0; i < songs_.size(); ++i) songs_[i].facts = merge.merged(i, songs_[i].facts);
    merge_ = std::move(merge);
  } catch (const PlayerError &error) {
    warn(FindingKind::UnusedFile,
         std::string(error.what()) + "; plays since the last synchronisation are left out");
  }
}

}  // namespace player
