#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "db/SongRecords.h"
#include "samples/DatabaseWriter.h"

namespace db_test {
namespace {

using namespace std::string_literals;

// A location object: the volume's name with its length byte at 0x22, then `between`, the path's length, the
// path, and `after`.
struct Location {
  std::string volume;
  std::string between = "??";
  std::optional<uint32_t> pathLength{};
  std::string path{};
  std::string after{};
  std::optional<int> nameLength{};
  uint32_t encode = 1;

  // The bytes from `at` on, where offset 0 of the alias-style layout stands.
  [[nodiscard]] std::string FromBase() const {
    std::string bytes(0x22, '.');
    bytes += static_cast<char>(nameLength.value_or(static_cast<int>(volume.size())));
    bytes += volume + between;
    const uint32_t length = pathLength.value_or(static_cast<uint32_t>(path.size()));
    bytes += static_cast<char>(length >> 8);
    bytes += static_cast<char>(length & 0xff);
    return bytes + path + after;
  }
};

struct Stored {
  int32_t result = 0;
  CSongList song{};
};

Stored Store(const Location &location) {
  const std::string bytes = location.FromBase();
  std::vector<uint8_t> image(bytes.begin(), bytes.end());
  fsbbStruct fsbb{};
  fsbb.jump = 0x18;
  fsbb.myLen = static_cast<uint32_t>(bytes.size());
  fsbb.count = 1;
  Stored stored;
  stored.result = stored.song.SetObj(&fsbb, image.data() + 0x28, location.encode, 0);
  return stored;
}

TEST(LocationOfABigEndianTrack, IsThePathThatBeginsWithTheVolumeName) {
  const Stored stored = Store({.volume = "Disk", .path = "Disk:Music:a.mp3", .after = "more"});
  EXPECT_EQ(stored.result, 1);
  EXPECT_EQ(stored.song.path.obj.View(), "Disk:Music:a.mp3");
  EXPECT_EQ(stored.song.path.enc, 1U);
  EXPECT_EQ(stored.song.path.idx, -1);
  EXPECT_TRUE(stored.song.title.obj.empty());
}

TEST(LocationOfABigEndianTrack, WhoseVolumeNameDoesNotOccurAgainIsNotStored) {
  const Stored stored = Store({.volume = "Disk", .path = "Disc:Music:a.mp3"});
  EXPECT_EQ(stored.result, 0);
  EXPECT_TRUE(stored.song.path.obj.empty());
  EXPECT_EQ(stored.song.path.enc, 0U);
}

TEST(LocationOfABigEndianTrack, IsReadAtTheFirstOccurrence) {
  const Stored stored = Store({.volume = "ab", .between = "\0\3abc"s, .pathLength = 9, .path = "ab:second"});
  EXPECT_EQ(stored.result, 1);
  EXPECT_EQ(stored.song.path.obj.View(), "abc");
}

TEST(LocationOfABigEndianTrack, MayFollowTheNameDirectly) {
  // The two bytes before the match are then the name's own last ones.
  const Stored stored = Store({.volume = "\0\2"s, .between = "\0\2"s, .pathLength = 0});
  EXPECT_EQ(stored.result, 1);
  EXPECT_EQ(stored.song.path.obj.View(), "\0\2"s);
}

TEST(LocationOfABigEndianTrack, LengthHasTwoBytesHighFirst) {
  const std::string path = "V:" + std::string(700, 'x');
  EXPECT_EQ(Store({.volume = "V", .path = path}).song.path.obj.View(), path);
}

TEST(LocationOfABigEndianTrack, LengthZeroStoresAnEmptyPathWithItsCode) {
  const Stored stored = Store({.volume = "Disk", .pathLength = 0, .path = "Disk:a"});
  EXPECT_EQ(stored.result, 1);
  EXPECT_TRUE(stored.song.path.obj.empty());
  EXPECT_EQ(stored.song.path.enc, 1U);
}

TEST(LocationOfABigEndianTrack, MayEndWithTheObject) {
  EXPECT_EQ(Store({.volume = "D", .path = "D:a"}).result, 1);
  EXPECT_EQ(Store({.volume = "D", .pathLength = 4, .path = "D:a"}).result, 0);
  EXPECT_EQ(Store({.volume = "D", .pathLength = 4, .path = "D:a", .after = "x"}).result, 1);
}

TEST(LocationOfABigEndianTrack, WhosePathRunsPastTheObjectIsNotStored) {
  for (const uint32_t length : {17U, 0x100U, 0xffffU}) {
    const Stored stored = Store({.volume = "Disk", .pathLength = length, .path = "Disk:Music:a.mp3"});
    EXPECT_EQ(stored.result, 0) << length;
    EXPECT_TRUE(stored.song.path.obj.empty());
    EXPECT_EQ(stored.song.path.enc, 0U);
  }
}

TEST(LocationOfABigEndianTrack, WhoseNameRunsPastTheObjectIsNotStored) {
  for (const int length : {23, 24, 200, 255}) {
    const Stored stored = Store({.volume = "Disk", .path = "Disk:Music:abc", .nameLength = length});
    EXPECT_EQ(stored.result, 0) << length;
    EXPECT_TRUE(stored.song.path.obj.empty());
  }
}

TEST(LocationOfABigEndianTrack, WithAnEmptyNameMatchesRightAfterIt) {
  // Length bytes are then the one before the name's length and that length itself, 0.
  Location location{.volume = "", .between = "", .pathLength = 0x4142, .path = std::string(0x2e00, 'p')};
  const Stored stored = Store(location);
  EXPECT_EQ(stored.result, 1);
  EXPECT_EQ(stored.song.path.obj.size(), size_t{'.'} * 256);
  EXPECT_EQ(stored.song.path.obj.View().substr(0, 3), "ABp");
}

TEST(LocationOfABigEndianTrack, OfAShortObjectIsNotStored) {
  std::vector<uint8_t> image(200, 0);
  for (const uint32_t length : {41U, 0x22U, 0x23U, 25U}) {
    for (const uint32_t encode : {0U, 1U}) {
      if (encode == 1 && length < 41) continue;
      fsbbStruct fsbb{};
      fsbb.jump = 0x18;
      fsbb.myLen = length;
      fsbb.count = 1;
      image[100 + 0x22] = 60;
      image[100 + 0x12] = 60;
      CSongList song;
      EXPECT_EQ(song.SetObj(&fsbb, image.data() + 100 + 0x28, encode, 0), 0) << length;
      EXPECT_TRUE(song.path.obj.empty());
    }
  }
}

// An object not marked as text, whose layout begins 16 bytes before the object does.
Stored StoreUnmarked(const Location &location) {
  const std::string fromBase = location.FromBase();
  std::vector<uint8_t> image(fromBase.begin(), fromBase.end());
  fsbbStruct fsbb{};
  fsbb.jump = 0x18;
  fsbb.myLen = static_cast<uint32_t>(image.size()) - 16;
  fsbb.count = 1;
  Stored stored;
  stored.result = stored.song.SetObj(&fsbb, image.data() + 16 + 0x28, 3, 0);
  return stored;
}

TEST(LocationOfABigEndianTrack, NotMarkedAsTextIsReadSixteenBytesEarlier) {
  const Stored stored = StoreUnmarked({.volume = "Disk", .path = "Disk:a", .after = std::string(16, '~')});
  EXPECT_EQ(stored.result, 1);
  EXPECT_EQ(stored.song.path.obj.View(), "Disk:a");
  EXPECT_EQ(stored.song.path.enc, 0U);
}

TEST(LocationOfABigEndianTrack, NotMarkedAsTextIsSearchedToSixteenBytesBeforeTheObjectsEnd) {
  EXPECT_EQ(StoreUnmarked({.volume = "Disk", .path = "Disk:a", .after = std::string(14, '~')}).result, 1);
  EXPECT_EQ(StoreUnmarked({.volume = "Disk", .path = "Disk:a", .after = std::string(13, '~')}).result, 0);
}

// Its end lies before the place where a text would begin.
TEST(LocationOfABigEndianTrack, NotMarkedAsTextEndsWithItsObjectHoweverShortThatIs) {
  constexpr size_t kObject = 16;
  for (uint32_t length = 0x23; length <= 0x29; ++length) {
    fsbbStruct fsbb{};
    fsbb.jump = 0x18;
    fsbb.myLen = length;
    fsbb.count = 1;
    std::vector<uint8_t> image(600, 'p');
    image[kObject + 0x12] = 0;  // the name's length
    for (const uint8_t high : {uint8_t{0}, uint8_t{1}}) {
      image[kObject + 0x11] = high;  // and the path's, whose low byte that is
      CSongList song;
      EXPECT_EQ(song.SetObj(&fsbb, image.data() + kObject + 0x28, 0, 0), high == 0 ? 1 : 0) << length;
      EXPECT_TRUE(song.path.obj.empty()) << length;
    }
  }
}

TEST(LocationOfABigEndianTrack, TwoConcatenate) {
  CSongList song;
  for (int round = 0; round < 2; ++round) {
    const std::string bytes = Location{.volume = "V", .path = "V:x"}.FromBase();
    std::vector<uint8_t> image(bytes.begin(), bytes.end());
    fsbbStruct fsbb{};
    fsbb.jump = 0x18;
    fsbb.myLen = static_cast<uint32_t>(bytes.size());
    fsbb.count = 1;
    EXPECT_EQ(song.SetObj(&fsbb, image.data() + 0x28, 1, 0), 1);
  }
  EXPECT_EQ(song.path.obj.View(), "V:xV:x");
}

TEST(LocationOfABigEndianTrack, IsFoundInWhatTheWriterWrites) {
  samples::ChunkWriter out(samples::Variant::BigEndian);
  AppendObject(out, samples::LocationObject("Macintosh HD:Music:Album:01 Song.mp3"));
  const std::string bytes = out.Bytes();
  std::vector<uint8_t> image(bytes.begin(), bytes.end());
  fsbbStruct fsbb{};
  fsbb.jump = 0x18;
  fsbb.myLen = static_cast<uint32_t>(bytes.size());
  fsbb.count = 1;
  CSongList song;
  EXPECT_EQ(song.SetObj(&fsbb, image.data() + 0x28, 1, 0), 1);
  EXPECT_EQ(song.path.obj.View(), "Macintosh HD:Music:Album:01 Song.mp3");
}

}  // namespace
}  // namespace db_test
