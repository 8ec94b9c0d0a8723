#include <cstring>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

constexpr const char *kCountSongs = "CountSongs As Integer";
constexpr const char *kCountPlayLists = "CountPlayLists As Integer";
constexpr const char *kCountInPlayList = "CountSongsInPlayList(playlist As Integer) As Integer";

std::string SmallLibrary(Variant variant = Variant::LittleEndian) {
  return samples::WriteLibrary(
      samples::OrdinaryLibrary({{.id = 1}, {.id = 2}},
                               {{.name = u"All", .entries = {{.ref = 1}, {.ref = 2}}},
                                {.name = u"Some", .entries = {{.ref = 2}, {.ref = 2}, {.ref = 1}}},
                                {.name = u"None"}}),
      variant);
}

class Lifecycle : public PluginTest {
 protected:
  int32_t Integer(REALobject object, const char *property) { return Host().Get<int32_t>(object, property); }
  int32_t Count(REALobject object, const char *declaration) {
    return Host().Call<int32_t>(object, declaration);
  }
  int32_t CountInPlayList(REALobject object, int32_t playlist) {
    return Host().Call<int32_t>(object, kCountInPlayList, playlist);
  }
  HostText VolumeName(REALobject object) { return Host().GetText(object, "VolumeName"); }

  // What host code can see of an object's state.
  struct Seen {
    int32_t error;
    int32_t libType;
    HostText volume;
    int32_t songs;
    int32_t playlists;
    friend bool operator==(const Seen &, const Seen &) = default;
  };
  Seen See(REALobject object) {
    return {Integer(object, "Error"), Integer(object, "LibType"), VolumeName(object),
            Count(object, kCountSongs), Count(object, kCountPlayLists)};
  }
};

TEST_F(Lifecycle, FreshObjectIsEmpty) {
  const REALobject object = Host().New();
  EXPECT_EQ(Integer(object, "Error"), 0);
  EXPECT_EQ(Integer(object, "LibType"), 0);
  EXPECT_EQ(Integer(object, "UseSJIS"), 0);
  EXPECT_EQ(Integer(object, "ResultEncode"), 0x08000100);
  EXPECT_EQ(VolumeName(object), kNullString);
  EXPECT_EQ(Integer(object, "ZerobasePlayerlist"), 0);
  EXPECT_EQ(Count(object, kCountSongs), 0);
  EXPECT_EQ(Count(object, kCountPlayLists), 0);
  EXPECT_EQ(CountInPlayList(object, 0), 0);
}

TEST_F(Lifecycle, ObjectWithoutADatabaseAnswersForAMissingOne) {
  const REALobject object = Host().NewRaw();
  Host().Set<int32_t>(object, "ZerobasePlayerlist", 1);
  EXPECT_EQ(Integer(object, "LibType"), -1);
  Host().Set<int32_t>(object, "UseSJIS", 1);
  EXPECT_EQ(Integer(object, "UseSJIS"), 0);
  EXPECT_EQ(VolumeName(object), kNullString);
  EXPECT_EQ(Count(object, kCountSongs), 0);
  EXPECT_EQ(Count(object, kCountPlayLists), 0) << "not -1: there is no table to count";
  EXPECT_EQ(CountInPlayList(object, 0), 0);
  Write(SmallLibrary());
  EXPECT_EQ(Load(object, Item(DatabasePath())), 0);
  EXPECT_EQ(Integer(object, "Error"), 0) << "a missing database leaves Error alone";
  EXPECT_EQ(Host().Count("REALFSSpecFromFolderItem"), 0U);
}

TEST_F(Lifecycle, DestructorMayRunOnAnObjectWithoutADatabase) {
  Host().Delete(Host().NewRaw());
  Host().Delete(Host().New());
}

