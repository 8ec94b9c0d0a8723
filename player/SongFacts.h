#pragma once

// What the header of a song says, read from the file by itself. A fact is there when the header is long
// enough to hold it and its value says something; what is not known has no value, never 0.

#include <cstdint>
#include <optional>
#include <string_view>

namespace player {

struct SongFacts {
  uint32_t id = 0;  // in this file; playlist entries refer to it

  std::optional<uint32_t> size;        // bytes
  std::optional<uint32_t> duration;    // milliseconds
  std::optional<uint32_t> track;       // as stored, 0 included
  std::optional<uint32_t> trackTotal;  // likewise
  std::optional<uint32_t> year;        // likewise
  std::optional<uint32_t> bitRate;     // kilobits per second
  std::optional<uint32_t> rateWord;    // hertz in 16.16 fixed point
  std::optional<uint32_t> modified;  // as stored; dates are seconds since the start of 1904, in no time zone

  std::optional<uint32_t> added;
  std::optional<uint32_t> released;   // in UTC
  std::optional<uint32_t> purchased;  // in UTC

  std::optional<uint32_t> plays;
  std::optional<uint32_t> lastPlayed;
  std::optional<uint32_t> skips;
  std::optional<uint32_t> lastSkipped;
  // A second pair of counters, of the newest nanos alone: some count there what is new.
  std::optional<uint32_t> recentPlays;
  std::optional<uint32_t> recentSkips;
  std::optional<uint8_t> rating;     // 0 to 100, 20 a star; 0: none given
  std::optional<uint32_t> bookmark;  // milliseconds
  std::optional<bool> heard;         // false: marked as not heard yet

  std::optional<uint32_t> disc;
  std::optional<uint32_t> discs;
  std::optional<uint32_t> season;
  std::optional<uint32_t> episode;
  std::optional<uint16_t> bpm;
  std::optional<uint32_t> mediaType;  // bits, 0 where the file does not say
  std::optional<bool> compilation;
  std::optional<bool> movie;
  std::optional<bool> explicitContent;  // false: marked as clean; no value: not marked
  std::optional<bool> lyrics;
  std::optional<bool> checked;
  std::optional<bool> isProtected;
  std::optional<bool> bought;
  std::optional<bool> skippedInShuffle;
  std::optional<bool> remembersPosition;

  std::optional<int32_t> volume;       // adjustment, -255 to 255
  std::optional<uint32_t> start;       // milliseconds; no value: the beginning
  std::optional<uint32_t> stop;        // milliseconds; no value: the end
  std::optional<uint32_t> soundCheck;  // 1000 times the loudness that is taken off
  std::optional<uint16_t> channels;

  std::optional<bool> gapless;  // whether the counts of samples below say something
  std::optional<uint32_t> delay;
  std::optional<uint32_t> padding;
  std::optional<uint64_t> samples;
  std::optional<bool> gaplessAlbum;

  std::optional<uint64_t> persistentId;
  std::optional<uint32_t> image;  // id in the list of pictures
  std::optional<bool> picture;    // whether it has a picture; no value: not said
};

// The longest header that is read; no file seen has one of more.
constexpr uint32_t kLongestSongHeader = 0x400;

// The facts in a song's header, which is given from its tag to its end, or as much of it as the file has.
// Whatever stands in it, nothing is read past its bytes.
SongFacts readSongFacts(std::string_view header, bool bigEndian);

// The date, unless it is one that stands for none: 0, and all before 1980, which other programs write.
std::optional<uint32_t> knownDate(uint32_t date);

// Likewise for the date of an event that the player saw: some write the start of 2001 in UTC, by their own
// clock, for never.
std::optional<uint32_t> knownEvent(uint32_t date);

}  // namespace player
