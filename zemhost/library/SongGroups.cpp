#include "zemhost/library/SongGroups.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

// The texts by which songs are told apart, and the one whose comparison has the last word.
struct Criterion {
  std::vector<SongTextField> texts;
  SongTextField same;
};

Criterion criterionOf(Sameness by) {
  using enum SongTextField;
  switch (by) {
    case Sameness::Song:
      return {{Title, Artist, Album}, Album};
    case Sameness::SongOfArtist:
      return {{Title, Artist}, Artist};
    case Sameness::Artist:
      return {{Artist}, Artist};
    case Sameness::Album:
      return {{Album, Artist}, Album};
    case Sameness::Genre:
      return {{Genre}, Genre};
    case Sameness::Composer:
      break;
  }
  return {{Composer}, Composer};
}

bool isOfSongs(Sameness by) { return by == Sameness::Song || by == Sameness::SongOfArtist; }

// The bytes of the texts, each behind its length, so that no two lists of texts give the same.
std::string bytesOf(const MusicLibrary &library, const std::vector<SongTextField> &texts, int32_t song) {
  std::string key;
  for (const SongTextField text : texts) {
    const std::string bytes = library.storedText(text, song);
    key.append(std::to_string(bytes.size())).append(1, ':').append(bytes);
  }
  return key;
}

// The groups by their texts; those whose texts are the same become one.
std::map<std::vector<std::string>, SongGroup> byTexts(std::vector<SongGroup> groups) {
  std::map<std::vector<std::string>, SongGroup> merged;
  for (SongGroup &group : groups) {
    const auto [place, isNew] = merged.try_emplace(group.texts, group);
    if (isNew) continue;
    std::vector<int32_t> &songs = place->second.songs;
    songs.insert(songs.end(), group.songs.begin(), group.songs.end());
  }
  for (auto &[texts, group] : merged) std::sort(group.songs.begin(), group.songs.end());
  return merged;
}

}  // namespace

const std::vector<std::string_view> &textNames(Sameness by) {
  static const std::vector<std::string_view> kSong = {"title", "artist", "album"};
  static const std::vector<std::string_view> kSongOfArtist = {"title", "artist"};
  static const std::vector<std::string_view> kArtist = {"artist"};
  static const std::vector<std::string_view> kAlbum = {"album", "artist"};
  static const std::vector<std::string_view> kGenre = {"genre"};
  static const std::vector<std::string_view> kComposer = {"composer"};
  switch (by) {
    case Sameness::Song:
      return kSong;
    case Sameness::SongOfArtist:
      return kSongOfArtist;
    case Sameness::Artist:
      return kArtist;
    case Sameness::Album:
      return kAlbum;
    case Sameness::Genre:
      return kGenre;
    case Sameness::Composer:
      break;
  }
  return kComposer;
}

std::vector<std::string> songTexts(const MusicLibrary &library, Sameness by, int32_t index) {
  const Song song = library.song(index);
  std::vector<std::string> texts;
  for (const std::string_view name : textNames(by)) {
    if (name == "title") texts.push_back(song.title.empty() ? song.path : song.title);
    if (name == "artist") texts.push_back(song.artist);
    if (name == "album") texts.push_back(song.album);
    if (name == "genre") texts.push_back(song.genre);
    if (name == "composer") texts.push_back(song.composer);
  }
  for (std::string &text : texts) text = composedText(text);
  return texts;
}

std::vector<SongGroup> groupSongs(const MusicLibrary &library, Sameness by, uint64_t *comparisons) {
  const Criterion criterion = criterionOf(by);
  const auto isBefore = [comparisons](const std::string &one, const std::string &other) {
    if (comparisons != nullptr) ++*comparisons;
    return one < other;
  };
  std::vector<SongGroup> groups;
  // Of the group with these bytes. In order, since texts of a file can be made to meet in any hash whose key
  // is known.
  std::map<std::string, size_t, decltype(isBefore)> places(isBefore);
  const int32_t count = library.songCount();
  for (int32_t song = 0; song < count; ++song) {
    const bool isAlone = isOfSongs(by) && library.storedText(criterion.texts.front(), song).empty();
    std::optional<size_t> place;
    if (!isAlone) {
      const auto [found, isNew] = places.try_emplace(bytesOf(library, criterion.texts, song), groups.size());
      // The class compares the same bytes, in one look at each; where it says otherwise, it is right.
      if (!isNew && library.isSame(criterion.same, groups[found->second].songs.front(), song))
        place = found->second;
    }
    if (place) {
      groups[*place].songs.push_back(song);
    } else {
      groups.push_back({songTexts(library, by, song), {song}});
    }
  }
  return groups;
}

Comparison compareLibraries(const MusicLibrary &a, const MusicLibrary &b, Sameness by) {
  const auto groupsOfB = byTexts(groupSongs(b, by));
  const auto groupsOfA = byTexts(groupSongs(a, by));
  Comparison comparison;
  for (const auto &[texts, group] : groupsOfA) {
    const auto found = groupsOfB.find(texts);
    if (found == groupsOfB.end()) {
      comparison.onlyA.push_back(group);
    } else {
      comparison.both.push_back({group, found->second});
    }
  }
  for (const auto &[texts, group] : groupsOfB) {
    if (!groupsOfA.contains(texts)) comparison.onlyB.push_back(group);
  }
  const auto isBefore = [](const SongGroup &one, const SongGroup &other) {
    return one.songs.front() < other.songs.front();
  };
  std::sort(comparison.onlyA.begin(), comparison.onlyA.end(), isBefore);
  std::sort(comparison.onlyB.begin(), comparison.onlyB.end(), isBefore);
  std::sort(
      comparison.both.begin(), comparison.both.end(),
      [&](const Comparison::Pair &one, const Comparison::Pair &other) { return isBefore(one.a, other.a); });
  return comparison;
}

}  // namespace zemhost
