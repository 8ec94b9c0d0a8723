// What a walk over the chunks of a file reads of it, counted by the system.

#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

// Bytes that this process has read so far, by all its system calls.
uint64_t bytesRead() {
  std::ifstream account("/proc/self/io");
  std::string label;
  uint64_t count = 0;
  account >> label >> count;
  return label == "rchar:" ? count : 0;
}

// A track of objects that each reach past its end, to a place further on where no chunk begins.
std::string objectsThatReachAhead(uint32_t count) {
  constexpr uint32_t kObject = 16;
  samples::ChunkWriter out(samples::Variant::LittleEndian);
  const size_t file = samples::BeginFile(out, 1);
  const size_t set = out.Begin(samples::Kind::DataSet, 0x60, 1);
  const size_t track = out.Begin(samples::Kind::Track, 0x60, count);
  for (uint32_t i = 0; i < count; ++i)
    out.PutWord(out.Begin(samples::Kind::Object, kObject, 1) + 8, kObject * (count + 1));
  out.Finish(track);
  out.Finish(set);
  out.AppendBytes(std::string(size_t{kObject} * (count + 1), 'x'));
  out.Finish(file);
  return out.TakeBytes();
}

TEST(ChunkWalkReads, EachWindowIsReadOnceWhereverObjectsReach) {
  if (bytesRead() == 0) GTEST_SKIP() << "the system does not count what is read";
  const support::TemporaryFolder folder;
  const std::string bytes = objectsThatReachAhead(20'000);
  const carbon::Descriptor file(open(folder.write("file", bytes).c_str(), O_RDONLY | O_CLOEXEC));
  const uint64_t before = bytesRead();
  const FileAccount account = walkChunks(file.number());
  const uint64_t read = bytesRead() - before;
  EXPECT_EQ(account.findings.count(FindingKind::WrongLength), 20'000U);
  EXPECT_GE(read, bytes.size());
  EXPECT_LT(read, 3 * bytes.size());
}

}  // namespace
}  // namespace player
