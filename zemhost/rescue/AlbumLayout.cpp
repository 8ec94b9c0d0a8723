#include "zemhost/rescue/AlbumLayout.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

// In which texts that a person takes for the same are the same.
std::string keyOf(std::string_view text) {
  std::string folded = foldedText(text);
  folded.erase(folded.find_last_not_of(' ') + 1);  // npos + 1 is 0
  folded.erase(0, folded.find_first_not_of(' '));
  return folded;
}

bool isVarious(const std::string &albumArtist) {
  constexpr std::array<std::string_view, 4> kVarious = {"various artists", "various", "v.a.", "va"};
  return std::find(kVarious.begin(), kVarious.end(), keyOf(albumArtist)) != kVarious.end();
}

// Whether text goes on at `at` with one of these words, or ends there.
template <size_t N>
bool goesOn(std::string_view text, size_t at, const std::array<std::string_view, N> &words) {
  return at == text.size() || std::any_of(words.begin(), words.end(), [&](std::string_view word) {
           return text.substr(at).starts_with(word);
         });
}

constexpr std::array<std::string_view, 8> kGuests = {" feat ",      " feat. ", " ft ", " ft. ",
                                                     " featuring ", " (feat",  " (ft", " (with "};
constexpr std::array<std::string_view, 10> kCompany = {",",   ";",     "/",      " / ",  " & ",
                                                       " + ", " and ", " with ", " vs ", " vs. "};

// The artist without those who appear beside, as it stands in a text with ASCII letters of any case.
std::string leadOf(const std::string &artist) {
  std::string small = artist;
  std::transform(small.begin(), small.end(), small.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  size_t end = artist.size();
  for (const std::string_view word : kGuests) end = std::min(end, small.find(word));
  return end == 0 ? artist : artist.substr(0, end);
}

// The one artist of all these songs: the shortest of their names, when each other one begins with it and adds
// company; empty when there is none.
std::string commonArtist(const std::vector<AlbumSong> &songs, const std::vector<size_t> &places) {
  std::string shortest = leadOf(songs[places.front()].artist);
  for (const size_t place : places) {
    if (std::string lead = leadOf(songs[place].artist); lead.size() < shortest.size())
      shortest = std::move(lead);
  }
  const std::string key = keyOf(shortest);
  const bool isCommon = std::all_of(places.begin(), places.end(), [&](size_t place) {
    const std::string other = keyOf(leadOf(songs[place].artist));
    return other.starts_with(key) && goesOn(other, key.size(), kCompany);
  });
  return isCommon ? shortest : std::string();
}

// Whether songs of several artists are one album by their numbers.
bool fitTogether(const std::vector<AlbumSong> &songs, const std::vector<size_t> &places) {
  std::set<std::pair<uint32_t, uint32_t>> taken;  // by disc and track
  std::map<uint32_t, uint32_t> totals;            // by disc
  std::set<std::string> artists;
  std::set<uint32_t> years;
  for (const size_t place : places) {
    const AlbumSong &song = songs[place];
    if (song.track == 0 || song.trackTotal == 0 || !taken.emplace(song.disc, song.track).second) return false;
    if (totals.try_emplace(song.disc, song.trackTotal).first->second != song.trackTotal) return false;
    if (artists.size() < 3) artists.insert(keyOf(song.artist));
    if (song.year != 0) years.insert(song.year);
  }
  return artists.size() > 1 && (years.size() < 2 || artists.size() > 2);
}

}  // namespace

AlbumSong albumSong(const Song &song, std::string albumArtist) {
  AlbumSong part;
  part.album = song.album;
  part.albumArtist = std::move(albumArtist);
  part.artist = song.artist;
  part.disc = song.facts.disc.value_or(0);
  part.discs = song.facts.discs.value_or(0);
  part.track = song.track;
  part.trackTotal = song.trackTotal;
  part.year = song.year;
  part.compilation = song.facts.compilation.value_or(false);
  return part;
}

