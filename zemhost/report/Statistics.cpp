#include "zemhost/report/Statistics.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "zemhost/output/Units.h"
#include "zemhost/report/Albums.h"

namespace zemhost {

namespace {

// The database states 0 where it does not know.
std::optional<uint64_t> statedNumber(uint32_t number) {
  return number == 0 ? std::nullopt : std::optional<uint64_t>(number);
}

}  // namespace

const std::vector<std::string> &groupingNames() {
  static const std::vector<std::string> kNames = {"artist", "album", "genre",  "year",
                                                  "decade", "kind",  "rating", "month"};
  return kNames;
}

const std::vector<std::string> &measureNames() {
  static const std::vector<std::string> kNames = {"songs", "time", "size", "plays"};
  return kNames;
}

bool isInOrder(Grouping by) {
  return by == Grouping::Year || by == Grouping::Decade || by == Grouping::Rating || by == Grouping::Month;
}

const Sum &Figures::sumOf(Measure measure) const {
  if (measure == Measure::Time) return time;
  return measure == Measure::Size ? size : plays;
}

std::optional<uint64_t> Figures::value(Measure measure) const {
  return measure == Measure::Songs ? songs : sumOf(measure).known(songs);
}

uint64_t Figures::unstated(Measure measure) const {
  return measure == Measure::Songs ? 0 : songs - sumOf(measure).stated;
}

Statistics::Statistics(const MusicLibrary &library) {
  numberOf("");
  const int32_t count = library.songCount();
  songs_.reserve(static_cast<size_t>(count));
  for (int32_t index = 0; index < count; ++index) {
    const Song song = library.song(index);
    SongFigures figures{};
    figures.time = statedNumber(song.duration);
    figures.size = statedNumber(song.size);
    if (song.facts.plays) figures.plays = *song.facts.plays;
    if (song.year != 0) figures.year = song.year;
    if (song.facts.rating) figures.rating = *song.facts.rating;
    figures.added = song.facts.added;
    figures.artist = numberOf(song.artist);
    figures.genre = numberOf(song.genre);
    figures.kind = numberOf(song.fileType);
    add(figures, all_);
    songs_.push_back(figures);
    albumSongs_.push_back(albumSong(song, library.numberedText(index, kAlbumArtistText).value_or("")));
  }
}

size_t Statistics::numberOf(const std::string &text) {
  const auto [found, isNew] = numbers_.try_emplace(text, texts_.size());
  if (isNew) texts_.push_back(&found->first);
  return found->second;
}

void Statistics::add(const SongFigures &song, Figures &figures) {
  ++figures.songs;
  figures.time.add(song.time);
  figures.size.add(song.size);
  figures.plays.add(song.plays);
}

std::string Statistics::nameOf(const SongFigures &song, Grouping grouping) const {
  switch (grouping) {
    case Grouping::Artist:
      return *texts_[song.artist];
    case Grouping::Genre:
      return *texts_[song.genre];
    case Grouping::Kind:
      return *texts_[song.kind];
    case Grouping::Year:
      return song.year ? std::to_string(*song.year) : std::string();
    case Grouping::Decade:
      return song.year ? std::to_string(*song.year / 10 * 10) + "s" : std::string();
    case Grouping::Rating:
      return song.rating ? std::to_string(*song.rating) : std::string();
    case Grouping::Month:
      return song.added ? dateText(*song.added).substr(0, 7) : std::string();
    case Grouping::Album:
      break;
  }
  return {};
}

std::vector<FigureGroup> Statistics::byAlbum() const {
  const Albums albums(albumSongs_);
  std::vector<FigureGroup> groups;
  for (const NamedAlbum &album : albums.list()) groups.push_back({album.name, album.artist, {}});
  FigureGroup unknown;
  for (size_t song = 0; song < songs_.size(); ++song) {
    const std::optional<size_t> album = albums.albumOf(song);
    add(songs_[song], (album ? groups[*album] : unknown).figures);
  }
  if (unknown.figures.songs != 0) groups.push_back(std::move(unknown));
  return groups;
}

std::vector<FigureGroup> Statistics::by(Grouping grouping) const {
  if (grouping == Grouping::Album) return byAlbum();
  std::map<std::string, size_t> places;
  std::vector<FigureGroup> groups;
  for (const SongFigures &song : songs_) {
    const auto [place, isNew] = places.try_emplace(nameOf(song, grouping), groups.size());
    if (isNew) groups.push_back({place->first, {}, {}});
    add(song, groups[place->second].figures);
  }
  // Numbers of any length in their order.
  const auto isBefore = [&](const FigureGroup &one, const FigureGroup &other) {
    if (one.name.empty() != other.name.empty()) return other.name.empty();
    if (!isInOrder(grouping)) return false;
    return std::pair(one.name.size(), std::string_view(one.name)) <
           std::pair(other.name.size(), std::string_view(other.name));
  };
  std::stable_sort(groups.begin(), groups.end(), isBefore);
  return groups;
}

std::vector<FigureGroup> highest(std::vector<FigureGroup> groups, Grouping by, Measure measure, size_t top) {
  const bool hasUnknown = !groups.empty() && groups.back().name.empty();
  std::vector<size_t> order(groups.size() - (hasUnknown ? 1 : 0));
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](size_t one, size_t other) {
    return groups[one].figures.value(measure).value_or(0) > groups[other].figures.value(measure).value_or(0);
  });
  if (top != 0 && order.size() > top) order.resize(top);
  if (isInOrder(by)) std::sort(order.begin(), order.end());
  std::vector<FigureGroup> chosen;
  chosen.reserve(order.size() + 1);
  for (const size_t place : order) chosen.push_back(std::move(groups[place]));
  if (hasUnknown) chosen.push_back(std::move(groups.back()));
  return chosen;
}

}  // namespace zemhost
