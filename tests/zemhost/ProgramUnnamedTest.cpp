// `zemhost rescue` of music that no song of a database names: under the names in its own tags.

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/zemhost/RescueFixture.h"

namespace zemhost {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Key;
using testing::Pair;
using testing::StartsWith;

// A number of ID3v2 headers and its frames, four bytes, of 7 or 8 bits each.
std::string numberOf(size_t number, unsigned bits) {
  std::string bytes;
  for (unsigned byte = 4; byte-- > 0;)
    bytes += static_cast<char>(number >> (byte * bits) & ((1U << bits) - 1));
  return bytes;
}

// An MP3 file with these texts in its ID3v2 tag, and a little silence.
std::string taggedMp3(const std::vector<std::pair<std::string, std::string>> &texts) {
  std::string frames;
  for (const auto &[name, text] : texts)
    frames.append(name).append(numberOf(text.size() + 1, 8)).append(3, '\0').append(text);
  std::string silence = "\xFF\xFB\x90";
  silence.resize(417);
  std::string file = "ID3\x03" + std::string(2, '\0') + numberOf(frames.size(), 7) + frames;
  for (int i = 0; i < 4; ++i) file += silence;
  return file;
}

class Unnamed : public RescueFixture {
 protected:
  fs::path write(const std::string &below, const std::string &content) const {
    return folder_.write("My iPod/" + below, content);
  }

  std::string tagged_ =
      taggedMp3({{"TIT2", "Lost"}, {"TPE1", "Band"}, {"TALB", "First"}, {"TRCK", "3/9"}, {"TYER", "1999"}});
  fs::path root_ = folder_.path() / "My iPod";
};

// Boxes in each other, too many for the stack of what reads tags.
std::string deepMp4() {
  constexpr size_t kBoxes = 200'000;
  std::string file = numberOf(16, 8) + "ftypM4A " + std::string(4, '\0');
  for (size_t left = kBoxes; left > 0; --left) file += numberOf(8 * left, 8) + "moov";
  return file;
}

TEST_F(Unnamed, FileWhoseTagsBreakTheirReaderKeepsItsOwnName) {
  makePlayer({{u"One", u"A"}});
  const std::string deep = deepMp4();
  write("iPod_Control/Music/F01/DEEP.m4a", deep);
  write("iPod_Control/Music/F01/GOOD.mp3", tagged_);
  EXPECT_EQ(run(root_).status, 0);
  const Files copies = filesBelow(destination_);
  EXPECT_EQ(copies.at("Unnamed/DEEP.m4a"), deep);
  EXPECT_TRUE(copies.contains("Unnamed/Band/First/03 Lost.mp3"));
}

TEST_F(Unnamed, FilesThatNoSongNamesGetTheNamesInTheirTags) {
  makePlayer({{u"One", u"A"}});
  write("iPod_Control/Music/F01/ABCD.mp3", tagged_);
  const std::string plain = "no tags in it";
  write("iPod_Control/Music/F02/EFGH.mp3", plain);
  write("iPod_Control/Music/F03/EFGH.mp3", "another");
  for (int round = 0; round < 2; ++round) {
    const Outcome outcome = run(root_);
    EXPECT_EQ(outcome.status, 0) << outcome.out;
    EXPECT_THAT(outcome.out, HasSubstr("3 music files that no song names belong into Unnamed\n"));
    EXPECT_THAT(filesBelow(destination_),
                ElementsAre(Pair("A/Unknown Album/One.mp3", "song 0"),
                            Pair("Unnamed/Band/First/03 Lost.mp3", tagged_),
                            Pair("Unnamed/EFGH (2).mp3", "another"), Pair("Unnamed/EFGH.mp3", plain)));
  }
}

TEST_F(Unnamed, MusicAnywhereAmongThePlayersOwnFilesAndItsRecordingsIsFound) {
  makePlayer({{u"One", u"A"}});
  write("iPod_Control/Podcasts/P.m4a", "podcast");
  write("Recordings/R.wav", "recording");
  write("iPod_Control/Speakable/Tracks/S.wav", "spoken title");
  write("iPod_Control/Device/SysInfo.txt", "no music");
  write("iPod_Control/Music/F00/._0.mp3", "of another system");
  write("Notes/N.mp3", "the person's own");
  EXPECT_EQ(run(root_).status, 0);
  EXPECT_THAT(filesBelow(destination_),
              ElementsAre(Key("A/Unknown Album/One.mp3"), Pair("Unnamed/P.m4a", "podcast"),
                          Pair("Unnamed/R.wav", "recording")));
}

TEST_F(Unnamed, FileOfTheMusicFolderThatIsNoMusicByItsNameIsARemark) {
  makePlayer({{u"One", u"A"}});
  const fs::path file = write("iPod_Control/Music/F00/FSCK0000.REC", "x");
  const Outcome outcome = run(root_);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("\n1 remark:\n- " + file.string() +
                                     ": no song names it, and its extension is of "
                                     "neither music nor video, so it is left out\n"));
}

