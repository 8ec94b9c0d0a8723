#include "zemhost/export/Columns.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <optional>
#include <utility>

#include "host/Error.h"
#include "zemhost/library/StoredText.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

Method integerMethod(const MusicLibrary &library, const std::string &name) {
  return library.object().method(name + "(index As Integer) As Integer");
}

// Words of the file are unsigned; an Integer of host code shows half of them as negative.
Json word(const Value &value) { return static_cast<uint32_t>(value.integer()); }

Json textOrNull(std::string text) { return text.empty() ? Json() : Json(std::move(text)); }

// "2004-08-09T10:11:12": the clock of whoever stored the date, so no zone.
Json dateOrNull(uint32_t secondsSince1904) {
  std::string text = dateText(secondsSince1904);
  std::replace(text.begin(), text.end(), ' ', 'T');
  return textOrNull(std::move(text));
}

template <typename Fact>
Json known(const std::optional<Fact> &fact) {
  return fact ? Json(*fact) : Json();
}

Json dateOrNull(const std::optional<uint32_t> &date) { return date ? dateOrNull(*date) : Json(); }

Json hexOrNull(const std::optional<uint64_t> &number) {
  if (!number) return {};
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016" PRIX64, *number);
  return digits.data();
}

// Of an adjustment of -255 to 255.
Json percentOrNull(const std::optional<int32_t> &volume) {
  return volume ? Json(std::lround(*volume * 100.0 / 255)) : Json();
}

// How much louder a song is to be played.
Json decibelsOrNull(const std::optional<uint32_t> &soundCheck) {
  return soundCheck ? Json(std::round(-1000 * std::log10(*soundCheck / 1000.0)) / 100) : Json();
}

// A song's texts that have a number instead of a method, and the columns of those with a settled meaning.
constexpr int32_t kComment = 8;
constexpr int32_t kCategory = 9;
constexpr int32_t kGrouping = 13;
constexpr int32_t kDescription = 14;
constexpr int32_t kEnclosureUrl = 15;
constexpr int32_t kFeedUrl = 16;
constexpr int32_t kSubtitle = 18;
constexpr int32_t kShow = 19;
constexpr int32_t kAlbumArtist = 22;
constexpr int32_t kSortArtist = 23;
constexpr int32_t kSortTitle = 27;
constexpr int32_t kSortAlbum = 28;
constexpr int32_t kSortAlbumArtist = 29;
constexpr int32_t kSortComposer = 30;
constexpr int32_t kSortShow = 31;
constexpr int32_t kNumbersWithAColumn[] = {
    kComment,     kCategory,   kGrouping,  kDescription, kEnclosureUrl,    kFeedUrl,      kSubtitle, kShow,
    kAlbumArtist, kSortArtist, kSortTitle, kSortAlbum,   kSortAlbumArtist, kSortComposer, kSortShow};
// Players number their texts from 1 up to about 50, and a few from 100 and 200.
constexpr int32_t kLastNumber = 300;

}  // namespace

struct SongColumns::State {
  State(const MusicLibrary &source, const std::vector<std::string> &names);

  // The song at hand, read when a column first asks for it.
  const Song &song() {
    if (!read) read = library.song(index);
    return *read;
  }
  Json wordOf(const Method &method) const { return word(method(index)); }
  Json numberedText(int32_t number) const {
    const Value text = unknown(index, number);
    return text.isNil() ? Json() : textOrNull(numberedTextOf(text.bytes(), number));
  }
  static std::string numberedTextOf(std::string_view bytes, int32_t number) {
    return number == kEnclosureUrl || number == kFeedUrl ? addressText(bytes) : otherText(bytes);
  }
  Json otherTexts() const;
  // A text to sort by, without the control characters at its end that some programs write.
  Json sortText(int32_t number) const {
    Json text = numberedText(number);
    if (!text.is_string()) return text;
    auto &bytes = text.get_ref<std::string &>();
    while (!bytes.empty() && static_cast<unsigned char>(bytes.back()) < ' ') bytes.pop_back();
    return textOrNull(std::move(bytes));
  }
  const player::SongFacts &facts() { return song().facts; }
  const std::optional<player::PlayCount> &sinceSync() { return song().sinceSync; }
  // The class reads these at their places whatever the length of the header, into the song's texts where it
  // is shorter.
  Json compilationFlag() { return facts().compilation ? Json(compilation(index).boolean()) : Json(); }
  Json mediaTypeWord() { return facts().mediaType ? wordOf(mediaType) : Json(); }
  Json movie() {
    if (!facts().movie) return {};
    // The class looks the flag up by track ID, so a song whose ID an earlier one has hides its own.
    const int32_t id = song().id;
    return indexOfID(id).integer() == index ? Json(movieFlag(id).boolean()) : Json();
  }

  const MusicLibrary &library;
  int32_t index = 0;
  std::optional<Song> read;

