// Who owns which block, and what is left when there is no memory.

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "platform/FileReference.h"
#include "platform/cfstring.h"
#include "tests/platform/CountingAllocator.h"
#include "tests/platform/MountedVolume.h"

namespace {

constexpr const char *kText = "a text that is longer than any string keeps within itself";

TEST(StringOwner, ReadsBackInBothEncodings) {
  cfstring string("Musik/Lied", kCFStringEncodingUTF8);
  EXPECT_STREQ(string.cString(kCFStringEncodingUTF8), "Musik/Lied");
  cfstring accented("/Möwe/日本", kCFStringEncodingUTF8);
  EXPECT_STREQ(accented.cString(kCFStringEncodingUTF8), "/Möwe/日本");
  EXPECT_STREQ(accented.cString(kCFStringEncodingASCII), "") << "no form in ASCII";
}

TEST(StringOwner, SuccessiveCStringsAreDistinctAndTheSecondFreesTheFirst) {
  cfstring string(kText, kCFStringEncodingUTF8);
  const long before = allocator::blocksInUse();
  const char *first = string.cString(kCFStringEncodingUTF8);
  EXPECT_STREQ(first, kText);
  EXPECT_TRUE(allocator::isInUse(first));
  const char *second = string.cString(kCFStringEncodingUTF8);
  EXPECT_STREQ(second, kText);
  EXPECT_NE(first, second);
  EXPECT_FALSE(allocator::isInUse(first));
  EXPECT_TRUE(allocator::isInUse(second));
  EXPECT_EQ(allocator::blocksInUse(), before + 1);
}

TEST(StringOwner, DestructionFreesTheStringAndItsCString) {
  const long before = allocator::blocksInUse();
  {
    cfstring string(kText, kCFStringEncodingUTF8);
    string.cString(kCFStringEncodingUTF8);
    EXPECT_GT(allocator::blocksInUse(), before + 1);
  }
  EXPECT_EQ(allocator::blocksInUse(), before);
}

TEST(StringOwner, ReleaseFreesAtOnceAndMayBeRepeated) {
  const long before = allocator::blocksInUse();
  cfstring string(kText, kCFStringEncodingUTF8);
  string.cString(kCFStringEncodingUTF8);
  string.release();
  EXPECT_EQ(allocator::blocksInUse(), before);
  string.release();
  EXPECT_STREQ(string.cString(kCFStringEncodingUTF8), "");
}

TEST(StringOwner, FailedCreationLeavesNothingToRelease) {
  const long before = allocator::blocksInUse();
  {
    const cfstring invalid("caf\xE9 in another encoding, long enough to need a block", kCFStringEncodingUTF8);
    const cfstring unknown(kText, 0x12345);
    const cfstring none(nullptr, kCFStringEncodingUTF8);
    EXPECT_EQ(allocator::blocksInUse(), before);
  }
  EXPECT_EQ(allocator::blocksInUse(), before);
}

TEST(StringOwner, FailedCreationReadsEmpty) {
  cfstring invalid("caf\xE9", kCFStringEncodingUTF8);
  EXPECT_STREQ(invalid.cString(kCFStringEncodingUTF8), "");
  EXPECT_STREQ(invalid.cString(0x12345), "");
}

// The conversion is given one byte less than the buffer has, so the largest texts do not fit.
TEST(StringOwner, TextThatTakesTheMostBytesItsLengthCanReadsEmpty) {
  EXPECT_STREQ(cfstring("日本", kCFStringEncodingUTF8).cString(kCFStringEncodingUTF8), "");
  EXPECT_STREQ(cfstring("ascii", kCFStringEncodingUTF8).cString(kCFStringEncodingASCII), "");
  EXPECT_STREQ(cfstring("/日本", kCFStringEncodingUTF8).cString(kCFStringEncodingUTF8), "/日本");
}

TEST(StringOwner, EncodingWithoutASizeReadsEmpty) {
  EXPECT_STREQ(cfstring("text", kCFStringEncodingUTF8).cString(0x12345), "");
}

TEST(StringOwner, KeepsThePreviousCStringWhenMemoryRunsOut) {
  cfstring string(kText, kCFStringEncodingUTF8);
  const char *first = string.cString(kCFStringEncodingUTF8);
  allocator::failAfter(0);
  const char *second = string.cString(kCFStringEncodingUTF8);
  allocator::endFailures();
  EXPECT_EQ(second, nullptr);
  EXPECT_STREQ(first, kText);
}

class MemoryShortage : public MountedVolume {
 protected:
  // Makes the call with 0, 1, 2... requests granted until it needs no more; every call before that has to
  // give `refused`.
  template <typename Result>
  static Result untilGranted(Result refused, const std::function<Result()> &call) {
    for (long granted = 0; granted < 10000; ++granted) {
      allocator::failAfter(granted);
      Result result = call();
      allocator::endFailures();
      if (!allocator::hasFailed()) {
        EXPECT_GT(granted, 0) << "the call needs no memory at all";
        return result;
      }
      EXPECT_EQ(result, refused) << granted << " requests granted";
    }
    ADD_FAILURE() << "the call never came to an end";
    return refused;
  }
};

TEST_F(MemoryShortage, EndsEveryFileCallWithItsCodeAndTheNextOneWorks) {
  const std::string folder = "a folder whose name needs a block of its own";
  const std::string file = folder_.write(folder + "/AND A FILE WHOSE NAME NEEDS A BLOCK OF ITS OWN");
  FSSpec spec = {};
  const auto path = pascal("iPod:" + folder + ":and a file whose name needs a block of its own");
  EXPECT_EQ(untilGranted<OSErr>(memFullErr, [&] { return FSMakeFSSpec(0, 0, path.data(), &spec); }), noErr);

  FSSpec same = {};
  EXPECT_EQ(untilGranted<OSErr>(memFullErr, [&] { return CarbonSpecFromPath(file.c_str(), &same); }), noErr);
  EXPECT_TRUE(equal(spec, same));

  FSRef ref;
  EXPECT_EQ(untilGranted<OSErr>(memFullErr, [&] { return FSpMakeFSRef(&spec, &ref); }), noErr);

  const long before = allocator::blocksInUse();
  std::array<uint8_t, 4096> buffer;
  EXPECT_EQ(untilGranted<OSStatus>(memFullErr, [&] { return FSRefMakePath(&ref, buffer.data(), 4096); }),
            noErr);
  EXPECT_EQ(reinterpret_cast<const char *>(buffer.data()), file);

  auto *text = reinterpret_cast<char *>(buffer.data());
  EXPECT_EQ(untilGranted<OSStatus>(memFullErr, [&] { return CarbonPathFromSpec(&spec, text, 4096); }), noErr);
  EXPECT_EQ(std::string(text), "iPod:" + folder + ":AND A FILE WHOSE NAME NEEDS A BLOCK OF ITS OWN");
  EXPECT_EQ(allocator::blocksInUse(), before);

  const auto mount = [&] { return CarbonMountVolume("a volume with a long name", folder_.path().c_str()); };
  EXPECT_EQ(untilGranted<OSErr>(memFullErr, mount), noErr);
  EXPECT_EQ(makeSpec("a volume with a long name:", spec), noErr);
}

TEST_F(MemoryShortage, MakesNoStringAndLosesNone) {
  const long before = allocator::blocksInUse();
  const auto *bytes = reinterpret_cast<const uint8_t *>(kText);
  const auto length = static_cast<CFIndex>(std::strlen(kText));
  auto *string = untilGranted<CFStringRef>(
      nullptr, [&] { return CFStringCreateWithBytes(nullptr, bytes, length, kCFStringEncodingUTF8, 0); });
  ASSERT_NE(string, nullptr);
  std::array<char, 100> buffer = {};
  EXPECT_EQ(untilGranted<Boolean>(
                0, [&] { return CFStringGetCString(string, buffer.data(), 100, kCFStringEncodingUTF8); }),
            1);
  EXPECT_STREQ(buffer.data(), kText);
  CFRelease(string);
  EXPECT_EQ(allocator::blocksInUse(), before);
}

TEST_F(MemoryShortage, OpensNoStreamAndLosesNothing) {
  folder_.write("a file whose name needs a block of its own");
  const FileReference file(specification(volume_, 2, "a file whose name needs a block of its own"));
  const long before = allocator::blocksInUse();
  auto *stream = untilGranted<std::FILE *>(nullptr, [&] { return file.fopen("rb"); });
  ASSERT_NE(stream, nullptr);
  std::fclose(stream);
  EXPECT_EQ(allocator::blocksInUse(), before);
}

TEST(StringPath, FailureToMakeAPathKeepsNoMemory) {
  const FileReference nothing{FSSpec{}};
  const long before = allocator::blocksInUse();
  EXPECT_EQ(nothing.GetPOSIXPathManually(), nullptr);
  EXPECT_EQ(nothing.fopen("rb"), nullptr);
  EXPECT_EQ(allocator::blocksInUse(), before);
}

}  // namespace
