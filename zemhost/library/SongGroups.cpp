#include "zemhost/library/SongGroups.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

// The texts by which songs are told apart, in the order of textNames(), and the one whose comparison has the
// last word.
struct Criterion {
  std::vector<SongTextField> texts;
  SongTextField same;
};

const Criterion &criterionOf(Sameness by) {
  using enum SongTextField;
  static const Criterion kSong{{Title, Artist, Album}, Album};
  static const Criterion kSongOfArtist{{Title, Artist}, Artist};
  static const Criterion kArtist{{Artist}, Artist};
  static const Criterion kAlbum{{Album, Artist}, Album};
  static const Criterion kGenre{{Genre}, Genre};
  static const Criterion kComposer{{Composer}, Composer};
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

bool isOfSongs(Sameness by) { return by == Sameness::Song || by == Sameness::SongOfArtist; }

// Bytes of texts in an order that is quick to compare: by a hash, and where that is the same by themselves.
// So whoever makes texts that meet in the hash gains nothing but comparisons of whole texts.
struct TextKey {
  size_t hash;
  std::string bytes;
};

// The bytes stand each behind their length, so that no two lists of texts give the same.
TextKey keyOf(const MusicLibrary &library, const std::vector<SongTextField> &texts, int32_t song) {
  std::string key;
  for (const SongTextField text : texts) {
    const std::string bytes = library.storedText(text, song);
    key.append(std::to_string(bytes.size())).append(1, ':').append(bytes);
  }
  return {std::hash<std::string>()(key), std::move(key)};
}

// The groups in the order of their texts; those whose texts are the same become one.
std::vector<SongGroup> inOrderOfTexts(std::vector<SongGroup> groups) {
  const auto isBefore = [](const SongGroup &one, const SongGroup &other) { return one.texts < other.texts; };
  std::stable_sort(groups.begin(), groups.end(), isBefore);
  std::vector<SongGroup> merged;
  merged.reserve(groups.size());
  for (SongGroup &group : groups) {
    if (merged.empty() || merged.back().texts != group.texts) {
      merged.push_back(std::move(group));
    } else {
      std::vector<int32_t> &songs = merged.back().songs;
      songs.insert(songs.end(), group.songs.begin(), group.songs.end());
    }
  }
  for (SongGroup &group : merged) std::sort(group.songs.begin(), group.songs.end());
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
  std::vector<std::string> texts;
  for (const SongTextField field : criterionOf(by).texts) {
    const std::string text = library.text(field, index);
    const bool needsPath = text.empty() && field == SongTextField::Title;
    texts.push_back(composedText(needsPath ? library.song(index).path : text));
  }
  return texts;
}

std::vector<SongGroup> groupSongs(const MusicLibrary &library, Sameness by, uint64_t *comparisons) {
  const Criterion &criterion = criterionOf(by);
  const auto isBefore = [comparisons](const TextKey &one, const TextKey &other) {
    if (comparisons != nullptr) ++*comparisons;
    return one.hash != other.hash ? one.hash < other.hash : one.bytes < other.bytes;
  };
  std::vector<SongGroup> groups;
  // Of the group with these bytes. In order, since texts of a file can be made to meet in any hash whose key
  // is known.
  std::map<TextKey, size_t, decltype(isBefore)> places(isBefore);
  const int32_t count = library.songCount();
  for (int32_t song = 0; song < count; ++song) {
    const bool isAlone = isOfSongs(by) && library.storedText(criterion.texts.front(), song).empty();
    std::optional<size_t> place;
    if (!isAlone) {
      const auto [found, isNew] = places.try_emplace(keyOf(library, criterion.texts, song), groups.size());
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
  std::vector<SongGroup> groupsOfA = inOrderOfTexts(groupSongs(a, by));
  std::vector<SongGroup> groupsOfB = inOrderOfTexts(groupSongs(b, by));
  Comparison comparison;
  auto inA = groupsOfA.begin();
  auto inB = groupsOfB.begin();
  while (inA != groupsOfA.end() || inB != groupsOfB.end()) {
    if (inB == groupsOfB.end() || (inA != groupsOfA.end() && inA->texts < inB->texts)) {
      comparison.onlyA.push_back(std::move(*inA++));
    } else if (inA == groupsOfA.end() || inA->texts != inB->texts) {
      comparison.onlyB.push_back(std::move(*inB++));
    } else {
      comparison.both.push_back({std::move(*inA++), std::move(*inB++)});
    }
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
