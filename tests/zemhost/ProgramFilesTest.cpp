// Which file is a song's, through the built program: by the database's own text of its path, and on players
// that spell their folders otherwise.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/zemhost/RescueFixture.h"

namespace zemhost {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

class SongsFile : public RescueFixture {
 protected:
  // Moves a part of the player to another name.
  void rename(const fs::path &part, const std::string &name) const {
    fs::rename(root_ / part, root_ / part.parent_path() / name);
  }

  fs::path root_ = folder_.path() / "My iPod";
};

TEST_F(SongsFile, NamesThatDifferInWideCharactersAloneAreTwoFiles) {
  makePlayerOf(
      {{u"Day", u"A", u"F00/A.mp3", "by day", {}}, {u"Night", u"A", u"F00/A夜.mp3", "by night", {}}});
  EXPECT_EQ(run(root_).status, 0);
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("A/Unknown Album/Day.mp3", "by day"),
                                                    Pair("A/Unknown Album/Night.mp3", "by night")));
  const Outcome list = runZemhost({"export", root_, "--format", "m3u8"});
  EXPECT_THAT(list.out, HasSubstr("\n" + (root_ / "iPod_Control/Music/F00/A夜.mp3").string() + "\n"));
  const Outcome fields =
      runZemhost({"export", root_, "--format", "csv", "--fields", "path,absolute_path,file"});
  EXPECT_EQ(linesOf(fields.out).back(),
            ":iPod_Control:Music:F00:A夜.mp3,My iPod:iPod_Control:Music:F00:A夜.mp3," +
                (root_ / "iPod_Control/Music/F00/A夜.mp3").string() + "\r");
}

TEST_F(SongsFile, CheckFindsTheFileOfTheWholeNameAndSaysWhatTheClassAnswers) {
  makePlayerOf(
      {{u"Day", u"A", u"F00/A.mp3", "by day", {}}, {u"Night", u"A", u"F00/A夜.mp3", "by night", {}}});
  const auto report = [&] { return nlohmann::json::parse(runZemhost({"check", root_, "--json"}).out); };
  EXPECT_EQ(report()["files"]["present"], 2);
  EXPECT_EQ(report()["files"]["unnamed"], 0);
  EXPECT_EQ(report()["finding_counts"]["class-differs"], 1);
  fs::remove(root_ / "iPod_Control/Music/F00/A夜.mp3");
  EXPECT_EQ(report()["files"]["missing"], 1);
}

TEST_F(SongsFile, FoldersMayHaveNamesInAnyCase) {
  const Files music = {{"A/Unknown Album/One.mp3", "song 0"}, {"A/Unknown Album/Two.mp3", "song 1"}};
  for (const char *control : {"IPOD_CONTROL", "ipod_control", "iTunes_Control", "ITUNES_CONTROL"}) {
    makePlayer({{u"One", u"A"}, {u"Two", u"A"}});
    rename("iPod_Control/Music/F00", "f00");
    rename("iPod_Control/Music", "MUSIC");
    rename("iPod_Control/iTunes/iTunesDB", "ITUNESDB");
    rename("iPod_Control/iTunes", "ITUNES");
    rename("iPod_Control", control);
    for (const fs::path &path : {root_, root_ / control, root_ / control / "ITUNES/ITUNESDB"}) {
      EXPECT_THAT(runZemhost({"info", path}).out, HasSubstr("\nVolume     My iPod\n")) << path;
      const Outcome checked = runZemhost({"check", path});
      EXPECT_EQ(checked.status, 0) << checked.out;
      EXPECT_THAT(checked.out, HasSubstr("2 of 2 songs have theirs, 0 files are named by no song")) << path;
      EXPECT_EQ(run(path).status, 0) << path;
      EXPECT_EQ(filesBelow(destination_), music) << path;
      fs::remove_all(destination_);
      EXPECT_THAT(runZemhost({"export", path, "--format", "ndjson", "--fields", "absolute_path,file"}).out,
                  HasSubstr("{\"absolute_path\":\"My iPod:iPod_Control:Music:F00:0.mp3\",\"file\":\"" +
                            (root_ / control / "MUSIC/f00/0.mp3").string() + "\"}"));
    }
    fs::remove_all(root_);
  }
}

TEST_F(SongsFile, NothingOfAnotherFolderTakesThePlaceOfThePlayersOwn) {
  makePlayer({{u"One", u"A"}});
  folder_.write("My iPod/iTunes_Control/Music/F00/0.mp3", "another");
  EXPECT_EQ(run(root_).status, 0);
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("A/Unknown Album/One.mp3", "song 0")));
}

TEST_F(SongsFile, FolderThatIsALinkOutOfThePlayerIsNotTakenUnderAnotherName) {
  makePlayer({{u"One", u"A"}});
  fs::rename(root_ / "iPod_Control", root_ / "ITUNES_CONTROL");
  fs::rename(root_ / "ITUNES_CONTROL/Music", folder_.path() / "outside");
  fs::create_symlink("../../outside", root_ / "ITUNES_CONTROL/MUSIC");
  const Outcome outcome = run(root_);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr(" lies outside the player\n"));
  EXPECT_THAT(filesBelow(destination_), IsEmpty());
}

TEST_F(SongsFile, CheckReportsShortAndEmptyFilesAndRemarksOnLongOnes) {
  makePlayerOf({{u"One", u"A", u"F00/0.mp3", "cut", 6},
                {u"Two", u"A", u"F00/1.mp3", "", 6},
                {u"Three", u"A", u"F00/2.mp3", "longer", 3}});
  const Outcome outcome = runZemhost({"check", root_});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(
      outcome.out,
      HasSubstr("\n2 findings\n- song 0 \"One\" by A: its file has 3 bytes, and the database states 6: " +
                (root_ / "iPod_Control/Music/F00/0.mp3").string() +
                "\n- song 1 \"Two\" by A: its file is empty, and the database states 6: " +
                (root_ / "iPod_Control/Music/F00/1.mp3").string() +
                "\n1 remark: a file is longer than the database states\n- song 2 \"Three\" by A: its file "
                "has 6 bytes, and the database states 3: " +
                (root_ / "iPod_Control/Music/F00/2.mp3").string() + "\n"));
  const auto report = nlohmann::json::parse(runZemhost({"check", root_, "--json"}).out);
  EXPECT_EQ(report["finding_counts"]["short-file"], 2);
  EXPECT_EQ(report["files"]["longer"], 1);
  EXPECT_EQ(report["remarks"].size(), 1U);
}

TEST_F(SongsFile, CheckOfAPlayerWithALongerFileAloneEndsWithStatus0) {
  makePlayerOf({{u"One", u"A", u"F00/0.mp3", "longer", 3}});
  const Outcome outcome = runZemhost({"check", root_});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("\nNothing is wrong\n1 remark: "));
}

}  // namespace
}  // namespace zemhost
