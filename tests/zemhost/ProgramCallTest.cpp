// Host code on the command line, the class as the host sees it, and real databases.

#include <cctype>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "tests/support/RealFiles.h"
#include "tests/zemhost/Program.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(CallCommand, GivesOneResultALineWithItsEncoding) {
  const Outcome outcome =
      runZemhost({"call", kPlayer, "CountSongs", "GetTitle(0)", "gettitle(6)", "LibType",
                  "CompareArtist(0, 1)", "GetFolderItem(99)", "GetTitle(99)", "VolumeName"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(linesOf(outcome.out),
              ElementsAre("29", "\"Harbour Lights at Five\" (UTF-8)", "\"雨のプラットホーム\" (UTF-8)", "1",
                          "True", "nil", testing::_, "\"player\" (UTF-8)"));
}

TEST(CallCommand, LinesShareOneObject) {
  const Outcome outcome = runZemhost({"call", kPlayer, R"(SetTitle(0, "Quoted ""x"""))", "GetTitle(0)",
                                      "ResultEncode = &h0100", "GetTitle(1)"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[1], R"("Quoted ""x""" (UTF-8))");
  EXPECT_EQ(lines[3], "\"Salt on the Rail\" (UTF-16)");
}

TEST(CallCommand, LineThatFailsIsNamedAndTheOthersAreDone) {
  const Outcome outcome =
      runZemhost({"call", kPlayer, "GetTitle(", "NoSuchMethod", "GetTitle(0)", "Error = 1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "\"Harbour Lights at Five\" (UTF-8)\n");
  const std::vector<std::string> errors = linesOf(outcome.err);
  ASSERT_EQ(errors.size(), 3U) << outcome.err;
  EXPECT_THAT(errors[0], HasSubstr("GetTitle("));
  EXPECT_THAT(errors[1], HasSubstr("NoSuchMethod"));
  EXPECT_THAT(errors[2], HasSubstr("Error"));
}

TEST(CallCommand, FolderItemOfASongIsOnThePlayersVolume) {
  const Outcome outcome = runZemhost({"call", kPlayer, "GetFolderItem(0)", "GetAbsolutePath2(0)"});
  EXPECT_THAT(linesOf(outcome.out), ElementsAre("\"player:iPod_Control:Music:F00:QHLA.m4a\"",
                                                "\"player:iPod_Control:Music:F00:QHLA.m4a\" (UTF-8)"));
}

TEST(ClassCommand, PrintsPropertiesAndNumberedDeclarationsInOrder) {
  const Outcome outcome = runZemhost({"class"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 2 + 1 + 6 + 2 + 130U);
  EXPECT_EQ(lines[0], "Class ZemiTunesDB");
  EXPECT_THAT(std::vector<std::string>(lines.begin() + 2, lines.begin() + 9),
              ElementsAre("Properties (6)", "       Error As Integer  (read only)",
                          "       LibType As Integer  (read only)", "       UseSJIS As Boolean",
                          "       ResultEncode As Integer", "       VolumeName As String  (read only)",
                          "       ZerobasePlayerlist As Boolean"));
  EXPECT_EQ(lines[10], "Methods (130)");
  const std::map<size_t, std::string> known = {{0, "Constructor"},
                                               {1, "Load(f As FolderItem) As Boolean"},
                                               {14, "GetAbsolutePath(path As String) As String"},
                                               {51, "GetAbsolutePath(index As Integer) As String"},
                                               {60, "SetTotalTrack(index As Integer, trkToral As Integer)"},
                                               {99, "GetIndex(trackID As Integer) As Integer"},
                                               {129, "GetReferAbsolutePath2(trackID As Integer) As String"}};
  for (size_t i = 0; i < 130; ++i) {
    const std::string &line = lines[11 + i];
    const std::string number = std::to_string(i);
    EXPECT_EQ(line.substr(0, 7), std::string(5 - number.size(), ' ') + number + "  ");
    if (const auto entry = known.find(i); entry != known.end()) {
      EXPECT_EQ(line.substr(7), entry->second);
    }
  }
}

class RealDatabase : public testing::TestWithParam<support::RealFile> {};

TEST_P(RealDatabase, IsListedWhole) {
  const support::RealFile &real = GetParam();
  const fs::path file = support::PathOf(real);
  if (!fs::exists(file)) GTEST_SKIP() << "not here: " << real.name;
  const Outcome info = runZemhost({"info", file});
  const Outcome songs = runZemhost({"songs", file});
  if (real.encrypted) {
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(songs.status, 1);
    EXPECT_EQ(songs.out, "");
    EXPECT_EQ(songs.err, "zemhost: " + file.string() + ": the library is encrypted and cannot be read\n");
    return;
  }
  EXPECT_EQ(info.status, 0) << info.err;
  EXPECT_THAT(info.out, HasSubstr("Songs      " + std::to_string(real.songs) + "\n"));
  EXPECT_THAT(info.out, HasSubstr("Playlists  " + std::to_string(real.playlists) + " with " +
                                  std::to_string(real.entries) + " entr"));
  EXPECT_EQ(songs.status, 0) << songs.err;
  EXPECT_EQ(linesOf(songs.out).size(), real.songs + 3);
  EXPECT_THAT(songs.out, HasSubstr(real.text));
  EXPECT_THAT(songs.out, testing::Not(HasSubstr("\uFFFD")));
  const Outcome playlists = runZemhost({"playlists", file});
  EXPECT_EQ(linesOf(playlists.out).size(), real.playlists + 1);
  EXPECT_THAT(playlists.out, testing::Not(HasSubstr("\uFFFD")));
  for (size_t number = 0; number < real.playlists; ++number) {
    const Outcome playlist = runZemhost({"playlist", file, std::to_string(number)});
    EXPECT_EQ(playlist.status, 0) << playlist.err;
    EXPECT_THAT(playlist.out, testing::Not(HasSubstr("no song has the ID")));
  }
}

INSTANTIATE_TEST_SUITE_P(Shared, RealDatabase, testing::ValuesIn(support::RealFiles()),
                         [](const auto &instance) {
                           std::string name = instance.param.name;
                           for (char &c : name) {
                             if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
                           }
                           return name;
                         });

}  // namespace
}  // namespace zemhost
