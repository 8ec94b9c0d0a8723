#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "db/FileWindow.h"
#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/db/Questions.h"
#include "tests/model/Loader.h"

namespace db_test {
namespace {

using samples::Variant;

// Whether the loader answers and leaves what the plain reader does, never holds room for more records than
// the file has bytes for, and leaves what can be asked.
testing::AssertionResult ReadsAsTheModel(const std::string &file) {
  CiTunesDB database;
  model::Database expected;
  const int32_t result = Load(database, file);
  const int32_t expectedResult = model::Load(file, expected);
  if (result != expectedResult) {
    return testing::AssertionFailure() << "result " << result << ", expected " << expectedResult;
  }
  if (!(Plain(database) == expected)) {
    return testing::AssertionFailure() << "read\n"
                                       << Describe(Plain(database)) << "expected\n"
                                       << Describe(expected);
  }
  // A table that grows record by record may double its room.
  const size_t room = file.size() / 16;
  if (database.songs.capacity() > std::max(room, 2 * database.songs.size()) ||
      database.plays.capacity() > std::max(room, 2 * database.plays.size())) {
    return testing::AssertionFailure() << "room for more records than the file could hold";
  }
  const std::string fault = AskEverything(database);
  if (!fault.empty()) return testing::AssertionFailure() << fault;
  return testing::AssertionSuccess();
}

// Where the words of all headers stand, whatever a chunk begins at: after an odd text that is no longer a
// multiple of four.
std::vector<size_t> HeaderWords(const std::string &file, Variant variant) {
  std::vector<size_t> words;
  const auto word = [&](size_t at) {
    return FileWord(reinterpret_cast<const uint8_t *>(file.data()) + at,
                    variant == Variant::LittleEndian ? 1 : 0);
  };
  size_t end = 0;
  for (size_t chunk = 0; chunk < file.size(); chunk = end) {
    const bool isObject = file.compare(chunk, 4, Tag(samples::Kind::Object, variant)) == 0;
    end = chunk + word(chunk + (isObject ? 8 : 4));
    for (size_t at = chunk; at + 4 <= end; at += 4) words.push_back(at);
  }
  return words;
}

class DamagedFile : public testing::TestWithParam<Variant> {};

INSTANTIATE_TEST_SUITE_P(Loader, DamagedFile, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(DamagedFile, SmallLibraryHoldsThreeSongsAndThreePlaylists) {
  CiTunesDB database;
  ASSERT_EQ(Load(database, SmallLibrary(GetParam())), 1);
  EXPECT_EQ(database.songs.size(), 3U);
  EXPECT_EQ(database.plays.size(), 3U);
  EXPECT_TRUE(ReadsAsTheModel(SmallLibrary(GetParam())));
}

TEST_P(DamagedFile, EveryPrefixIsReadAsFarAsItGoes) {
  const std::string file = SmallLibrary(GetParam());
  for (size_t n = 0; n <= file.size(); ++n) {
    ASSERT_TRUE(ReadsAsTheModel(file.substr(0, n))) << "prefix of " << n << " bytes";
  }
}

TEST_P(DamagedFile, EveryWordMayBeHostile) {
  constexpr std::array<uint32_t, 9> kHostile{0,          1,          15,         16,        0x7fffffff,
                                             0x80000000, 0xfffffff0, 0xffffffff, 0x10000000};
  const std::string file = SmallLibrary(GetParam());
  for (const size_t at : HeaderWords(file, GetParam())) {
    for (const uint32_t value : kHostile) {
      samples::ChunkWriter word(GetParam());
      word.AppendWord(value);
      std::string damaged = file;
      damaged.replace(at, 4, word.Bytes());
      ASSERT_TRUE(ReadsAsTheModel(damaged)) << "word " << value << " at " << at;
    }
  }
}

TEST_P(DamagedFile, EveryByteMayBeHostile) {
  const std::string file = SmallLibrary(GetParam());
  for (size_t at = 0; at < file.size(); ++at) {
    for (const char value : {'\x00', '\x7f', '\x80', '\xff'}) {
      if (file[at] == value) continue;
      std::string damaged = file;
      damaged[at] = value;
      ASSERT_TRUE(ReadsAsTheModel(damaged)) << "byte " << int{value} << " at " << at;
    }
  }
}

TEST_P(DamagedFile, EveryTagMayBeAnyOther) {
  const std::string file = SmallLibrary(GetParam());
  for (size_t at = 0; at + 4 <= file.size(); at += 2) {
    for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
      for (int kind = 0; kind <= static_cast<int>(samples::Kind::Object); ++kind) {
        std::string damaged = file;
        damaged.replace(at, 4, samples::Tag(static_cast<samples::Kind>(kind), variant));
        ASSERT_TRUE(ReadsAsTheModel(damaged)) << "kind " << kind << " at " << at;
      }
    }
  }
}

TEST_P(DamagedFile, RandomBytesAreReadAlike) {
  const std::string file = SmallLibrary(GetParam());
  samples::Random random(11);
  for (int round = 0; round < 20000; ++round) {
    std::string damaged = file;
    const uint32_t changes = 1 + random.Below(8);
    for (uint32_t i = 0; i < changes; ++i) {
      const auto value = static_cast<char>(random.OneIn(2) ? random.Below(64) : random.Below(256));
      damaged[random.Below(static_cast<uint32_t>(file.size()))] = value;
    }
    ASSERT_TRUE(ReadsAsTheModel(damaged)) << "round " << round;
  }
}

TEST_P(DamagedFile, ChunksInAnyOrderAreReadAlike) {
  samples::Random random(12);
  for (int round = 0; round < 3000; ++round) {
    samples::ChunkWriter out(GetParam());
    samples::BeginFile(out, 0, 16);
    const uint32_t chunks = random.Below(12);
    for (uint32_t i = 0; i < chunks; ++i) {
      const auto kind = static_cast<samples::Kind>(1 + random.Below(7));
      const Variant form = random.OneIn(8) ? Variant::BigEndian : GetParam();
      const size_t chunk = out.Begin(Tag(kind, form), 16 + 4 * random.Below(16), random.Below(4));
      out.AppendBytes(std::string(random.Below(40), static_cast<char>('a' + random.Below(4))));
      if (random.OneIn(3)) {
        out.PutWord(chunk + 8, random.Below(200));
      } else {
        out.Finish(chunk);
      }
      if (kind != samples::Kind::Object) out.PutWord(chunk + 4, static_cast<uint32_t>(out.Size() - chunk));
      if (kind == samples::Kind::Object && out.Size() - chunk > 0x1c) {
        out.PutWord(chunk + 0x14, random.OneIn(6) ? 1 : 0);
        out.PutWord(chunk + 0x18, random.Below(3));
      }
    }
    ASSERT_TRUE(ReadsAsTheModel(out.Bytes())) << "round " << round;
  }
}

TEST_P(DamagedFile, GeneratedLibraryIsReadAlike) {
  const samples::GeneratedLibrary library{
      .seed = 5, .songs = 300, .playlists = 4, .entries = 50, .variant = GetParam()};
  const std::string file = library.Bytes();
  EXPECT_TRUE(ReadsAsTheModel(file));
  samples::Random random(13);
  for (int round = 0; round < 50; ++round) {
    EXPECT_TRUE(ReadsAsTheModel(file.substr(0, random.Below(static_cast<uint32_t>(file.size())))));
  }
}

// Objects at the end of the window need more than it shows.
class AtTheWindowsEnd : public testing::TestWithParam<Variant> {
 protected:
  // A track whose only object begins at the position, and other bytes after it.
  static std::string FileWithObjectAt(size_t position, const samples::DataObject &object) {
    samples::ChunkWriter out(GetParam());
    samples::BeginFile(out, 1, 16);
    out.Begin(samples::Kind::Track, 0xd4);
    out.Begin("abcd", static_cast<uint32_t>(position - out.Size()));
    AppendObject(out, object);
    for (size_t i = 0; i < 400; ++i) out.AppendByte(static_cast<uint8_t>(1 + (position + i) % 250));
    return out.TakeBytes();
  }

  static constexpr size_t kWindow = FileWindow::kUsualSize;
};

INSTANTIATE_TEST_SUITE_P(Loader, AtTheWindowsEnd, testing::Values(Variant::LittleEndian, Variant::BigEndian));

TEST_P(AtTheWindowsEnd, BodyThatReachesOnIsReadWhole) {
  samples::DataObject object = samples::RawObject(4, "body");
  object.headerLength = 0x18U - 300U;
  for (size_t before = 0; before < 340; before += 4) {
    ASSERT_TRUE(ReadsAsTheModel(FileWithObjectAt(kWindow - before, object))) << before;
  }
}

TEST_P(AtTheWindowsEnd, OddTextSwapsWithTheByteBehindTheWindow) {
  for (size_t before = 0; before < 60; ++before) {
    ASSERT_TRUE(ReadsAsTheModel(FileWithObjectAt(kWindow - before, samples::EightBitObject(4, "abc", 1))))
        << before;
  }
}

}  // namespace
}  // namespace db_test
