#include "samples/SampleNano.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "samples/SampleLibrary.h"
#include "samples/SqliteWriter.h"

namespace samples {

namespace {

using Row = std::vector<SqliteCell>;
using Rows = std::vector<Row>;
using Text = std::u16string;

constexpr int64_t kFrom1970To2001 = 978307200;
constexpr int64_t kFrom1904To1970 = 2082844800;
constexpr int64_t kYears = int64_t{3287} * 86400;  // nine, by which a nano is younger than the sample player
constexpr int64_t kZone = int64_t{2} * 3600;       // of its clock

constexpr int64_t kLibraryList = 0x4E616E6F00000001;
constexpr int64_t kFolder = 0x4E616E6F00000100;
constexpr int64_t kSmartList = 0x4E616E6F00000101;
constexpr int64_t kCategoryList = -0x4E616E6F00000102;

int64_t Since2001(int64_t unixTime) { return unixTime == 0 ? 0 : unixTime + kYears - kFrom1970To2001; }

// On the nano's clock; for never it shows the beginning of 2001 in UTC.
uint32_t OnItsClock(int64_t unixTime) {
  const int64_t moment = unixTime == 0 ? kFrom1970To2001 : unixTime + kYears;
  return static_cast<uint32_t>(moment + kZone + kFrom1904To1970);
}

int64_t Pid(size_t song) { return static_cast<int64_t>(SamplePersistentId(song)); }

SqliteValue TextOrNull(std::u16string_view text) {
  return text.empty() ? SqliteValue() : SqliteValue(Text(text));
}

SqliteValue ExtraText(const SampleSong &song, uint32_t type) {
  for (const struct ExtraText &extra : song.extra) {
    if (extra.type == type) return TextOrNull(extra.text);
  }
  return {};
}

// Texts with a number for each, from 1.
class NameTable {
 public:
  int64_t NumberOf(std::u16string_view name) {
    return name.empty()
               ? 0
               : numbers_.try_emplace(Text(name), static_cast<int64_t>(numbers_.size() + 1)).first->second;
  }
  Rows RowsWith(std::string_view key, std::string_view name) const {
    std::vector<Row> rows(numbers_.size());
    for (const auto &[text, number] : numbers_)
      rows[static_cast<size_t>(number - 1)] = {{key, number}, {name, text}};
    return rows;
  }

 private:
  std::map<Text, int64_t> numbers_;
};

int64_t FourLetters(std::string_view letters) {
  int64_t code = 0;
  for (const char c : letters) code = code << 8 | (c >= 'a' ? c - 'a' + 'A' : c);
  return code << (letters.size() == 3 ? 8 : 0) | (letters.size() == 3 ? ' ' : 0);
}

void Append(std::string &bytes, uint64_t number, int size) {
  while (size-- > 0) bytes += static_cast<char>(number >> (8 * size) & 0xFF);
}

// The rules of a list as an object 51 has them: one rule that compares a number.
std::string OneRule(uint32_t field, uint32_t action, uint64_t value) {
  std::string rules = "SLst";
  for (const uint32_t word : {0x00010001U, 1U, 0U}) Append(rules, word, 4);
  rules.append(120, '\0');
  Append(rules, field, 4);
  Append(rules, action, 4);
  rules.append(0x34 - 8, '\0');
  Append(rules, 68, 4);
  for (int i = 0; i < 2; ++i) {
    Append(rules, value, 8);
    Append(rules, 0, 8);
    Append(rules, 1, 8);
  }
  return rules.append(20, '\0');
}

class Files {
 public:
  explicit Files(std::filesystem::path folder) : folder_(std::move(folder)) {}

  void Write() {
    WriteLibrary();
    WriteLocations();
    WriteDynamic();
    SqliteWriter extras(folder_ / "Extras.itdb");
    extras.Table("lyrics", "item_pid INTEGER PRIMARY KEY, checksum INTEGER, lyrics TEXT",
                 {{Pid(0), 1, Text(u"The lights go out, the ferry stays.")}});
    std::vector<std::vector<SqliteValue>> chapters;
    for (size_t song = 0; song < SampleSongs().size(); ++song) {
      const std::vector<ChapterMark> marks = SampleChaptersOf(SampleSongs()[song]);
      if (!marks.empty()) chapters.push_back({Pid(song), ChapterAtoms(marks)});
    }
    extras.Table("chapter", "item_pid INTEGER PRIMARY KEY, data BLOB", chapters);
    extras.Finish();
    SqliteWriter genius(folder_ / "Genius.itdb");
    genius.Table("genius_config", "id INTEGER PRIMARY KEY, version INTEGER", {});
    genius.Finish();
  }

