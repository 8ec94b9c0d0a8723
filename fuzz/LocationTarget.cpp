// The body of a big-endian location: the first eight bytes are the header length and the total length, the
// rest is the object from its word at 0x10 on. It is read both through a whole file, against the plain model,
// and out of a block of just the bytes that the loader vouches for.

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "db/ByteOrder.h"
#include "db/CiTunesDB.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "samples/DatabaseWriter.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"

namespace {

using fuzz::Require;

constexpr uint32_t kText = 0x28;
constexpr uint32_t kRawBody = 0x18;
constexpr uint32_t kLocation = 1;

std::string FileWith(const std::string &object) {
  samples::ChunkWriter out(samples::Variant::BigEndian);
  samples::BeginFile(out, 1, 16);
  out.Begin(samples::Kind::Track, 0xd4);
  out.AppendBytes(object);
  return out.TakeBytes();
}

void ReadsAsTheModel(const std::string &file) {
  CiTunesDB database;
  model::Database expected;
  Require(database.LoadiTunesDB(db_test::MemoryFile(file).Stream()) == 1 && model::Load(file, expected),
          "a file with one location is no database");
  Require(db_test::Plain(database) == expected, "the model reads another path");
  Require(database.SongsObject(0, 2).View() == database.SongsObjectInfo(0, 2).obj.View(),
          "two answers differ");
}

// As the loader does it: the object and one byte, and a raw body that reaches on, all there.
void ReadsOnlyTheObject(const std::string &object, const fsbbStruct &fsbb) {
  const auto *bytes = reinterpret_cast<const uint8_t *>(object.data());
  const uint32_t encode = BigEndianWord(bytes + kRawBody);
  uint64_t needed = std::max<uint64_t>(fsbb.myLen, kText) + 1;
  if (encode != 1) needed = std::max<uint64_t>(needed, uint64_t{kRawBody} + (fsbb.myLen - fsbb.jump));
  if (fsbb.myLen > object.size() || needed > object.size()) return;
  const auto block = std::make_unique<uint8_t[]>(static_cast<size_t>(needed));
  std::memcpy(block.get(), bytes, static_cast<size_t>(needed));
  CSongList song;
  const int32_t stored = song.SetObj(&fsbb, block.get() + kText, encode, 0);
  Require(stored == 1 || song.path.obj.empty(), "a location that is not stored leaves a path");
}

}  // namespace

FUZZ_TARGET(location) {
  constexpr size_t kBeforeObject = 8;
  if (size < kBeforeObject) return;
  const std::string rest(reinterpret_cast<const char *>(data) + kBeforeObject, size - kBeforeObject);
  samples::ChunkWriter out(samples::Variant::BigEndian);
  const size_t at = out.Begin(samples::Kind::Object, kChunkHeaderSize, kLocation);
  fsbbStruct fsbb{{'h', 'o'}, {'h', 'm'}, BigEndianWord(data), BigEndianWord(data + 4), kLocation};
  // Lengths beyond any file show little; most of them shall be near the real one.
  if ((data[4] & 0xc0) == 0) fsbb.myLen = static_cast<uint32_t>(kChunkHeaderSize + size) - data[7] % 64;
  if ((data[0] & 0xc0) == 0) fsbb.jump = data[3] % 64;
  out.PutWord(at + 4, fsbb.jump);
  out.PutWord(at + 8, fsbb.myLen);
  out.AppendBytes(rest);
  if (out.Size() < kText) out.AppendBytes(std::string(kText - out.Size(), '\0'));
  ReadsAsTheModel(FileWith(out.Bytes()));
  ReadsOnlyTheObject(out.Bytes(), fsbb);
}
