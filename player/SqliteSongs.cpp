#include "player/SqliteSongs.h"

#include <algorithm>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace player {

namespace {

// A path of the disk, from the root of the player, with ':' between the names.
std::string joinedPath(std::string_view base, std::string_view location) {
  std::string path;
  for (std::string_view part : {base, location}) {
    while (!part.empty()) {
      const size_t end = std::min(part.find('/'), part.size());
      if (end > 0) path.append(1, ':');
      for (const char c : part.substr(0, end)) path += c == ':' ? '/' : c;
      part.remove_prefix(std::min(end + 1, part.size()));
    }
  }
  return path;
}

}  // namespace

std::optional<size_t> SqliteSongs::find(int64_t pid) const {
  const auto found = places_.find(pid);
  return found == places_.end() ? std::nullopt : std::optional(found->second);
}

// The song of a row; rows of no song are findings.
SqliteSong *SqliteSongs::ofTable(const std::string &table, int64_t pid) {
  const auto place = find(pid);
  if (place) return &songs_[*place];
  findings_.add(FindingKind::UnresolvedId,
                "the table " + table + " names the song " + hexId(pid) + ", which is not there");
  return nullptr;
}

SqliteSongs::Names SqliteSongs::namesOf(SqliteFile &file, const char *table, const char *key,
                                        const char *name, bool &isThere) {
  Names names;
  bool hasRows = false;
  const TableState state = file.each(table, {key, name, "is_unknown"}, [&](const SqliteRow &row) {
    hasRows = true;
    // What the player shows for a song that says nothing is no name.
    const bool isUnknown = row[2].flag().value_or(false);
    if (const auto id = row[0].integer()) names.emplace(*id, isUnknown ? std::string() : row[1].text());
  });
  report_(file, table, state);
  isThere = hasRows && state == TableState::Read;
  return names;
}

// Whether a song may have its own copy of a name. A file that is made to could fill the memory with one long
// name of all its songs.
bool SqliteSongs::mayRepeat(const std::string &name) {
  if (name.size() > bytesToRepeat_) {
    if (bytesToRepeat_ != 0)
      findings_.add(FindingKind::DamagedFile, "the names that songs share are longer than the file explains");
    bytesToRepeat_ = 0;
    return false;
  }
  bytesToRepeat_ -= name.size();
  return true;
}

void SqliteSongs::readLibrary(SqliteFile &file) {
  constexpr uint64_t kShortestItem = 32;
  bytesToRepeat_ = (1U << 20) + 4 * file.size();
  std::vector<SqliteItem> items;
  std::set<int64_t> known;
  const TableState state =
      readTable<SqliteItem>(file, "item", "pid", itemColumns(), [&](int64_t pid) -> SqliteItem * {
        if (!known.insert(pid).second) {
          findings_.add(FindingKind::WrongCount, "two songs have the ID " + hexId(pid) + "; one is left out");
          return nullptr;
        }
        if (items.size() >= file.size() / kShortestItem) return nullptr;
        items.emplace_back();
        items.back().song.pid = pid;
        items.back().song.facts.persistentId = static_cast<uint64_t>(pid);
        return &items.back();
      });
  report_(file, "item", state);
  if (file.rowsOfTable() > file.size() / kShortestItem) {
    findings_.add(FindingKind::DamagedFile,
                  "there are more songs than the file's size explains; those above " +
                      std::to_string(file.size() / kShortestItem) + " are left out");
  }
  putInOrder(items);
  join(file, std::move(items));
  const auto read = [&](const char *table, std::span<const SqliteColumn<SqliteSong>> columns) {
    const auto find = [this, table](int64_t pid) { return ofTable(table, pid); };
    const TableState found = readTable<SqliteSong>(file, table, "item_pid", columns, find);
    report_(file, table, found);
    return found;
  };
  read("avformat_info", formatColumns());
  read("video_info", videoColumns());
  read("podcast_info", podcastColumns());
  const bool isStoreKnown = read("store_info", storeColumns()) == TableState::Read;
  for (SqliteSong &song : songs_) {
    SongFacts &facts = song.facts;
    if (isStoreKnown && !facts.bought) facts.bought = false;
    if (facts.gapless.value_or(false)) continue;
    facts.delay.reset();
    facts.padding.reset();
    facts.samples.reset();
  }
  bool isThere = false;
  kinds_ = namesOf(file, "location_kind_map", "id", "kind", isThere);
}

// By their places; those without one behind, in the order of the file.
void SqliteSongs::putInOrder(std::vector<SqliteItem> &items) {
  std::stable_sort(items.begin(), items.end(), [](const SqliteItem &one, const SqliteItem &other) {
    if (!one.song.place || !other.song.place) return one.song.place.has_value();
    return *one.song.place < *other.song.place;
  });
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i].song.place == static_cast<int64_t>(i)) continue;
    findings_.add(FindingKind::WrongCount, "the places of the " + std::to_string(items.size()) +
                                               " songs are not 0 to " + std::to_string(items.size() - 1));
    break;
  }
}