 private:
  void WriteLibrary() {
    SqliteWriter library(folder_ / "Library.itdb");
    library.Table("version_info",
                  {{{"id INTEGER PRIMARY KEY", 1}, {"major INTEGER", 1}, {"minor INTEGER", 105}}});
    library.Table("db_info",
                  {{{"pid INTEGER PRIMARY KEY", 7}, {"primary_container_pid INTEGER", kLibraryList}}});
    Rows items;
    Rows formats;
    for (size_t song = 0; song < SampleSongs().size(); ++song) {
      items.push_back(Item(song));
      kinds_.NumberOf(SampleSongs()[song].filetype);
      formats.push_back(Format(song));
    }
    library.Table("item", items);
    library.Table("avformat_info", formats);
    library.Table("album", albums_.RowsWith("pid INTEGER PRIMARY KEY", "name TEXT"));
    library.Table("track_artist", artists_.RowsWith("pid INTEGER PRIMARY KEY", "name TEXT"));
    library.Table("artist", artists_.RowsWith("pid INTEGER PRIMARY KEY", "name TEXT"));
    library.Table("composer", composers_.RowsWith("pid INTEGER PRIMARY KEY", "name TEXT"));
    library.Table("genre_map", genres_.RowsWith("id INTEGER PRIMARY KEY", "genre TEXT"));
    library.Table("location_kind_map", kinds_.RowsWith("id INTEGER PRIMARY KEY", "kind TEXT"));
    library.Table("podcast_info", Podcasts());
    WriteLists(library);
    library.Finish();
  }

  // What the item says of a song. The artists of a compilation stand in the table of artists alone.
  Row Item(size_t index) {
    const SampleSong &song = SampleSongs()[index];
    const SampleFacts facts = SampleFactsOf(index);
    const bool isSpoken = song.mediaType == 4 || song.mediaType == 8;
    return {{"pid INTEGER PRIMARY KEY", Pid(index)},
            {"physical_order INTEGER", static_cast<int64_t>(index)},
            {"media_kind INTEGER", int64_t{song.mediaType}},
            {"is_movie INTEGER", song.mediaType == 2 ? 1 : 0},
            {"title TEXT", TextOrNull(song.title)},
            {"artist TEXT", song.compilation ? SqliteValue() : TextOrNull(song.artist)},
            {"album TEXT", TextOrNull(song.album)},
            {"composer TEXT", TextOrNull(song.composer)},
            {"album_artist TEXT", song.compilation ? SqliteValue(Text(u"Various Artists")) : SqliteValue()},
            {"sort_title TEXT", TextOrNull(song.title)},
            {"eq_preset TEXT", ExtraText(song, 7)},
            {"grouping TEXT", ExtraText(song, 13)},
            {"description TEXT", ExtraText(song, 14)},
            {"album_pid INTEGER", albums_.NumberOf(song.album)},
            {"track_artist_pid INTEGER", artists_.NumberOf(song.artist)},
            {"artist_pid INTEGER", artists_.NumberOf(song.artist)},
            {"composer_pid INTEGER", composers_.NumberOf(song.composer)},
            {"genre_id INTEGER", genres_.NumberOf(song.genre)},
            {"total_time_ms REAL", static_cast<double>(song.duration)},
            {"start_time_ms REAL", 0.0},
            {"stop_time_ms REAL", 0.0},
            {"track_number INTEGER", int64_t{song.number}},
            {"track_count INTEGER", int64_t{song.total}},
            {"disc_number INTEGER", int64_t{facts.disc}},
            {"disc_count INTEGER", int64_t{facts.discs}},
            {"year INTEGER", int64_t{song.year}},
            {"bpm INTEGER", int64_t{facts.bpm}},
            {"is_compilation INTEGER", song.compilation ? 1 : 0},
            {"is_user_disabled INTEGER", 0},
            {"remember_bookmark INTEGER", isSpoken ? 1 : 0},
            {"exclude_from_shuffle INTEGER", isSpoken ? 1 : 0},
            {"content_rating INTEGER", int64_t{facts.explicitMark}},
            {"has_lyrics INTEGER", 0},
            {"relative_volume INTEGER", 0},
            {"date_modified INTEGER", Since2001(song.added - facts.changedBefore)},
            {"artwork_status INTEGER", 2},
            {"artwork_cache_id INTEGER", 0}};
  }

