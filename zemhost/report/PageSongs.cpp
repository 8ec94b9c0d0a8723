#include "zemhost/report/PageSongs.h"

#include <array>
#include <iterator>
#include <numeric>
#include <set>
#include <utility>

#include "zemhost/library/ListedSongs.h"
#include "zemhost/output/Units.h"
#include "zemhost/report/Albums.h"
#include "zemhost/report/CoverData.h"
#include "zemhost/report/PageJson.h"

namespace zemhost {

namespace {

constexpr int32_t kCommentText = 8;

template <typename Number>
std::optional<int64_t> numberOf(const std::optional<Number> &fact) {
  return fact ? std::optional<int64_t>(*fact) : std::nullopt;
}

// A column whose texts stand once, beside the songs' numbers of them.
struct WordColumn {
  const char *name;
  PageWords words;
  PageColumn numbers;

  void add(const std::string &text) { numbers.add(words.numberOf(text)); }
};

// The table of songs, filled song by song.
class SongsJson {
 public:
  explicit SongsJson(const Privacy &privacy) : privacy_(privacy) {}

  void add(const Song &song, const std::string &albumArtist, const std::string &comment, uint32_t marks) {
    if (!titles_.empty()) titles_ += ',';
    titles_ += pageJson(privacy_.text(song.title));
    const std::string *const texts[] = {&song.artist, &song.album,    &albumArtist,
                                        &song.genre,  &song.composer, &song.fileType};
    for (size_t i = 0; i < std::size(texts); ++i) words_[i].add(privacy_.text(*texts[i]));
    words_[kMedia].add(mediaKindText(song.facts.mediaType.value_or(0)));
    words_[kComment].add(privacy_.isAsked() ? std::string() : comment);
    year_.add(uint64_t{song.year});
    track_.add(uint64_t{song.track});
    disc_.add(uint64_t{song.facts.disc.value_or(0)});
    duration_.add(uint64_t{song.duration});
    size_.add(uint64_t{song.size});
    bitRate_.add(uint64_t{song.bitRate});
    added_.add(daysOf(song.facts.added));
    lastPlayed_.add(daysOf(song.facts.lastPlayed));
    plays_.add(numberOf(song.facts.plays));
    skips_.add(numberOf(song.facts.skips));
    rating_.add(numberOf(song.facts.rating));
    compilation_.add(numberOf(song.facts.compilation));
    flags_.add(std::optional<int64_t>(marks));
  }
  void addAlbum(const std::optional<size_t> &album) { albumOf_.add(numberOf(album)); }

  std::string wordsJson() const {
    std::vector<std::string> members;
    for (const WordColumn &column : words_) members.push_back(member(column.name, column.words.json()));
    return joined(members, "{}");
  }

  std::string json(size_t songs) const {
    std::vector<std::string> members = {member("title", std::string("[").append(titles_).append("]"))};
    for (const WordColumn &column : words_) members.push_back(member(column.name, column.numbers.json()));
    const std::pair<const char *, const PageColumn *> numbers[] = {
        {"year", &year_},       {"track", &track_},      {"disc", &disc_},     {"duration", &duration_},
        {"size", &size_},       {"bit_rate", &bitRate_}, {"added", &added_},   {"last_played", &lastPlayed_},
        {"plays", &plays_},     {"skips", &skips_},      {"rating", &rating_}, {"compilation", &compilation_},
        {"album_of", &albumOf_}};
    for (const auto &[name, column] : numbers) members.push_back(member(name, column->json()));
    members.push_back(member("flags", songs == 0 ? "[]" : flags_.json()));
    return joined(members, "{}");
  }

 private:
  static constexpr size_t kMedia = 6;
  static constexpr size_t kComment = 7;

  const Privacy &privacy_;
  std::string titles_;
  std::array<WordColumn, 8> words_ = {{{"artist", {}, {}},
                                       {"album", {}, {}},
                                       {"album_artist", {}, {}},
                                       {"genre", {}, {}},
                                       {"composer", {}, {}},
                                       {"kind", {}, {}},
                                       {"media", {}, {}},
                                       {"comment", {}, {}}}};
  PageColumn year_, track_, disc_, duration_, size_, bitRate_, added_, lastPlayed_, plays_, skips_, rating_,
      compilation_, albumOf_, flags_;
};

}  // namespace

SongSelection::SongSelection(const MusicLibrary &library, int32_t playlist)
    : places_(static_cast<size_t>(library.songCount()), -1) {
  std::vector<int32_t> listed;
  if (playlist >= 0) {
    listed = listedSongs(library, playlist);
  } else {
    listed.resize(places_.size());
    std::iota(listed.begin(), listed.end(), 0);
  }
  for (const int32_t song : listed) {
    if (song < 0 || places_[static_cast<size_t>(song)] >= 0) continue;
    places_[static_cast<size_t>(song)] = static_cast<int32_t>(songs_.size());
    songs_.push_back(song);
  }
}

std::optional<size_t> SongSelection::placeOf(int32_t song) const {
  if (song < 0 || places_[static_cast<size_t>(song)] < 0) return std::nullopt;
  return static_cast<size_t>(places_[static_cast<size_t>(song)]);
}

std::optional<int64_t> daysOf(const std::optional<uint32_t> &secondsSince1904) {
  constexpr int64_t kDay = 86'400;
  constexpr int64_t kDaysUntil1970 = 24'107;  // from the start of 1904
  if (!secondsSince1904) return std::nullopt;
  return int64_t{*secondsSince1904} / kDay - kDaysUntil1970;
}

PageSongs pageSongs(const MusicLibrary &library, const SongSelection &selection,
                    const std::vector<uint32_t> &marks, const Privacy &privacy, bool covers) {
  PageSongs page;
  SongsJson columns(privacy);
  std::vector<AlbumSong> albumSongs;
  albumSongs.reserve(selection.songs().size());
  std::vector<std::optional<size_t>> images;
  for (const int32_t index : selection.songs()) {
    const Song song = library.song(index);
    const std::string albumArtist = library.numberedText(index, kAlbumArtistText).value_or("");
    columns.add(song, albumArtist, library.numberedText(index, kCommentText).value_or(""),
                marks[albumSongs.size()]);
    page.totals.add(song.duration, song.size);
    albumSongs.push_back(albumSong(song, albumArtist));
    images.push_back(covers ? library.covers().imageOf(song.facts) : std::nullopt);
  }
  const Albums albums(albumSongs);
  std::vector<std::set<size_t>> imagesOf(albums.list().size());
  for (size_t place = 0; place < albumSongs.size(); ++place) {
    const std::optional<size_t> album = albums.albumOf(place);
    columns.addAlbum(album);
    if (album && images[place]) imagesOf[*album].insert(*images[place]);
  }
  CoverData pictures(library.covers());
  std::vector<std::string> list;
  for (size_t album = 0; album < imagesOf.size(); ++album) {
    const std::optional<size_t> cover = pictures.add(imagesOf[album]);
    list.push_back(pageJson({{"name", privacy.text(albums.list()[album].name)},
                             {"artist", privacy.text(albums.list()[album].artist)},
                             {"cover", cover ? Json(*cover) : Json()}}));
  }
  page.unreadable = pictures.unreadable();
  std::vector<std::string> addresses;
  for (const std::string_view address : pictures.addresses()) addresses.push_back(pageJson(address));
  page.members = member("words", columns.wordsJson()) + "," +
                 member("songs", columns.json(selection.songs().size())) + "," +
                 member("albums", joined(list, "[]")) + "," + member("covers", joined(addresses, "[]"));
  return page;
}

}  // namespace zemhost
