// The songs and playlists of the sample player: invented, and such as real libraries hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "samples/SmartObjects.h"

namespace samples {

// What a song holds besides the fields every one has.
struct ExtraText {
  uint32_t type = 0;
  std::u16string_view text{};
};

struct SampleSong {
  std::u16string_view title{};
  std::u16string_view artist{};
  std::u16string_view album{};
  std::u16string_view genre{};
  std::u16string_view composer{};
  std::u16string_view filetype = u"AAC audio file";
  std::string_view file{};  // folder and name under the music folder, "F00/ABCD.m4a"
  uint32_t number = 0;
  uint32_t total = 0;
  uint32_t year = 0;
  uint32_t duration = 0;  // milliseconds
  uint32_t bitrate = 128;
  uint32_t rate = 44100;   // Hz
  int64_t added = 0;       // seconds since 1970-01-01 00:00:00 UTC
  uint32_t mediaType = 1;  // 1 music, 2 movie, 4 podcast, 8 audiobook
  bool compilation = false;
  bool missing = false;  // its file is not on the player
  std::vector<ExtraText> extra{};
  std::string_view enclosure{};  // address of a podcast episode, 8-bit
};

// What the sample player knows of a song besides: what was played, rated and marked. Dates are seconds since
// 1970 on the player's clock, 0: never.
struct SampleFacts {
  uint8_t rating = 0;  // 20 a star
  uint32_t plays = 0;
  int64_t lastPlayed = 0;
  uint32_t skips = 0;
  int64_t lastSkipped = 0;
  uint32_t disc = 0;
  uint32_t discs = 0;
  uint16_t bpm = 0;
  uint32_t bookmark = 0;      // milliseconds
  uint8_t heardMark = 0;      // 1 heard, 2 not yet
  uint8_t explicitMark = 0;   // 1 explicit, 2 clean
  int64_t changedBefore = 0;  // the file is so many seconds older than its place on the player
  // Since the last synchronisation:
  uint32_t newPlays = 0;
  int64_t newLastPlayed = 0;
  uint32_t newSkips = 0;
  int64_t newLastSkipped = 0;
  uint8_t newRating = 0;  // 0: as before
};

// By the song's position in SampleSongs().
SampleFacts SampleFactsOf(size_t song);
// Its chapters; none for all but the audiobook.
std::vector<ChapterMark> SampleChaptersOf(const SampleSong &song);

// Never 0, and no two songs share one.
uint64_t SamplePersistentId(size_t song);

struct SamplePlaylist {
  std::u16string_view name{};
  std::vector<size_t> songs{};  // positions in SampleSongs(); a song may stand more than once
  int64_t created = 0;          // as the dates of songs
  int64_t changed = 0;
  uint8_t order = 1;  // by hand
  bool podcasts = false;
  bool smart = false;  // with the rules of SampleRules()
};

// What chooses the songs of the smart playlist.
std::vector<DataObject> SampleRules(Variant variant);

const std::vector<SampleSong> &SampleSongs();

// The master playlist, which holds every song, first.
std::vector<SamplePlaylist> SamplePlaylists();

// The bytes of the placeholder that stands for the song's file; no two songs share them.
std::string PlaceholderFile(const SampleSong &song);

// What the player wrote down since the last synchronisation: the file "Play Counts".
std::string SamplePlayCounts();

// A list that was made on the player since the last synchronisation: the file "OTGPlaylistInfo".
std::string SampleOnTheGo();

// What the player says of itself: the files "SysInfo" and "DeviceInfo".
std::string SampleSysInfo();
std::string SampleDeviceInfo();

// The player's database: albums, tracks, podcasts, playlists, in this order.
std::string SamplePlayerDatabase();

// The same songs and playlists as a big-endian desktop library. Text that Mac Roman can hold is 8-bit, as in
// older libraries; the rest is UTF-16.
std::string SampleDesktopLibrary();

}  // namespace samples
