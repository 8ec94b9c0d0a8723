#include <vector>

#include "samples/GeneratedLibrary.h"
#include "samples/SampleLibrary.h"

namespace samples {

namespace {

constexpr int64_t kLastSync = 1153000000;  // 2006-07-15, in the evening
constexpr int64_t kDay = 86400;

// Some moment of the day that lies so many days before the last synchronisation.
constexpr int64_t Before(int64_t days) { return kLastSync - days * kDay - days * 61 % 86000; }
constexpr int64_t After(int64_t days) { return kLastSync + days * kDay + 3600 + days * 37; }

}  // namespace

SampleFacts SampleFactsOf(size_t song) {
  static const std::vector<SampleFacts> facts{
      {.rating = 80,
       .plays = 31,
       .lastPlayed = Before(4),
       .bpm = 96,
       .newPlays = 2,
       .newLastPlayed = After(3)},
      {.rating = 60, .plays = 12, .lastPlayed = Before(19), .bpm = 104},
      {.plays = 5, .lastPlayed = Before(40), .skips = 9, .lastSkipped = Before(6)},
      {.plays = 2, .lastPlayed = Before(210), .skips = 4, .lastSkipped = Before(33)},
      {.rating = 100,
       .plays = 58,
       .lastPlayed = Before(2),
       .bpm = 128,
       .newPlays = 1,
       .newLastPlayed = After(1)},
      {.rating = 40, .plays = 3, .lastPlayed = Before(120), .disc = 1, .discs = 2},
      {.rating = 100, .plays = 44, .lastPlayed = Before(3), .disc = 1, .discs = 1, .bpm = 112},
      {.rating = 80,
       .plays = 27,
       .lastPlayed = Before(3),
       .disc = 1,
       .discs = 1,
       .newSkips = 1,
       .newLastSkipped = After(2)},
      {.plays = 8, .lastPlayed = Before(25), .skips = 1, .lastSkipped = Before(24), .disc = 1, .discs = 1},
      {.rating = 60, .plays = 14, .lastPlayed = Before(9), .bpm = 140},
      {.rating = 80, .plays = 22, .lastPlayed = Before(5)},
      {.rating = 60, .plays = 18, .lastPlayed = Before(5)},
      {.plays = 1, .lastPlayed = Before(300)},
      {.plays = 6, .lastPlayed = Before(71), .changedBefore = 40 * kDay},
      {.plays = 4, .lastPlayed = Before(150), .skips = 6, .lastSkipped = Before(12)},
      {.rating = 80, .plays = 19, .lastPlayed = Before(8), .bpm = 132, .explicitMark = 1},
      {.plays = 11, .lastPlayed = Before(16)},
      {.plays = 9, .lastPlayed = Before(17)},
      {.changedBefore = 400 * kDay},
      {.rating = 40, .plays = 2, .lastPlayed = Before(180), .disc = 2, .discs = 2},
      {.plays = 7, .lastPlayed = Before(60)},
      {.rating = 80, .plays = 16, .lastPlayed = Before(11), .bpm = 90},
      {.rating = 100,
       .plays = 37,
       .lastPlayed = Before(1),
       .bpm = 118,
       .newPlays = 3,
       .newLastPlayed = After(4)},
      {.skips = 3, .lastSkipped = Before(52)},
      {.disc = 2, .discs = 2},
      {.plays = 1, .lastPlayed = Before(20), .bookmark = 754000, .changedBefore = 2 * kDay},
      {.plays = 2, .lastPlayed = Before(130)},
      {.plays = 1, .lastPlayed = Before(10), .heardMark = 1, .newRating = 60},
      {.bookmark = 311000, .heardMark = 2},
  };
  return facts.at(song);
}

uint64_t SamplePersistentId(size_t song) { return Random(song + 7000).Next() | 1; }

std::vector<ChapterMark> SampleChaptersOf(const SampleSong &song) {
  constexpr uint32_t kAudiobook = 8;
  if (song.mediaType != kAudiobook) return {};
  return {{0, u"The Missing Coast", {}}, {412000, u"A Map without Names", {}}, {981000, u"Low Water", {}}};
}

}  // namespace samples