// Where a text is not in the item itself, it is in the table that one of its IDs leads to.
void SqliteSongs::join(SqliteFile &file, std::vector<SqliteItem> items) {
  struct Link {
    const char *table;
    const char *key;
    const char *name;
    int64_t SqliteItem::*id;
    std::string SqliteSong::*text;
  };
  static const Link kLinks[] = {
      {"album", "pid", "name", &SqliteItem::album, &SqliteSong::album},
      {"track_artist", "pid", "name", &SqliteItem::trackArtist, &SqliteSong::artist},
      {"artist", "pid", "name", &SqliteItem::artist, nullptr},
      {"composer", "pid", "name", &SqliteItem::composer, &SqliteSong::composer},
      {"genre_map", "id", "genre", &SqliteItem::genre, &SqliteSong::genre},
  };
  for (const Link &link : kLinks) {
    bool isThere = false;
    const Names names = namesOf(file, link.table, link.key, link.name, isThere);
    for (SqliteItem &item : items) {
      const int64_t id = item.*link.id;
      const auto found = names.find(id);
      if (found != names.end()) {
        if (link.text != nullptr && (item.song.*link.text).empty() && mayRepeat(found->second))
          item.song.*link.text = found->second;
      } else if (id != 0 && isThere) {
        findings_.add(FindingKind::UnresolvedId, "the song " + hexId(item.song.pid) +
                                                     " has an ID that is not in the table " + link.table);
      }
    }
  }
  bool isThere = false;
  const Names categories = namesOf(file, "category_map", "id", "category", isThere);
  for (SqliteItem &item : items) {
    const auto category = categories.find(item.category);
    if (category != categories.end() && mayRepeat(category->second))
      addText(item.song, kCategoryText, category->second);
    addText(item.song, kDescriptionText,
            item.longDescription.empty() ? item.description : item.longDescription);
    places_.emplace(item.song.pid, songs_.size());
    songs_.push_back(std::move(item.song));
  }
}

void SqliteSongs::readLocations(SqliteFile &file) {
  struct Location {
    std::optional<int64_t> base, part, type, kind, size;
    std::string name;
    std::optional<uint32_t> created;
  };
  bool hasBases = false;
  const Names bases = namesOf(file, "base_location", "id", "path", hasBases);
  std::map<int64_t, Location> locations;  // of each song the one of its first part
  const std::vector<std::string> columns = {"item_pid", "sub_id",  "base_location_id", "location_type",
                                            "location", "kind_id", "file_size",        "date_created"};
  const TableState state = file.each("location", columns, [&](const SqliteRow &row) {
    const auto pid = row[0].integer();
    if (!pid || ofTable("location", *pid) == nullptr) return;
    const auto part = row[1].integer();
    const auto [known, isNew] = locations.try_emplace(*pid);
    if (!isNew && (!part || (known->second.part && *known->second.part <= *part))) return;
    known->second = {row[2].integer(), part,          row[3].integer(),  row[5].integer(),
                     row[6].integer(), row[4].text(), sqliteDate(row[7])};
  });
  report_(file, "location", state);
  constexpr int64_t kFile = 0x46494C45;  // "FILE"
  for (const auto &[pid, location] : locations) {
    SqliteSong &song = songs_[places_.at(pid)];
    song.facts.added = location.created;
    const auto kind = kinds_.find(location.kind.value_or(0));
    if (kind != kinds_.end() && mayRepeat(kind->second)) song.kind = kind->second;
    if (location.size && *location.size >= 0 && *location.size <= UINT32_MAX)
      song.facts.size = static_cast<uint32_t>(*location.size);
    if (location.type.value_or(kFile) != kFile || location.name.empty()) continue;
    const auto base = bases.find(location.base.value_or(0));
    if (base != bases.end() && mayRepeat(base->second)) {
      song.path = joinedPath(base->second, location.name);
    } else if (location.base.value_or(0) == 0) {
      song.path = joinedPath({}, location.name);
    } else if (base == bases.end()) {
      findings_.add(FindingKind::UnresolvedId,
                    "the song " + hexId(pid) + " lies in a folder that is not in the table base_location");
    }
  }
}

void SqliteSongs::readDynamic(SqliteFile &file) {
  const auto find = [this](int64_t pid) { return ofTable("item_stats", pid); };
  report_(file, "item_stats", readTable<SqliteSong>(file, "item_stats", "item_pid", statColumns(), find));
}

void SqliteSongs::readExtras(SqliteFile &file) {
  constexpr SqliteColumn<SqliteSong> kLyrics[] = {{"lyrics", [](SqliteSong &song, const SqliteValue &value) {
                                                     if (!value.text().empty()) song.facts.lyrics = true;
                                                   }}};
  const auto find = [this](int64_t pid) { return ofTable("lyrics", pid); };
  report_(file, "lyrics", readTable<SqliteSong>(file, "lyrics", "item_pid", kLyrics, find));
  constexpr SqliteColumn<SqliteSong> kChapters[] = {{"data", [](SqliteSong &song, const SqliteValue &value) {
                                                       song.chapters = readChapters(value.bytes());
                                                     }}};
  const auto findMarked = [this](int64_t pid) { return ofTable("chapter", pid); };
  report_(file, "chapter", readTable<SqliteSong>(file, "chapter", "item_pid", kChapters, findMarked));
}

}  // namespace player
