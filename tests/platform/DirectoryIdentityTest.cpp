// By what one directory differs from any other.

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/carbon/Disk.h"
#include "tests/support/TemporaryFolder.h"

namespace {

TEST(DirectoryIdentity, IsTheSameEachTimeAndDiffersBetweenDirectories) {
  const support::TemporaryFolder folder;
  folder.makeDirectory("one");
  folder.makeDirectory("two");
  const carbon::Descriptor parent = carbon::openDirectory(folder.path());
  const auto identity = [&](const std::string &name) {
    return carbon::identify(carbon::openDirectory(parent, name), name);
  };
  EXPECT_TRUE(identity("one") == identity("one"));
  EXPECT_FALSE(identity("one") == identity("two"));
}

TEST(DirectoryIdentity, TrustsNoInodeNumberOfFatAndUserSpaceFileSystems) {
  EXPECT_FALSE(carbon::keepsInodeNumbers(0x4D44));      // FAT
  EXPECT_FALSE(carbon::keepsInodeNumbers(0x2011BAB0));  // exFAT
  EXPECT_FALSE(carbon::keepsInodeNumbers(0x65735546));  // in user space
  EXPECT_TRUE(carbon::keepsInodeNumbers(0xEF53));       // ext4
  EXPECT_TRUE(carbon::keepsInodeNumbers(0x482B));       // HFS+
}

bool givesHandles(const carbon::Descriptor &directory) {
  file_handle handle = {};
  int mount = 0;
  return name_to_handle_at(directory.number(), ".", &handle, &mount, 0) != 0 && errno == EOVERFLOW;
}

// File times have steps, within which an inode number may be handed out more than once.
TEST(DirectoryIdentity, DiffersForOneInodeNumberAndTimeOfBirth) {
  const support::TemporaryFolder folder;
  const carbon::Descriptor parent = carbon::openDirectory(folder.path());
  if (!givesHandles(parent)) GTEST_SKIP() << "the file system reports no generations";
  carbon::Identity before;
  int alike = 0;
  for (int i = 0; i < 3000 && alike < 20; ++i) {
    ASSERT_EQ(mkdirat(parent.number(), "name", 0700), 0);
    const carbon::Identity identity = carbon::identify(carbon::openDirectory(parent, "name"), "name");
    ASSERT_EQ(unlinkat(parent.number(), "name", AT_REMOVEDIR), 0);
    EXPECT_FALSE(identity == before);
    if (identity.inode == before.inode && identity.bornSeconds == before.bornSeconds &&
        identity.bornNanoseconds == before.bornNanoseconds) {
      ++alike;
    }
    before = identity;
  }
  if (alike == 0) GTEST_SKIP() << "the file system never hands out an inode number twice within a step";
}

}  // namespace
