// What files cost that were made to cost as much as they can. Memory and work are counted, not timed.

#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <tuple>

#include "tests/db/DatabaseFiles.h"
#include "tests/support/Allocations.h"

namespace db_test {
namespace {

using samples::ChunkWriter;
using samples::DataObject;
using samples::Kind;
using samples::Variant;

// As CiTunesDB.h promises.
constexpr size_t kMostTimesTheFile = 160;
constexpr size_t kMostBeside = size_t{8} << 20;

struct Shape {
  const char *name;
  std::function<std::string(Variant, size_t)> file;  // of about so many bytes

  friend std::ostream &operator<<(std::ostream &out, const Shape &shape) { return out << shape.name; }
};

ChunkWriter Begun(Variant variant) {
  ChunkWriter out(variant);
  samples::BeginFile(out, 1, 16);
  out.Begin(Kind::DataSet, 16, 2);
  return out;
}

// Chunks that lie over each other: two characters of a tag are enough, and the next chunk may begin right
// behind the word that leads to it.
std::string Overlapping(ChunkWriter out, const char *halfTag, size_t size) {
  constexpr uint32_t kStep = 6;
  const size_t first = out.Size();
  out.AppendBytes(std::string(size - first, '\0'));
  for (size_t at = first; at + kChunkHeaderSize <= size; at += kStep) {
    out.PutWord(at + 4, kStep);
    out.PutByte(at + 2, static_cast<uint8_t>(halfTag[0]));
    out.PutByte(at + 3, static_cast<uint8_t>(halfTag[1]));
  }
  return out.TakeBytes();
}

std::string Tracks(Variant variant, size_t size) { return Overlapping(Begun(variant), "it", size); }

std::string TracksPastADoubling(Variant variant, size_t size) {
  // The most a table has room for too much: one record more than a power of two.
  size_t records = 1;
  while (12 * records < size) records *= 2;
  return Overlapping(Begun(variant), "it", Begun(variant).Size() + 6 * (records + 1) + kChunkHeaderSize);
}

std::string Playlists(Variant variant, size_t size) { return Overlapping(Begun(variant), "yp", size); }

std::string Entries(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  AppendPlaylist(out, {});
  return Overlapping(std::move(out), "ip", size);
}

// Every entry asks for a track, between tracks of all different IDs.
std::string TracksAndEntries(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  AppendPlaylist(out, {});
  for (uint32_t id = 1; out.Size() < size; ++id) {
    AppendTrack(out, {.id = 7 * id, .headerLength = 0x14});
    AppendEntry(out, {.ref = 7 * (id / 2), .headerLength = 0x1c});
  }
  return out.TakeBytes();
}

std::string Lists(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  while (out.Size() < size) {
    for (const Kind kind : {Kind::TrackList, Kind::PlaylistList}) {
      out.PutWord(out.Begin(kind, 16) + 8, 0x7ffffff0);
    }
    out.Begin(Kind::Track, 16);
    out.Begin(Kind::Playlist, 16);
  }
  return out.TakeBytes();
}

// Raw objects whose bodies reach over `reach` bytes, all into one text.
std::string Reaching(Variant variant, size_t size, uint32_t reach) {
  ChunkWriter out = Begun(variant);
  out.Begin(Kind::Track, 0xd4);
  while (out.Size() < size) {
    DataObject object = samples::RawObject(4, "");
    const size_t rest = size - std::min(size, out.Size());
    object.headerLength = 0x18 - std::min(reach, static_cast<uint32_t>(rest));
    AppendObject(out, object);
  }
  return out.TakeBytes();
}

std::string ReachingToTheEnd(Variant variant, size_t size) { return Reaching(variant, size, UINT32_MAX); }

std::string ReachingALittle(Variant variant, size_t size) { return Reaching(variant, size, 160); }

std::string OtherObjects(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  out.Begin(Kind::Track, 0xd4);
  while (out.Size() < size) AppendObject(out, samples::RawObject(99, "x"));
  return out.TakeBytes();
}

std::string TextsThatAllDiffer(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  for (uint32_t i = 0; out.Size() < size; ++i) {
    out.Begin(Kind::Track, 16);
    for (const uint32_t type : {3U, 4U, 5U, 12U})
      AppendObject(out, samples::RawObject(type, std::to_string(i)));
  }
  return out.TakeBytes();
}

// Tables that foresee from the first songs what the others will bring.
std::string TextsThatDifferAtFirst(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  out.AppendBytes(TextsThatAllDiffer(variant, 6000).substr(out.Size()));
  return Overlapping(std::move(out), "it", size);
}

std::string LocationsThatNearlyMatch(Variant variant, size_t size) {
  ChunkWriter out = Begun(variant);
  out.Begin(Kind::Track, 0xd4);
  DataObject object = samples::RawObject(1, std::string(size - out.Size() - 0x18, 'n'));
  object.bytes.replace(0, 4, std::string("\0\0\0\1", 4));
  object.bytes[0x22 - 0x18] = '\xff';
  object.bytes[0x22 - 0x18 + 255] = 'm';
  AppendObject(out, object);
  return out.TakeBytes();
}

// Chunks of no kind, inside of each other.
std::string SmallSteps(Variant variant, size_t size) { return Overlapping(Begun(variant), "xy", size); }

struct Cost {
  size_t mostBytes = 0;
  size_t bytesGranted = 0;
  size_t allocations = 0;
  size_t bytesRead = 0;
};

// A stream over bytes that counts how many of them are handed out.
struct CountedFile {
  const std::string &bytes;
  size_t at = 0;
  size_t handedOut = 0;

