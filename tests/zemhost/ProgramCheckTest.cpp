// `zemhost check` through the built program: each kind of damage is planted and has to be found, and nothing
// else is; and the warning that every other command gives.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "samples/GeneratedLibrary.h"
#include "samples/SampleLibrary.h"
#include "tests/support/RealFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using samples::Variant;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

struct Report {
  int status = 0;
  json content;

  std::vector<std::string> texts(const std::string &kind) const {
    std::vector<std::string> found;
    for (const json &finding : content.at("findings")) {
      if (finding.at("kind") == kind) found.push_back(finding.at("text"));
    }
    return found;
  }
  size_t findings() const { return content.at("findings").size(); }
  // Bytes in chunks, in unknown data sets, and in none.
  uint64_t bytesTold() const {
    uint64_t sum =
        content.at("bytes").at("raw").get<uint64_t>() + content.at("bytes").at("unexplained").get<uint64_t>();
    for (const json &chunk : content.at("chunks")) sum += chunk.at("bytes").get<uint64_t>();
    return sum;
  }
};

Report check(const fs::path &path) {
  const Outcome outcome = runZemhost({"check", path, "--json"});
  EXPECT_EQ(outcome.err, "");
  Report report{outcome.status, json::parse(outcome.out)};
  EXPECT_EQ(report.status, report.findings() == 0 ? 0 : 3);
  EXPECT_EQ(report.bytesTold(), report.content.at("bytes").at("total"));
  return report;
}

// Little-endian words of a file.
uint32_t wordAt(const std::string &bytes, size_t at) {
  uint32_t word = 0;
  for (size_t i = 4; i-- > 0;) word = word << 8 | static_cast<unsigned char>(bytes.at(at + i));
  return word;
}

void putWord(std::string &bytes, size_t at, uint32_t value) {
  for (size_t i = 0; i < 4; ++i) bytes.at(at + i) = static_cast<char>(value >> (8 * i) & 0xFF);
}

// The position of the chunk of this tag, counted from 0.
size_t chunkAt(const std::string &bytes, const std::string &tag, int number = 0) {
  size_t at = bytes.find(tag);
  while (number-- > 0) at = bytes.find(tag, at + 1);
  EXPECT_NE(at, std::string::npos) << tag;
  return at;
}

class CheckTest : public testing::Test {
 protected:
  Report checkBytes(const std::string &bytes) const { return check(folder_.write("db", bytes)); }

  support::TemporaryFolder folder_;
  std::string database_ = samples::SamplePlayerDatabase();
};

// A copy of the sample player in which nothing is wrong.
class CheckedPlayer : public CheckTest {
 protected:
  CheckedPlayer() {
    fs::copy(kPlayer, player_, fs::copy_options::recursive);
    folder_.write("player/iPod_Control/Music/F12/LOST.m4a",
                  samples::PlaceholderFile(samples::SampleSongs().at(24)));
  }

  fs::path player_ = folder_.path() / "player";
  fs::path music_ = player_ / "iPod_Control" / "Music";
};

TEST_F(CheckedPlayer, WithAllItsFilesHasNoFindings) {
  const Report report = check(player_);
  EXPECT_EQ(report.findings(), 0U);
  EXPECT_EQ(report.content.at("files").at("present"), 29);
  EXPECT_EQ(report.content.at("counts").at("songs"), json({{"announced", 29}, {"found", 29}, {"read", 29}}));
  EXPECT_EQ(report.content.at("counts").at("entries"),
            json({{"announced", 55}, {"found", 55}, {"read", 55}}));
  EXPECT_THAT(runZemhost({"check", player_}).out, EndsWith("\nNothing is wrong\n"));
}

TEST_F(CheckedPlayer, MissingFileIsNamed) {
  fs::remove(music_ / "F12" / "LOST.m4a");
  EXPECT_THAT(check(player_).texts("missing-file"),
              ElementsAre("song 24 \"Lost Reel\" by Idris Calloway: its file is missing: " +
                          (music_ / "F12" / "LOST.m4a").string()));
}

TEST_F(CheckedPlayer, FindingsBreakBetweenWordsOnATerminalAndNowhereElse) {
  fs::remove(music_ / "F12" / "LOST.m4a");
  const std::string plain = runZemhost({"check", player_}).out;
  RunOptions terminal;
  terminal.terminalWidth = 80;
  const std::string shown = runZemhost({"check", player_}, terminal).out;
  const auto finding = [](const std::string &out) { return out.substr(out.find("\n- song 24") + 1); };
  EXPECT_EQ(linesOf(finding(plain)).size(), 1U);
  EXPECT_EQ(linesOf(finding(shown)),
            (std::vector<std::string>{"- song 24 \"Lost Reel\" by Idris Calloway: its file is missing:",
                                      "  " + (music_ / "F12" / "LOST.m4a").string()}));
  for (const std::string &line : linesOf(shown)) {
    if (line.find('/') != std::string::npos) continue;  // a path is never cut
    EXPECT_LE(displayWidth(line), 80U) << line;
  }
}

