// The facts of a song's header: which are there, and which values say nothing.

#include <gtest/gtest.h>
#include <map>
#include <string>

#include "player/SongFacts.h"
#include "samples/DatabaseWriter.h"

namespace player {
namespace {

using samples::Variant;

constexpr uint32_t kYear2005 = 3187296000;

SongFacts factsOf(const std::map<uint32_t, uint32_t> &words, uint32_t headerLength = 0x248,
                  Variant variant = Variant::LittleEndian) {
  samples::ChunkWriter out(variant);
  const size_t chunk = out.Begin(samples::Kind::Track, headerLength);
  for (const auto &[offset, value] : words) {
    if (offset + 4 <= headerLength) out.PutWord(chunk + offset, value);
  }
  return readSongFacts(out.Bytes(), variant == Variant::BigEndian);
}

TEST(SongFactsTest, FieldExistsWhereTheHeaderHoldsAllOfIt) {
  EXPECT_EQ(factsOf({{0xd0, 4}}, 0xd4).mediaType, 4U);
  EXPECT_EQ(factsOf({}, 0xd3).mediaType, std::nullopt);
  EXPECT_EQ(factsOf({{0x50, 7}}, 0x54).plays, 7U);
  EXPECT_EQ(factsOf({}, 0x53).plays, std::nullopt);
  EXPECT_EQ(factsOf({}, 0xb1).movie, std::nullopt);
  EXPECT_EQ(factsOf({}, 0xb2).movie, false);
}

TEST(SongFactsTest, BytesBehindTheHeaderAreNoFields) {
  samples::ChunkWriter out(Variant::LittleEndian);
  out.Begin(samples::Kind::Track, 0x9c);
  out.AppendBytes(std::string(0x100, '\x55'));
  const SongFacts facts = readSongFacts(out.Bytes(), false);
  EXPECT_EQ(facts.plays, 0U);
  EXPECT_EQ(facts.mediaType, std::nullopt);
  EXPECT_EQ(facts.heard, std::nullopt);
}

TEST(SongFactsTest, HeaderThatClaimsMoreThanThereIsReadsWhatIsThere) {
  samples::ChunkWriter out(Variant::LittleEndian);
  const size_t chunk = out.Begin(samples::Kind::Track, 0x60);
  out.PutWord(chunk + 4, 0xFFFFFFFF);
  const SongFacts facts = readSongFacts(out.Bytes(), false);
  EXPECT_EQ(facts.discs, std::nullopt);
  EXPECT_EQ(facts.plays, 0U);
  EXPECT_EQ(facts.added, std::nullopt);
}

TEST(SongFactsTest, NothingAtAllGivesNothing) {
  const SongFacts facts = readSongFacts({}, false);
  EXPECT_EQ(facts.id, 0U);
  EXPECT_EQ(facts.plays, std::nullopt);
  EXPECT_EQ(facts.rating, std::nullopt);
}

TEST(SongFactsTest, DayAddedIsNotTheDayTheFileChanged) {
  const SongFacts facts = factsOf({{0x20, kYear2005}, {0x68, kYear2005 + 86400}});
  EXPECT_EQ(facts.modified, kYear2005);
  EXPECT_EQ(facts.added, kYear2005 + 86400);
}

TEST(SongFactsTest, PictureIsMarkedOrNotSaidAtAll) {
  EXPECT_EQ(factsOf({{0xa4, 1}}).picture, true);
  EXPECT_EQ(factsOf({{0xa4, 2}}).picture, false);
  EXPECT_EQ(factsOf({}).picture, std::nullopt);
  EXPECT_EQ(factsOf({{0xa4, 1}}, 0xa4).picture, std::nullopt);
  EXPECT_EQ(factsOf({{0x160, 7}}).image, 7U);
  EXPECT_EQ(factsOf({{0x160, 0}}).image, std::nullopt);
  EXPECT_EQ(factsOf({{0x160, 7}}, 0x163).image, std::nullopt);
}

TEST(SongFactsTest, DatesBefore1980AreUnknown) {
  EXPECT_EQ(factsOf({{0x68, 0}}).added, std::nullopt);
  EXPECT_EQ(factsOf({{0x68, 2398377599}}).added, std::nullopt);
  EXPECT_EQ(factsOf({{0x68, 2398377600}}).added, 2398377600U);
}

TEST(SongFactsTest, StartOf2001InAnyZoneMeansNeverPlayed) {
  constexpr uint32_t kStart = 0xB6757900;
  constexpr uint32_t kZone = 14 * 3600;
  for (const uint32_t never : {kStart - kZone, kStart, kStart + 3 * 3600, kStart + kZone})
    EXPECT_EQ(factsOf({{0x58, never}}).lastPlayed, std::nullopt);
  EXPECT_EQ(factsOf({{0x58, kStart + kZone + 1}}).lastPlayed, kStart + kZone + 1);
  EXPECT_EQ(factsOf({{0x68, kStart}}).added, kStart);  // that day is as good as any to add a song
}

TEST(SongFactsTest, OtherSkipCounterCountsOnlyBesideADate) {
  EXPECT_EQ(factsOf({{0x98, 3}, {0x9c, 5}, {0xa0, kYear2005}}).skips, 3U);
  EXPECT_EQ(factsOf({{0x9c, 5}, {0xa0, kYear2005}}).skips, 5U);
  EXPECT_EQ(factsOf({{0x9c, 5}}).skips, 0U);
  EXPECT_EQ(factsOf({{0x98, 2}}, 0x9c).skips, 2U);
  EXPECT_EQ(factsOf({}, 0x98).skips, std::nullopt);
}

TEST(SongFactsTest, RatingAbove100IsNone) {
  EXPECT_EQ(factsOf({{0x1c, 80U << 24}}).rating, 80);
  EXPECT_EQ(factsOf({{0x1c, 101U << 24}}).rating, std::nullopt);
}

TEST(SongFactsTest, MarksSayYesNoOrNothing) {
  EXPECT_EQ(factsOf({{0xb0, 1U << 16}}).heard, true);
  EXPECT_EQ(factsOf({{0xb0, 2U << 16}}).heard, false);
  EXPECT_EQ(factsOf({}).heard, std::nullopt);
  EXPECT_EQ(factsOf({{0x90, 1U << 16}}).explicitContent, true);
  EXPECT_EQ(factsOf({{0x90, 2U << 16}}).explicitContent, false);
  EXPECT_EQ(factsOf({{0x78, 0}}).checked, true);
  EXPECT_EQ(factsOf({{0x78, 1}}).checked, false);
  EXPECT_EQ(factsOf({{0x94, 0x01010100}}).isProtected, true);
  EXPECT_EQ(factsOf({{0x94, 1}}).isProtected, false);
}

TEST(SongFactsTest, SongIsBoughtByItsDateOrItsNumber) {
  EXPECT_EQ(factsOf({}).bought, false);
  EXPECT_EQ(factsOf({{0xdc, kYear2005}}).bought, true);
  EXPECT_EQ(factsOf({{0xe0, 1}}).bought, true);
  EXPECT_EQ(factsOf({{0xdc, kYear2005}}, 0xe0).bought, std::nullopt);
}

TEST(SongFactsTest, SamplesAreKnownWhereTheyCount) {
  const std::map<uint32_t, uint32_t> words = {{0xb8, 576}, {0xbc, 1000}, {0xc0, 1}, {0xc8, 288}};
  EXPECT_EQ(factsOf(words).samples, std::nullopt);
  auto counted = words;
  counted[0xcc] = 1;
  EXPECT_EQ(factsOf(counted).samples, 0x1000003e8U);
  EXPECT_EQ(factsOf(counted).delay, 576U);
  EXPECT_EQ(factsOf(counted).padding, 288U);
  counted[0xc0] = 0x80000000;  // no song has so many
  EXPECT_EQ(factsOf(counted).samples, std::nullopt);
}

TEST(SongFactsTest, VolumeMayBeLowered) {
  EXPECT_EQ(factsOf({{0x40, static_cast<uint32_t>(-255)}}).volume, -255);
}

TEST(SongFactsTest, BigEndianHeaderHasPlacesOfItsOwn) {
  const SongFacts facts = factsOf({{0x4c, 3},
                                   {0x64, kYear2005},
                                   {0x6c, 60U << 24},
                                   {0x78, kYear2005 + 5},
                                   {0x80, 1},
                                   {0x84, 2},
                                   {0xa4, 120U << 16},
                                   {0xd0, 9}},
                                  0xe0, Variant::BigEndian);
  EXPECT_EQ(facts.plays, 3U);
  EXPECT_EQ(facts.lastPlayed, kYear2005);
  EXPECT_EQ(facts.rating, 60);
  EXPECT_EQ(facts.added, kYear2005 + 5);
  EXPECT_EQ(facts.persistentId, 0x100000002U);
  EXPECT_EQ(facts.bpm, 120);
  EXPECT_EQ(facts.mediaType, std::nullopt);
  EXPECT_EQ(facts.compilation, std::nullopt);
  EXPECT_EQ(factsOf({}, 0x9c, Variant::BigEndian).bpm, std::nullopt);
}

}  // namespace
}  // namespace player
