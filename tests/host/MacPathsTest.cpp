#include <gtest/gtest.h>

#include "host/runtime/MacPaths.h"

namespace zemhost {
namespace {

TEST(VolumeName, IsTheDirectorysNameWithSlashesForColons) {
  EXPECT_EQ(volumeName("/media/me/My iPod"), "My iPod");
  EXPECT_EQ(volumeName("/media/me/AC:DC"), "AC/DC");
  EXPECT_EQ(volumeName("/"), "System");
  EXPECT_EQ(volumeName(""), "");
}

TEST(VolumeName, LongNameIsShortenedToWholeCharactersOf63Bytes) {
  EXPECT_EQ(volumeName("/x/" + std::string(63, 'a')), std::string(63, 'a'));
  EXPECT_EQ(volumeName("/x/" + std::string(64, 'a')), std::string(63, 'a'));
  EXPECT_EQ(volumeName("/x/" + std::string(61, 'a') + "\u97F3"), std::string(61, 'a'));
  EXPECT_EQ(volumeName("/x/" + std::string(60, 'a') + "\u97F3"), std::string(60, 'a') + "\u97F3");
  EXPECT_EQ(volumeName("/x/" + std::string(70, '\x80')).size(), 63U);
}

TEST(DiskPath, ExchangesTheSeparatorsOfAPath) {
  EXPECT_EQ(diskPath("iPod:AC/DC:A.mp3"), "iPod/AC:DC/A.mp3");
  EXPECT_EQ(diskPath("plain"), "plain");
  EXPECT_EQ(diskPath(""), "");
}

}  // namespace
}  // namespace zemhost