TEST_F(Lifecycle, ConstructorReadsNothingOfABlockThatIsNotZero) {
  const REALobject object = Host().NewRaw();
  std::memset(Host().Data(object), 0x5A, static_cast<size_t>(Host().Class()->dataSize));
  Host().Call<void>(object, "Constructor");
  EXPECT_EQ(Integer(object, "Error"), 0x5A5A) << "left as the host handed it over";
  EXPECT_EQ(Integer(object, "LibType"), 0);
  EXPECT_EQ(Integer(object, "ResultEncode"), 0x08000100);
  EXPECT_EQ(Count(object, kCountSongs), 0);
  Write(SmallLibrary());
  EXPECT_EQ(Load(object, Item(DatabasePath())), 1) << "no load was tried before";
}

TEST_F(Lifecycle, ObjectsHaveDatabasesOfTheirOwn) {
  const REALobject first = Loaded(SmallLibrary());
  const REALobject second = Host().New();
  EXPECT_EQ(Count(second, kCountSongs), 0);
  Host().Delete(first);
  EXPECT_EQ(Count(second, kCountSongs), 0);
  EXPECT_EQ(Load(second, Item(DatabasePath())), 1);
  EXPECT_EQ(Count(second, kCountSongs), 2);
}

TEST_F(Lifecycle, LoadReadsTheFile) {
  const REALobject object = Loaded(SmallLibrary());
  EXPECT_EQ(Integer(object, "Error"), 0);
  EXPECT_EQ(Integer(object, "LibType"), 1);
  EXPECT_EQ(Count(object, kCountSongs), 2);
  EXPECT_EQ(Count(object, kCountPlayLists), 3);
  EXPECT_EQ(CountInPlayList(object, 0), 2);
  EXPECT_EQ(CountInPlayList(object, 1), 3);
  EXPECT_EQ(CountInPlayList(object, 2), 0);
}

TEST_F(Lifecycle, LoadLeavesTheFileClosedAndUnchanged) {
  const auto openFiles = [] {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
  };
  const REALobject object = Host().New();
  Write(SmallLibrary());
  const REALfolderItem item = Item(DatabasePath());
  const auto before = openFiles();
  EXPECT_EQ(Load(object, item), 1);
  EXPECT_EQ(openFiles(), before);
  std::ifstream file(DatabasePath(), std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), SmallLibrary());
}

TEST_F(Lifecycle, LoadOfNilSetsErrorAndBlocksNothing) {
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, nullptr), 0);
  EXPECT_EQ(Integer(object, "Error"), -50);
  EXPECT_EQ(Load(object, nullptr), 0);
  Write(SmallLibrary());
  EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
  EXPECT_EQ(Integer(object, "Error"), 0);
  EXPECT_EQ(Count(object, kCountSongs), 2);
}

TEST_F(Lifecycle, SecondLoadReturnsFalseAndLeavesEverythingAsTheFirstLeftIt) {
  const REALobject object = Loaded(SmallLibrary());
  const Seen before = See(object);
  (void)folder_.write("other", SmallLibrary(Variant::BigEndian));
  for (const REALfolderItem item : {Item(DatabasePath()), Item(folder_.path() / "other"), REALfolderItem()}) {
    EXPECT_EQ(Load(object, item), 0);
    EXPECT_EQ(See(object), before);
  }
}

TEST_F(Lifecycle, SecondLoadReturnsFalseAfterAFailedOneToo) {
  Write("no database at all");
  (void)folder_.write("good", SmallLibrary());
  const REALobject rejected = Host().New();
  EXPECT_EQ(Load(rejected, Item(DatabasePath())), 0);
  const REALobject missing = Host().New();
  EXPECT_EQ(Load(missing, Item(folder_.path() / "missing")), 0);
  const REALobject noSpec = Host().New();
  Host().specAnswer = 0;
  EXPECT_EQ(Load(noSpec, Item(DatabasePath())), 0);
  Host().specAnswer = 1;
  for (const REALobject object : {rejected, missing, noSpec}) {
    const Seen before = See(object);
    EXPECT_EQ(before.error, object == rejected ? 1 : -50);
    EXPECT_EQ(Load(object, Item(folder_.path() / "good")), 0);
    EXPECT_EQ(See(object), before);
    EXPECT_EQ(Load(object, nullptr), 0);
    EXPECT_EQ(See(object), before) << "not even -50 for nil";
  }
}