TEST_F(CheckedPlayer, FolderInPlaceOfAFileIsAMissingFile) {
  fs::remove(music_ / "F12" / "LOST.m4a");
  fs::create_directory(music_ / "F12" / "LOST.m4a");
  EXPECT_THAT(check(player_).texts("missing-file"), SizeIs(1));
}

TEST_F(CheckedPlayer, FilesThatNoSongNamesAreListedInOrder) {
  folder_.write("player/iPod_Control/Music/F49/ZZZZ.mp3", "x");
  folder_.write("player/iPod_Control/Music/stray", "x");
  const Report report = check(player_);
  EXPECT_THAT(report.texts("unnamed-file"),
              ElementsAre("no song names the file " + (music_ / "F49/ZZZZ.mp3").string(),
                          "no song names the file " + (music_ / "stray").string()));
  EXPECT_EQ(report.findings(), 2U);
}

TEST_F(CheckedPlayer, NamesOfAnotherCaseAreTheSongsFiles) {
  fs::rename(music_ / "F12" / "LOST.m4a", music_ / "F12" / "lost.M4A");
  fs::rename(music_, player_ / "iPod_Control" / "MUSIC");
  EXPECT_EQ(check(player_).findings(), 0U);
}

TEST_F(CheckTest, BareFileHasItsFilesLeftOut) {
  const Report report = checkBytes(database_);
  EXPECT_EQ(report.status, 0);
  EXPECT_EQ(report.content.at("files"),
            json({{"checked", false}, {"reason", "the database is on no player"}}));
  EXPECT_THAT(runZemhost({"check", folder_.path() / "db"}).out,
              HasSubstr("\nFiles     not looked at: the database is on no player\n"));
}

TEST_F(CheckTest, EveryByteOfWrittenLibrariesIsAccountedFor) {
  for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
    samples::GeneratedLibrary library;
    library.songs = 300;
    library.playlists = 4;
    library.entries = 40;
    library.variant = variant;
    EXPECT_EQ(checkBytes(library.Bytes()).findings(), 0U);
  }
  EXPECT_EQ(checkBytes(samples::SampleDesktopLibrary()).findings(), 0U);
  EXPECT_EQ(checkBytes(samples::WriteLibrary({}, Variant::LittleEndian)).findings(), 0U);
}

TEST_F(CheckTest, RealFilesAreAccountedForToTheLastByte) {
  if (!support::HasRealFiles()) GTEST_SKIP() << "no real databases here";
  for (const support::RealFile &file : support::RealFiles()) {
    const fs::path path = PathOf(file);
    if (!fs::exists(path)) continue;
    if (file.encrypted) {
      EXPECT_EQ(runZemhost({"check", path}).status, 1);
    } else {
      EXPECT_EQ(check(path).findings(), 0U) << path;
    }
  }
  for (const fs::path &path : support::UntestedRealFiles()) {
    std::cout << "untested: " << path.filename().string() << ", status " << runZemhost({"check", path}).status
              << '\n';
  }
}

TEST_F(CheckTest, EntryWithAnIDOfNoSong) {
  // The entries of the second playlist data set are those that are read: its third playlist's first.
  const size_t list = chunkAt(database_, "mhyp", 8 + 2);
  putWord(database_, database_.find("mhip", list) + 0x18, 987654);
  EXPECT_THAT(checkBytes(database_).texts("entry-without-song"),
              ElementsAre("playlist 2 \"夏のプレイリスト\", entry 0: no song has the ID 987654"));
}

TEST_F(CheckTest, NumberOfSongsThatIsNotThere) {
  putWord(database_, chunkAt(database_, "mhlt") + 8, 30);
  const Report report = checkBytes(database_);
  EXPECT_THAT(report.texts("wrong-count"), ElementsAre(EndsWith("announces 30 records, and 29 follow")));
  EXPECT_EQ(report.content.at("counts").at("songs"), json({{"announced", 30}, {"found", 29}, {"read", 29}}));
}

