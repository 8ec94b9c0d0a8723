// Players that name files outside themselves: nothing of these is read, copied or named as a song's file.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class Outside : public testing::Test {
 protected:
  // A player called S with one song of this path.
  fs::path makePlayer(const std::u16string &path) const {
    samples::SongTexts texts;
    texts.title = u"Secret";
    texts.path = path;
    samples::Track track;
    track.id = 52;
    track.objects = samples::SongObjects(samples::Variant::LittleEndian, texts);
    samples::Playlist master;
    master.name = u"Library";
    folder_.write(
        "S/iPod_Control/iTunes/iTunesDB",
        samples::WriteLibrary(samples::OrdinaryLibrary({track}, {master}), samples::Variant::LittleEndian));
    folder_.makeDirectory("S/iPod_Control/Music/F00");
    return folder_.path() / "S";
  }

  void expectNothingIsTaken(const fs::path &player, const std::string &name) const {
    const std::string missing =
        "- song 0 \"Secret\": its file is missing: " + name + " lies outside the player\n";
    const Outcome rescue = runZemhost({"rescue", player, folder_.path() / "music"});
    EXPECT_EQ(rescue.status, 3);
    EXPECT_THAT(rescue.out, testing::StartsWith("0 songs copied, 0 B\n"));
    EXPECT_THAT(rescue.out, testing::EndsWith(missing));
    const Outcome check = runZemhost({"check", player});
    EXPECT_THAT(check.out, HasSubstr("0 of 1 song has its file"));
    EXPECT_THAT(check.out, testing::EndsWith(missing));
    EXPECT_EQ(runZemhost({"export", player, "--format", "csv", "--fields", "title,file"}).out,
              "title,file\r\nSecret,\r\n");
    for (const char *paths : {"host", "relative"}) {
      const Outcome list = runZemhost({"export", player, "--format", "m3u8", "--paths", paths});
      EXPECT_EQ(list.out, "#EXTM3U\n");
      EXPECT_THAT(list.err, HasSubstr(": 1 song left out: "));
    }
  }

  support::TemporaryFolder folder_;
};

TEST_F(Outside, VolumeThatTheJoinedNameSpells) {
  expectNothingIsTaken(makePlayer(u"ystem:etc:passwd"), "ystem:etc:passwd");
}

TEST_F(Outside, PathThatGoesUpTooFar) {
  const fs::path player = makePlayer(u":::etc:passwd");
  expectNothingIsTaken(player, player / "../../etc/passwd");
}

TEST_F(Outside, FolderThatIsALink) {
  const fs::path player = makePlayer(u":iPod_Control:Music:F01:passwd");
  fs::create_directory_symlink("/etc", player / "iPod_Control/Music/F01");
  expectNothingIsTaken(player, player / "iPod_Control/Music/F01/passwd");
}

TEST_F(Outside, FileThatIsALink) {
  const fs::path player = makePlayer(u":iPod_Control:Music:F00:A.mp3");
  folder_.write("secret", "x");
  fs::create_symlink("../../../../secret", player / "iPod_Control/Music/F00/a.mp3");
  expectNothingIsTaken(player, player / "iPod_Control/Music/F00/a.mp3");
}

TEST_F(Outside, MusicFolderThatIsALinkIsNotSearched) {
  const fs::path player = makePlayer(u":iPod_Control:Music:F00:a.mp3");
  fs::remove_all(player / "iPod_Control/Music");
  folder_.write("elsewhere/F00/secret.txt", "x");
  fs::create_directory_symlink("../../elsewhere", player / "iPod_Control/Music");
  expectNothingIsTaken(player, player / "iPod_Control/Music/F00/a.mp3");
  EXPECT_THAT(runZemhost({"check", player}).out, Not(HasSubstr("secret.txt")));
}

TEST_F(Outside, PlayCountsThatAreALinkAreLeftOut) {
  const fs::path player = makePlayer(u":iPod_Control:Music:F00:a.mp3");
  std::string counts("mhdp\x60\0\0\0\x10\0\0\0\x01\0\0\0", 16);
  counts.resize(0x60);
  counts += std::string("\x33\0\0\0", 4) + std::string(12, '\0');  // played 51 times
  folder_.write("counts", counts);
  const fs::path link = player / "iPod_Control/iTunes/Play Counts";
  fs::create_symlink("../../../counts", link);
  const std::vector<std::string> command = {"export", player, "--format", "csv", "--fields", "play_count"};
  const Outcome outcome = runZemhost(command);
  EXPECT_THAT(outcome.out, Not(HasSubstr("51")));
  EXPECT_EQ(outcome.err, "zemhost: " + link.string() +
                             ": a symbolic link leads out of the player; plays since the last "
                             "synchronisation are left out\n");
  // The same file on the player counts.
  fs::remove(link);
  fs::rename(folder_.path() / "counts", player / "counts");
  fs::create_symlink("../../counts", link);
  EXPECT_THAT(runZemhost(command).out, HasSubstr("51"));
}

TEST_F(Outside, DatabaseThatIsALinkIsRefused) {
  const fs::path player = makePlayer(u":iPod_Control:Music:F00:a.mp3");
  const fs::path database = player / "iPod_Control/iTunes/iTunesDB";
  fs::rename(database, folder_.path() / "other");
  fs::create_symlink("../../../other", database);
  for (const char *command : {"info", "songs", "check"}) {
    const Outcome outcome = runZemhost({command, player});
    EXPECT_EQ(outcome.status, 1) << command;
    EXPECT_EQ(outcome.err, "zemhost: " + database.string() + ": a symbolic link leads out of the player\n");
  }
  fs::rename(folder_.path() / "other", player / "kept");
  fs::remove(database);
  fs::create_symlink("../../kept", database);
  EXPECT_EQ(runZemhost({"songs", player}).status, 0);
}

}  // namespace
}  // namespace zemhost