  static Row Format(size_t index) {
    const SampleSong &song = SampleSongs()[index];
    return {{"item_pid INTEGER PRIMARY KEY", Pid(index)},
            {"audio_format INTEGER", song.file.ends_with("mp3") ? 301 : 502},
            {"bit_rate INTEGER", int64_t{song.bitrate}},
            {"sample_rate REAL", static_cast<double>(song.rate)},
            {"channels INTEGER", 0},
            {"duration INTEGER", int64_t{song.duration} * song.rate / 1000},
            {"gapless_heuristic_info INTEGER", song.mediaType == 1 ? 0x2000003 : 0},
            {"gapless_encoding_delay INTEGER", 576},
            {"gapless_encoding_drain INTEGER", static_cast<int64_t>(index) * 7 + 100}};
  }

  static Rows Podcasts() {
    Rows rows;
    for (size_t index = 0; index < SampleSongs().size(); ++index) {
      const SampleSong &song = SampleSongs()[index];
      if (song.enclosure.empty()) continue;
      rows.push_back({{"item_pid INTEGER PRIMARY KEY", Pid(index)},
                      {"date_released INTEGER", Since2001(song.added - 86400)},
                      {"external_guid TEXT", Text(song.enclosure.begin(), song.enclosure.end())},
                      {"feed_url TEXT", Text(u"http://attic-radio.example/feed.xml")}});
    }
    return rows;
  }

  static Row List(int64_t pid, std::u16string_view name, int64_t nameOrder, int64_t parent) {
    return {{"pid INTEGER PRIMARY KEY", pid},
            {"name TEXT", Text(name)},
            {"name_order INTEGER", nameOrder},
            {"parent_pid INTEGER", parent},
            {"date_created INTEGER", Since2001(1150000000)},
            {"date_modified INTEGER", Since2001(1152000000)},
            {"is_hidden INTEGER", 0},
            {"distinguished_kind INTEGER", 0},
            {"smart_is_folder INTEGER", 0},
            {"smart_is_dynamic INTEGER", {}},
            {"smart_is_filtered INTEGER", {}},
            {"smart_is_limited INTEGER", {}},
            {"smart_enabled_only INTEGER", {}},
            {"smart_limit_kind INTEGER", {}},
            {"smart_limit_order INTEGER", {}},
            {"smart_limit_value INTEGER", {}},
            {"smart_criteria BLOB", {}}};
  }

  static void Set(Row &row, std::string_view name, SqliteValue value) {
    const auto cell = std::find_if(row.begin(), row.end(), [&](const SqliteCell &one) {
      return one.column.substr(0, one.column.find(' ')) == name;
    });
    cell->value = std::move(value);
  }

  static void MakeSmart(Row &row, std::string rules) {
    for (const char *const name : {"smart_is_dynamic", "smart_is_filtered"}) Set(row, name, 1);
    for (const char *const name : {"smart_is_limited", "smart_enabled_only"}) Set(row, name, 0);
    Set(row, "smart_limit_kind", 3);
    Set(row, "smart_limit_order", 2);
    Set(row, "smart_limit_value", 25);
    Set(row, "smart_criteria", std::move(rules));
  }

  void WriteLists(SqliteWriter &library) {
    constexpr uint32_t kRating = 0x19;
    constexpr uint32_t kMediaType = 0x3c;
    constexpr uint32_t kGreater = 0x10;
    constexpr uint32_t kHasBits = 0x400;
    Rows lists;
    Rows entries;
    const auto add = [&entries](int64_t list, const std::vector<size_t> &songs) {
      for (size_t place = 0; place < songs.size(); ++place) {
        entries.push_back({{"item_pid INTEGER", Pid(songs[place])},
                           {"container_pid INTEGER", list},
                           {"physical_order INTEGER", static_cast<int64_t>(place)}});
      }
    };
    const std::vector<SamplePlaylist> samples = SamplePlaylists();
    for (size_t i = 0; i < samples.size(); ++i) {
      if (samples[i].smart) continue;  // this player has its own
      const int64_t pid = kLibraryList + static_cast<int64_t>(i);
      const bool isInFolder = i == 1 || i == 5;
      lists.push_back(List(pid, i == 0 ? u"Sample nano" : samples[i].name, static_cast<int64_t>(i * 100),
                           isInFolder ? kFolder : 0));
      add(pid, samples[i].songs);
    }
    Set(lists.front(), "is_hidden", 1);
    lists.push_back(List(kFolder, u"On the Road", 50, 0));
    Set(lists.back(), "smart_is_folder", 1);
    add(kFolder, {22, 6, 7, 4, 15, 14, 16, 17});
    lists.push_back(List(kSmartList, u"Four Stars and More", 60, 0));
    MakeSmart(lists.back(), OneRule(kRating, kGreater, 60));
    std::vector<size_t> liked;
    for (size_t song = 0; song < SampleSongs().size(); ++song) {
      if (SampleFactsOf(song).rating > 60) liked.push_back(song);
    }
    add(kSmartList, liked);
    lists.push_back(List(kCategoryList, u"Music", 700, 0));
    MakeSmart(lists.back(), OneRule(kMediaType, kHasBits, 1));
    Set(lists.back(), "is_hidden", 1);
    Set(lists.back(), "distinguished_kind", 4);
    library.Table("container", lists);
    library.Table("item_to_container", entries);
  }