TEST_F(Lifecycle, LoadOfAnItemWithoutASpecificationSetsErrorMinus50) {
  Write(SmallLibrary());
  const REALobject object = Host().New();
  Host().specAnswer = 0;
  EXPECT_EQ(Load(object, Item(DatabasePath())), 0);
  EXPECT_EQ(Integer(object, "Error"), -50);
}

TEST_F(Lifecycle, LoadInAHostWithoutSpecificationsSetsErrorMinus50) {
  Write(SmallLibrary());
  const REALobject object = Host().New();
  Host().missing = {"REALFSSpecFromFolderItem"};
  EXPECT_EQ(Load(object, Item(DatabasePath())), 0);
  EXPECT_EQ(Integer(object, "Error"), -50);
}

TEST_F(Lifecycle, LoadOfAMissingFileSetsErrorMinus50) {
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, Item(folder_.path() / "missing")), 0);
  EXPECT_EQ(Integer(object, "Error"), -50);
  EXPECT_EQ(VolumeName(object), kNullString);
}

TEST_F(Lifecycle, LoadOfAFileThatDoesNotOpenSetsErrorMinus50) {
  const std::string path = folder_.path() / "socket";  // nobody may open one, not even the superuser
  ASSERT_EQ(mknod(path.c_str(), S_IFSOCK | 0600, 0), 0);
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, Item(path)), 0);
  EXPECT_EQ(Integer(object, "Error"), -50);
}

TEST_F(Lifecycle, LoadOfARejectedFileSetsError1AndNoVolumeName) {
  for (const std::string &bytes : {std::string(), std::string("mhbd"), std::string(100, 'x')}) {
    Write(bytes);
    const REALobject object = Host().New();
    EXPECT_EQ(Load(object, Item(DatabasePath())), 0);
    EXPECT_EQ(Integer(object, "Error"), 1);
    EXPECT_EQ(VolumeName(object), kNullString);
    EXPECT_EQ(Count(object, kCountSongs), 0);
  }
}

TEST_F(Lifecycle, LoadOfADirectorySetsAnError) {
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, Item(folder_.path())), 0);
  EXPECT_EQ(Integer(object, "Error"), 1) << "a directory opens, but cannot be read";
}

TEST_F(Lifecycle, VolumeNameIsWhatStandsBeforeTheControlFolder) {
  Write(SmallLibrary());
  const auto volumeFor = [&](const std::optional<std::string> &path) {
    Host().pathOfItems = [path] { return path; };
    const REALobject object = Host().New();
    EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
    return VolumeName(object);
  };
  EXPECT_EQ(volumeFor("MyPod:iPod_Control:iTunes:iTunesDB"), Text("MyPod", kUntagged));
  EXPECT_EQ(volumeFor("My Disk:Music:iTunesDB"), Text("My Disk:Music:iTunesDB", kUntagged));
  EXPECT_EQ(volumeFor("A:iPod_Control:B:iPod_Control:iTunesDB"), Text("A", kUntagged));
  EXPECT_EQ(volumeFor("A:iPod_Controls"), Text("A", kUntagged));
  EXPECT_EQ(volumeFor("iPod_Control:iTunesDB"), Text("iPod_Control:iTunesDB", kUntagged));
  EXPECT_EQ(volumeFor("A:ipod_control:iTunesDB"), Text("A:ipod_control:iTunesDB", kUntagged));
  EXPECT_EQ(volumeFor(":iPod_Control:iTunesDB"), kNullString);
  EXPECT_EQ(volumeFor(""), kNullString);
  EXPECT_EQ(volumeFor(std::nullopt), kNullString);
  EXPECT_EQ(volumeFor("\xe9\x9f\xb3:iPod_Control"), Text("\xe9\x9f\xb3", kUntagged));
  EXPECT_EQ(volumeFor(std::string(3000, 'v')), Text(std::string(3000, 'v'), kUntagged));
}

