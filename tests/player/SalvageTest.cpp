// What is found of damaged databases, each damaged in one way.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/FileBytes.h"
#include "player/MendedDatabase.h"
#include "player/Playlists.h"
#include "player/Salvage.h"
#include "player/SongReader.h"
#include "samples/DatabaseWriter.h"
#include "samples/GeneratedLibrary.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using samples::Variant;
using testing::ElementsAre;
using testing::IsEmpty;

// The sound database that is made of the salvage, as its readers see it.
struct Mended {
  explicit Mended(const std::string &damaged) {
    const MendedDatabase database(damaged, salvage(damaged));
    announced = database.announcedSongs();
    listsFound = database.lists();
    database.write([this](std::string_view piece) { bytes += piece; });
    file = carbon::Descriptor(memfd_create("mended", MFD_CLOEXEC));
    writeAll(file.number(), bytes);
    account = walkChunks(file.number());
    EXPECT_EQ(account.findings.total(), 0U)
        << (account.findings.kept().empty() ? "" : account.findings.kept().front().text);
    const SongReader reader(file.number(), account.bigEndian, account.tracksAt);
    for (size_t i = 0; i < reader.count(); ++i) {
      ids.push_back(reader.facts(i).id);
      texts.emplace_back();
      for (const SongText &text : reader.texts(i)) texts.back()[text.type] = text.text;
    }
    const PlaylistReader lists(file.number(), account);
    for (size_t i = 0; i < lists.count(); ++i) entries.push_back(lists.songIds(i));
  }

  std::string bytes;
  carbon::Descriptor file;
  FileAccount account;
  uint64_t announced = 0;
  uint64_t listsFound = 0;
  std::vector<uint32_t> ids;                           // of the songs
  std::vector<std::map<uint32_t, std::string>> texts;  // of each
  std::vector<std::vector<uint32_t>> entries;          // of each list
};

samples::Track song(uint32_t id, Variant variant = Variant::LittleEndian) {
  samples::Track track;
  track.id = id;
  track.objects =
      samples::SongObjects(variant, {.title = u"Title", .path = u":Music:A.mp3", .album = u"Album"});
  return track;
}

samples::Playlist list(const std::u16string &name, const std::vector<uint32_t> &songs, bool master = false) {
  samples::Playlist playlist;
  playlist.name = name;
  playlist.master = master;
  for (const uint32_t id : songs) playlist.entries.push_back({.ref = id});
  return playlist;
}

std::string database(Variant variant = Variant::LittleEndian) {
  return samples::WriteLibrary(
      samples::OrdinaryLibrary({song(1, variant), song(2, variant), song(3, variant)},
                               {list(u"All", {1, 2, 3}, true), list(u"Some", {3, 1})}),
      variant);
}

// Where the chunk with this tag begins, the one with this number from 0.
size_t place(const std::string &bytes, std::string_view tag, int number = 0) {
  size_t at = bytes.find(tag);
  for (int i = 0; i < number; ++i) at = bytes.find(tag, at + 1);
  return at;
}

std::string wiped(std::string bytes, size_t at, size_t size) { return bytes.replace(at, size, size, '\0'); }

TEST(Salvage, OfAnUndamagedFileFindsAllOfIt) {
  for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
    const Mended mended(database(variant));
    EXPECT_THAT(mended.ids, ElementsAre(1, 2, 3)) << variant;
    EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2, 3), ElementsAre(3, 1)));
    EXPECT_EQ(mended.bytes, database(variant));
  }
}

TEST(Salvage, SongsBeforeTheCutAreFound) {
  const std::string bytes = database();
  const Mended mended(bytes.substr(0, place(bytes, "mhit", 2) + 20));
  EXPECT_THAT(mended.ids, ElementsAre(1, 2));
  EXPECT_EQ(mended.announced, 3U);
}

TEST(Salvage, SongThatIsCutKeepsItsWholeTexts) {
  const std::string bytes = database();
  const Mended mended(bytes.substr(0, place(bytes, "mhit", 2) + 0x248 + 60));
  ASSERT_THAT(mended.ids, ElementsAre(1, 2, 3));
  EXPECT_EQ(mended.texts[2].size(), 1U);
  EXPECT_EQ(mended.texts[2].at(1), "Title");
}

TEST(Salvage, SongWithoutATextLeftIsNone) {
  const std::string bytes = database();
  EXPECT_THAT(Mended(bytes.substr(0, place(bytes, "mhit", 2) + 0x248 + 20)).ids, ElementsAre(1, 2));
}

TEST(Salvage, SongWithADamagedHeaderIsLostAlone) {
  for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
    const std::string tag = variant == Variant::LittleEndian ? "mhit" : "htim";
    const std::string bytes = database(variant);
    const Mended mended(wiped(bytes, place(bytes, tag, 1), 12));
    EXPECT_THAT(mended.ids, ElementsAre(1, 3)) << variant;
    EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2, 3), ElementsAre(3, 1)));
  }
}