  void WriteLocations() {
    SqliteWriter locations(folder_ / "Locations.itdb");
    Rows rows;
    for (size_t index = 0; index < SampleSongs().size(); ++index) {
      const SampleSong &song = SampleSongs()[index];
      rows.push_back({{"item_pid INTEGER PRIMARY KEY", Pid(index)},
                      {"sub_id INTEGER", 0},
                      {"base_location_id INTEGER", 1},
                      {"location_type INTEGER", FourLetters("FILE")},
                      {"location TEXT", Text(song.file.begin(), song.file.end())},
                      {"extension INTEGER", FourLetters(song.file.substr(song.file.rfind('.') + 1))},
                      {"kind_id INTEGER", kinds_.NumberOf(song.filetype)},
                      {"date_created INTEGER", Since2001(song.added)},
                      {"file_size INTEGER", static_cast<int64_t>(PlaceholderFile(song).size())}});
    }
    locations.Table("location", rows);
    locations.Table("base_location", "id INTEGER PRIMARY KEY, path TEXT", {{1, Text(u"iPod_Control/Music")}});
    locations.Finish();
  }

  void WriteDynamic() {
    SqliteWriter dynamic(folder_ / "Dynamic.itdb");
    Rows rows;
    for (size_t index = 0; index < SampleSongs().size(); ++index) {
      const SampleFacts facts = SampleFactsOf(index);
      rows.push_back({{"item_pid INTEGER PRIMARY KEY", Pid(index)},
                      {"has_been_played INTEGER", facts.heardMark == 2 || facts.plays == 0 ? 0 : 1},
                      {"date_played INTEGER", Since2001(facts.lastPlayed)},
                      {"play_count_user INTEGER", int64_t{facts.plays}},
                      {"play_count_recent INTEGER", 0},
                      {"date_skipped INTEGER", Since2001(facts.lastSkipped)},
                      {"skip_count_user INTEGER", int64_t{facts.skips}},
                      {"skip_count_recent INTEGER", 0},
                      {"bookmark_time_ms REAL", static_cast<double>(facts.bookmark)},
                      {"user_rating INTEGER", int64_t{facts.rating}}});
    }
    dynamic.Table("item_stats", rows);
    dynamic.Table("container_ui", "container_pid INTEGER PRIMARY KEY, play_order INTEGER",
                  {{kLibraryList, 1}});
    dynamic.Finish();
  }

  std::filesystem::path folder_;
  NameTable albums_, artists_, composers_, genres_, kinds_;
};

}  // namespace

void WriteSampleNano(const std::filesystem::path &folder) { Files(folder).Write(); }

std::string SampleNanoPlayCounts() {
  constexpr uint32_t kHeader = 0x60;
  constexpr uint32_t kEntry = 0x28;
  ChunkWriter out(Variant::LittleEndian);
  const auto count = static_cast<uint32_t>(SampleSongs().size());
  out.PutWord(out.Begin("mhdp", kHeader, count) + 8, kEntry);
  for (uint32_t song = 0; song < count; ++song) {
    const SampleFacts facts = SampleFactsOf(song);
    out.AppendWord(facts.newPlays);
    out.AppendWord(OnItsClock(facts.newPlays != 0 ? facts.newLastPlayed : facts.lastPlayed));
    out.AppendWord(facts.bookmark);
    out.AppendWord(facts.newRating != 0 ? facts.newRating : facts.rating);
    const bool isHeard = facts.heardMark != 2 && facts.plays + facts.newPlays != 0;
    out.AppendWord(isHeard ? 0x100 : 0x200);
    out.AppendWord(facts.newSkips);
    out.AppendWord(OnItsClock(facts.newSkips != 0 ? facts.newLastSkipped : facts.lastSkipped));
    for (int i = 0; i < 3; ++i) out.AppendWord(0);
  }
  return out.TakeBytes();
}

}  // namespace samples