TEST_F(CheckTest, NumberOfPlaylistsThatIsNotThere) {
  putWord(database_, chunkAt(database_, "mhlp", 1) + 8, 6);
  EXPECT_THAT(checkBytes(database_).texts("wrong-count"),
              ElementsAre(EndsWith("announces 6 records, and 8 follow")));
}

TEST_F(CheckTest, NumberOfEntriesThatIsNotThere) {
  putWord(database_, chunkAt(database_, "mhyp", 9) + 0x10, 7);
  const Report report = checkBytes(database_);
  EXPECT_THAT(report.texts("wrong-count"), ElementsAre(EndsWith("announces 7 entries, and 6 follow")));
  EXPECT_EQ(report.content.at("counts").at("entries").at("announced"), 56);
}

TEST_F(CheckTest, NumberOfObjectsThatIsNotThere) {
  const size_t track = chunkAt(database_, "mhit", 3);
  const uint32_t objects = wordAt(database_, track + 12);
  putWord(database_, track + 12, objects + 1);
  EXPECT_THAT(checkBytes(database_).texts("wrong-count"),
              ElementsAre(EndsWith("announces " + std::to_string(objects + 1) + " objects, and " +
                                   std::to_string(objects) + " follow")));
}

TEST_F(CheckTest, NumberOfDataSetsThatIsNotThere) {
  putWord(database_, 0x14, 5);
  EXPECT_THAT(checkBytes(database_).texts("wrong-count"),
              ElementsAre("the file (mhbd) at 0x0 announces 5 data sets, and 4 follow"));
}

TEST_F(CheckTest, OverwrittenHeaderIsTheOnlyThingWithoutAChunk) {
  const size_t track = chunkAt(database_, "mhit", 3);
  database_.replace(track, 4, "\xFF\xFF\xFF\xFF");
  const Report report = checkBytes(database_);
  ASSERT_THAT(report.texts("unexplained-bytes"), SizeIs(1));
  const json &bytes = report.content.at("findings").at(0);
  EXPECT_EQ(bytes.at("offset"), track);
  EXPECT_EQ(bytes.at("size"), samples::UsualHeaderLength(samples::Kind::Track, Variant::LittleEndian));
  EXPECT_EQ(report.content.at("counts").at("songs"), json({{"announced", 29}, {"found", 28}, {"read", 28}}));
}

TEST_F(CheckTest, ObjectWithoutALengthStopsTheClassButNotTheWalk) {
  const size_t object = database_.find("mhod", chunkAt(database_, "mhit", 10));
  const uint32_t length = wordAt(database_, object + 8);
  putWord(database_, object + 8, 0);
  const Report report = checkBytes(database_);
  EXPECT_EQ(report.content.at("findings").at(0).at("offset"), object);
  EXPECT_EQ(report.content.at("findings").at(0).at("size"), length);
  EXPECT_EQ(report.content.at("counts").at("songs"), json({{"announced", 29}, {"found", 29}, {"read", 29}}));
  EXPECT_THAT(report.texts("damaged-file"),
              ElementsAre("the file is damaged: 29 songs and 8 playlists were found by salvage"));
}

TEST_F(CheckTest, ObjectThatSwallowsTheNextOnes) {
  const size_t object = database_.find("mhod", chunkAt(database_, "mhit", 10));
  putWord(database_, object + 8, wordAt(database_, object + 8) + 30);
  const Report report = checkBytes(database_);
  EXPECT_THAT(report.texts("unexplained-bytes"), SizeIs(1));
  EXPECT_THAT(report.texts("wrong-count"), ElementsAre(HasSubstr(" objects, and ")));
}

TEST_F(CheckTest, RecordThatIsLongerThanWhatHoldsIt) {
  putWord(database_, chunkAt(database_, "mhit", 5) + 8, 10'000'000);
  EXPECT_THAT(checkBytes(database_).texts("wrong-length"),
              ElementsAre(HasSubstr(" states a length of 10000000 bytes, where ")));
}

TEST_F(CheckTest, RecordThatReachesIntoTheNext) {
  const size_t track = chunkAt(database_, "mhit", 5);
  putWord(database_, track + 8, wordAt(database_, track + 8) + 100);
  EXPECT_THAT(checkBytes(database_).texts("wrong-length"), ElementsAre(HasSubstr(" begins inside")));
}

TEST_F(CheckTest, RecordThatEndsBeforeItsObjects) {
  const size_t track = chunkAt(database_, "mhit", 5);
  putWord(database_, track + 8, wordAt(database_, track + 8) - 10);
  const Report report = checkBytes(database_);
  EXPECT_THAT(report.texts("wrong-length"),
              ElementsAre(HasSubstr(" runs past the end of the track (mhit) at ")));
  EXPECT_EQ(report.findings(), 1U);
}