  Method unknown = library.object().method("GetUnknown(index As Integer, num As Integer) As String");
  Method unknownCount = integerMethod(library, "CountSongUnknown");
  Method prop = library.object().method("GetProp(index As Integer, num As Integer) As Integer");
  Method mediaType = integerMethod(library, "GetMediaType");
  Method compilation = library.object().method("GetCompilation(index As Integer) As Boolean");
  Method movieFlag = library.object().method("GetMovieFileFlag(index As Integer) As Boolean");
  Method indexOfID = library.object().method("GetIndex(trackID As Integer) As Integer");
  Method trackText = library.object().method("GetTrackTotalInfo(index As Integer) As String");
  Method absolutePath = library.object().method("GetAbsolutePath(path As String) As String");
  Method titleEncode = integerMethod(library, "GetTitleEncode");
  Method pathEncode = integerMethod(library, "GetPathEncode");
  Method albumEncode = integerMethod(library, "GetAlbumEncode");
  Method artistEncode = integerMethod(library, "GetArtistEncode");
  Method genreEncode = integerMethod(library, "GetGenreEncode");
  Method composerEncode = integerMethod(library, "GetComposerEncode");
  Method fileTypeEncode = integerMethod(library, "GetFileTypeEncode");

  std::vector<ExportColumn> columns;
  std::vector<Json (*)(State &)> readers;  // beside columns
};

Json SongColumns::State::otherTexts() const {
  const int32_t count = unknownCount(index).integer();
  Json texts = Json::object();
  int32_t found = 0;
  for (int32_t number = 0; number <= kLastNumber && found < count; ++number) {
    const Value text = unknown(index, number);
    if (text.isNil()) continue;
    ++found;
    if (std::count(std::begin(kNumbersWithAColumn), std::end(kNumbersWithAColumn), number) != 0) continue;
    texts[std::to_string(number)] = numberedTextOf(text.bytes(), number);
  }
  return texts.empty() ? Json() : texts;
}

