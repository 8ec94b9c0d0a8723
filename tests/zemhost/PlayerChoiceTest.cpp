#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/utsname.h>

#include "host/Error.h"
#include "tests/support/TemporaryFolder.h"
#include "zemhost/library/PlayerChoice.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class PlayerChoiceTest : public testing::Test {
 protected:
  // A line of the list of mounts for a new player of this name.
  std::string mountPlayer(const std::string &name, const std::string &fileSystem,
                          const std::string &options) {
    folder_.makeDirectory(name + "/iPod_Control");
    return "/dev/sdb2 " + (folder_.path() / name).string() + " " + fileSystem + " " + options + " 0 0\n";
  }

  player::MountSources sources(const std::string &mounts) {
    return {folder_.write("mounts", mounts), {},
            folder_.path() / "block",        folder_.path() / "udev",
            folder_.path() / "filesystems",  folder_.path() / "modules"};
  }

  std::string refusal(const std::string &mounts) {
    try {
      return "chose " + chooseMountedPlayer(sources(mounts)).path;
    } catch (const HostError &error) {
      return error.what();
    }
  }

  support::TemporaryFolder folder_;
};

TEST_F(PlayerChoiceTest, OneMountedPlayerIsTakenAndNamed) {
  const PlayerChoice choice = chooseMountedPlayer(sources(mountPlayer("IPOD", "vfat", "rw")));
  EXPECT_EQ(choice.path, (folder_.path() / "IPOD").string());
  EXPECT_EQ(choice.remark, "the player at " + choice.path);
}

TEST_F(PlayerChoiceTest, ReadOnlyMountIsExplained) {
  EXPECT_THAT(
      chooseMountedPlayer(sources(mountPlayer("IPOD", "hfsplus", "ro"))).remark,
      HasSubstr("/IPOD: HFS+, read-only as Linux mounts it with a journal, which is enough for zemhost"));
  EXPECT_THAT(chooseMountedPlayer(sources(mountPlayer("IPOD", "vfat", "ro"))).remark,
              HasSubstr("/IPOD: vfat, read-only, which is enough for zemhost"));
  EXPECT_EQ(mountText({"/", "hfsplus", false}), "");
  EXPECT_EQ(mountText({"/", "", true}), "");
}

TEST_F(PlayerChoiceTest, SeveralPlayersAreListed) {
  EXPECT_EQ(refusal(mountPlayer("B", "vfat", "rw") + mountPlayer("A", "vfat", "rw")),
            "several players are mounted; give the PATH of one: " + (folder_.path() / "A").string() + " " +
                (folder_.path() / "B").string());
}

TEST_F(PlayerChoiceTest, PlayerThatIsNotMountedIsNamedWithHowToMountIt) {
  EXPECT_EQ(refusal(""), "no player is mounted; mount one, or give its PATH");
  folder_.write("block/sdb2/dev", "8:18\n");
  folder_.write("udev/b8:18", "E:ID_MODEL=iPod\nE:ID_FS_TYPE=hfsplus\n");
  EXPECT_THAT(refusal(""),
              HasSubstr("; /dev/sdb2 (hfsplus) is a player that is not mounted: udisksctl mount -b "
                        "/dev/sdb2 does it, read-only if it has a journal"));
  folder_.write("udev/b8:18", "E:ID_MODEL=iPod\nE:ID_FS_TYPE=vfat\n");
  EXPECT_THAT(refusal(""), testing::EndsWith("udisksctl mount -b /dev/sdb2"));
}

TEST_F(PlayerChoiceTest, PlayerWhoseFileSystemHasNoDriverIsNamedWithWhatIsMissing) {
  folder_.write("block/sdb2/dev", "8:18\n");
  folder_.write("udev/b8:18", "E:ID_MODEL=iPod\nE:ID_FS_TYPE=hfsplus\n");
  folder_.write("filesystems", "\text4\n");
  struct utsname system {};
  ASSERT_EQ(uname(&system), 0);
  folder_.write("modules/" + std::string(static_cast<const char *>(system.release)) + "/modules.dep",
                "x.ko:\n");
  EXPECT_EQ(
      refusal(""),
      "no player is mounted; mount one, or give its PATH; /dev/sdb2 (hfsplus) is a player that is not "
      "mounted: this system has no driver for its file system; install the extra modules of its kernel");
}

}  // namespace
}  // namespace zemhost
