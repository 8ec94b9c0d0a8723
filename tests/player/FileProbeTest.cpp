#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "player/FileProbe.h"
#include "samples/SampleLibrary.h"
#include "tests/support/RealFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

class FileProbeTest : public testing::Test {
 protected:
  FileProbe probe(const std::string &bytes) const { return probeFile(folder_.write("file", bytes)); }
  std::string reason(const std::string &bytes) const { return probe(bytes).reason; }

  support::TemporaryFolder folder_;
};

// A header with this body, its length words as a writer sets them.
std::string withBody(samples::Variant variant, const std::string &body) {
  samples::ChunkWriter out(variant);
  const size_t file = samples::BeginFile(out, 1);
  out.AppendBytes(body);
  out.Finish(file);
  return out.TakeBytes();
}

// Bytes such as encryption leaves: no pattern, no text at the start.
std::string scrambled(size_t size) {
  std::string bytes;
  uint32_t state = 12345;
  for (size_t i = 0; i < size; ++i) {
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
  bytes[0] = 'F';
  return bytes;
}

constexpr auto kBothVariants = {samples::Variant::LittleEndian, samples::Variant::BigEndian};

TEST_F(FileProbeTest, WholeDatabaseOfEitherVariantIsAccepted) {
  EXPECT_EQ(probe(samples::SamplePlayerDatabase()).content, FileContent::Database);
  EXPECT_EQ(probe(samples::SampleDesktopLibrary()).content, FileContent::Database);
  EXPECT_EQ(reason(samples::SamplePlayerDatabase()), "");
}

TEST_F(FileProbeTest, DatabaseWithoutDataSetsIsAccepted) {
  for (const auto variant : kBothVariants) {
    EXPECT_EQ(probe(withBody(variant, "")).content, FileContent::Database);
  }
}

TEST_F(FileProbeTest, BytesAfterTheDatabaseDoNoHarm) {
  EXPECT_EQ(probe(samples::SamplePlayerDatabase() + std::string(100, 'x')).content, FileContent::Database);
}

TEST_F(FileProbeTest, EveryShorterBeginningIsDamaged) {
  for (const std::string &whole : {samples::SamplePlayerDatabase(), samples::SampleDesktopLibrary()}) {
    for (size_t size = 0; size < whole.size(); size += size < 1000 ? 1 : 777) {
      const FileProbe result = probe(whole.substr(0, size));
      EXPECT_EQ(result.content, size == 0 ? FileContent::Unusable : FileContent::Damaged) << size;
      EXPECT_NE(result.reason, "") << size;
    }
  }
}

TEST_F(FileProbeTest, TruncatedFileIsSaidToBe) {
  const std::string whole = samples::SamplePlayerDatabase();
  EXPECT_EQ(reason(whole.substr(0, 1000)), "the file is truncated: it should hold " +
                                               std::to_string(whole.size()) + " bytes and holds 1000");
  EXPECT_THAT(reason(whole.substr(0, 10)), HasSubstr("truncated"));
}

TEST_F(FileProbeTest, DataSetPastTheEndIsATruncatedFileWhateverTheHeaderSays) {
  samples::ChunkWriter out(samples::Variant::LittleEndian);
  out.AppendBytes(samples::SamplePlayerDatabase().substr(0, 1000));
  out.PutWord(8, 1000);
  EXPECT_THAT(reason(out.Bytes()), HasSubstr("truncated"));
}

TEST_F(FileProbeTest, EmptyFileIsSaidToBe) { EXPECT_EQ(reason(""), "the file is empty"); }

TEST_F(FileProbeTest, ForeignFileIsSaidToBe) {
  for (const std::string &bytes : {"x"s, "<html>"s, std::string(1000, '\0'), "hdf"s}) {
    EXPECT_EQ(reason(bytes), "not an iTunesDB database") << bytes;
  }
}

TEST_F(FileProbeTest, CompressedBodyIsRecognised) {
  for (const auto variant : kBothVariants) {
    for (const char *start : {"x\x9C", "x\x01", "x\xDA", "x^"}) {
      const FileProbe result = probe(withBody(variant, start + scrambled(500)));
      EXPECT_EQ(result.content, FileContent::Compressed);
      EXPECT_EQ(result.reason, "");
    }
  }
}

TEST_F(FileProbeTest, CompressedBodyIsRecognisedWhateverLengthTheHeaderDeclares) {
  samples::ChunkWriter out(samples::Variant::LittleEndian);
  out.AppendBytes(withBody(samples::Variant::LittleEndian, "\x78\x9C" + scrambled(500)));
  out.PutWord(8, 100000);  // of the body before it was compressed
  EXPECT_EQ(probe(out.Bytes()).content, FileContent::Compressed);
}

TEST_F(FileProbeTest, EncryptedBodyIsSaidToBe) {
  for (const auto variant : kBothVariants) {
    for (const size_t size : {16U, 64U, 5000U}) {
      const FileProbe result = probe(withBody(variant, scrambled(size)));
      EXPECT_EQ(result.content, FileContent::Encrypted) << size;
      EXPECT_THAT(result.reason, HasSubstr("encrypted")) << size;
    }
  }
}

TEST_F(FileProbeTest, BodyOfZerosIsDamagedNotEncrypted) {
  for (const auto variant : kBothVariants) {
    EXPECT_THAT(reason(withBody(variant, std::string(500, '\0'))), HasSubstr("damaged"));
    EXPECT_THAT(reason(withBody(variant, "mhsd")), HasSubstr("damaged"));
  }
}

TEST_F(FileProbeTest, HeaderLengthOfNothingIsDamaged) {
  samples::ChunkWriter out(samples::Variant::BigEndian);
  out.AppendBytes(samples::SampleDesktopLibrary());
  out.PutWord(4, 0);
  EXPECT_THAT(reason(out.Bytes()), HasSubstr("damaged"));
}

TEST_F(FileProbeTest, FileOfTwoGigabytesIsTooLarge) {
  const std::filesystem::path file = folder_.write("file", samples::SamplePlayerDatabase());
  std::filesystem::resize_file(file, 0x80000000U);
  EXPECT_THAT(probeFile(file).reason, HasSubstr("too large"));
}

TEST_F(FileProbeTest, WhatCannotBeOpenedHasTheReasonOfTheSystem) {
  EXPECT_EQ(probeFile(folder_.path() / "none").reason, "No such file or directory");
  EXPECT_EQ(probeFile(folder_.path()).reason, "Is a directory");
}

TEST_F(FileProbeTest, PipeIsRefusedWithoutWaitingForAWriter) {
  const std::filesystem::path pipe = folder_.path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(probeFile(pipe).reason, "not a regular file");
}

TEST_F(FileProbeTest, RealFilesAreRecognised) {
  if (!support::HasRealFiles()) GTEST_SKIP() << "no real databases here";
  for (const support::RealFile &file : support::RealFiles()) {
    if (!exists(PathOf(file))) continue;
    EXPECT_EQ(probeFile(PathOf(file)).content,
              file.encrypted ? FileContent::Encrypted : FileContent::Database)
        << file.name;
  }
  for (const std::filesystem::path &path : support::UntestedRealFiles())
    std::cout << "untested: " << path.filename().string() << ' ' << probeFile(path).reason << '\n';
}

}  // namespace
}  // namespace player