SongColumns::State::State(const MusicLibrary &source, const std::vector<std::string> &names)
    : library(source) {
  using S = State;
  using enum ColumnType;
  struct Known {
    ExportColumn column;
    Json (*read)(State &);
  };
  static const Known kKnown[] = {
      {{"song_index", Integer}, [](S &s) { return Json(s.index); }},
      {{"track_id", Integer}, [](S &s) { return Json(s.song().id); }},
      {{"title", Text}, [](S &s) { return textOrNull(s.song().title); }},
      {{"artist", Text}, [](S &s) { return textOrNull(s.song().artist); }},
      {{"album", Text}, [](S &s) { return textOrNull(s.song().album); }},
      {{"genre", Text}, [](S &s) { return textOrNull(s.song().genre); }},
      {{"composer", Text}, [](S &s) { return textOrNull(s.song().composer); }},
      {{"file_type", Text}, [](S &s) { return textOrNull(s.song().fileType); }},
      {{"track", Integer}, [](S &s) { return Json(s.song().track); }},
      {{"track_total", Integer}, [](S &s) { return Json(s.song().trackTotal); }},
      {{"track_text", Text}, [](S &s) { return textOrNull(s.trackText(s.index).text()); }},
      {{"year", Integer}, [](S &s) { return Json(s.song().year); }},
      {{"duration_ms", Integer}, [](S &s) { return Json(s.song().duration); }},
      {{"size_bytes", Integer}, [](S &s) { return Json(s.song().size); }},
      {{"bit_rate_kbps", Integer}, [](S &s) { return Json(s.song().bitRate); }},
      {{"sample_rate_hz", Integer}, [](S &s) { return Json(s.song().sampleRate); }},
      {{"date_added", Text}, [](S &s) { return dateOrNull(s.facts().added); }},
      {{"date_modified", Text}, [](S &s) { return dateOrNull(s.song().modified); }},
      {{"date_released", Text}, [](S &s) { return dateOrNull(s.facts().released); }},
      {{"date_purchased", Text}, [](S &s) { return dateOrNull(s.facts().purchased); }},
      {{"play_count", Integer}, [](S &s) { return known(s.facts().plays); }},
      {{"last_played", Text}, [](S &s) { return dateOrNull(s.facts().lastPlayed); }},
      {{"skip_count", Integer}, [](S &s) { return known(s.facts().skips); }},
      {{"last_skipped", Text}, [](S &s) { return dateOrNull(s.facts().lastSkipped); }},
      {{"plays_since_sync", Integer},
       [](S &s) { return s.sinceSync() ? Json(s.sinceSync()->plays) : Json(); }},
      {{"skips_since_sync", Integer},
       [](S &s) { return s.sinceSync() ? known(s.sinceSync()->skips) : Json(); }},
      {{"rating", Integer}, [](S &s) { return known(s.facts().rating); }},
      {{"bookmark", Integer}, [](S &s) { return known(s.facts().bookmark); }},
      {{"heard", Boolean}, [](S &s) { return known(s.facts().heard); }},
      {{"disc", Integer}, [](S &s) { return known(s.facts().disc); }},
      {{"discs", Integer}, [](S &s) { return known(s.facts().discs); }},
      {{"bpm", Integer}, [](S &s) { return known(s.facts().bpm); }},
      {{"season", Integer}, [](S &s) { return known(s.facts().season); }},
      {{"episode", Integer}, [](S &s) { return known(s.facts().episode); }},
      {{"compilation", Boolean}, [](S &s) { return s.compilationFlag(); }},
      {{"movie", Boolean}, [](S &s) { return s.movie(); }},
      {{"media_type", Integer}, [](S &s) { return s.mediaTypeWord(); }},
      {{"media_kind", Text}, [](S &s) { return textOrNull(mediaKindText(s.facts().mediaType.value_or(0))); }},
      {{"explicit", Boolean}, [](S &s) { return known(s.facts().explicitContent); }},
      {{"lyrics", Boolean}, [](S &s) { return known(s.facts().lyrics); }},
      {{"checked", Boolean}, [](S &s) { return known(s.facts().checked); }},
      {{"protected", Boolean}, [](S &s) { return known(s.facts().isProtected); }},
      {{"bought", Boolean}, [](S &s) { return known(s.facts().bought); }},
      {{"skipped_in_shuffle", Boolean}, [](S &s) { return known(s.facts().skippedInShuffle); }},
      {{"remembers_position", Boolean}, [](S &s) { return known(s.facts().remembersPosition); }},
      {{"volume_percent", Integer}, [](S &s) { return percentOrNull(s.facts().volume); }},
      {{"sound_check_db", Real}, [](S &s) { return decibelsOrNull(s.facts().soundCheck); }},
      {{"start_ms", Integer}, [](S &s) { return known(s.facts().start); }},
      {{"stop_ms", Integer}, [](S &s) { return known(s.facts().stop); }},
      {{"channels", Integer}, [](S &s) { return known(s.facts().channels); }},
      {{"gapless", Boolean}, [](S &s) { return known(s.facts().gapless); }},
      {{"gapless_delay", Integer}, [](S &s) { return known(s.facts().delay); }},
      {{"gapless_padding", Integer}, [](S &s) { return known(s.facts().padding); }},
      {{"samples", Integer}, [](S &s) { return known(s.facts().samples); }},
      {{"gapless_album", Boolean}, [](S &s) { return known(s.facts().gaplessAlbum); }},
      {{"persistent_id", Text}, [](S &s) { return hexOrNull(s.facts().persistentId); }},
      {{"has_cover", Boolean}, [](S &s) { return known(s.song().hasCover()); }},
      {{"path", Text}, [](S &s) { return textOrNull(s.song().path); }},
      {{"absolute_path", Text}, [](S &s) { return textOrNull(s.absolutePath(s.song().path).text()); }},
      {{"file", Text}, [](S &s) { return textOrNull(s.library.file(s.song().path).path.string()); }},
      {{"comment", Text}, [](S &s) { return s.numberedText(kComment); }},
      {{"grouping", Text}, [](S &s) { return s.numberedText(kGrouping); }},
      {{"description", Text}, [](S &s) { return s.numberedText(kDescription); }},
      {{"subtitle", Text}, [](S &s) { return s.numberedText(kSubtitle); }},
      {{"album_artist", Text}, [](S &s) { return s.numberedText(kAlbumArtist); }},
      {{"category", Text}, [](S &s) { return s.numberedText(kCategory); }},
      {{"show", Text}, [](S &s) { return s.numberedText(kShow); }},
      {{"sort_title", Text}, [](S &s) { return s.sortText(kSortTitle); }},
      {{"sort_artist", Text}, [](S &s) { return s.sortText(kSortArtist); }},
      {{"sort_album", Text}, [](S &s) { return s.sortText(kSortAlbum); }},
      {{"sort_album_artist", Text}, [](S &s) { return s.sortText(kSortAlbumArtist); }},
      {{"sort_composer", Text}, [](S &s) { return s.sortText(kSortComposer); }},
      {{"sort_show", Text}, [](S &s) { return s.sortText(kSortShow); }},
      {{"enclosure_url", Text}, [](S &s) { return s.numberedText(kEnclosureUrl); }},
      {{"feed_url", Text}, [](S &s) { return s.numberedText(kFeedUrl); }},
      {{"other_texts", Texts}, [](S &s) { return s.otherTexts(); }},
      {{"numbered_texts", Integer}, [](S &s) { return Json(s.unknownCount(s.index).integer()); }},
      {{"prop_0", Integer}, [](S &s) { return word(s.prop(s.index, 0)); }},
      {{"prop_1", Integer}, [](S &s) { return word(s.prop(s.index, 1)); }},
      {{"prop_2", Integer}, [](S &s) { return word(s.prop(s.index, 2)); }},
      {{"prop_3", Integer}, [](S &s) { return word(s.prop(s.index, 3)); }},
      {{"title_encode", Integer}, [](S &s) { return s.wordOf(s.titleEncode); }},
      {{"path_encode", Integer}, [](S &s) { return s.wordOf(s.pathEncode); }},
      {{"album_encode", Integer}, [](S &s) { return s.wordOf(s.albumEncode); }},
      {{"artist_encode", Integer}, [](S &s) { return s.wordOf(s.artistEncode); }},
      {{"genre_encode", Integer}, [](S &s) { return s.wordOf(s.genreEncode); }},
      {{"composer_encode", Integer}, [](S &s) { return s.wordOf(s.composerEncode); }},
      {{"file_type_encode", Integer}, [](S &s) { return s.wordOf(s.fileTypeEncode); }},
  };
  const auto add = [this](const Known &known) {
    columns.push_back(known.column);
    readers.push_back(known.read);
  };
  if (names.empty()) std::for_each(std::begin(kKnown), std::end(kKnown), add);
  for (const std::string &name : names) {
    const auto *const found = std::find_if(std::begin(kKnown), std::end(kKnown),
                                           [&](const Known &known) { return known.column.name == name; });
    if (found == std::end(kKnown)) {
      std::string message = "--fields: no field is named " + inQuotes(name) + "; there are: ";
      for (const Known &known : kKnown)
        message.append(&known == kKnown ? "" : ", ").append(known.column.name);
      throw HostError(message);
    }
    const bool isTaken = std::any_of(columns.begin(), columns.end(),
                                     [&](const ExportColumn &column) { return column.name == name; });
    if (isTaken) throw HostError("--fields: the field " + inQuotes(name) + " is asked for twice");
    add(*found);
  }
}

