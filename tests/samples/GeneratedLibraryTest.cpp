#include <algorithm>
#include <gtest/gtest.h>
#include <set>

#include "samples/GeneratedLibrary.h"
#include "tests/samples/FileBytes.h"

namespace samples_test {
namespace {

using samples::GeneratedLibrary;
using samples::Track;
using samples::Variant;

// 64-bit FNV-1a.
uint64_t Hash(std::string_view bytes) {
  uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : bytes) hash = (hash ^ static_cast<uint8_t>(byte)) * 0x100000001b3;
  return hash;
}

class EachVariant : public testing::TestWithParam<Variant> {
 protected:
  [[nodiscard]] static GeneratedLibrary Generated(uint32_t songs, uint32_t playlists, uint32_t entries) {
    return {.seed = 7, .songs = songs, .playlists = playlists, .entries = entries, .variant = GetParam()};
  }
  [[nodiscard]] static std::vector<ChunkAt> Chunks(const std::string &file, samples::Kind kind) {
    return Only(Walk(file), Tag(kind, GetParam()));
  }
};

INSTANTIATE_TEST_SUITE_P(Generated, EachVariant, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(EachVariant, WrittenSongBySongIsTheRecordsWrittenAtOnce) {
  const GeneratedLibrary generated = Generated(1500, 3, 20);
  std::vector<Track> tracks;
  for (uint32_t i = 0; i < 1500; ++i) tracks.push_back(generated.Song(i));
  const samples::Library library =
      samples::OrdinaryLibrary(tracks, {generated.List(0), generated.List(1), generated.List(2)});
  const std::string file = generated.Bytes();
  EXPECT_GT(file.size(), 1U << 20);
  EXPECT_EQ(file, WriteLibrary(library, GetParam()));
}

TEST_P(EachVariant, HoldsTheSongsPlaylistsAndEntriesAskedFor) {
  const std::string file = Generated(500, 4, 30).Bytes();
  EXPECT_EQ(Chunks(file, samples::Kind::TrackList).at(0).length, 500U);
  EXPECT_EQ(Chunks(file, samples::Kind::Track).size(), 500U);
  EXPECT_EQ(Chunks(file, samples::Kind::PlaylistList).at(0).length, 4U);
  EXPECT_EQ(Chunks(file, samples::Kind::Playlist).size(), 4U);
  EXPECT_EQ(Chunks(file, samples::Kind::Entry).size(), 500U + 3U * 30U);
}

TEST_P(EachVariant, EntriesNameSongsThatAreThere) {
  const GeneratedLibrary generated = Generated(100, 3, 200);
  std::set<uint32_t> ids;
  for (uint32_t i = 0; i < 100; ++i) ids.insert(generated.Song(i).id);
  EXPECT_EQ(ids.size(), 100U);
  for (uint32_t list = 0; list < 3; ++list) {
    for (const samples::Entry &entry : generated.List(list).entries) EXPECT_TRUE(ids.contains(entry.ref));
  }
}

TEST_P(EachVariant, SongsHaveEightToTenTextsAndOneInFiveIsJapanese) {
  const GeneratedLibrary generated = Generated(600, 0, 0);
  std::set<size_t> counts;
  size_t japanese = 0;
  for (uint32_t i = 0; i < 600; ++i) {
    const Track song = generated.Song(i);
    counts.insert(song.objects.size());
    const std::u16string &title = song.objects.at(0).text;
    if (std::any_of(title.begin(), title.end(), [](char16_t unit) { return unit >= 0x3000; })) ++japanese;
  }
  EXPECT_EQ(counts, (std::set<size_t>{8, 9, 10}));
  EXPECT_EQ(japanese, 120U);
}

TEST_P(EachVariant, NoSongsAndNoPlaylistsStillMakeAFile) {
  const std::string file = Generated(0, 0, 5).Bytes();
  EXPECT_EQ(Walk(file).size(), 5U);
  EXPECT_TRUE(Generated(0, 2, 5).List(1).entries.empty());
}

TEST_P(EachVariant, ADifferentSeedGivesDifferentSongs) {
  GeneratedLibrary generated = Generated(20, 1, 0);
  const std::string first = generated.Bytes();
  EXPECT_EQ(first, generated.Bytes());
  generated.seed = 8;
  EXPECT_NE(first, generated.Bytes());
}

TEST(GeneratedLibrary, GivesTheSameBytesOnEveryMachine) {
  GeneratedLibrary generated{.seed = 1, .songs = 100, .playlists = 2, .entries = 10};
  EXPECT_EQ(Hash(generated.Bytes()), 17142792105720215407U);
  generated.variant = Variant::BigEndian;
  EXPECT_EQ(Hash(generated.Bytes()), 11019798701008972216U);
}

TEST(Random, GivesTheKnownSequenceOfSplitmix64) {
  samples::Random random(1234567);
  EXPECT_EQ(random.Next(), 6457827717110365317U);
  EXPECT_EQ(random.Next(), 3203168211198807973U);
  EXPECT_EQ(random.Next(), 9817491932198370423U);
}

TEST(Random, StaysBelowItsLimit) {
  samples::Random random(5);
  std::set<uint32_t> seen;
  for (int i = 0; i < 1000; ++i) seen.insert(random.Below(7));
  EXPECT_EQ(seen, (std::set<uint32_t>{0, 1, 2, 3, 4, 5, 6}));
}

}  // namespace
}  // namespace samples_test
