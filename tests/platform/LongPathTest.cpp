// Paths around 16,384 bytes. The system's own calls take 4,096 at once, so the trees are made and walked one
// directory at a time.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "platform/FileReference.h"
#include "tests/platform/MountedVolume.h"

namespace {

class LongPath : public MountedVolume {
 protected:
  // Makes nested directories and an empty file in the last, so that the file's path takes `length` bytes.
  void makeFileWithPathOf(size_t length) {
    path_ = folder_.path();
    int at = open(path_.c_str(), O_PATH | O_DIRECTORY);
    ASSERT_GE(at, 0);
    while (length - path_.size() > 64) {
      const std::string name(60, 'd');  // leaves room for the file's
      ASSERT_EQ(mkdirat(at, name.c_str(), 0700), 0);
      const int next = openat(at, name.c_str(), O_PATH | O_DIRECTORY);
      close(at);
      ASSERT_GE(next, 0);
      at = next;
      path_ += "/" + name;
      names_.push_back(name);
    }
    names_.emplace_back(length - path_.size() - 1, 'f');
    path_ += "/" + names_.back();
    const int file = openat(at, names_.back().c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
    ASSERT_GE(file, 0);
    close(file);
    close(at);
    ASSERT_EQ(path_.size(), length);
  }

  // The file's specification, reached from directory to directory by names.
  FSSpec specByNames() const {
    FSSpec spec = specification(volume_, 2, "none");
    for (const std::string &name : names_) {
      const OSErr result = makeSpec(volume_, spec.parID, name, spec);
      EXPECT_EQ(result, noErr);
      if (&name == &names_.back()) break;
      EXPECT_EQ(makeSpec(volume_, spec.parID, ":" + name + ":none", spec), fnfErr);
    }
    return spec;
  }

  std::string path_;
  std::vector<std::string> names_;
};

TEST_F(LongPath, Of16383BytesFitsABufferOf16384) {
  makeFileWithPathOf(16383);
  const FSSpec spec = specByNames();
  FSRef ref;
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  std::vector<uint8_t> buffer(16384, '#');
  ASSERT_EQ(FSRefMakePath(&ref, buffer.data(), 16384), noErr);
  EXPECT_EQ(reinterpret_cast<const char *>(buffer.data()), path_);
}

TEST_F(LongPath, Of16384BytesIsTooLongForABufferOf16384) {
  makeFileWithPathOf(16384);
  const FSSpec spec = specByNames();
  FSRef ref;
  ASSERT_EQ(FSpMakeFSRef(&spec, &ref), noErr);
  std::vector<uint8_t> buffer(16384, '#');
  EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), 16384), pathTooLongErr);
  EXPECT_EQ(std::count(buffer.begin(), buffer.end(), '#'), 16384) << "left alone";
  buffer.resize(16385);
  EXPECT_EQ(FSRefMakePath(&ref, buffer.data(), 16385), noErr);
  EXPECT_EQ(reinterpret_cast<const char *>(buffer.data()), path_);
}

TEST_F(LongPath, Of16383BytesConvertsInAFileReference) {
  makeFileWithPathOf(16383);
  const FileReference reference(specByNames());
  const auto path = reference.GetPOSIXPathManually();
  ASSERT_NE(path, nullptr);
  EXPECT_STREQ(path->cString(kCFStringEncodingUTF8), path_.c_str());
  EXPECT_EQ(reference.fopen("rb"), nullptr) << "the C library takes no name of that length";
}

TEST_F(LongPath, Of16384BytesConvertsToNullInAFileReference) {
  makeFileWithPathOf(16384);
  const FileReference reference(specByNames());
  EXPECT_EQ(reference.GetPOSIXPathManually(), nullptr);
  EXPECT_EQ(reference.fopen("rb"), nullptr);
}

TEST_F(LongPath, BecomesASpecificationInOneCall) {
  makeFileWithPathOf(16400);
  FSSpec spec;
  ASSERT_EQ(CarbonSpecFromPath(path_.c_str(), &spec), noErr);
  EXPECT_TRUE(equal(spec, specByNames()));
  EXPECT_EQ(posixPath(spec), path_);
  std::string mac = "iPod" + path_.substr(folder_.path().string().size());
  std::replace(mac.begin(), mac.end(), '/', ':');
  EXPECT_EQ(macPath(spec), mac);
  EXPECT_EQ(CarbonSpecFromPath((path_ + ".missing").c_str(), &spec), fnfErr);
  const size_t end = path_.rfind('/');
  EXPECT_EQ(CarbonSpecFromPath((path_.substr(0, end) + "/./" + path_.substr(end)).c_str(), &spec), noErr);
  EXPECT_EQ(CarbonSpecFromPath((path_.substr(0, end) + "/.." + path_.substr(end)).c_str(), &spec), bdNamErr)
      << "ways up are not taken on trust behind directories that may be links";
  EXPECT_EQ(CarbonSpecFromPath((path_.substr(0, end) + "/absent" + path_.substr(end)).c_str(), &spec),
            dirNFErr);
}

TEST_F(LongPath, RelativeToTheWorkingDirectoryBecomesASpecification) {
  makeFileWithPathOf(16400);
  ASSERT_EQ(chdir(folder_.path().c_str()), 0);
  FSSpec spec;
  const std::string relative = path_.substr(folder_.path().string().size() + 1);
  EXPECT_EQ(CarbonSpecFromPath(relative.c_str(), &spec), noErr);
  EXPECT_EQ(posixPath(spec), path_);
  ASSERT_EQ(chdir("/"), 0);
}

}  // namespace
