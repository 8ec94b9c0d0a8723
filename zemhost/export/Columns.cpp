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
#include "host/runtime/Names.h"
#include "zemhost/export/ClassAnswers.h"
#include "zemhost/export/ExportValues.h"
#include "zemhost/library/StoredText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

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
constexpr int32_t kSortArtist = 23;
constexpr int32_t kSortTitle = 27;
constexpr int32_t kSortAlbum = 28;
constexpr int32_t kSortAlbumArtist = 29;
constexpr int32_t kSortComposer = 30;
constexpr int32_t kSortShow = 31;
constexpr int32_t kNumbersWithAColumn[] = {kComment,         kCategory,     kGrouping,  kDescription,
                                           kEnclosureUrl,    kFeedUrl,      kSubtitle,  kShow,
                                           kAlbumArtistText, kSortArtist,   kSortTitle, kSortAlbum,
                                           kSortAlbumArtist, kSortComposer, kSortShow};
constexpr int32_t kChapterText = 17;
// Players number their texts from 1 up to about 50, and a few from 100 and 200.
constexpr int32_t kLastNumber = 300;

}  // namespace

struct SongColumns::State {
  struct Known {
    ExportColumn column;
    Json (*read)(State &);
  };
  // All there are, in their order.
  static const std::vector<Known> &all();

  State(const MusicLibrary &source, const std::vector<std::string> &names);

  // The song at hand, read when a column first asks for it.
  const Song &song() {
    if (!read) read = library.song(index);
    return *read;
  }
  // The class answers 0 for what is not known.
  Json count(uint32_t number) const { return number == 0 && !answers ? Json() : Json(number); }
  // What the class answers; null where it has no part in the library.
  Json wordOf(Method SongAnswers::*method) const {
    return answers ? word((*answers.*method)(index)) : Json();
  }
  Json prop(int32_t number) const { return answers ? word(answers->prop(index, number)) : Json(); }
  Json trackText() const { return answers ? textOrNull(answers->trackText(index).text()) : Json(); }
  Json absolutePath() {
    if (library.form() == LibraryForm::Desktop || library.location().volumeRoot.empty())
      return answers ? textOrNull(answers->absolutePath(song().path).text()) : Json();
    return song().path.empty() ? Json() : Json(library.volumeName() + song().path);
  }
  Json numberedText(int32_t number) const {
    return textOrNull(library.numberedText(index, number).value_or(std::string()));
  }
  Json otherTexts() const;
  Json chapters() const;
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
  Json compilationFlag() {
    return facts().compilation && answers ? Json(answers->compilation(index).boolean())
                                          : known(facts().compilation);
  }
  Json mediaTypeWord() {
    return facts().mediaType && answers ? wordOf(&SongAnswers::mediaType) : known(facts().mediaType);
  }
  Json movie() {
    if (!facts().movie || !answers) return known(facts().movie);
    // The class looks the flag up by track ID, so a song whose ID an earlier one has hides its own.
    const int32_t id = song().id.value_or(0);
    return answers->indexOfID(id).integer() == index ? Json(answers->movieFlag(id).boolean()) : Json();
  }

  const MusicLibrary &library;
  int32_t index = 0;
  std::optional<Song> read;

  std::optional<SongAnswers> answers;

  std::vector<ExportColumn> columns;
  std::vector<Json (*)(State &)> readers;  // beside columns
};

Json SongColumns::State::chapters() const {
  Json chapters = Json::array();
  for (const player::Chapter &chapter : library.chapters(index)) {
    chapters.push_back({{"start_ms", chapter.start},
                        {"title", textOrNull(chapter.title)},
                        {"url", textOrNull(addressText(chapter.url))}});
  }
  return chapters.empty() ? Json() : chapters;
}

Json SongColumns::State::otherTexts() const {
  const int32_t count = library.numberedTextCount(index);
  Json texts = Json::object();
  int32_t found = 0;
  for (int32_t number = 0; number <= kLastNumber && found < count; ++number) {
    const std::optional<std::string> text = library.numberedText(index, number);
    if (!text) continue;
    ++found;
    if (number == kChapterText && !library.chapters(index).empty()) continue;  // they have a column
    if (std::count(std::begin(kNumbersWithAColumn), std::end(kNumbersWithAColumn), number) != 0) continue;
    texts[std::to_string(number)] = *text;
  }
  return texts.empty() ? Json() : texts;
}

