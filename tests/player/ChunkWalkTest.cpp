// The walk over a file's chunks.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "samples/DatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using samples::Variant;

// A database of two songs whose list has a header of this length.
std::string withListHeader(uint32_t length) {
  samples::ChunkWriter out(Variant::LittleEndian);
  const size_t file = samples::BeginFile(out, 1);
  const size_t set = out.Begin(samples::Kind::DataSet, 0x60, 1);
  out.AppendBytes("mhlt");
  out.AppendWord(length);
  out.AppendWord(2);
  if (length > 12) out.AppendBytes(std::string(length - 12, '\0'));
  samples::AppendTrack(out, {.id = 1});
  samples::AppendTrack(out, {.id = 2});
  out.Finish(set);
  out.Finish(file);
  return out.TakeBytes();
}

FileAccount accountOf(const std::string &bytes) {
  const support::TemporaryFolder folder;
  const carbon::Descriptor file(open(folder.write("db", bytes).c_str(), O_RDONLY | O_CLOEXEC));
  return walkChunks(file.number());
}

TEST(ChunkWalkTest, ListHeadersOf12To16BytesAreWhole) {
  for (const uint32_t length : {12U, 14U, 15U, 16U}) {
    const FileAccount account = accountOf(withListHeader(length));
    EXPECT_EQ(account.declaredTracks, 2U) << length;
    EXPECT_EQ(account.tracks, 2U) << length;
    EXPECT_EQ(account.unexplainedBytes, 0U) << length;
    EXPECT_EQ(account.findings.total(), 0U) << length;
  }
}

TEST(ChunkWalkTest, ListHeaderTooShortForItsNumberIsNone) {
  const FileAccount account = accountOf(withListHeader(11));
  EXPECT_EQ(account.declaredTracks, 0U);
  EXPECT_NE(account.findings.total(), 0U);
}

TEST(ChunkWalkTest, EmptyListMayEndTheFile) {
  samples::ChunkWriter out(Variant::LittleEndian);
  const size_t file = samples::BeginFile(out, 1);
  const size_t set = out.Begin(samples::Kind::DataSet, 0x60, 1);
  out.AppendBytes("mhlt");
  out.AppendWord(12);
  out.AppendWord(0);
  out.Finish(set);
  out.Finish(file);
  const FileAccount account = accountOf(out.Bytes());
  EXPECT_EQ(account.unexplainedBytes, 0U);
  EXPECT_EQ(account.findings.total(), 0U);
}

TEST(ChunkWalkTest, PlacesOfSongsAreThoseOfTheirTags) {
  const std::string bytes = withListHeader(14);
  const FileAccount account = accountOf(bytes);
  ASSERT_EQ(account.tracksAt.size(), 2U);
  EXPECT_EQ(account.tracksAt[0], bytes.find("mhit"));
  EXPECT_EQ(account.tracksAt[1], bytes.find("mhit", account.tracksAt[0] + 1));
}

}  // namespace
}  // namespace player