TEST_F(Lifecycle, VolumeNameStaysEmptyInAHostWithoutPaths) {
  Write(SmallLibrary());
  const REALobject object = Host().New();
  Host().missing = {"REALpathFromFolderItem"};
  EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
  EXPECT_EQ(VolumeName(object), kNullString);
}

TEST_F(Lifecycle, VolumeNameOfABigEndianFileIsTheFilesOwnName) {
  const std::string path = folder_.write("Library.itl", SmallLibrary(Variant::BigEndian));
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, Item(path)), 1);
  EXPECT_EQ(Integer(object, "LibType"), 0);
  EXPECT_EQ(VolumeName(object), Text("Library.itl", kUntagged));
  EXPECT_EQ(Host().Count("REALpathFromFolderItem"), 0U);
}

TEST_F(Lifecycle, VolumeNameIsANewStringEachTime) {
  const REALobject object = Loaded(SmallLibrary());
  const auto first = Host().Get<REALstring>(object, "VolumeName");
  const auto second = Host().Get<REALstring>(object, "VolumeName");
  EXPECT_NE(first, second);
  EXPECT_EQ(Host().Take(first), Text("iPod", kUntagged));
  EXPECT_EQ(Host().Take(second), Text("iPod", kUntagged));
}

TEST_F(Lifecycle, OtherMethodsLeaveErrorAlone) {
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, nullptr), 0);
  (void)See(object);
  (void)CountInPlayList(object, 5);
  Host().Set<int32_t>(object, "ResultEncode", 5);
  EXPECT_EQ(Host().CallText(object, "GetTitle(index As Integer) As String", 7), kNullString);
  EXPECT_EQ(Integer(object, "Error"), -50);
}

TEST_F(Lifecycle, ErrorIsSignExtended) {
  const REALobject object = Host().New();
  constexpr int16_t kNoMemory = -108;
  std::memcpy(Host().Data(object), &kNoMemory, sizeof kNoMemory);
  EXPECT_EQ(Integer(object, "Error"), -108);
}

TEST_F(Lifecycle, CountPlayListsOfAFreshObjectIsMinus1WithZerobasePlayerlist) {
  const REALobject object = Host().New();
  EXPECT_EQ(Count(object, kCountPlayLists), 0);
  Host().Set<int32_t>(object, "ZerobasePlayerlist", 1);
  EXPECT_EQ(Count(object, kCountPlayLists), -1);
}

TEST_F(Lifecycle, ZerobasePlayerlistHidesTheFirstPlaylist) {
  const REALobject object = Loaded(SmallLibrary());
  Host().Set<int32_t>(object, "ZerobasePlayerlist", 1);
  EXPECT_EQ(Count(object, kCountPlayLists), 2);
  EXPECT_EQ(CountInPlayList(object, 0), 3);
  EXPECT_EQ(CountInPlayList(object, 1), 0);
  EXPECT_EQ(CountInPlayList(object, 2), 0);
  EXPECT_EQ(CountInPlayList(object, -1), 2) << "the first one is still there, at -1";
}

TEST_F(Lifecycle, CountSongsInPlayListIsZeroOutOfRange) {
  const REALobject object = Loaded(SmallLibrary());
  for (const int32_t zeroBase : {0, 1}) {
    Host().Set<int32_t>(object, "ZerobasePlayerlist", zeroBase);
    for (const int32_t playlist : {-2, 3, 4, INT32_MAX, INT32_MAX - 1, INT32_MIN}) {
      EXPECT_EQ(CountInPlayList(object, playlist), 0) << playlist;
    }
  }
}

