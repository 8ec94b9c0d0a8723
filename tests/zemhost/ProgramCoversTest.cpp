// `zemhost covers` through the built program: which pictures it writes, under which names, and what it leaves
// alone.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/stat.h>

#include "samples/SampleCovers.h"
#include "tests/zemhost/CoverFixture.h"

namespace zemhost {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Covers : public CoverFixture {
 protected:
  // What the export says of each song.
  std::vector<json> hasCover() const {
    std::vector<json> values;
    const Outcome outcome = runZemhost({"export", player(), "--format", "ndjson", "--fields", "has_cover"});
    EXPECT_EQ(outcome.status, 0);
    for (const std::string &line : linesOf(outcome.out)) values.push_back(json::parse(line).at("has_cover"));
    return values;
  }
};

// Parts of a pixel as a player keeps them.
std::string coarse(std::string pixels) {
  for (size_t i = 0; i < pixels.size(); ++i) {
    const uint32_t part = static_cast<unsigned char>(pixels[i]);
    pixels[i] = static_cast<char>(i % 3 == 1 ? (part & 0xFC) | part >> 6 : (part & 0xF8) | part >> 5);
  }
  return pixels;
}

TEST_F(Covers, OfTheSamplePlayerAreThePicturesThatWereDrawn) {
  ASSERT_EQ(runZemhost({"covers", kPlayer, destination()}).status, 0);
  EXPECT_EQ(names().size(), 8U);
  EXPECT_EQ(pngIn(destination() / "Northern Ferries.png"),
            (player::Picture{200, 200, coarse(samples::DrawnCover(0, 200))}));
  EXPECT_EQ(pngIn(destination() / "The Lighthouse Keeper.png"),
            (player::Picture{200, 200, coarse(samples::DrawnCover(7, 200))}));
  // Bars above and below are no part of a picture.
  constexpr size_t kRow = size_t{3} * 200;
  const std::string wide = coarse(samples::DrawnCover(6, 200)).substr(kRow * 25, kRow * 150);
  EXPECT_EQ(pngIn(destination() / "Attic Radio Weekly.png"), (player::Picture{200, 150, wide}));
}

TEST_F(Covers, SecondTimeWritesNothing) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}, {u"B", u"X", u"Two", 12, 0, 1}}, {11, 12});
  EXPECT_THAT(covers().out, HasSubstr("2 covers written\n"));
  const Files before = filesBelow(destination());
  const auto time = fs::last_write_time(destination() / "One.png");
  const Outcome again = covers();
  EXPECT_EQ(again.status, 0);
  EXPECT_EQ(again.out, "0 covers written\n2 covers are already there\n");
  EXPECT_EQ(filesBelow(destination()), before);
  EXPECT_EQ(fs::last_write_time(destination() / "One.png"), time);
}

TEST_F(Covers, ArtistStandsBeforeTheNameThatTwoAlbumsShare) {
  makePlayer(
      {{u"A", u"Ann", u"Hits", 11, 0, 1}, {u"B", u"Bob", u"hits", 12, 0, 1}, {u"C", u"", u"Hits", 13, 0, 1}},
      {11, 12, 13});
  EXPECT_EQ(covers().status, 0);
  EXPECT_THAT(names(), ElementsAre("Ann - Hits.png", "Bob - hits.png", "Unknown Artist - Hits.png"));
  EXPECT_EQ(shown("Ann - Hits.png"), 11U);
  EXPECT_EQ(shown("Bob - hits.png"), 12U);
}

TEST_F(Covers, AlbumsThatShareNameAndCoverAreOne) {
  makePlayer({{u"A", u"Ann", u"Hits", 11, 0, 1}, {u"B", u"Ann and Bob", u"Hits", 11, 0, 1}}, {11});
  EXPECT_THAT(covers().out, HasSubstr("1 cover written\n"));
  EXPECT_THAT(names(), ElementsAre("Hits.png"));
}

