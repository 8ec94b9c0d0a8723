// `zemhost rescue --verify`, the sums and the report that a rescue leaves, and `zemhost verify`.

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/zemhost/RescueFixture.h"

namespace zemhost {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// Of "song 0" and "song 1".
constexpr const char *kSumOf0 = "7cd56e1e7696b0d5f8f1a2fc9247724e1a313456a7ffcf5b400e114698ef9763";
constexpr const char *kSumOf1 = "3088b15eb7cc28f42314b699f67cb1ce86cec3b74cc02d2fb77f4fb38a0d8c32";

class Verify : public RescueFixture {
 protected:
  Outcome verify() const { return runZemhost({"verify", destination_}); }
  std::string sums() const { return contentOf(destination_ / "SHA256SUMS"); }
  json report() const { return json::parse(contentOf(destination_ / "rescue-report.json")); }

  fs::path player_ = folder_.path() / "My iPod";
};

TEST_F(Verify, SumsOfEveryCopyStandBesideTheMusic) {
  makePlayer({{u"One", u"A"}, {u"Two", u"B"}}, {{.name = u"List", .entries = {{.ref = 52}}}});
  run(player_);
  EXPECT_EQ(sums(),
            std::string(kSumOf0) + "  A/Unknown Album/One.mp3\n" + kSumOf1 + "  B/Unknown Album/Two.mp3\n");
  const Outcome outcome = verify();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, "2 files are as copied\n");
}

TEST_F(Verify, SecondRunExtendsTheSumsAndKeepsThoseOfFilesThatAreGoneFromThePlayer) {
  makePlayer({{u"One", u"A"}});
  run(player_);
  fs::remove_all(player_);
  makePlayerOf({{u"Two", u"B", u"F00/1.mp3", "song 1", {}}});
  folder_.write("music/of mine/mine.txt", "song 1");
  std::ofstream(destination_ / "SHA256SUMS", std::ios::app) << kSumOf1 << " *mine.txt\n";
  run(player_);
  EXPECT_EQ(sums(), std::string(kSumOf0) + "  A/Unknown Album/One.mp3\n" + kSumOf1 +
                        "  B/Unknown Album/Two.mp3\n" + kSumOf1 + "  mine.txt\n");
  EXPECT_EQ(verify().out, "3 files are as copied\n");
}

TEST_F(Verify, CopiesOfEarlierRunsGetASumWhereNoReportHasOne) {
  makePlayer({{u"One", u"A"}});
  run(player_);
  const std::string before = sums();
  fs::remove(destination_ / "SHA256SUMS");
  fs::remove(destination_ / kReport);
  run(player_);
  EXPECT_EQ(sums(), before);
}

TEST_F(Verify, FileOfThatNameThatHoldsSomethingElseStays) {
  makePlayer({{u"One", u"A"}});
  folder_.write("music/of mine/SHA256SUMS", "my own notes\n");
  folder_.write("music/of mine/rescue-report.json", "{}\n");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(run(player_).status, 0);
    EXPECT_EQ(sums(), "my own notes\n");
    EXPECT_EQ(contentOf(destination_ / "rescue-report.json"), "{}\n");
    EXPECT_EQ(contentOf(destination_ / "SHA256SUMS (2)"),
              std::string(kSumOf0) + "  A/Unknown Album/One.mp3\n");
    EXPECT_TRUE(fs::exists(destination_ / "rescue-report (2).json"));
    EXPECT_FALSE(fs::exists(destination_ / "rescue-report (3).json"));
  }
  const Outcome outcome = verify();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("SHA256SUMS: it holds no SHA-256 sums of files\n"));
}

