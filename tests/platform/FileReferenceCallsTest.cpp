// How a file reference and a string call the platform: its calls are replaced by this program's.

#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

#include "platform/FileReference.h"
#include "platform/cfstring.h"

namespace {

OSStatus pathStatus = 0;
uint32_t pathRoom = 0;
int stringsMade = 0;
Boolean wasExternal = 0;
CFStringEncoding madeFrom = 0;

}  // namespace

extern "C" {

OSStatus FSRefMakePath(const FSRef * /*ref*/, uint8_t *buffer, uint32_t bufferSize) {
  pathRoom = bufferSize;
  std::memcpy(buffer, "/p", 3);
  return pathStatus;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef /*allocator*/, const uint8_t * /*bytes*/,
                                    CFIndex /*byteCount*/, CFStringEncoding encoding,
                                    Boolean isExternalRepresentation) {
  ++stringsMade;
  madeFrom = encoding;
  wasExternal = isExternalRepresentation;
  return nullptr;
}

}  // extern "C"

namespace {

TEST(FileReferenceCalls, StatusIsItsLow16Bits) {
  const FileReference reference{FSSpec{}};
  for (const OSStatus status : {0, 0x10000, -0x10000, 0x7FFF0000}) {
    pathStatus = status;
    EXPECT_NE(reference.GetPOSIXPathManually(), nullptr) << status;
  }
  for (const OSStatus status : {1, -43, -2110, 0x8000, 0x10001}) {
    pathStatus = status;
    EXPECT_EQ(reference.GetPOSIXPathManually(), nullptr) << status;
  }
}

TEST(FileReferenceCalls, PathHas16384BytesOfRoom) {
  pathStatus = 0;
  (void)FileReference(FSSpec{}).GetPOSIXPathManually();
  EXPECT_EQ(pathRoom, 16384U);
}

TEST(FileReferenceCalls, StringIsMadeOfPlainUtf8AndNotOfAnExternalRepresentation) {
  pathStatus = 0;
  stringsMade = 0;
  wasExternal = 1;
  (void)FileReference(FSSpec{}).GetPOSIXPathManually();
  EXPECT_EQ(stringsMade, 1);
  EXPECT_EQ(wasExternal, 0);
  EXPECT_EQ(madeFrom, kCFStringEncodingUTF8);
}

TEST(FileReferenceCalls, BothClassesAreDestroyedThroughTheirTables) {
  EXPECT_TRUE(std::has_virtual_destructor_v<FileReference>);
  EXPECT_TRUE(std::has_virtual_destructor_v<cfstring>);
}

}  // namespace