TEST_F(Covers, SongWithoutAlbumGoesByItsTitle) {
  makePlayer({{u"Alone", u"Ann", u"", 11, 0, 1}, {u"", u"", u"", 12, 0, 1}}, {11, 12});
  EXPECT_EQ(covers().status, 0);
  EXPECT_THAT(names(), ElementsAre("Alone.png", "Untitled.png"));
}

TEST_F(Covers, HostileNamesStayInTheFolderAndAreShownSafely) {
  makePlayer({{u"A", u"X", u"../../../escape", 11, 0, 1},
              {u"B", u"X", u"CON", 12, 0, 1},
              {u"C", u"X", u"\u001b[2J\u202ered", 13, 0, 1},
              {u"D", u"X", u"...", 14, 0, 1},
              {u"E", u"X", std::u16string(400, u'x'), 15, 0, 1}},
             {11, 12, 13, 14, 15});
  const Outcome outcome = covers();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos);
  EXPECT_THAT(names(), testing::UnorderedElementsAre("_._.._.._escape.png", "CON_.png", "_[2Jred.png",
                                                     "Untitled.png", std::string(251, 'x') + ".png"));
  EXPECT_FALSE(fs::exists(folder_.path() / "escape.png"));
}

TEST_F(Covers, OtherFileKeepsItsName) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  folder_.write("out/One.png", "mine");
  folder_.makeDirectory("out/One (2).png");
  const Outcome outcome = covers();
  EXPECT_THAT(outcome.out, HasSubstr("2 names were taken by another file, so a number was added\n"));
  EXPECT_EQ(contentOf(destination() / "One.png"), "mine");
  EXPECT_EQ(shown("One (3).png"), 11U);
  EXPECT_THAT(covers().out, HasSubstr("1 cover is already there"));
}

TEST_F(Covers, NothingIsWrittenOnThePlayer) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  const Files before = filesBelow(player());
  fs::create_symlink(player(), folder_.path() / "link");
  for (const fs::path &place :
       {player() / "new", player() / "iPod_Control" / "Artwork", folder_.path() / "link" / "x"}) {
    const Outcome outcome = runZemhost({"covers", player(), place});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("this lies on the player, and nothing is written there"));
  }
  EXPECT_EQ(filesBelow(player()), before);
}

TEST_F(Covers, EmptyDestinationIsWrongUsage) {
  EXPECT_EQ(runZemhost({"covers", kPlayer, ""}).status, 2);
  EXPECT_EQ(runZemhost({"covers", kPlayer}).status, 2);
}

TEST_F(Covers, SmallerPictureStandsInForALargerOneThatIsDamaged) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  folder_.write(artwork("F1029_1.ithmb"), std::string(kLargeBytes - 1, '\0'));
  EXPECT_EQ(covers().status, 0);
  EXPECT_EQ(pngIn(destination() / "One.png").width, 100U);
}

TEST_F(Covers, PictureThatCannotBeReadIsAProblemAndOthersAreWritten) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}, {u"B", u"X", u"Two", 12, 0, 1}}, {11, 12});
  folder_.write(artwork("F1029_1.ithmb"), std::string(kLargeBytes, '\x0B'));
  folder_.write(artwork("F1028_1.ithmb"), "");
  const Outcome outcome = covers();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("1 cover written\n1 problem:\n- \"Two\" by X: "));
  EXPECT_THAT(outcome.out, HasSubstr("F1029_1.ithmb: the file ends before the picture at 0x13880 does\n"));
}

