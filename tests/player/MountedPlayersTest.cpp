#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/utsname.h>
#include <vector>

#include "player/MountedPlayers.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class MountedPlayersTest : public testing::Test {
 protected:
  // A folder that looks like a player, below the test's own.
  fs::path makePlayer(const std::string &name) const {
    folder_.makeDirectory(name + "/iPod_Control");
    return folder_.path() / name;
  }

  MountSources sources(const std::string &mounts, std::vector<MountSources::Folder> folders = {}) const {
    return {folder_.write("mounts", mounts), std::move(folders),
            folder_.path() / "block",        folder_.path() / "udev",
            folder_.path() / "filesystems",  folder_.path() / "modules"};
  }

  static std::vector<std::string> rootsOf(const std::vector<MountedPlayer> &players) {
    std::vector<std::string> roots;
    roots.reserve(players.size());
    for (const MountedPlayer &player : players) roots.push_back(player.root.string());
    return roots;
  }

  void addDevice(const std::string &name, const std::string &number, const std::string &facts) const {
    folder_.write("block/" + name + "/dev", number + "\n");
    folder_.write("udev/b" + number, facts);
  }

  support::TemporaryFolder folder_;
};

TEST_F(MountedPlayersTest, DisksWithAControlFolderArePlayers) {
  const fs::path player = makePlayer("IPOD");
  folder_.makeDirectory("stick/music");
  const std::string stick = (folder_.path() / "stick").string();
  const auto found = mountedPlayers(sources("proc /proc proc rw 0 0\n/dev/sdb2 " + player.string() +
                                            " vfat rw,nosuid 0 0\n/dev/sdc1 " + stick + " vfat ro 0 0\n"));
  ASSERT_EQ(rootsOf(found), (std::vector<std::string>{player}));
  EXPECT_EQ(found[0].fileSystem, "vfat");
  EXPECT_FALSE(found[0].isReadOnly);
}

TEST_F(MountedPlayersTest, BlanksAndBackslashesInNamesAreRead) {
  const fs::path player = makePlayer("Ann's\tred iPod\\1");
  std::string escaped = player.string();
  for (const auto &[plain, octal] :
       std::vector<std::pair<std::string, std::string>>{{"\\", "\\134"}, {" ", "\\040"}, {"\t", "\\011"}}) {
    for (size_t at = 0; (at = escaped.find(plain, at)) != std::string::npos; at += octal.size())
      escaped.replace(at, plain.size(), octal);
  }
  EXPECT_THAT(rootsOf(mountedPlayers(sources("/dev/sdb2 " + escaped + " hfsplus ro 0 0\n"))),
              ElementsAre(player.string()));
}

TEST_F(MountedPlayersTest, ReadOnlyMountIsKnown) {
  const fs::path player = makePlayer("IPOD");
  const auto mounts = [&](const std::string &options) {
    return sources("/dev/sdb2 " + player.string() + " hfsplus " + options + " 0 0\n");
  };
  EXPECT_TRUE(mountedPlayers(mounts("nosuid,ro,relatime")).at(0).isReadOnly);
  EXPECT_FALSE(mountedPlayers(mounts("rw,errors=remount-ro")).at(0).isReadOnly);
  EXPECT_EQ(mountAt(player, mounts("ro")).fileSystem, "hfsplus");
  EXPECT_TRUE(mountAt(player, mounts("ro")).isReadOnly);
  EXPECT_EQ(mountAt(player / "iPod_Control", mounts("ro")).fileSystem, "");
}

TEST_F(MountedPlayersTest, LastMountOfAPlaceIsTheOneThatIsSeen) {
  const std::string player = makePlayer("IPOD").string();
  const auto found =
      mountedPlayers(sources("/dev/sdb1 " + player + " ext4 ro 0 0\n/dev/sdb2 " + player + " vfat rw 0 0\n"));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].fileSystem, "vfat");
}

TEST_F(MountedPlayersTest, NetworkMountsAreNotAsked) {
  const std::string player = makePlayer("IPOD").string();
  EXPECT_THAT(mountedPlayers(sources("host:/music " + player + " nfs rw 0 0\n")), IsEmpty());
  EXPECT_THAT(mountedPlayers(sources("//host/music " + player + " cifs rw 0 0\n")), IsEmpty());
}

TEST_F(MountedPlayersTest, PlacesOfDesktopsAreSearchedToTheirDepth) {
  const std::string deep = makePlayer("media/ann/IPOD").string();
  const std::string near = makePlayer("mnt/ipod").string();
  makePlayer("mnt/disk/copy");
  const std::vector<MountSources::Folder> folders = {
      {folder_.path() / "media", 2}, {folder_.path() / "mnt", 1}, {folder_.path() / "none", 1}};
  EXPECT_THAT(rootsOf(mountedPlayers(sources("", folders))), ElementsAre(deep, near));
  // A mount there is the same player.
  const auto found = mountedPlayers(sources("/dev/sdb2 " + deep + " vfat rw 0 0\n", folders));
  ASSERT_THAT(rootsOf(found), ElementsAre(deep, near));
  EXPECT_EQ(found[0].fileSystem, "vfat");
}

TEST_F(MountedPlayersTest, PlayerThatIsConnectedAndNotMountedIsNamed) {
  addDevice("sdb", "8:16", "E:ID_MODEL=iPod\nE:ID_PART_TABLE_TYPE=dos\n");
  addDevice("sdb2", "8:18", "S:disk/by-label/IPOD\nE:ID_MODEL=iPod\nE:ID_FS_TYPE=hfsplus\n");
  addDevice("sda1", "8:1", "E:ID_MODEL=Disk\nE:ID_FS_TYPE=ext4\n");
  const auto found = unmountedPlayers(sources(""));
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].device, "/dev/sdb2");
  EXPECT_EQ(found[0].fileSystem, "hfsplus");
  EXPECT_THAT(unmountedPlayers(sources("/dev/sdb2 /x hfsplus ro 0 0\n")), IsEmpty());
}

TEST_F(MountedPlayersTest, DriverIsMissingWhereItIsNeitherLoadedNorAmongTheModules) {
  addDevice("sdb2", "8:18", "E:ID_MODEL=iPod\nE:ID_FS_TYPE=hfsplus\n");
  const auto hasDriver = [&] { return unmountedPlayers(sources("")).at(0).hasDriver; };
  EXPECT_TRUE(hasDriver());  // nothing is known
  struct utsname system {};
  ASSERT_EQ(uname(&system), 0);
  const std::string modules = std::string("modules/") + static_cast<const char *>(system.release);
  folder_.write("filesystems", "nodev\tproc\n\text4\n");
  EXPECT_TRUE(hasDriver());  // of modules nothing is known
  folder_.write(modules + "/modules.dep", "kernel/fs/hfs/hfs.ko: \n");
  EXPECT_FALSE(hasDriver());
  folder_.write(modules + "/modules.dep", "kernel/fs/hfsplus/hfsplus.ko.xz: \n");
  EXPECT_TRUE(hasDriver());
  folder_.write(modules + "/modules.dep", "kernel/fs/hfs/hfs.ko: \n");
  folder_.write("filesystems", "nodev\tproc\n\thfsplus\n");
  EXPECT_TRUE(hasDriver());
}

TEST_F(MountedPlayersTest, NothingIsFoundWhereTheSystemSaysNothing) {
  MountSources none = sources("");
  none.mounts = folder_.path() / "none";
  EXPECT_THAT(mountedPlayers(none), IsEmpty());
  EXPECT_THAT(unmountedPlayers(none), IsEmpty());
}

}  // namespace
}  // namespace player
