#include "player/SongFacts.h"

#include <cstdint>

#include "player/RecordHeader.h"

namespace player {

namespace {

constexpr uint32_t kStartOf1980 = 2'398'377'600;
constexpr uint32_t kStartOf2001 = 0xB675'7900;
constexpr uint32_t kWidestZone = 14 * 3600;
constexpr uint8_t kHighestRating = 100;
constexpr uint32_t kProtected = 0x0101'0100;

std::optional<uint8_t> ratingAt(const RecordHeader &header, size_t at) {
  const auto rating = header.byte(at);
  return rating && *rating <= kHighestRating ? rating : std::nullopt;
}

// Two counters, of which programs write one or both; the second counts only beside a date.
std::optional<uint32_t> skipsOf(const RecordHeader &header) {
  const auto skips = header.word(0x98);
  if (!skips || *skips != 0 || !header.event(0xa0)) return skips;
  return header.word(0x9c).value_or(0);
}

std::optional<bool> isBought(const RecordHeader &header) {
  const auto date = header.word(0xdc);
  const auto number = header.word(0xe0);
  if (!number) return std::nullopt;
  return *number != 0 || *date != 0;
}

void readCommon(const RecordHeader &header, SongFacts &facts) {
  facts.id = header.word(0x10).value_or(0);
  facts.modified = header.word(0x20);
  facts.size = header.word(0x24);
  facts.duration = header.word(0x28);
  facts.track = header.word(0x2c);
  facts.trackTotal = header.word(0x30);
  facts.year = header.word(0x34);
  facts.bitRate = header.word(0x38);
  facts.rateWord = header.word(0x3c);
}

void readBigEndian(const RecordHeader &header, SongFacts &facts) {
  facts.plays = header.word(0x4c);
  facts.lastPlayed = header.event(0x64);
  facts.rating = ratingAt(header, 0x6c);
  facts.added = header.date(0x78);
  facts.persistentId = unlessZero(header.twoWords(0x80));
  facts.bpm = unlessZero(header.half(0xa4));
}

void readCounts(const RecordHeader &header, SongFacts &facts) {
  facts.rating = ratingAt(header, 0x1f);
  facts.plays = header.word(0x50);
  facts.lastPlayed = header.event(0x58);
  facts.added = header.date(0x68);
  facts.bookmark = unlessZero(header.word(0x6c));
  facts.skips = skipsOf(header);
  facts.lastSkipped = header.event(0xa0);
  facts.heard = header.mark(0xb2, 1, 2);
}

void readKinds(const RecordHeader &header, SongFacts &facts) {
  facts.compilation = header.flag(0x1e);
  facts.disc = unlessZero(header.word(0x5c));
  facts.discs = unlessZero(header.word(0x60));
  facts.persistentId = unlessZero(header.twoWords(0x70));
  facts.checked = header.mark(0x78, 0, 1);
  facts.bpm = unlessZero(header.half(0x7a));
  facts.released = header.date(0x8c);
  facts.explicitContent = header.mark(0x92, 1, 2);
  if (const auto account = header.word(0x94)) facts.isProtected = *account == kProtected;
  facts.picture = header.mark(0xa4, 1, 2);
  facts.lyrics = header.flag(0xb0);
  facts.movie = header.flag(0xb1);
  facts.mediaType = header.word(0xd0);
  facts.season = unlessZero(header.word(0xd4));
  facts.episode = unlessZero(header.word(0xd8));
  facts.purchased = header.date(0xdc);
  facts.bought = isBought(header);
  facts.image = unlessZero(header.word(0x160));
}

void readPlayback(const RecordHeader &header, SongFacts &facts) {
  if (const auto volume = header.word(0x40)) facts.volume = static_cast<int32_t>(*volume);
  facts.start = unlessZero(header.word(0x44));
  facts.stop = unlessZero(header.word(0x48));
  facts.soundCheck = unlessZero(header.word(0x4c));
  facts.skippedInShuffle = header.flag(0xa5);
  facts.remembersPosition = header.flag(0xa6);
  if (const auto kind = header.word(0xcc)) facts.gapless = *kind != 0;
  if (facts.gapless.value_or(false)) {
    facts.delay = header.word(0xb8);
    facts.padding = header.word(0xc8);
    const auto samples = header.twoWords(0xbc);
    if (samples && *samples <= INT64_MAX) facts.samples = samples;  // more is no number of anything
  }
  facts.gaplessAlbum = header.flag(0x102);
  facts.channels = unlessZero(header.half(0x20c));
}

}  // namespace

std::optional<uint32_t> knownDate(uint32_t date) {
  return date < kStartOf1980 ? std::nullopt : std::optional(date);
}

std::optional<uint32_t> knownEvent(uint32_t date) {
  const bool isNever = date >= kStartOf2001 - kWidestZone && date <= kStartOf2001 + kWidestZone;
  return isNever ? std::nullopt : knownDate(date);
}

SongFacts readSongFacts(std::string_view header, bool bigEndian) {
  const RecordHeader fields(header, bigEndian);
  SongFacts facts;
  readCommon(fields, facts);
  if (bigEndian) {
    readBigEndian(fields, facts);
  } else {
    readCounts(fields, facts);
    readKinds(fields, facts);
    readPlayback(fields, facts);
  }
  return facts;
}

}  // namespace player