TEST_F(Verify, FilesThatAreMissingOrHaveChangedAreNamed) {
  makePlayer({{u"One", u"A"}, {u"Two", u"B"}, {u"Three", u"C"}});
  run(player_);
  folder_.write("music/of mine/A/Unknown Album/One.mp3", "song 9");
  fs::remove(destination_ / "B/Unknown Album/Two.mp3");
  const Outcome outcome = verify();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.out,
            "1 file is as copied\n"
            "1 file has changed:\n- A/Unknown Album/One.mp3\n"
            "1 file is missing:\n- B/Unknown Album/Two.mp3\n");
}

TEST_F(Verify, FolderWithoutSumsIsNamed) {
  folder_.makeDirectory("music/of mine");
  EXPECT_EQ(verify().status, 1);
  EXPECT_EQ(verify().err,
            "zemhost: " + (destination_ / "SHA256SUMS").string() + ": No such file or directory\n");
  const Outcome outcome = runZemhost({"verify", folder_.path() / "none"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "zemhost: " + (folder_.path() / "none").string() + ": No such file or directory\n");
}

TEST_F(Verify, SumsThatNameFilesOutsideTheFolderReadNone) {
  folder_.write("music/secret", "song 0");
  folder_.write("music/of mine/SHA256SUMS", std::string(kSumOf0) + "  ../secret\n" + kSumOf0 + "  " +
                                                (folder_.path() / "music/secret").string() + "\n");
  const Outcome outcome = verify();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, StartsWith("0 files are as copied\n"));
}

TEST_F(Verify, EveryCopyIsReadBackNewOnesAndThoseThatWereThere) {
  makePlayer({{u"One", u"A"}});
  EXPECT_THAT(run(player_, {"--verify"}).out, HasSubstr("\n1 copy was read back, and the same\n"));
  fs::remove_all(player_);
  makePlayer({{u"One", u"A"}, {u"Two", u"B"}});
  EXPECT_THAT(run(player_, {"--verify"}).out, HasSubstr("\n2 copies were read back, and the same\n"));
}

TEST_F(Verify, CopyThatHasChangedSinceIsAProblem) {
  makePlayer({{u"One", u"A"}});
  run(player_);
  // With the size and the time of the copy, which are enough for a run that does not read it.
  const fs::path copy = destination_ / "A/Unknown Album/One.mp3";
  const auto time = fs::last_write_time(copy);
  folder_.write("music/of mine/A/Unknown Album/One.mp3", "song 9");
  fs::last_write_time(copy, time);
  EXPECT_EQ(run(player_).status, 0);
  const Outcome outcome = run(player_, {"--verify"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("the copy A/Unknown Album/One.mp3 has changed\n"));
  EXPECT_EQ(verify().status, 3);
}

TEST_F(Verify, ReportStatesWhatBecameOfEachSong) {
  makePlayer({{u"One", u"A"}, {u"Two", u"B"}});
  fs::remove(player_ / "iPod_Control/Music/F00/1.mp3");
  run(player_);
  const json first = report();
  EXPECT_EQ(first["format"], "zemhost rescue summary");
  EXPECT_EQ(first["outcome"], "incomplete");
  EXPECT_EQ(first["volume"], "My iPod");
  EXPECT_EQ(first["copied"], 1);
  EXPECT_EQ(first["problems"].size(), 1U);
  ASSERT_EQ(first["songs"].size(), 1U);
  EXPECT_EQ(first["songs"][0]["file"], "A/Unknown Album/One.mp3");
  EXPECT_EQ(first["songs"][0]["source"], (player_ / "iPod_Control/Music/F00/0.mp3").string());
  EXPECT_EQ(first["songs"][0]["sha256"], kSumOf0);
  EXPECT_EQ(first["songs"][0]["song"]["title"], "One");
  folder_.write("My iPod/iPod_Control/Music/F00/1.mp3", "song 1");
  run(player_);
  EXPECT_EQ(report()["outcome"], "complete");
  EXPECT_EQ(report()["already_there"], 1);
  EXPECT_EQ(report()["songs"].size(), 2U);
}

}  // namespace
}  // namespace zemhost