TEST(Salvage, HeadersOfTheFileAndItsListsAreNotNeeded) {
  const std::string bytes = database();
  for (const std::string tag : {"mhbd", "mhsd", "mhlt"}) {
    const Mended mended(wiped(bytes, place(bytes, tag), 16));
    EXPECT_THAT(mended.ids, ElementsAre(1, 2, 3)) << tag;
    EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2, 3), ElementsAre(3, 1))) << tag;
    EXPECT_EQ(mended.announced, tag == "mhlt" ? 0U : 3U);
  }
  const Mended mended(wiped(bytes, place(bytes, "mhsd", 1), 0x60 + 0x5c));
  EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2, 3), ElementsAre(3, 1)));
}

TEST(Salvage, DesktopLibraryWithoutItsHeaderIsReadInItsByteOrder) {
  const Mended mended(wiped(database(Variant::BigEndian), 0, 0x84));
  EXPECT_TRUE(mended.account.bigEndian);
  EXPECT_THAT(mended.ids, ElementsAre(1, 2, 3));
}

TEST(Salvage, TextThatIsPartlyWipedIsLeftOutAndTheNextOnesStay) {
  const std::string bytes = database();
  const Mended mended(wiped(bytes, place(bytes, "mhod") + 0x2a, 4));
  ASSERT_THAT(mended.ids, ElementsAre(1, 2, 3));
  EXPECT_FALSE(mended.texts[0].contains(1));
  EXPECT_EQ(mended.texts[0].at(3), "Album");
  EXPECT_EQ(mended.texts[0].at(2), ":Music:A.mp3");
}

TEST(Salvage, ObjectsBehindADamagedOneAreFound) {
  const std::string bytes = database();
  for (const size_t length : {0x18U, 0x28U, 0x2cU}) {
    const Mended mended(wiped(bytes, place(bytes, "mhod"), length));
    ASSERT_THAT(mended.ids, ElementsAre(1, 2, 3)) << length;
    EXPECT_FALSE(mended.texts[0].contains(1));
    EXPECT_EQ(mended.texts[0].at(2), ":Music:A.mp3");
    EXPECT_EQ(mended.texts[1].at(1), "Title");
  }
}

TEST(Salvage, ObjectsOfTheNextSongAreNotTaken) {
  // The first song loses all its objects, the second its tag.
  const std::string bytes = database();
  const size_t objects = place(bytes, "mhod");
  EXPECT_THAT(Mended(wiped(bytes, objects, place(bytes, "mhit", 1) + 4 - objects)).ids, ElementsAre(3));
}

TEST(Salvage, RecordThatStatesTooGreatALengthEndsBeforeTheNext) {
  std::string bytes = database();
  const size_t song = place(bytes, "mhit", 1);
  bytes.replace(song + 8, 8, std::string("\0\x20\0\0\x20\0\0\0", 8));
  EXPECT_THAT(Mended(bytes).ids, ElementsAre(1, 2, 3));
  bytes = database();
  const size_t list = place(bytes, "mhyp");
  bytes.replace(list + 8, 8, std::string("\0\x20\0\0\x20\0\0\0", 8));
  EXPECT_THAT(Mended(bytes).entries, ElementsAre(ElementsAre(1, 2, 3), ElementsAre(3, 1)));
}

TEST(Salvage, ObjectThatStatesTooGreatALengthHidesNoSong) {
  for (const size_t length : {2000U, 4000U}) {
    std::string bytes = database();
    const size_t object = place(bytes, "mhod");
    bytes[object + 8] = static_cast<char>(length & 0xFF);
    bytes[object + 9] = static_cast<char>(length >> 8);
    EXPECT_THAT(Mended(bytes).ids, testing::IsSupersetOf({2, 3})) << length;
  }
}

TEST(Salvage, TagsInsideOfTextsAreNoRecords) {
  samples::Track track = song(1);
  samples::ChunkWriter inner(Variant::LittleEndian);
  samples::AppendTrack(inner, song(77));
  track.objects.push_back(samples::RawObject(16, "feed://mhit/mhyp?mhip" + inner.TakeBytes()));
  const std::string bytes = samples::WriteLibrary(
      samples::OrdinaryLibrary({track, song(2)}, {list(u"All", {1, 2}, true)}), Variant::LittleEndian);
  EXPECT_THAT(Mended(bytes.substr(0, bytes.size() - 4)).ids, ElementsAre(1, 2));
}

TEST(Salvage, EntriesBehindDamageInsideTheirListAreFound) {
  const std::string bytes = database();
  const Mended mended(wiped(bytes, place(bytes, "mhip", 1), 8));
  EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 3), ElementsAre(3, 1)));
}

TEST(Salvage, EntriesOfAListThatIsLostGoToNoOther) {
  const std::string bytes = database();
  const Mended mended(wiped(bytes, place(bytes, "mhyp", 1), 12));
  EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2, 3)));
}