SongColumns::SongColumns(const MusicLibrary &library, const std::vector<std::string> &names)
    : state_(std::make_unique<State>(library, names)) {}

SongColumns::~SongColumns() = default;

const std::vector<ExportColumn> &SongColumns::columns() const { return state_->columns; }

Row SongColumns::row(int32_t index) const {
  state_->index = index;
  state_->read.reset();
  Row row;
  row.reserve(state_->readers.size());
  for (const auto &read : state_->readers) row.push_back(read(*state_));
  return row;
}

struct PlaylistColumns::State {
  explicit State(const MusicLibrary &source) : library(source) {}

  Method method(const std::string &declaration) const { return library.object().method(declaration); }

  const MusicLibrary &library;
  Method typeI = method("GetPlayListTypeI(playlist As Integer) As Integer");
  Method typeII = method("GetPlayListTypeII(playlist As Integer) As Integer");
  Method nameEncode = method("GetPlayListEncode(playlist As Integer) As Integer");
  Method play = method("GetPlaySong(playlist As Integer, index As Integer) As Boolean");
  Method flags = method("GetFlags(playlist As Integer, index As Integer) As Integer");
};

PlaylistColumns::PlaylistColumns(const MusicLibrary &library) : state_(std::make_unique<State>(library)) {}

PlaylistColumns::~PlaylistColumns() = default;

const std::vector<ExportColumn> &PlaylistColumns::columns() {
  using enum ColumnType;
  static const std::vector<ExportColumn> kColumns = {
      {"playlist_number", Integer}, {"name", Text},      {"kind", Text},          {"entry_count", Integer},
      {"type_1", Integer},          {"type_2", Integer}, {"name_encode", Integer}};
  return kColumns;
}

const std::vector<ExportColumn> &PlaylistColumns::entryColumns() {
  using enum ColumnType;
  static const std::vector<ExportColumn> kColumns = {{"position", Integer},
                                                     {"song_index", Integer},
                                                     {"track_id", Integer},
                                                     {"play", Boolean},
                                                     {"flags", Integer}};
  return kColumns;
}

Row PlaylistColumns::row(int32_t playlist) const {
  const MusicLibrary &library = state_->library;
  return {playlist,
          textOrNull(library.playlistName(playlist)),
          playlist == 0 ? "library" : "playlist",
          library.entryCount(playlist),
          word(state_->typeI(playlist)),
          word(state_->typeII(playlist)),
          word(state_->nameEncode(playlist))};
}

Row PlaylistColumns::entryRow(int32_t playlist, int32_t position) const {
  const PlaylistEntry entry = state_->library.entry(playlist, position);
  return {position, entry.song < 0 ? Json() : Json(entry.song), entry.trackID,
          state_->play(playlist, position).boolean(), word(state_->flags(playlist, position))};
}

}  // namespace zemhost