AlbumLayout::AlbumLayout(const std::vector<AlbumSong> &songs) : albumOf_(songs.size()) {
  std::map<std::string, Places> byName;  // ordered, since a player's names could be made to meet in a hash
  std::map<std::string, Places> without;
  discs_.reserve(songs.size());
  for (size_t place = 0; place < songs.size(); ++place) {
    const AlbumSong &song = songs[place];
    discs_.push_back(song.disc);
    std::string name = keyOf(song.album);
    if (name.empty()) {
      without[keyOf(song.albumArtist.empty() ? song.artist : song.albumArtist)].push_back(place);
    } else {
      byName[std::move(name)].push_back(place);
    }
  }
  for (const auto &[name, namesakes] : byName) placeNamesakes(songs, namesakes);
  for (const auto &[artist, places] : without) {
    const AlbumSong &first = songs[places.front()];
    add(songs, places, first.albumArtist.empty() ? first.artist : first.albumArtist);
    albums_.back().discs = 1;  // there is no album that could have several
  }
}

void AlbumLayout::placeNamesakes(const Songs &songs, const Places &namesakes) {
  std::map<std::string, Places> byArtist;
  Places compilation;
  Places uncredited;
  for (const size_t place : namesakes) {
    const std::string &artist = songs[place].albumArtist;
    if (isVarious(artist)) {
      compilation.push_back(place);
    } else if (const std::string key = keyOf(artist); !key.empty()) {
      byArtist[key].push_back(place);
    } else {
      uncredited.push_back(place);
    }
  }
  // An artist's own song whose album artist is not stated goes with those where it is.
  const auto isOwn = [&](size_t place) {
    const auto found = byArtist.find(keyOf(leadOf(songs[place].artist)));
    if (found == byArtist.end()) return false;
    found->second.push_back(place);
    return true;
  };
  uncredited.erase(std::remove_if(uncredited.begin(), uncredited.end(), isOwn), uncredited.end());
  placeUncredited(songs, uncredited, compilation);
  for (const auto &[key, places] : byArtist) {
    const bool isMarked =
        std::any_of(places.begin(), places.end(), [&](size_t place) { return songs[place].compilation; });
    const bool isOfSeveral = isMarked && commonArtist(songs, places).empty();
    add(songs, places, isOfSeveral ? kCompilations : songs[places.front()].albumArtist);
  }
  if (!compilation.empty()) add(songs, compilation, kCompilations);
}

// Those of one album name without an album artist; what belongs to a compilation is added to it.
void AlbumLayout::placeUncredited(const Songs &songs, const Places &uncredited, Places &compilation) {
  if (uncredited.empty()) return;
  const auto isMarked = [&](size_t place) { return songs[place].compilation; };
  const std::string common = commonArtist(songs, uncredited);
  if (!common.empty() && std::none_of(uncredited.begin(), uncredited.end(), isMarked)) {
    add(songs, uncredited, common);
    return;
  }
  const bool areOne = common.empty() && fitTogether(songs, uncredited);
  std::map<std::string, Places> byArtist;
  for (const size_t place : uncredited) {
    if (areOne || isMarked(place)) {
      compilation.push_back(place);
    } else {
      byArtist[keyOf(leadOf(songs[place].artist))].push_back(place);
    }
  }
  for (const auto &[key, places] : byArtist) add(songs, places, leadOf(songs[places.front()].artist));
}

void AlbumLayout::add(const Songs &songs, const Places &places, std::string artist) {
  Album album{std::move(artist), 1};
  for (const size_t place : places) {
    album.discs = std::max({album.discs, songs[place].disc, songs[place].discs});
    albumOf_[place] = albums_.size();
  }
  albums_.push_back(std::move(album));
}

std::string AlbumLayout::discOf(size_t song) const {
  const uint32_t discs = albums_[albumOf_[song]].discs;
  if (discs < 2 || discs_[song] == 0) return {};
  const std::string disc = std::to_string(discs_[song]);
  return std::string(std::to_string(discs).size() - disc.size(), '0') + disc;
}

}  // namespace zemhost