TEST(Salvage, LibraryListThatIsLostIsMadeOfAllSongs) {
  for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
    const std::string bytes = database(variant);
    const Mended mended(wiped(bytes, place(bytes, variant == Variant::LittleEndian ? "mhyp" : "hpim"), 12));
    EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2, 3), ElementsAre(3, 1))) << variant;
    EXPECT_EQ(mended.listsFound, 1U);
  }
}

samples::Library withBothSets() {
  samples::Playlist library = list(u"All", {1, 2}, true);
  samples::Playlist some = list(u"Some", {2, 1});
  library.words = {{0x1c, 11}};
  some.words = {{0x1c, 22}};
  samples::Playlist films = list(u"Films", {});
  films.words = {{0x1c, 33}, {0x50, 2}};
  samples::Library file;
  for (const uint32_t type : {1U, 3U, 2U, 5U}) file.sets.push_back({.type = type});
  file.sets[0].content = std::vector{song(1), song(2)};
  file.sets[1].content = file.sets[2].content = std::vector{library, some};
  file.sets[3].content = std::vector{films};
  return file;
}

TEST(Salvage, ListsThatAreLostAreTakenFromTheOtherSet) {
  const std::string bytes = samples::WriteLibrary(withBothSets(), Variant::LittleEndian);
  // The list itself, and the end of the file from it on.
  for (const std::string &damaged :
       {wiped(bytes, place(bytes, "mhyp", 3), 16), bytes.substr(0, place(bytes, "mhyp", 3) + 8),
        wiped(bytes, place(bytes, "mhip", 6), 16)}) {
    const Mended mended(damaged);
    EXPECT_THAT(mended.entries, ElementsAre(ElementsAre(1, 2), ElementsAre(2, 1)));
    EXPECT_EQ(mended.listsFound, 2U);
  }
}

TEST(Salvage, ListsOfCategoriesAreNotShown) {
  const std::string bytes = samples::WriteLibrary(withBothSets(), Variant::LittleEndian);
  EXPECT_EQ(Mended(wiped(bytes, place(bytes, "mhsd", 3), 0x60)).listsFound, 2U);
}

TEST(Salvage, HeadingsOfPodcastsStayInTheirGroups) {
  samples::Library file = withBothSets();
  samples::Playlist podcasts = list(u"Podcasts", {0, 1});
  podcasts.words = {{0x1c, 44}, {0x28, 0x10000}};
  podcasts.entries[0].words = {{0x10, 0x100}, {0x14, 9}};
  podcasts.entries[1].words = {{0x20, 9}};
  std::get<std::vector<samples::Playlist>>(file.sets[1].content).push_back(podcasts);
  podcasts.entries.erase(podcasts.entries.begin());
  std::get<std::vector<samples::Playlist>>(file.sets[2].content).push_back(podcasts);
  const std::string bytes = samples::WriteLibrary(file, Variant::LittleEndian);
  const Mended whole(bytes);
  EXPECT_THAT(whole.entries, ElementsAre(ElementsAre(1, 2), ElementsAre(2, 1), ElementsAre(1)));
  const PlaylistReader lists(whole.file.number(), whole.account);
  EXPECT_EQ(lists.podcastGroups(2).size(), 1U);
  // The flat list is lost, and comes from the groups.
  EXPECT_THAT(Mended(wiped(bytes, place(bytes, "mhyp", 5), 16)).entries,
              ElementsAre(ElementsAre(1, 2), ElementsAre(2, 1), ElementsAre(1)));
}

TEST(Salvage, OfBytesOfNoDatabaseFindsNothing) {
  samples::Random random(3);
  std::string noise(100'000, '\0');
  for (char &c : noise) c = static_cast<char>(random.Next());
  for (const std::string &bytes : {std::string(), std::string("mhit"), std::string(5000, 'm'), noise}) {
    const Salvage found = salvage(bytes);
    EXPECT_THAT(found.songs, IsEmpty());
    EXPECT_THAT(found.lists, IsEmpty());
  }
}

TEST(Salvage, FileIsReadWhole) {
  const carbon::Descriptor file(memfd_create("file", MFD_CLOEXEC));
  const std::string bytes = database() + std::string(200'000, 'x');
  writeAll(file.number(), bytes);
  EXPECT_EQ(readWhatCanBeRead(file.number()), bytes);
}

TEST(Salvage, WhatCannotBeReadIsZero) {
  const support::TemporaryFolder folder;
  // A folder has a size, and every read from it fails.
  const carbon::Descriptor file(open(folder.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  struct stat status {};
  ASSERT_EQ(fstat(file.number(), &status), 0);
  EXPECT_EQ(readWhatCanBeRead(file.number()), std::string(static_cast<size_t>(status.st_size), '\0'));
}

}  // namespace
}  // namespace player