TEST_F(CheckTest, BytesAfterTheDatabase) {
  const size_t size = database_.size();
  const Report report = checkBytes(database_ + std::string(100, 'x'));
  const json &finding = report.content.at("findings").at(0);
  EXPECT_EQ(finding.at("kind"), "unexplained-bytes");
  EXPECT_EQ(finding.at("offset"), size);
  EXPECT_EQ(finding.at("size"), 100);
}

TEST_F(CheckTest, RawDataSetOfAnUnknownTypeIsNoFault) {
  samples::Library library;
  library.sets.resize(1);
  library.sets[0].type = 9;
  library.sets[0].content = std::string("neither chunks nor text\0\1", 25);
  EXPECT_EQ(checkBytes(samples::WriteLibrary(library, Variant::LittleEndian)).content.at("bytes").at("raw"),
            25);
  library.sets[0].type = 1;
  EXPECT_EQ(
      checkBytes(samples::WriteLibrary(library, Variant::LittleEndian)).content.at("bytes").at("unexplained"),
      25);
}

TEST_F(CheckTest, TextsThatAreNotValid) {
  samples::Track track;
  track.id = 52;
  track.objects = {samples::TextObject(1, u"cut \xD83C"), samples::TextObject(4, u"whole 🌙"),
                   samples::TextObject(12, u"\xDC00 alone")};
  samples::Playlist list;
  list.name = u"\xDC00 alone";
  const Report report =
      checkBytes(samples::WriteLibrary(samples::OrdinaryLibrary({track}, {list}), Variant::LittleEndian));
  EXPECT_THAT(
      report.texts("lossy-text"),
      ElementsAre("song 0 \"cut \xEF\xBF\xBD\" by whole 🌙: the title holds characters that are not valid",
                  "song 0 \"cut \xEF\xBF\xBD\" by whole 🌙: the composer holds characters that are not valid",
                  "playlist 0 \"\xEF\xBF\xBD alone\": the name holds characters that are not valid"));
  EXPECT_EQ(report.findings(), 3U);
}

TEST_F(CheckTest, ManyFindingsAreCountedAndTheFirstShown) {
  samples::Playlist list;
  list.name = u"lost";
  for (uint32_t i = 0; i < 100; ++i) list.entries.push_back({.ref = i + 1});
  const fs::path file =
      folder_.write("db", samples::WriteLibrary(samples::OrdinaryLibrary({}, {list}), Variant::LittleEndian));
  const Outcome outcome = runZemhost({"check", file});
  EXPECT_THAT(outcome.out, HasSubstr("\n100 findings\n"));
  EXPECT_THAT(outcome.out, EndsWith("entry 19: no song has the ID 20\n"
                                    "- and 80 more of the kind entry-without-song (--json lists them)\n"));
  EXPECT_EQ(check(file).findings(), 100U);
}

TEST_F(CheckTest, WhateverIsDamagedEveryByteIsToldOnce) {
  samples::Random random(11);
  for (int round = 0; round < 60; ++round) {
    std::string bytes = database_;
    const uint32_t changes = 1 + random.Below(20);
    for (uint32_t i = 0; i < changes; ++i) {
      // The first data set's header stays, for else the file is refused.
      bytes[0x160 + random.Below(static_cast<uint32_t>(bytes.size() - 0x160))] =
          static_cast<char>(random.Below(256));
    }
    checkBytes(bytes);
  }
}

TEST_F(CheckTest, UnreadableDatabaseEndsWithStatus1) {
  const fs::path file = folder_.write("db", "no database");
  const Outcome outcome = runZemhost({"check", file});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err, "zemhost: " + file.string() + ": not an iTunesDB database\n");
}

TEST_F(CheckTest, CallWarnsInOneLineWhenSongsAreMissing) {
  const size_t object = database_.find("mhod", chunkAt(database_, "mhit", 10));
  putWord(database_, object + 8, 0);
  const fs::path file = folder_.write("it's db", database_);
  const Outcome outcome = runZemhost({"call", file, "CountSongs"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.err,
            "zemhost: " + file.string() +
                ": 29 songs are announced, 29 found, and 11 read; to see what is wrong run: zemhost "
                "check '" +
                folder_.path().string() + "/it'\\''s db'\n");
}

TEST_F(CheckTest, OtherCommandsAreSilentAboutASoundLibrary) {
  EXPECT_EQ(runZemhost({"songs", folder_.write("db", database_)}).err, "");
}

}  // namespace
}  // namespace zemhost