TEST_F(Covers, FilesOutsideThePlayerAndPipesAreNotRead) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  const fs::path outside = folder_.write("outside.ithmb", std::string(kLargeBytes, '\x0B'));
  const fs::path large = player() / "iPod_Control/Artwork/F1029_1.ithmb";
  const fs::path small = player() / "iPod_Control/Artwork/F1028_1.ithmb";
  fs::remove(large);
  fs::remove(small);
  fs::create_symlink(outside, large);
  ASSERT_EQ(mkfifo(small.c_str(), 0600), 0);
  const Outcome outcome = covers();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("0 covers written\n1 problem:\n"));
  EXPECT_THAT(outcome.out, HasSubstr("F1029_1.ithmb lies outside the player\n"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Covers, ListOutsideThePlayerIsNotRead) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  const fs::path list = player() / "iPod_Control/Artwork/ArtworkDB";
  fs::rename(list, folder_.path() / "outside");
  fs::create_symlink(folder_.path() / "outside", list);
  const Outcome outcome = covers();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, HasSubstr("ArtworkDB lies outside the player; its pictures are left out\n"));
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Covers, PlayerWithoutAListOfThemIsAnErrorThatSaysSo) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}});
  const Outcome outcome = covers();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err,
              HasSubstr("no list of covers stands beside it (iPod_Control/Artwork/ArtworkDB)\n"));
  EXPECT_FALSE(fs::exists(destination()));
  EXPECT_THAT(hasCover(), ElementsAre(nullptr));
}

TEST_F(Covers, SongHasOneWhenItsImageIsThere) {
  makePlayer({{u"by its id", u"", u"", 11, 0, 1},
              {u"by the song's id", u"", u"", 0, 1012, 0},
              {u"an id that no image has", u"", u"", 99, 1012, 1},
              {u"marked as without", u"", u"", 11, 1011, 2},
              {u"neither", u"", u"", 0, 5, 0},
              {u"says nothing of itself", u"", u"", 0, 0, 0}},
             {11, 12});
  EXPECT_THAT(hasCover(), ElementsAre(true, true, false, false, false, nullptr));
  const std::vector<std::string> lines =
      linesOf(runZemhost({"songs", player(), "--columns", "title,has_cover"}).out);
  EXPECT_THAT(lines.at(0), HasSubstr("Cover"));
  EXPECT_THAT(lines.at(1), testing::EndsWith("yes"));
  EXPECT_THAT(lines.at(3), testing::EndsWith("no"));
}

TEST_F(Covers, DamagedListIsReadUpToTheDamageWithOneLine) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}, {u"B", u"X", u"Two", 12, 0, 1}}, {11, 12});
  const fs::path list = player() / "iPod_Control/Artwork/ArtworkDB";
  fs::resize_file(list, 0x140 + 0x300);
  const Outcome outcome = covers();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(linesOf(outcome.err).size(), 1U);
  EXPECT_THAT(outcome.err, HasSubstr("ArtworkDB: the list of pictures is damaged at 0x"));
  EXPECT_THAT(outcome.err, HasSubstr("and 1 image was read"));
  EXPECT_THAT(names(), ElementsAre("One.png"));
  EXPECT_THAT(hasCover(), ElementsAre(true, nullptr));
  const Outcome check = runZemhost({"check", player(), "--json"});
  EXPECT_EQ(check.status, 3);
  EXPECT_EQ(json::parse(check.out).at("finding_counts").at("unused-file"), 1);
}

TEST_F(Covers, OtherFileInPlaceOfTheListIsLeftOutWithOneLine) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  for (const std::string &bytes : {std::string(), std::string("mhfd"), std::string(9000, 'x')}) {
    folder_.write(artwork("ArtworkDB"), bytes);
    const Outcome songs = runZemhost({"songs", player(), "--columns", "has_cover"});
    EXPECT_EQ(songs.status, 0);
    EXPECT_THAT(songs.err, HasSubstr("ArtworkDB: it is no list of pictures; its pictures are left out\n"));
    EXPECT_EQ(runZemhost({"songs", player()}).err, "");  // nobody asked for it
    EXPECT_EQ(covers().status, 3);
  }
}

