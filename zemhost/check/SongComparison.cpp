#include "zemhost/check/SongComparison.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "zemhost/library/ClassWords.h"

namespace zemhost {

namespace {

struct KnownText {
  const char *name;
  std::string Song::*text;
  uint32_t player;   // its number in the file
  uint32_t desktop;  // likewise; 0: read by one of the two alone
};
constexpr KnownText kTexts[] = {{"title", &Song::title, 1, 2},        {"path", &Song::path, 2, 0},
                                {"album", &Song::album, 3, 3},        {"artist", &Song::artist, 4, 4},
                                {"genre", &Song::genre, 5, 5},        {"file type", &Song::fileType, 6, 0},
                                {"composer", &Song::composer, 12, 12}};

std::string differenceOf(const char *what, const std::string &answered, const std::string &held) {
  return "the class answers " + answered + " as the " + what + ", and the file holds " + held;
}

std::string quoted(const std::string &text) { return '"' + text + '"'; }

}  // namespace

std::vector<std::string> songDifferences(const Song &song, const std::string &path,
                                         const std::vector<player::SongText> &texts, bool bigEndian) {
  const player::SongFacts &facts = song.facts;
  std::vector<std::string> differences;
  const auto compare = [&](const char *what, uint32_t answered, const std::optional<uint32_t> &held) {
    if (held && *held != answered)
      differences.push_back(differenceOf(what, std::to_string(answered), std::to_string(*held)));
  };
  compare("track number", song.track, facts.track);
  compare("number of tracks", song.trackTotal, facts.trackTotal);
  compare("duration", song.duration, facts.duration);
  compare("size", song.size, facts.size);
  compare("year", song.year, facts.year);
  compare("bit rate", song.bitRate, facts.bitRate);
  if (facts.rateWord) compare("sample rate", song.sampleRate, sampleRateHertz(*facts.rateWord));
  compare("date of the last change", song.modified, facts.modified);
  for (const KnownText &known : kTexts) {
    const uint32_t type = bigEndian ? known.desktop : known.player;
    const auto isOfType = [type](const player::SongText &text) { return text.type == type; };
    const auto held = std::find_if(texts.begin(), texts.end(), isOfType);
    if (type == 0 || held == texts.end() || std::any_of(held + 1, texts.end(), isOfType)) continue;
    const std::string &answered = known.text == &Song::path ? path : song.*known.text;
    if (answered != held->text)
      differences.push_back(differenceOf(known.name, quoted(answered), quoted(held->text)));
  }
  return differences;
}

}  // namespace zemhost
