#include "player/SqliteSongs.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <limits>
#include <set>
#include <utility>

#include "player/SqliteTables.h"

namespace player {

namespace {

constexpr int64_t kSecondsTo2001 = 0xB675'7900;  // since the start of 1904

// Numbers of texts in other databases.
enum : uint32_t {
  kEqualizer = 7,
  kComment = 8,
  kCategory = 9,
  kGrouping = 13,
  kDescription = 14,
  kEnclosure = 15,
  kFeed = 16,
  kShow = 19,
  kEpisodeText = 20,
  kNetwork = 21,
  kAlbumArtist = 22,
  kSortArtist = 23,
  kKeywords = 24,
  kSortTitle = 27,
  kSortAlbum = 28,
  kSortAlbumArtist = 29,
  kSortComposer = 30,
  kSortShow = 31,
  kCopyright = 39
};

void takeText(std::string &text, SqliteSong &song, const SqliteValue &value, const char *name) {
  size_t lost = 0;
  text = value.text(&lost);
  if (lost > 0) song.lossyTexts.emplace_back(name);
}

void addText(SqliteSong &song, uint32_t number, std::string text) {
  if (!text.empty()) song.texts.push_back({number, std::move(text)});
}

template <uint32_t Number>
void addText(SqliteSong &song, const SqliteValue &value) {
  addText(song, Number, value.text());
}

// A mark of which one value says yes, another no, and others nothing.
std::optional<bool> mark(const SqliteValue &value, int64_t yes, int64_t no) {
  const auto number = value.integer();
  return number == yes || number == no ? std::optional(number == yes) : std::nullopt;
}

std::optional<bool> negated(std::optional<bool> flag) { return flag ? std::optional(!*flag) : std::nullopt; }

template <typename Number>
std::optional<Number> within(const SqliteValue &value, int64_t least, int64_t most) {
  const auto number = value.integer();
  return number && *number >= least && *number <= most ? std::optional(static_cast<Number>(*number))
                                                       : std::nullopt;
}

void takeFirst(std::optional<uint32_t> &date, const SqliteValue &value) {
  if (!date) date = sqliteDate(value);
}

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

using SongColumn = SqliteColumn<SqliteSong>;
using S = SqliteSong;
using V = const SqliteValue;

constexpr SongColumn kFormatColumns[] = {
    {"bit_rate", [](S &s, V &v) { s.facts.bitRate = v.number(); }},
    {"sample_rate", [](S &s, V &v) { s.sampleRate = v.numberUnlessZero(); }},
    {"channels", [](S &s, V &v) { s.facts.channels = within<uint16_t>(v, 1, UINT16_MAX); }},
    {"gapless_heuristic_info", [](S &s, V &v) { s.facts.gapless = v.flag(); }},
    {"gapless_encoding_delay", [](S &s, V &v) { s.facts.delay = v.number(); }},
    {"gapless_encoding_drain", [](S &s, V &v) { s.facts.padding = v.number(); }},
    {"duration", [](S &s, V &v) { s.facts.samples = within<uint64_t>(v, 0, INT64_MAX); }}};

constexpr SongColumn kVideoColumns[] = {
    {"season_number", [](S &s, V &v) { s.facts.season = v.numberUnlessZero(); }},
    {"episode_sort_id", [](S &s, V &v) { s.facts.episode = v.numberUnlessZero(); }},
    {"series_name", addText<kShow>},
    {"sort_series_name", addText<kSortShow>},
    {"episode_id", addText<kEpisodeText>},
    {"network_name", addText<kNetwork>}};

constexpr SongColumn kPodcastColumns[] = {
    {"date_released", [](S &s, V &v) { takeFirst(s.facts.released, v); }},
    {"external_guid", addText<kEnclosure>},
    {"feed_url", addText<kFeed>},
    {"feed_keywords", addText<kKeywords>}};

constexpr SongColumn kStoreColumns[] = {
    {"date_purchased",
     [](S &s, V &v) {
       s.facts.purchased = sqliteDate(v);
       s.facts.bought = v.flag().value_or(false);
     }},
    {"store_item_id",
     [](S &s, V &v) {
       if (v.flag().value_or(false)) s.facts.bought = true;
     }},
    {"date_released", [](S &s, V &v) { takeFirst(s.facts.released, v); }}};

constexpr SongColumn kStatColumns[] = {
    {"has_been_played", [](S &s, V &v) { s.facts.heard = v.flag(); }},
    {"date_played", [](S &s, V &v) { s.facts.lastPlayed = sqliteDate(v); }},
    {"play_count_user", [](S &s, V &v) { s.facts.plays = v.number(); }},
    {"play_count_recent", [](S &s, V &v) { s.facts.recentPlays = v.number(); }},
    {"date_skipped", [](S &s, V &v) { s.facts.lastSkipped = sqliteDate(v); }},
    {"skip_count_user", [](S &s, V &v) { s.facts.skips = v.number(); }},
    {"skip_count_recent", [](S &s, V &v) { s.facts.recentSkips = v.number(); }},
    {"bookmark_time_ms", [](S &s, V &v) { s.facts.bookmark = v.numberUnlessZero(); }},
    {"user_rating", [](S &s, V &v) { s.facts.rating = within<uint8_t>(v, 0, 100); }}};

}  // namespace

std::string hexId(int64_t pid) {
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016" PRIX64, static_cast<uint64_t>(pid));
  return digits.data();
}

std::optional<uint32_t> sqliteDate(const SqliteValue &value) {
  const auto since2001 = value.integer();
  constexpr int64_t kLast = std::numeric_limits<uint32_t>::max() - kSecondsTo2001;
  if (!since2001 || *since2001 == 0 || *since2001 < -kSecondsTo2001 || *since2001 > kLast)
    return std::nullopt;
  return knownDate(static_cast<uint32_t>(*since2001 + kSecondsTo2001));
}

std::span<const SqliteColumn<SqliteSongs::Item>> SqliteSongs::itemColumns() {
  using I = Item;
  static constexpr SqliteColumn<Item> kColumns[] = {
      {"physical_order", [](I &i, V &v) { i.song.place = v.integer(); }},
      {"title", [](I &i, V &v) { takeText(i.song.title, i.song, v, "title"); }},
      {"artist", [](I &i, V &v) { takeText(i.song.artist, i.song, v, "artist"); }},
      {"album", [](I &i, V &v) { takeText(i.song.album, i.song, v, "album"); }},
      {"composer", [](I &i, V &v) { takeText(i.song.composer, i.song, v, "composer"); }},
      {"album_pid", [](I &i, V &v) { i.album = v.integer().value_or(0); }},
      {"artist_pid", [](I &i, V &v) { i.artist = v.integer().value_or(0); }},
      {"track_artist_pid", [](I &i, V &v) { i.trackArtist = v.integer().value_or(0); }},
      {"composer_pid", [](I &i, V &v) { i.composer = v.integer().value_or(0); }},
      {"genre_id", [](I &i, V &v) { i.genre = v.integer().value_or(0); }},
      {"category_id", [](I &i, V &v) { i.category = v.integer().value_or(0); }},
      {"eq_preset", [](I &i, V &v) { addText<kEqualizer>(i.song, v); }},
      {"comment", [](I &i, V &v) { addText<kComment>(i.song, v); }},
      {"grouping", [](I &i, V &v) { addText<kGrouping>(i.song, v); }},
      {"description", [](I &i, V &v) { i.description = v.text(); }},
      {"description_long", [](I &i, V &v) { i.longDescription = v.text(); }},
      {"album_artist", [](I &i, V &v) { addText<kAlbumArtist>(i.song, v); }},
      {"sort_artist", [](I &i, V &v) { addText<kSortArtist>(i.song, v); }},
      {"sort_title", [](I &i, V &v) { addText<kSortTitle>(i.song, v); }},
      {"sort_album", [](I &i, V &v) { addText<kSortAlbum>(i.song, v); }},
      {"sort_album_artist", [](I &i, V &v) { addText<kSortAlbumArtist>(i.song, v); }},
      {"sort_composer", [](I &i, V &v) { addText<kSortComposer>(i.song, v); }},
      {"copyright", [](I &i, V &v) { addText<kCopyright>(i.song, v); }},
      {"total_time_ms", [](I &i, V &v) { i.song.facts.duration = v.number(); }},
      {"start_time_ms", [](I &i, V &v) { i.song.facts.start = v.numberUnlessZero(); }},
      {"stop_time_ms", [](I &i, V &v) { i.song.facts.stop = v.numberUnlessZero(); }},
      {"track_number", [](I &i, V &v) { i.song.facts.track = v.number(); }},
      {"track_count", [](I &i, V &v) { i.song.facts.trackTotal = v.number(); }},
      {"disc_number", [](I &i, V &v) { i.song.facts.disc = v.numberUnlessZero(); }},
      {"disc_count", [](I &i, V &v) { i.song.facts.discs = v.numberUnlessZero(); }},
      {"year", [](I &i, V &v) { i.song.facts.year = v.number(); }},
      {"bpm", [](I &i, V &v) { i.song.facts.bpm = within<uint16_t>(v, 1, UINT16_MAX); }},
      {"media_kind", [](I &i, V &v) { i.song.facts.mediaType = v.number(); }},
      {"is_movie", [](I &i, V &v) { i.song.facts.movie = v.flag(); }},
      {"is_compilation", [](I &i, V &v) { i.song.facts.compilation = v.flag(); }},
      {"is_user_disabled", [](I &i, V &v) { i.song.facts.checked = negated(v.flag()); }},
      {"remember_bookmark", [](I &i, V &v) { i.song.facts.remembersPosition = v.flag(); }},
      {"exclude_from_shuffle", [](I &i, V &v) { i.song.facts.skippedInShuffle = v.flag(); }},
      {"part_of_gapless_album", [](I &i, V &v) { i.song.facts.gaplessAlbum = v.flag(); }},
      {"content_rating", [](I &i, V &v) { i.song.facts.explicitContent = mark(v, 1, 2); }},
      {"has_lyrics", [](I &i, V &v) { i.song.facts.lyrics = v.flag(); }},
      {"date_modified", [](I &i, V &v) { i.song.facts.modified = sqliteDate(v); }},
      {"date_released", [](I &i, V &v) { i.song.facts.released = sqliteDate(v); }},
      {"relative_volume", [](I &i, V &v) { i.song.facts.volume = within<int32_t>(v, -255, 255); }},
      {"artwork_status", [](I &i, V &v) { i.song.hasCover = mark(v, 1, 2); }},
      {"artwork_cache_id", [](I &i, V &v) { i.song.imageId = v.numberUnlessZero(); }}};
  return kColumns;
}

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
  std::vector<Item> items;
  std::set<int64_t> known;
  const TableState state = readTable<Item>(file, "item", "pid", itemColumns(), [&](int64_t pid) -> Item * {
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
  const auto read = [&](const char *table, std::span<const SongColumn> columns) {
    const auto find = [this, table](int64_t pid) { return ofTable(table, pid); };
    const TableState found = readTable<SqliteSong>(file, table, "item_pid", columns, find);
    report_(file, table, found);
    return found;
  };
  read("avformat_info", kFormatColumns);
  read("video_info", kVideoColumns);
  read("podcast_info", kPodcastColumns);
  const bool isStoreKnown = read("store_info", kStoreColumns) == TableState::Read;
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
void SqliteSongs::putInOrder(std::vector<Item> &items) {
  std::stable_sort(items.begin(), items.end(), [](const Item &one, const Item &other) {
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
void SqliteSongs::join(SqliteFile &file, std::vector<Item> items) {
  struct Link {
    const char *table;
    const char *key;
    const char *name;
    int64_t Item::*id;
    std::string SqliteSong::*text;
  };
  static const Link kLinks[] = {
      {"album", "pid", "name", &Item::album, &SqliteSong::album},
      {"track_artist", "pid", "name", &Item::trackArtist, &SqliteSong::artist},
      {"artist", "pid", "name", &Item::artist, nullptr},
      {"composer", "pid", "name", &Item::composer, &SqliteSong::composer},
      {"genre_map", "id", "genre", &Item::genre, &SqliteSong::genre},
  };
  for (const Link &link : kLinks) {
    bool isThere = false;
    const Names names = namesOf(file, link.table, link.key, link.name, isThere);
    for (Item &item : items) {
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
  for (Item &item : items) {
    const auto category = categories.find(item.category);
    if (category != categories.end() && mayRepeat(category->second))
      addText(item.song, kCategory, category->second);
    addText(item.song, kDescription, item.longDescription.empty() ? item.description : item.longDescription);
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
  report_(file, "item_stats", readTable<SqliteSong>(file, "item_stats", "item_pid", kStatColumns, find));
}

void SqliteSongs::readExtras(SqliteFile &file) {
  constexpr SongColumn kColumns[] = {{"lyrics", [](S &s, V &v) {
                                        if (!v.text().empty()) s.facts.lyrics = true;
                                      }}};
  const auto find = [this](int64_t pid) { return ofTable("lyrics", pid); };
  report_(file, "lyrics", readTable<SqliteSong>(file, "lyrics", "item_pid", kColumns, find));
}

}  // namespace player