TEST_F(Lifecycle, ZerobasePlayerlistIsSharedByAllObjects) {
  const REALobject first = Loaded(SmallLibrary());
  const REALobject second = Host().New();
  Host().Set<int32_t>(second, "ZerobasePlayerlist", 1);
  EXPECT_EQ(Integer(first, "ZerobasePlayerlist"), 1);
  EXPECT_EQ(Count(first, kCountPlayLists), 2);
  Host().Delete(second);
  const REALobject third = Host().New();
  EXPECT_EQ(Integer(third, "ZerobasePlayerlist"), 1) << "no new object and no end of one resets it";
  EXPECT_EQ(Load(third, Item(DatabasePath())), 1);
  EXPECT_EQ(Count(third, kCountPlayLists), 2) << "nor does a load";
  Host().Set<int32_t>(first, "ZerobasePlayerlist", 0);
  EXPECT_EQ(Count(third, kCountPlayLists), 3);
}

TEST_F(Lifecycle, BooleanPropertiesTakeAnyNonzeroValueForTrue) {
  const REALobject object = Host().New();
  for (const char *property : {"UseSJIS", "ZerobasePlayerlist"}) {
    for (const int32_t value : {1, 2, -1, 256, INT32_MIN}) {
      Host().Set<int32_t>(object, property, value);
      EXPECT_EQ(Integer(object, property), 1) << property << value;
      Host().Set<int32_t>(object, property, 0);
      EXPECT_EQ(Integer(object, property), 0);
    }
  }
}

TEST_F(Lifecycle, ResultEncodeTakesAnyValue) {
  const REALobject object = Host().New();
  for (const int32_t value : {0, 1, -1, 0x0100, INT32_MIN, INT32_MAX}) {
    Host().Set<int32_t>(object, "ResultEncode", value);
    EXPECT_EQ(Integer(object, "ResultEncode"), value);
  }
}

TEST_F(Lifecycle, PropertiesSetBeforeLoadHoldAfterIt) {
  Write(SmallLibrary());
  const REALobject object = Host().New();
  Host().Set<int32_t>(object, "UseSJIS", 1);
  Host().Set<int32_t>(object, "ResultEncode", 0x0100);
  EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
  EXPECT_EQ(Integer(object, "UseSJIS"), 1);
  EXPECT_EQ(Integer(object, "ResultEncode"), 0x0100);
}

TEST_F(Lifecycle, UseSJISAndResultEncodeAreEachObjectsOwn) {
  const REALobject first = Host().New();
  const REALobject second = Host().New();
  Host().Set<int32_t>(first, "UseSJIS", 1);
  Host().Set<int32_t>(first, "ResultEncode", 7);
  EXPECT_EQ(Integer(second, "UseSJIS"), 0);
  EXPECT_EQ(Integer(second, "ResultEncode"), 0x08000100);
}

TEST_F(Lifecycle, LoadKeepsNoReferenceToItsItem) {
  Write(SmallLibrary());
  const REALobject object = Host().New();
  const REALfolderItem item = Host().MakeItem(DatabasePath());
  EXPECT_EQ(Load(object, item), 1);
  EXPECT_EQ(Host().LiveItems(), 1U);
  Host().Release(item);
  EXPECT_EQ(Count(object, kCountSongs), 2);
  Host().Delete(object);
}

TEST_F(Lifecycle, FileWithAJapaneseNameLoads) {
  const std::string path =
      folder_.write("\xe9\x9f\xb3\xe6\xa5\xbd/\xe5\x9b\xb3\xe6\x9b\xb8", SmallLibrary(Variant::BigEndian));
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, Item(path)), 1);
  EXPECT_EQ(VolumeName(object), Text("\xe5\x9b\xb3\xe6\x9b\xb8", kUntagged));
}

}  // namespace
}  // namespace plugin_test
