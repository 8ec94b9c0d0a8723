// Files of a player that are no database are named for what they are.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include "player/FileProbe.h"
#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using namespace std::string_literals;
using testing::StartsWith;

class ForeignFileTest : public testing::Test {
 protected:
  FileProbe probe(const std::string &name, const std::string &bytes) const {
    return probeFile(folder_.write(name, bytes));
  }

  support::TemporaryFolder folder_;
};

TEST_F(ForeignFileTest, FileIsNamedByItsBeginningWhateverItsName) {
  const std::string rest(100, '\0');
  const std::pair<std::string, std::string> files[] = {
      {samples::SamplePlayCounts(), "it is Play Counts, "},
      {"mhpo" + rest, "it is OTGPlaylistInfo, "},
      {"ohpm" + rest, "it is OTGPlaylistInfo, "},
      {"mhfd" + rest, "it is ArtworkDB or Photo Database, "},
      {"bdhs" + rest, "it is iTunesSD, "},
      {"\0\0\x02\x01\x06\0\0\0\x12"s + rest, "it is iTunesSD, "},
      {"\0\0\x02\x01\x08\0\0\0\x12"s + rest, "it is iTunesSD, "},
      {"SQLite format 3\0"s + rest, "it is a SQLite file, "},
      {"bplist00" + rest, "it is a property list"},
      {"<?xml version=\"1.0\"?>", "it is a property list"}};
  for (const auto &[bytes, reason] : files) {
    const FileProbe found = probe("any name", bytes);
    EXPECT_EQ(found.content, FileContent::Unusable);
    EXPECT_THAT(found.reason, StartsWith(reason));
    EXPECT_THAT(found.reason, testing::EndsWith("; name the player, or its iTunesDB"));
  }
}

TEST_F(ForeignFileTest, FileWithoutASignIsNamedByItsName) {
  EXPECT_THAT(probe("SysInfo", "BoardHwName: iPod Q21\n").reason, StartsWith("it is SysInfo, "));
  EXPECT_THAT(probe("itunesstats", std::string(64, '\2')).reason, StartsWith("it is iTunesStats, "));
  EXPECT_THAT(probe("F1028_1.ithmb", std::string(64, '\2')).reason, StartsWith("it is a file of pictures"));
  EXPECT_EQ(probe("song.mp3", "ID3 and more").reason, "not an iTunesDB database");
}

TEST_F(ForeignFileTest, DatabaseOfAForeignNameIsADatabase) {
  EXPECT_EQ(probe("SysInfo", samples::SamplePlayerDatabase()).content, FileContent::Database);
}

}  // namespace
}  // namespace player