TEST_F(Covers, FormsThatThePlayerStatesComeFirst) {
  makePlayer({{u"A", u"X", u"One", 11, 0, 1}}, {11});
  folder_.write("iPod/iPod_Control/Device/SysInfoExtended",
                "<plist><dict><key>AlbumArt</key><array><dict><key>FormatId</key><integer>1029</integer>"
                "<key>RenderWidth</key><integer>400</integer><key>RenderHeight</key><integer>100</integer>"
                "<key>PixelFormat</key><string>4C353535</string></dict></array></dict></plist>");
  EXPECT_EQ(covers().status, 0);
  const player::Picture picture = pngIn(destination() / "One.png");
  EXPECT_EQ(picture.height, 100U);
  EXPECT_EQ(picture.width, 200U);  // of 400 the part that is to be seen
}

TEST_F(Covers, OfADesktopLibraryAreNotKnown) {
  const Outcome outcome =
      runZemhost({"covers", support::SamplesFolder() / "big-endian.library", destination()});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("no list of covers"));
}

class RescueWithCovers : public CoverFixture {};

TEST_F(RescueWithCovers, CoverLiesBesideTheSongsOfAnAlbum) {
  makePlayer(
      {{u"A", u"Ann", u"One", 11, 0, 1}, {u"B", u"Ann", u"One", 0, 5, 0}, {u"C", u"Ann", u"Two", 0, 5, 0}},
      {11});
  const Outcome outcome = rescue();
  EXPECT_EQ(outcome.status, 0) << outcome.out;
  EXPECT_THAT(outcome.out, HasSubstr("1 cover written\n"));
  EXPECT_THAT(names(), ElementsAre("Ann/One/A.mp3", "Ann/One/B.mp3", "Ann/One/cover.png", "Ann/Two/C.mp3"));
  EXPECT_EQ(shown("Ann/One/cover.png"), 11U);
  EXPECT_THAT(rescue().out, Not(HasSubstr("cover")));
}

TEST_F(RescueWithCovers, AreAskedFor) {
  makePlayer({{u"A", u"Ann", u"One", 11, 0, 1}}, {11});
  EXPECT_EQ(runZemhost({"rescue", player(), destination()}).status, 0);
  EXPECT_THAT(names(), ElementsAre("Ann/One/A.mp3"));
}

TEST_F(RescueWithCovers, OtherCoverStaysWithARemark) {
  makePlayer({{u"A", u"Ann", u"One", 11, 0, 1}}, {11});
  folder_.write("out/Ann/One/cover.png", "mine");
  const Outcome outcome = rescue();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(
      outcome.out,
      HasSubstr("- Ann/One/cover.png: another file has this name and stays, so the cover is left out\n"));
  EXPECT_EQ(contentOf(destination() / "Ann/One/cover.png"), "mine");
}

TEST_F(RescueWithCovers, FolderOfSeveralAlbumsHasNone) {
  makePlayer(
      {{u"A", u"Ann", u"One", 11, 0, 1}, {u"B", u"Ann", u"Two", 12, 0, 1}, {u"C", u"Bob", u"", 12, 0, 1}},
      {11, 12});
  EXPECT_EQ(rescue({"--pattern", "{artist}/{title}"}).status, 0);
  EXPECT_THAT(names(), ElementsAre("Ann/A.mp3", "Ann/B.mp3", "Bob/C.mp3"));
}

TEST_F(RescueWithCovers, DryRunCountsThemAndWritesNothing) {
  makePlayer({{u"A", u"Ann", u"One", 11, 0, 1}, {u"B", u"Ann", u"Two", 12, 0, 1}}, {11, 12});
  EXPECT_THAT(rescue({"--dry-run"}).out, HasSubstr("2 covers to write\n"));
  EXPECT_FALSE(fs::exists(destination()));
}

TEST_F(RescueWithCovers, CoverThatCannotBeReadIsAProblem) {
  makePlayer({{u"A", u"Ann", u"One", 11, 0, 1}}, {11});
  folder_.write(artwork("F1028_1.ithmb"), "");
  folder_.write(artwork("F1029_1.ithmb"), "");
  const Outcome outcome = rescue();
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.out, HasSubstr("- Ann/One/cover: "));
  EXPECT_THAT(names(), ElementsAre("Ann/One/A.mp3"));
}

}  // namespace
}  // namespace zemhost
