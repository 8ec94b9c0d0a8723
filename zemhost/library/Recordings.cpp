#include "zemhost/library/Recordings.h"

#include <algorithm>
#include <map>
#include <utility>

#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

constexpr std::string_view kOpening = "([";
constexpr std::string_view kClosing = ")]";

// What stands for a blank or a bracket in other scripts.
void replaceSigns(std::string &text) {
  static constexpr std::pair<std::string_view, char> kSigns[] = {
      {"\u00A0", ' '}, {"\u2002", ' '}, {"\u2003", ' '}, {"\u2009", ' '}, {"\u200A", ' '},
      {"\u202F", ' '}, {"\u3000", ' '}, {"\uFF08", '('}, {"\uFF09", ')'}, {"\uFF3B", '['},
      {"\uFF3D", ']'}, {"\u3010", '['}, {"\u3011", ']'}};
  for (const auto &[sign, plain] : kSigns) {
    for (size_t at = 0; (at = text.find(sign, at)) != std::string::npos; ++at)
      text.replace(at, sign.size(), 1, plain);
  }
}

void cutBlanks(std::string &text) { text.erase(text.find_last_not_of(' ') + 1); }

// Where the brackets at the end of a text begin; its length where there are none.
size_t bracketsAtEnd(std::string_view text) {
  size_t open = 0;
  for (size_t at = text.size(); at-- > 0;) {
    if (kClosing.find(text[at]) != std::string_view::npos) ++open;
    if (open == 0) return text.size();
    if (kOpening.find(text[at]) != std::string_view::npos && --open == 0) return at;
  }
  return text.size();
}

// The songs of the same texts by the rules, in the order of their first songs; those alone as well.
std::vector<SongGroup> songsOfTexts(const MusicLibrary &library, const RecordingRules &rules,
                                    uint64_t *comparisons) {
  const Sameness by = rules.sameAlbum ? Sameness::Song : Sameness::SongOfArtist;
  std::vector<SongGroup> groups = groupSongs(library, by, comparisons);
  if (!rules.loosely) return groups;
  const auto isBefore = [comparisons](const std::vector<std::string> &one,
                                      const std::vector<std::string> &other) {
    if (comparisons != nullptr) ++*comparisons;
    return one < other;
  };
  std::map<std::vector<std::string>, size_t, decltype(isBefore)> places(isBefore);
  std::vector<SongGroup> looser;
  for (SongGroup &group : groups) {
    std::vector<std::string> key;
    for (const std::string &text : group.texts) key.push_back(looseText(text));
    const bool isAlone = library.song(group.songs.front()).title.empty() || key.front().empty();
    const auto [place, isNew] =
        isAlone ? std::pair(places.end(), true) : places.try_emplace(std::move(key), looser.size());
    if (isNew) {
      looser.push_back(std::move(group));
    } else {
      std::vector<int32_t> &songs = looser[place->second].songs;
      songs.insert(songs.end(), group.songs.begin(), group.songs.end());
    }
  }
  return looser;
}

struct SongLength {
  uint32_t length;
  int32_t song;
};

class Splitter {
 public:
  Splitter(const MusicLibrary &library, const RecordingRules &rules, uint64_t *comparisons)
      : library_(library), rules_(rules), comparisons_(comparisons) {}

  void split(const SongGroup &group) {
    std::vector<SongLength> lengths;
    for (const int32_t song : group.songs) lengths.push_back({library_.duration(song), song});
    std::sort(lengths.begin(), lengths.end(), [this](const SongLength &one, const SongLength &other) {
      if (comparisons_ != nullptr) ++*comparisons_;
      return std::pair(one.length, one.song) < std::pair(other.length, other.song);
    });
    size_t recordings = 0;
    for (size_t start = 0; start < lengths.size(); ++recordings) {
      size_t end = start + 1;
      while (end < lengths.size() && isOne(lengths[start].length, lengths[end].length)) ++end;
      if (end - start > 1) add(lengths, start, end);
      start = end;
    }
    if (recordings > 1) ++found_.toldApart;
  }

  Recordings take() {
    std::sort(found_.repeated.begin(), found_.repeated.end(),
              [](const Recording &one, const Recording &other) {
                return one.group.songs.front() < other.group.songs.front();
              });
    return std::move(found_);
  }

 private:
  // Whether two lengths in order may be of one recording.
  bool isOne(uint32_t shorter, uint32_t longer) const {
    return shorter == 0 ? longer == 0 : longer - shorter <= rules_.mostApart;
  }

  void add(const std::vector<SongLength> &lengths, size_t start, size_t end) {
    Recording recording;
    for (size_t i = start; i < end; ++i) recording.group.songs.push_back(lengths[i].song);
    std::sort(recording.group.songs.begin(), recording.group.songs.end());
    const uint32_t shortest = lengths[start].length;
    if (shortest != 0) recording.apart = lengths[end - 1].length - shortest;
    recording.group.texts = textsOf(recording.group.songs.front());
    recording.isExact.assign(recording.group.texts.size(), true);
    for (const int32_t song : recording.group.songs) {
      if (!rules_.loosely) break;
      const std::vector<std::string> texts = textsOf(song);
      for (size_t i = 0; i < texts.size(); ++i)
        if (texts[i] != recording.group.texts[i]) recording.isExact[i] = false;
    }
    found_.repeated.push_back(std::move(recording));
  }

  std::vector<std::string> textsOf(int32_t index) const {
    return songTexts(library_, rules_.sameAlbum ? Sameness::Song : Sameness::SongOfArtist, index);
  }

  const MusicLibrary &library_;
  RecordingRules rules_;
  uint64_t *comparisons_;
  Recordings found_;
};

}  // namespace

std::string looseText(std::string_view text) {
  std::string loose = foldedText(oneLine(text));
  replaceSigns(loose);
  for (;;) {
    cutBlanks(loose);
    const size_t brackets = bracketsAtEnd(loose);
    const bool isSuffix = loose.find_first_not_of(' ') < brackets && brackets < loose.size();
    if (!isSuffix) break;
    loose.resize(brackets);
  }
  std::erase(loose, ' ');
  return loose;
}

Recordings repeatedRecordings(const MusicLibrary &library, const RecordingRules &rules,
                              uint64_t *comparisons) {
  Splitter splitter(library, rules, comparisons);
  for (const SongGroup &group : songsOfTexts(library, rules, comparisons)) {
    if (group.songs.size() > 1) splitter.split(group);
  }
  return splitter.take();
}

}  // namespace zemhost
