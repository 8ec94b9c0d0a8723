// What is known of playlists, of both byte orders.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "platform/carbon/Descriptor.h"
#include "player/Playlists.h"
#include "samples/SmartObjects.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

using samples::Playlist;
using samples::Variant;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t kMadeIn2005 = 3187296000;

// A file that is open while its lists are read.
class OpenLists {
 public:
  explicit OpenLists(const std::string &bytes)
      : file_(open(folder_.write("db", bytes).c_str(), O_RDONLY | O_CLOEXEC)),
        lists_(file_.number(), walkChunks(file_.number())) {}

  const PlaylistReader *operator->() const { return &lists_; }

 private:
  support::TemporaryFolder folder_;
  carbon::Descriptor file_;
  PlaylistReader lists_;
};

std::string fileOf(std::vector<Playlist> lists, Variant variant = Variant::LittleEndian) {
  return WriteLibrary(samples::OrdinaryLibrary({}, std::move(lists)), variant);
}

Playlist withWords(std::map<uint32_t, uint32_t> words) {
  return {.name = u"List", .words = std::move(words)};
}

TEST(PlaylistsTest, HeaderSaysKindDatesOrderAndIds) {
  const OpenLists lists(fileOf({{.name = u"All", .master = true},
                                withWords({{0x18, kMadeIn2005},
                                           {0x1c, 1},
                                           {0x20, 2},
                                           {0x2c, 5},
                                           {0x30, 7},
                                           {0x34, 0},
                                           {0x58, kMadeIn2005 + 1}}),
                                withWords({{0x28, 1U << 16}}),
                                withWords({{0x28, 1U << 24}})}));
  ASSERT_EQ(lists->count(), 4U);
  EXPECT_EQ(lists->facts(0).kind, PlaylistKind::Library);
  const PlaylistFacts facts = lists->facts(1);
  EXPECT_EQ(facts.kind, PlaylistKind::Ordinary);
  EXPECT_EQ(facts.created, kMadeIn2005);
  EXPECT_EQ(facts.modified, kMadeIn2005 + 1);
  EXPECT_EQ(facts.sortOrder, 5U);
  EXPECT_EQ(facts.persistentId, 0x200000001U);
  EXPECT_EQ(facts.folder, 7U);
  EXPECT_EQ(facts.rules, std::nullopt);
  EXPECT_EQ(lists->facts(2).kind, PlaylistKind::Podcasts);
  EXPECT_EQ(lists->facts(3).kind, PlaylistKind::Folder);
  EXPECT_EQ(lists->facts(3).created, std::nullopt);
  EXPECT_EQ(lists->facts(3).persistentId, std::nullopt);
}

TEST(PlaylistsTest, FieldThatTheHeaderIsTooShortForIsUnknown) {
  Playlist list = withWords({{0x18, kMadeIn2005}, {0x2c, 5}, {0x58, kMadeIn2005}});
  list.headerLength = 0x2e;
  const OpenLists lists(fileOf({{}, list}));
  EXPECT_EQ(lists->facts(1).created, kMadeIn2005);
  EXPECT_EQ(lists->facts(1).sortOrder, std::nullopt);
  EXPECT_EQ(lists->facts(1).modified, std::nullopt);
}

TEST(PlaylistsTest, DesktopListHasItsOwnPlaces) {
  Playlist list = withWords({{0x1c, kMadeIn2005}, {0x1b8, 1}, {0x1bc, 2}, {0x2c, 5}});
  list.objects = SmartObjects(Variant::BigEndian, {.limited = true, .limit = 7},
                              {{.field = 7, .action = kIs, .from = {.value = 1999}}});
  const OpenLists lists(fileOf({{}, list}, Variant::BigEndian));
  const PlaylistFacts facts = lists->facts(1);
  EXPECT_EQ(facts.kind, PlaylistKind::Smart);
  EXPECT_EQ(facts.created, kMadeIn2005);
  EXPECT_EQ(facts.persistentId, 0x100000002U);
  EXPECT_EQ(facts.sortOrder, std::nullopt);
  ASSERT_TRUE(facts.rules);
  EXPECT_EQ(facts.rules->limit, 7U);
  EXPECT_EQ(facts.rules->groups[0].rules[0].from.value, 1999U);
}

TEST(PlaylistsTest, ListWithRulesIsSmart) {
  Playlist list{.name = u"Smart"};
  list.objects = SmartObjects(Variant::LittleEndian, {.limited = true, .unit = 1, .limit = 90},
                              {{.field = 4, .action = kTextAction | kContains, .text = u"Bach"}});
  const OpenLists lists(fileOf({list, list}));
  EXPECT_EQ(lists->facts(0).kind, PlaylistKind::Library);
  const PlaylistFacts facts = lists->facts(1);
  EXPECT_EQ(facts.kind, PlaylistKind::Smart);
  ASSERT_TRUE(facts.rules);
  EXPECT_EQ(facts.rules->limitUnit, LimitUnit::Minutes);
  EXPECT_EQ(facts.rules->groups[0].rules[0].text, "Bach");
}

TEST(PlaylistsTest, RulesBehindAnObjectOfAnImpossibleLengthAreLost) {
  Playlist list{.name = u"Smart"};
  list.objects = SmartObjects(Variant::LittleEndian, {}, {{.field = 7, .action = kIs}});
  list.objects[0].totalLength = 0x17;
  const OpenLists lists(fileOf({{}, list}));
  EXPECT_EQ(lists->facts(1).rules, std::nullopt);
}

