#include "player/SmartFields.h"

#include <algorithm>

namespace player {

namespace {

constexpr uint32_t kPodcast = 4;  // in the bits of the media kind

// What a song does not say counts as none, as it did for the program that filled the list.
template <typename Fact>
std::optional<int64_t> orNone(const std::optional<Fact> &fact) {
  return fact ? static_cast<int64_t>(*fact) : 0;
}

}  // namespace

const SmartField *smartField(uint32_t number) {
  using S = const SongFacts;
  using Value = std::optional<int64_t>;
  using enum FieldKind;
  static constexpr SmartField kFields[] = {
      {0x02, Text, "Title", 1},
      {0x03, Text, "Album", 3},
      {0x04, Text, "Artist", 4},
      {0x05, BitRate, "Bit rate", 0, [](S &s) { return orNone(s.bitRate); }},
      {0x06, SampleRate, "Sample rate", 0, [](S &s) { return Value(s.rateWord.value_or(0) >> 16); }},
      {0x07, Number, "Year", 0, [](S &s) { return orNone(s.year); }},
      {0x08, Text, "Genre", 5},
      {0x09, Text, "Kind", 6},
      {0x0a, Date, "Date modified", 0, [](S &s) { return orNone(s.modified); }},
      {0x0b, Number, "Track number", 0, [](S &s) { return orNone(s.track); }},
      {0x0c, Size, "Size", 0, [](S &s) { return orNone(s.size); }},
      {0x0d, Duration, "Time", 0, [](S &s) { return orNone(s.duration); }},
      {0x0e, Text, "Comment", 8},
      {0x10, Date, "Date added", 0, [](S &s) { return orNone(s.added); }},
      {0x12, Text, "Composer", 12},
      {0x16, Number, "Plays", 0, [](S &s) { return orNone(s.plays); }},
      {0x17, Date, "Last played", 0, [](S &s) { return orNone(s.lastPlayed); }},
      {0x18, Number, "Disc", 0, [](S &s) { return orNone(s.disc); }},
      {0x19, Rating, "Rating", 0, [](S &s) { return orNone(s.rating); }},
      {0x1d, Flag, "Checked", 0, [](S &s) { return Value(s.checked.value_or(true)); }},
      {0x1f, Flag, "Compilation", 0, [](S &s) { return orNone(s.compilation); }},
      {0x23, Number, "BPM", 0, [](S &s) { return orNone(s.bpm); }},
      {0x25, Flag, "Cover", 0, [](S &s) { return s.picture ? Value(*s.picture) : std::nullopt; }},
      {0x27, Text, "Grouping", 13},
      {0x28, Playlist, "Playlist"},
      {0x29, Flag, "Bought", 0, [](S &s) { return orNone(s.bought); }},
      {0x36, Text, "Description", 14},
      {0x37, Text, "Category", 9},
      {0x39, Flag, "Podcast", 0, [](S &s) { return Value((s.mediaType.value_or(0) & kPodcast) != 0); }},
      {0x3c, MediaKind, "Media kind", 0, [](S &s) { return orNone(s.mediaType); }},
      {0x3e, Text, "Show", 19},
      {0x3f, Number, "Season", 0, [](S &s) { return orNone(s.season); }},
      {0x44, Number, "Skips", 0, [](S &s) { return orNone(s.skips); }},
      {0x45, Date, "Last skipped", 0, [](S &s) { return orNone(s.lastSkipped); }},
      {0x47, Text, "Album artist", 22},
      {0x4e, Text, "Title for sorting", 27},
      {0x4f, Text, "Album for sorting", 28},
      {0x50, Text, "Artist for sorting", 23},
      {0x51, Text, "Album artist for sorting", 29},
      {0x52, Text, "Composer for sorting", 30},
      {0x53, Text, "Show for sorting", 31},
      {0x59, Text, "Video rating"},
      {0x5a, Rating, "Album rating"},
      {0x85, Number, "Place"},
      {0x86, Number, "Cloud state"},
      {0x9a, Flag, "Loved"},
      {0x9c, Flag, "Album loved"},
      {0x9f, Text, "Work"},
      {0xa0, Text, "Movement"},
      {0xa1, Number, "Movement number"},
  };
  const auto *const found =
      std::find_if(std::begin(kFields), std::end(kFields),
                   [number](const SmartField &field) { return field.number == number; });
  return found == std::end(kFields) ? nullptr : found;
}

}  // namespace player
