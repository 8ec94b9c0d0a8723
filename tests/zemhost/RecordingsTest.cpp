#include <algorithm>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/support/Folders.h"
#include "tests/support/TemporaryFolder.h"
#include "zemhost/library/Recordings.h"

namespace zemhost {
namespace {

// Songs of one title and artist with these lengths.
MusicLibrary libraryOf(const support::TemporaryFolder &folder, const std::vector<uint32_t> &lengths) {
  std::vector<samples::Track> tracks;
  for (const uint32_t length : lengths) {
    samples::Track track{.id = static_cast<uint32_t>(tracks.size() + 1),
                         .objects = samples::SongObjects(samples::Variant::LittleEndian, {.title = u"Same"})};
    track.duration = length;
    tracks.push_back(std::move(track));
  }
  const std::string bytes =
      samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), {}), samples::Variant::LittleEndian);
  const Host host = Host::load({support::PluginFile(), 5.9, {}});
  return MusicLibrary(loadDatabase(host, folder.write("library.itunesdb", bytes)));
}

TEST(Recordings, LengthsOfOneAllLieWithinTheLimitHoweverManyThereAre) {
  const support::TemporaryFolder folder;
  std::vector<uint32_t> lengths;
  lengths.reserve(2000);
  std::mt19937 random(5);
  for (int i = 0; i < 2000; ++i) lengths.push_back(100'000 + static_cast<uint32_t>(random() % 200'000));
  const Recordings found = repeatedRecordings(libraryOf(folder, lengths), {});
  EXPECT_GT(found.repeated.size(), 60U);
  EXPECT_EQ(found.toldApart, 1U);
  for (const Recording &recording : found.repeated) {
    const auto [shortest, longest] = std::minmax_element(
        recording.group.songs.begin(), recording.group.songs.end(), [&](int32_t one, int32_t other) {
          return lengths[static_cast<size_t>(one)] < lengths[static_cast<size_t>(other)];
        });
    const uint32_t apart = lengths[static_cast<size_t>(*longest)] - lengths[static_cast<size_t>(*shortest)];
    EXPECT_LE(apart, 2'000U);
    EXPECT_EQ(recording.apart, apart);
  }
}

TEST(Recordings, ManySongsOfOneTextTakeNoMoreThanLogarithmicallyManyComparisonsEach) {
  const support::TemporaryFolder folder;
  std::vector<uint32_t> lengths;
  for (uint32_t i = 0; i < 4000; ++i) lengths.push_back(1'000 + i * 7919 % 400'000);
  for (const bool loosely : {false, true}) {
    uint64_t comparisons = 0;
    repeatedRecordings(libraryOf(folder, lengths), {.loosely = loosely}, &comparisons);
    const auto count = static_cast<double>(lengths.size());
    EXPECT_GT(comparisons, lengths.size());
    EXPECT_LT(static_cast<double>(comparisons), 3 * count * std::log2(count));
  }
}

TEST(LooseText, LeavesOutWhatIsWrittenInDifferentWays) {
  for (const char *text :
       {"Home Again", "home again", "HomeAgain (Live)", " Home  Again [Mono] (Live)",
        "Home Again (Live (1999) [Mono])", "Home\tAgain\u3000", "Home Again\uff08Live\uff09"})
    EXPECT_EQ(looseText(text), "homeagain") << text;
}

TEST(LooseText, KeepsBracketsThatAreNoSuffix) {
  EXPECT_EQ(looseText("(I Can't) Wait"), "(ican't)wait");
  EXPECT_EQ(looseText("(Home)"), "(home)");
  EXPECT_EQ(looseText("Home)"), "home)");
  EXPECT_EQ(looseText("Home (Live"), "home(live");
  EXPECT_EQ(looseText(" "), "");
  EXPECT_EQ(looseText("()"), "()");
}

}  // namespace
}  // namespace zemhost