TEST_F(Unnamed, PlaylistsThatAreChosenBringTheirSongsAlone) {
  makePlayer({{u"One", u"A"}}, {{.name = u"List", .entries = {{.ref = 52}}}});
  write("iPod_Control/Music/F01/ABCD.mp3", tagged_);
  EXPECT_EQ(run(root_, {"--playlist", "List"}).status, 0);
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Key("A/Unknown Album/One.mp3"), Key("List.m3u8")));
}

TEST_F(Unnamed, WithoutADatabaseAllMusicIsRescuedAndALineSaysSo) {
  makePlayer({{u"One", u"A"}});
  write("iPod_Control/Music/F01/ABCD.mp3", tagged_);
  const fs::path folder = root_ / "iPod_Control/iTunes";
  fs::remove(folder / "iTunesDB");
  for (const fs::path &path : {root_, root_ / "iPod_Control"}) {
    const Outcome outcome = run(path);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err,
              "zemhost: " + path.string() + ": no database here: " + folder.string() +
                  " has no iTunesDB; copying the music files under the names in their own tags\n");
    EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("Unnamed/0.mp3", "song 0"),
                                                      Pair("Unnamed/Band/First/03 Lost.mp3", tagged_)));
  }
  fs::remove_all(destination_);
  fs::remove_all(folder);
  EXPECT_EQ(run(root_).status, 3);
  EXPECT_THAT(filesBelow(destination_), testing::SizeIs(2));
}

TEST_F(Unnamed, DatabaseThatIsNoneGivesTheSame) {
  makePlayer({{u"One", u"A"}});
  write("iPod_Control/iTunes/iTunesDB", "nothing that a player writes");
  const Outcome outcome = run(root_);
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err,
              AllOf(StartsWith("zemhost: " + (root_ / "iPod_Control/iTunes/iTunesDB").string() + ": "),
                    HasSubstr("; copying the music files under the names in their own tags\n")));
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Pair("Unnamed/0.mp3", "song 0")));
}

TEST_F(Unnamed, PlayerWithoutDatabaseAndMusicIsRefusedForTheDatabase) {
  makePlayer({{u"One", u"A"}});
  fs::remove(root_ / "iPod_Control/iTunes/iTunesDB");
  fs::remove_all(root_ / "iPod_Control/Music");
  const Outcome outcome = run(root_);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, testing::EndsWith(" has no iTunesDB\n"));
  EXPECT_FALSE(fs::exists(destination_));
}

TEST_F(Unnamed, NothingOutsideThePlayerIsRead) {
  makePlayer({{u"One", u"A"}});
  folder_.write("outside/secret.mp3", tagged_);
  fs::create_directory_symlink("../../../outside", root_ / "iPod_Control/Music/F09");
  fs::create_symlink("../../../../outside/secret.mp3", root_ / "iPod_Control/Music/F00/link.mp3");
  fs::create_directory_symlink("../outside", root_ / "Recordings");
  EXPECT_EQ(run(root_).status, 0);
  EXPECT_THAT(filesBelow(destination_), ElementsAre(Key("A/Unknown Album/One.mp3")));
}

}  // namespace
}  // namespace zemhost
