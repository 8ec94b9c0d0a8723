#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/support/Folders.h"
#include "tests/support/TemporaryFolder.h"
#include "zemhost/library/SongGroups.h"

namespace zemhost {
namespace {

MusicLibrary libraryOf(const support::TemporaryFolder &folder, const std::vector<std::u16string> &titles) {
  std::vector<samples::Track> tracks;
  for (size_t i = 0; i < titles.size(); ++i) {
    tracks.push_back({.id = static_cast<uint32_t>(i + 1),
                      .objects = samples::SongObjects(samples::Variant::LittleEndian, {.title = titles[i]})});
  }
  const std::string bytes =
      samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), {}), samples::Variant::LittleEndian);
  const Host host = Host::load({support::PluginFile(), 5.9, {}});
  return MusicLibrary(loadDatabase(host, folder.write("library.itunesdb", bytes)));
}

// The standard library's hash multiplies each word of eight bytes, and mixes its upper half into the lower,
// in steps that can be taken back. So for any word there is another that differs by the highest bit alone
// once it is mixed in, and with two such changes side by side the hash is the same again, whatever its seed.
uint64_t wordThatMeets(uint64_t word) {
  constexpr uint64_t kFactor = 0xc6a4a7935bd1e995ULL;
  uint64_t inverse = kFactor;
  for (int i = 0; i < 6; ++i) inverse *= 2 - kFactor * inverse;
  const auto fold = [](uint64_t value) { return value ^ value >> 47; };  // its own inverse
  const uint64_t mixed = (fold(word * kFactor) * kFactor) ^ uint64_t { 1 } << 63;
  return fold(mixed * inverse) * inverse;
}

// 2^pairs titles of 16 * pairs bytes and a beginning that brings them to a word's edge behind their length.
std::vector<std::u16string> titlesThatMeet(size_t pairs) {
  std::vector<std::u16string> titles;
  for (size_t choice = 0; choice < size_t{1} << pairs; ++choice) {
    const std::string length = std::to_string(16 * pairs + 4) + ':';
    std::string bytes(8 - length.size(), 'x');
    for (size_t pair = 0; pair < pairs; ++pair) {
      for (int half = 0; half < 2; ++half) {
        uint64_t word = 0x0101010101010101ULL * (pair * 2 + static_cast<size_t>(half) + 33);
        if ((choice >> pair & 1U) != 0) word = wordThatMeets(word);
        bytes.append(reinterpret_cast<const char *>(&word), sizeof word);
      }
    }
    std::u16string title;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
      title += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) << 8 |
                                     static_cast<unsigned char>(bytes[i + 1]));
    }
    titles.push_back(title);
  }
  return titles;
}

TEST(SongGroups, TextsMadeToMeetInAHashTakeNoMoreComparisonsThanOthers) {
  const support::TemporaryFolder folder;
  const std::vector<std::u16string> titles = titlesThatMeet(11);
  uint64_t comparisons = 0;
  EXPECT_EQ(groupSongs(libraryOf(folder, titles), Sameness::Song, &comparisons).size(), titles.size());
  const auto count = static_cast<double>(titles.size());
  EXPECT_GT(comparisons, titles.size());
  EXPECT_LT(static_cast<double>(comparisons), 3 * count * std::log2(count));
}

TEST(SongGroups, SongsOfTheSameTextsAreOneGroupWhereverTheyStand) {
  const support::TemporaryFolder folder;
  const std::vector<SongGroup> groups =
      groupSongs(libraryOf(folder, {u"b", u"a", u"b", u"", u"", u"c", u"a", u"b"}), Sameness::Song);
  std::vector<std::vector<int32_t>> songs;
  songs.reserve(groups.size());
  for (const SongGroup &group : groups) songs.push_back(group.songs);
  EXPECT_EQ(songs, (std::vector<std::vector<int32_t>>{{0, 2, 7}, {1, 6}, {3}, {4}, {5}}));
}

}  // namespace
}  // namespace zemhost
