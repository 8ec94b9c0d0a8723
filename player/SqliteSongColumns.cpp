#include "player/SqliteSongColumns.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <limits>
#include <optional>
#include <utility>

namespace player {

namespace {

constexpr int64_t kSecondsTo2001 = 0xB675'7900;  // since the start of 1904

// Numbers of texts in other databases.
enum : uint32_t {
  kEqualizer = 7,
  kComment = 8,
  kGrouping = 13,
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

void addText(SqliteSong &song, uint32_t number, std::string text) {
  if (!text.empty()) song.texts.push_back({number, std::move(text)});
}

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

std::span<const SqliteColumn<SqliteItem>> itemColumns() {
  using I = SqliteItem;
  static constexpr SqliteColumn<SqliteItem> kColumns[] = {
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
      {"artwork_status", [](I &i, V &v) { i.song.facts.picture = mark(v, 1, 2); }},
      {"artwork_cache_id", [](I &i, V &v) { i.song.facts.image = v.numberUnlessZero(); }}};
  return kColumns;
}

std::span<const SqliteColumn<SqliteSong>> formatColumns() { return kFormatColumns; }
std::span<const SqliteColumn<SqliteSong>> videoColumns() { return kVideoColumns; }
std::span<const SqliteColumn<SqliteSong>> podcastColumns() { return kPodcastColumns; }
std::span<const SqliteColumn<SqliteSong>> storeColumns() { return kStoreColumns; }
std::span<const SqliteColumn<SqliteSong>> statColumns() { return kStatColumns; }

}  // namespace player