  static ssize_t Read(void *cookie, char *buffer, size_t n) {
    auto *file = static_cast<CountedFile *>(cookie);
    const size_t given = file->bytes.copy(buffer, n, std::min(file->at, file->bytes.size()));
    file->at += given;
    file->handedOut += given;
    return static_cast<ssize_t>(given);
  }
  static int Seek(void *cookie, off64_t *offset, int whence) {
    auto *file = static_cast<CountedFile *>(cookie);
    if (whence == SEEK_CUR) *offset += static_cast<off64_t>(file->at);
    if (whence == SEEK_END) *offset += static_cast<off64_t>(file->bytes.size());
    file->at = static_cast<size_t>(*offset);
    return 0;
  }
};

Cost CostOf(const std::string &bytes) {
  CountedFile file{bytes};
  const OwnedFile stream(fopencookie(&file, "rb", {CountedFile::Read, nullptr, CountedFile::Seek, nullptr}));
  support::ForgetMostBytes();
  const Cost before{support::BytesInUse(), support::BytesGranted(), support::AllocationsMade(), 0};
  CiTunesDB database;
  EXPECT_EQ(database.LoadiTunesDB(stream.get()), 1);
  return {support::MostBytesInUse() - before.mostBytes, support::BytesGranted() - before.bytesGranted,
          support::AllocationsMade() - before.allocations, file.handedOut};
}

class HostileFile : public testing::TestWithParam<std::tuple<Shape, Variant>> {
 protected:
  static std::string File(size_t size) { return std::get<0>(GetParam()).file(std::get<1>(GetParam()), size); }
};

INSTANTIATE_TEST_SUITE_P(
    Loader, HostileFile,
    testing::Combine(testing::Values(Shape{"Tracks", Tracks},
                                     Shape{"TracksPastADoubling", TracksPastADoubling},
                                     Shape{"Playlists", Playlists}, Shape{"Entries", Entries},
                                     Shape{"TracksAndEntries", TracksAndEntries}, Shape{"Lists", Lists},
                                     Shape{"ReachingToTheEnd", ReachingToTheEnd},
                                     Shape{"ReachingALittle", ReachingALittle},
                                     Shape{"OtherObjects", OtherObjects},
                                     Shape{"TextsThatAllDiffer", TextsThatAllDiffer},
                                     Shape{"TextsThatDifferAtFirst", TextsThatDifferAtFirst},
                                     Shape{"LocationsThatNearlyMatch", LocationsThatNearlyMatch},
                                     Shape{"SmallSteps", SmallSteps}),
                     testing::Values(Variant::LittleEndian, Variant::BigEndian)),
    [](const auto &instance) {
      const bool little = std::get<1>(instance.param) == Variant::LittleEndian;
      return std::get<0>(instance.param).name + std::string(little ? "LittleEndian" : "BigEndian");
    });

TEST_P(HostileFile, TakesNoMoreMemoryThanPromised) {
  const std::string file = File(size_t{1} << 20);
  EXPECT_LE(CostOf(file).mostBytes, kMostTimesTheFile * file.size() + kMostBeside);
}

TEST_P(HostileFile, IsReadOnce) {
  const std::string file = File(size_t{1} << 20);
  EXPECT_EQ(CostOf(file).bytesRead, file.size());
}

TEST_P(HostileFile, OfTwiceTheSizeCostsNoMoreThanTwice) {
  const Cost one = CostOf(File(size_t{1} << 19));
  const Cost two = CostOf(File(size_t{1} << 20));
  // A beginning that costs nothing is a smaller part of the larger file.
  constexpr size_t kBeginning = 4096;
  EXPECT_LE(two.allocations, 2 * one.allocations + kBeginning);
  // Large blocks are rounded up.
  EXPECT_LE(two.bytesGranted, 2 * one.bytesGranted + kMostBeside);
  EXPECT_LE(two.mostBytes, 2 * one.mostBytes + kMostBeside);
}

}  // namespace
}  // namespace db_test