TEST(PlaylistsTest, SongsStandInTheirOrderInsideAndBesideTheirObjects) {
  for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
    Playlist list{.name = u"List"};
    for (const uint32_t song : {7U, 5U, 7U})
      list.entries.push_back({.ref = song, .objects = {PositionObject(variant, song)}});
    const OpenLists lists(fileOf({list, {.name = u"Other", .entries = {{.ref = 9}}}}, variant));
    EXPECT_THAT(lists->songIds(0), ElementsAre(7, 5, 7));
    EXPECT_THAT(lists->songIds(1), ElementsAre(9));
    EXPECT_THAT(lists->podcastGroups(0), IsEmpty());
  }
}

// The list of podcasts as it stands in the sets 2 and 3.
std::string withPodcasts(std::vector<samples::Entry> grouped, uint32_t id = 5) {
  Playlist list = withWords({{0x1c, 5}, {0x28, 1U << 16}});
  list.entries = {{.ref = 1}, {.ref = 2}, {.ref = 3}};
  Playlist other = withWords({{0x1c, id}, {0x28, 1U << 16}});
  other.entries = std::move(grouped);
  samples::Library library;
  library.sets.push_back({.type = 3, .content = std::vector<Playlist>{{.name = u"All"}, other}});
  library.sets.push_back({.type = 2, .content = std::vector<Playlist>{{.name = u"All"}, list}});
  return WriteLibrary(library, Variant::LittleEndian);
}

samples::Entry heading(uint32_t id, std::u16string name) {
  return {.ply = 0x100, .objects = {samples::TextObject(1, std::move(name))}, .words = {{0x14, id}}};
}

TEST(PlaylistsTest, EpisodesStandUnderTheHeadingsOfTheirPodcasts) {
  const OpenLists lists(withPodcasts({heading(50, u"News"),
                                      {.ref = 2, .words = {{0x14, 51}, {0x20, 50}}},
                                      heading(60, u"Tales"),
                                      {.ref = 3, .words = {{0x20, 60}}},
                                      {.ref = 1, .words = {{0x20, 50}}}}));
  const auto groups = lists->podcastGroups(1);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].name, "News");
  EXPECT_THAT(groups[0].songs, ElementsAre(2, 1));
  EXPECT_EQ(groups[1].name, "Tales");
  EXPECT_THAT(groups[1].songs, ElementsAre(3));
  EXPECT_THAT(lists->songIds(1), ElementsAre(1, 2, 3));
}

TEST(PlaylistsTest, EpisodesWithoutAHeadingHaveAGroupWithoutAName) {
  const OpenLists lists(withPodcasts({{.ref = 2, .words = {{0x20, 50}}}, {.ref = 3}}));
  const auto groups = lists->podcastGroups(1);
  ASSERT_EQ(groups.size(), 2U);
  EXPECT_EQ(groups[0].name, "");
  EXPECT_THAT(groups[0].songs, ElementsAre(2));
}

TEST(PlaylistsTest, GroupsOfAnotherListAreNotTaken) {
  const OpenLists lists(withPodcasts({heading(50, u"News")}, 6));
  EXPECT_THAT(lists->podcastGroups(1), IsEmpty());
}

// The entries of a list follow its objects; an object may state a length that reaches over the next list's
// header.
TEST(PlaylistsTest, EntriesOfTheNextListAreNotThoseOfAListThatReachesOverIt) {
  Playlist one = withWords({});
  one.entries = {{.ref = 1}};
  Playlist other = withWords({});
  other.entries = {{.ref = 2}, {.ref = 3}};
  std::string bytes = fileOf({one, other});
  support::TemporaryFolder folder;
  const carbon::Descriptor whole(open(folder.write("whole", bytes).c_str(), O_RDONLY | O_CLOEXEC));
  FileAccount account = walkChunks(whole.number());
  ASSERT_EQ(account.playlistsAt.size(), 2U);
  const size_t object = bytes.find("mhod", account.playlistsAt[0]);
  const size_t entry = bytes.find("mhip", account.playlistsAt[1]);
  const auto length = static_cast<uint32_t>(entry - object);
  for (size_t i = 0; i < 4; ++i) bytes[object + 8 + i] = static_cast<char>(length >> 8 * i);
  const carbon::Descriptor reaching(open(folder.write("reaching", bytes).c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_THAT(PlaylistReader(reaching.number(), account).songIds(0), IsEmpty());
  EXPECT_THAT(PlaylistReader(reaching.number(), account).songIds(1), ElementsAre(2, 3));
  account.playlistsAt.pop_back();
  EXPECT_THAT(PlaylistReader(reaching.number(), account).songIds(0), ElementsAre(2, 3));  // no list follows
}

TEST(PlaylistsTest, FileCutAnywhereGivesWhatIsThere) {
  const std::string whole = withPodcasts({heading(50, u"News"), {.ref = 2, .words = {{0x20, 50}}}});
  for (size_t size = 0; size < whole.size(); size += 7) {
    const OpenLists lists(whole.substr(0, size));
    for (size_t list = 0; list < lists->count(); ++list) {
      EXPECT_FALSE(lists->facts(list).rules);
      EXPECT_LE(lists->songIds(list).size(), 3U);
      EXPECT_LE(lists->podcastGroups(list).size(), 1U);
    }
  }
}

}  // namespace
}  // namespace player