const std::vector<SongColumns::State::Known> &SongColumns::State::all() {
  using S = State;
  using enum ColumnType;
  static const std::vector<Known> kKnown = {
      {{"song_index", Integer}, [](S &s) { return Json(s.index); }},
      {{"track_id", Integer}, [](S &s) { return known(s.song().id); }},
      {{"title", Text}, [](S &s) { return textOrNull(s.song().title); }},
      {{"artist", Text}, [](S &s) { return textOrNull(s.song().artist); }},
      {{"album", Text}, [](S &s) { return textOrNull(s.song().album); }},
      {{"genre", Text}, [](S &s) { return textOrNull(s.song().genre); }},
      {{"composer", Text}, [](S &s) { return textOrNull(s.song().composer); }},
      {{"file_type", Text}, [](S &s) { return textOrNull(s.song().fileType); }},
      {{"track", Integer}, [](S &s) { return s.count(s.song().track); }},
      {{"track_total", Integer}, [](S &s) { return s.count(s.song().trackTotal); }},
      {{"track_text", Text}, [](S &s) { return s.trackText(); }},
      {{"year", Integer}, [](S &s) { return s.count(s.song().year); }},
      {{"duration_ms", Integer}, [](S &s) { return s.count(s.song().duration); }},
      {{"size_bytes", Integer}, [](S &s) { return s.count(s.song().size); }},
      {{"bit_rate_kbps", Integer}, [](S &s) { return s.count(s.song().bitRate); }},
      {{"sample_rate_hz", Integer}, [](S &s) { return s.count(s.song().sampleRate); }},
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
      {{"play_count_recent", Integer}, [](S &s) { return known(s.facts().recentPlays); }},
      {{"skip_count_recent", Integer}, [](S &s) { return known(s.facts().recentSkips); }},
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
      {{"absolute_path", Text}, [](S &s) { return s.absolutePath(); }},
      {{"file", Text}, [](S &s) { return textOrNull(s.library.file(s.song().path).path.string()); }},
      {{"comment", Text}, [](S &s) { return s.numberedText(kComment); }},
      {{"grouping", Text}, [](S &s) { return s.numberedText(kGrouping); }},
      {{"description", Text}, [](S &s) { return s.numberedText(kDescription); }},
      {{"subtitle", Text}, [](S &s) { return s.numberedText(kSubtitle); }},
      {{"album_artist", Text}, [](S &s) { return s.numberedText(kAlbumArtistText); }},
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
      {{"chapters", Texts}, [](S &s) { return s.chapters(); }},
      {{"other_texts", Texts}, [](S &s) { return s.otherTexts(); }},
      {{"numbered_texts", Integer}, [](S &s) { return Json(s.library.numberedTextCount(s.index)); }},
      {{"prop_0", Integer}, [](S &s) { return s.prop(0); }},
      {{"prop_1", Integer}, [](S &s) { return s.prop(1); }},
      {{"prop_2", Integer}, [](S &s) { return s.prop(2); }},
      {{"prop_3", Integer}, [](S &s) { return s.prop(3); }},
      {{"title_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::titleEncode); }},
      {{"path_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::pathEncode); }},
      {{"album_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::albumEncode); }},
      {{"artist_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::artistEncode); }},
      {{"genre_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::genreEncode); }},
      {{"composer_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::composerEncode); }},
      {{"file_type_encode", Integer}, [](S &s) { return s.wordOf(&SongAnswers::fileTypeEncode); }},
  };
  return kKnown;
}

SongColumns::State::State(const MusicLibrary &source, const std::vector<std::string> &names)
    : library(source) {
  if (const Object *const object = library.object()) answers.emplace(*object);
  const auto add = [this](const Known &known) {
    columns.push_back(known.column);
    readers.push_back(known.read);
  };
  if (names.empty()) std::for_each(all().begin(), all().end(), add);
  for (const std::string &name : names) {
    const auto found = std::find_if(all().begin(), all().end(),
                                    [&](const Known &known) { return known.column.name == name; });
    if (found == all().end()) {
      std::string message = "--fields: no field is named " + inQuotes(name) + "; there are: ";
      for (const Known &known : all())
        message.append(&known == &all().front() ? "" : ", ").append(known.column.name);
      throw HostError(message);
    }
    const bool isTaken = std::any_of(columns.begin(), columns.end(),
                                     [&](const ExportColumn &column) { return column.name == name; });
    if (isTaken) throw HostError("--fields: the field " + inQuotes(name) + " is asked for twice");
    add(*found);
  }
}

const std::vector<std::string> &usualFields() {
  static const std::vector<std::string> kUsual = {
      "title",       "artist",     "album",         "album_artist", "composer", "genre",
      "disc",        "track",      "year",          "duration_ms",  "rating",   "play_count",
      "last_played", "date_added", "bit_rate_kbps", "size_bytes",   "comment",  "file"};
  return kUsual;
}

SongColumns::SongColumns(const MusicLibrary &library, const std::vector<std::string> &names)
    : state_(std::make_unique<State>(library, names)) {}

SongColumns::~SongColumns() = default;

std::vector<ExportColumn> SongColumns::all() {
  std::vector<ExportColumn> columns;
  for (const State::Known &known : State::all()) columns.push_back(known.column);
  return columns;
}

const std::vector<ExportColumn> &SongColumns::columns() const { return state_->columns; }

Row SongColumns::row(int32_t index) const {
  state_->index = index;
  state_->read.reset();
  Row row;
  row.reserve(state_->readers.size());
  for (const auto &read : state_->readers) row.push_back(read(*state_));
  return row;
}

}  // namespace zemhost
