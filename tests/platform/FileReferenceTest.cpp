// Specifications become C streams.

#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>

#include "platform/FileReference.h"
#include "tests/platform/MountedVolume.h"

namespace {

struct CloseStream {
  void operator()(std::FILE *stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

class OpeningFiles : public MountedVolume {
 protected:
  FileReference reference(const std::string &name) const {
    return FileReference(specification(volume_, 2, name));
  }

  static std::string contentOf(const Stream &stream) {
    std::string content(100, '\0');
    content.resize(std::fread(content.data(), 1, content.size(), stream.get()));
    return content;
  }
};

TEST_F(OpeningFiles, GivesTheBytesOfTheSpecifiedFile) {
  folder_.write("iTunesDB", std::string("mhbd\0\r\n\x1a", 8));
  const Stream stream(reference("iTunesDB").fopen("rb"));
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(contentOf(stream), std::string("mhbd\0\r\n\x1a", 8));
}

TEST_F(OpeningFiles, PassesTheModeThrough) {
  folder_.write("file", "old");
  {
    const Stream stream(reference("file").fopen("rb"));
    ASSERT_NE(stream, nullptr);
    EXPECT_LT(std::fputc('x', stream.get()), 0) << "opened for reading only";
  }
  {
    const Stream stream(reference("file").fopen("ab"));
    ASSERT_NE(stream, nullptr);
    std::fputs(" and new", stream.get());
  }
  EXPECT_EQ(contentOf(Stream(reference("file").fopen("rb"))), "old and new");
}

TEST_F(OpeningFiles, NonAsciiNameReachesTheCLibraryAsUtf8) {
  folder_.write("音楽/日本語の曲 é 𝄞.mp3", "found");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:音楽:日本語の曲 é 𝄞.mp3", spec), noErr);
  const FileReference file(spec);
  const auto path = file.GetPOSIXPathManually();
  ASSERT_NE(path, nullptr);
  EXPECT_STREQ(path->cString(kCFStringEncodingUTF8), at("音楽/日本語の曲 é 𝄞.mp3").c_str());
  EXPECT_EQ(contentOf(Stream(file.fopen("rb"))), "found");
}

TEST_F(OpeningFiles, MissingFileGivesNoPathAndNoStream) {
  EXPECT_EQ(reference("absent").GetPOSIXPathManually(), nullptr);
  EXPECT_EQ(reference("absent").fopen("rb"), nullptr);
}

TEST_F(OpeningFiles, BadSpecificationGivesNoPathAndNoStream) {
  const FileReference nothing{FSSpec{}};
  EXPECT_EQ(nothing.GetPOSIXPathManually(), nullptr);
  EXPECT_EQ(nothing.fopen("rb"), nullptr);
}

TEST_F(OpeningFiles, FileRemovedAfterwardsGivesNoStream) {
  const auto path = folder_.write("file");
  const FileReference file = reference("file");
  std::filesystem::remove(path);
  EXPECT_EQ(file.fopen("rb"), nullptr);
}

TEST_F(OpeningFiles, FileInRemovedDirectoryGivesNoStream) {
  folder_.write("folder/file");
  FSSpec spec;
  ASSERT_EQ(makeSpec("iPod:folder:file", spec), noErr);
  const FileReference file(spec);
  std::filesystem::remove_all(at("folder"));
  EXPECT_EQ(file.fopen("rb"), nullptr);
}

TEST_F(OpeningFiles, ModeThatTheCLibraryRefusesGivesNoStream) {
  folder_.write("file");
  EXPECT_EQ(reference("file").fopen("?"), nullptr);
}

TEST_F(OpeningFiles, NameThatIsNotUtf8GivesNoStream) {
  folder_.write("caf\xE9");
  const auto path = reference("caf\xE9").GetPOSIXPathManually();
  ASSERT_NE(path, nullptr);
  EXPECT_STREQ(path->cString(kCFStringEncodingUTF8), "");
  EXPECT_EQ(reference("caf\xE9").fopen("rb"), nullptr);
}

TEST(FileReferenceLayout, IsAVirtualTableAndTheReference) {
  EXPECT_TRUE(std::has_virtual_destructor_v<FileReference>);
  EXPECT_EQ(sizeof(FileReference), sizeof(void *) + sizeof(FSRef));
}

}  // namespace
