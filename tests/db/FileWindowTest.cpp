#include <algorithm>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "db/CiTunesDB.h"
#include "db/FileWindow.h"
#include "db/TextArena.h"
#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"

namespace db_test {
namespace {

// A file of `size` bytes that differ from their neighbours far and near.
std::string Bytes(size_t size) {
  std::string bytes(size, '\0');
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i ^ i >> 8 ^ i >> 16);
  return bytes;
}

OwnedFile StreamOf(const std::string &bytes) {
  OwnedFile stream(std::tmpfile());
  EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), stream.get()), bytes.size());
  return stream;
}

std::string Shown(FileWindow &window, uint32_t at, size_t n) {
  const uint8_t *shown = window.At(at, n);
  return {reinterpret_cast<const char *>(shown), n};
}

TEST(FileWindow, HoldsARangeThatLiesInsideTheFile) {
  const OwnedFile stream = StreamOf(Bytes(19));
  const FileWindow window(stream.get());
  EXPECT_EQ(window.Size(), 19U);
  EXPECT_TRUE(window.Holds(0, 19));
  EXPECT_TRUE(window.Holds(19, 0));
  EXPECT_TRUE(window.Holds(18, 1));
  EXPECT_FALSE(window.Holds(18, 2));
  EXPECT_FALSE(window.Holds(20, 0));
  EXPECT_FALSE(window.Holds(1, UINT64_MAX));
  EXPECT_FALSE(window.Holds(UINT64_MAX, 2));
}

TEST(FileWindow, BytesPastTheEndReadZero) {
  const OwnedFile stream = StreamOf(std::string(19, 'x'));
  FileWindow window(stream.get());
  EXPECT_EQ(Shown(window, 0, 19 + FileWindow::kSpare),
            std::string(19, 'x') + std::string(FileWindow::kSpare, '\0'));
  EXPECT_EQ(Shown(window, 17, 4), std::string("xx\0\0", 4));
}

TEST(FileWindow, ShowsEveryStretchOfAFileMuchLargerThanItself) {
  const std::string bytes = Bytes(3000000);
  const OwnedFile stream = StreamOf(bytes);
  FileWindow window(stream.get());
  samples::Random random(7);
  for (uint32_t at = 0; at < bytes.size();) {
    // Mostly the size of a chunk, now and then larger than the window, now and then a long way on.
    const uint32_t size = random.OneIn(40) ? random.Below(700000) : random.Below(400);
    const size_t n = std::min<size_t>(size, bytes.size() - at);
    ASSERT_EQ(Shown(window, at, n), bytes.substr(at, n)) << "at " << at;
    at += random.OneIn(40) ? random.Below(600000) : random.Below(400);
  }
}

TEST(FileWindow, KeepsWhatIsWrittenUntilALaterPlaceIsAskedFor) {
  const std::string bytes = Bytes(1000000);
  const OwnedFile stream = StreamOf(bytes);
  FileWindow window(stream.get());
  for (uint32_t at = 0; at + 1001 < bytes.size(); at += 1000) {
    uint8_t *chunk = window.At(at, 1001);
    if (at != 0) {
      ASSERT_EQ(chunk[0], static_cast<uint8_t>(~bytes[at])) << "at " << at;
    }
    chunk[1000] = static_cast<uint8_t>(~chunk[1000]);
  }
}

TEST(FileWindow, StreamShorterThanAChunkHeaderIsRefused) {
  const OwnedFile stream = StreamOf(Bytes(15));
  EXPECT_THAT([&] { FileWindow window(stream.get()); },
              testing::ThrowsMessage<FileUnreadable>("the file cannot be read"));
}

TEST(Loader, FileThatCannotBeReadToItsEndChangesNothing) {
  const samples::GeneratedLibrary library{.seed = 3, .songs = 1500, .playlists = 3, .entries = 40};
  FailingFile file{library.Bytes(), 0};
  for (const size_t failsAt : {size_t{10}, file.bytes.size() / 2, file.bytes.size() - 1}) {
    file.failsAt = failsAt;
    CiTunesDB db;
    const OwnedFile stream = file.Open();
    EXPECT_EQ(db.LoadiTunesDB(stream.get()), 0) << failsAt;
    EXPECT_TRUE(db.songs.empty());
    EXPECT_TRUE(db.plays.empty());
    EXPECT_EQ(db.libType, 0);
    EXPECT_EQ(db.listType, 0);
    EXPECT_EQ(db.infoType, 0);
  }
  file.failsAt = file.bytes.size();
  CiTunesDB db;
  const OwnedFile stream = file.Open();
  EXPECT_EQ(db.LoadiTunesDB(stream.get()), 1);
  EXPECT_EQ(db.songs.size(), 1500U);
}

TEST(Loader, EndOfAFileIsReadEvenWhenTheWalkStopsBefore) {
  const samples::GeneratedLibrary library{.seed = 3, .songs = 1500};
  FailingFile file{library.Bytes(), 0};
  file.bytes.replace(4, 4, std::string(4, '\0'));  // an advance of 0
  file.failsAt = file.bytes.size() - 1;
  CiTunesDB db;
  const OwnedFile stream = file.Open();
  EXPECT_EQ(db.LoadiTunesDB(stream.get()), 0);
}

TEST(TextArena, KeepsEveryTextWhereItIs) {
  TextArena arena;
  samples::Random random(11);
  std::vector<std::pair<std::string, std::string_view>> texts;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = Bytes(random.OneIn(500) ? random.Below(200000) : random.Below(60));
    texts.emplace_back(text, arena.Keep(text).bytes);
  }
  for (const auto &[text, kept] : texts) ASSERT_EQ(kept, text);
}

}  // namespace
}  // namespace db_test
