#include <array>
#include <string>

#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

constexpr const char *kAbsolutePathOf = "GetAbsolutePath(path As String) As String";
constexpr const char *kAbsolutePath = "GetAbsolutePath(index As Integer) As String";
constexpr const char *kAbsolutePath2 = "GetAbsolutePath2(index As Integer) As String";
constexpr const char *kFolderItem = "GetFolderItem(index As Integer) As FolderItem";

class Paths : public PluginTest {
 protected:
  // An object with one song of this path, from a player's file.
  REALobject WithPath(const std::u16string &path) {
    samples::Track track;
    track.id = 52;
    track.objects = samples::SongObjects(Variant::LittleEndian, {.path = path});
    return Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({track}, {{.entries = {{.ref = 52}}}}),
                                        Variant::LittleEndian));
  }

  HostText AbsolutePathOf(REALobject object, std::string_view bytes, uint32_t encoding = kUtf8) {
    const REALstring path = Host().MakeString(bytes, encoding);
    HostText joined = Host().CallText(object, kAbsolutePathOf, path);
    Host().Release(path);
    return joined;
  }

  // The path of the item that GetFolderItem answers; the null string for nil.
  HostText PathOfFolderItem(REALobject object) {
    const auto item = Host().Call<REALfolderItem>(object, kFolderItem, 0);
    if (item == nullptr) return kNullString;
    const FSSpec spec = Host().SpecOf(item);
    Host().Release(item);
    std::array<char, 1024> path{};
    if (CarbonPathFromSpec(&spec, path.data(), path.size()) != noErr) return kNullString;
    return Text(path.data());
  }
};

TEST_F(Paths, AbsolutePathIsTheVolumesNameAndThePath) {
  const REALobject object = WithPath(u":iPod_Control:Music:F00:A.mp3");
  const HostText expected = Text("iPod:iPod_Control:Music:F00:A.mp3", kUntagged);
  EXPECT_EQ(AbsolutePathOf(object, ":iPod_Control:Music:F00:A.mp3"), expected);
  EXPECT_EQ(Host().CallText(object, kAbsolutePath, 0), expected);
  EXPECT_EQ(Host().CallText(object, "GetAbsolutePath(playlist As Integer, index As Integer) As String", 0, 0),
            expected);
  EXPECT_EQ(Host().CallText(object, "GetReferAbsolutePath(trackID As Integer) As String", 52), expected);
}

TEST_F(Paths, AbsolutePathAddsAndRemovesNoSeparator) {
  const REALobject object = WithPath(u"a");
  EXPECT_EQ(AbsolutePathOf(object, "a"), Text("iPoda", kUntagged));
  EXPECT_EQ(AbsolutePathOf(object, "::a:"), Text("iPod::a:", kUntagged));
  EXPECT_EQ(AbsolutePathOf(object, std::string_view("\0x", 2)), Text(std::string("iPod\0x", 6), kUntagged));
}

TEST_F(Paths, AbsolutePathOfAnEmptyPathOrNilIsTheNullString) {
  const REALobject object = WithPath(u":a");
  EXPECT_EQ(AbsolutePathOf(object, ""), kNullString);
  EXPECT_EQ(Host().CallText(object, kAbsolutePathOf, REALstring()), kNullString);
  const REALobject big = Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({}, {}), Variant::BigEndian));
  EXPECT_EQ(AbsolutePathOf(big, ""), kNullString);
  EXPECT_EQ(Host().CallText(big, kAbsolutePathOf, REALstring()), kNullString);
}

TEST_F(Paths, AbsolutePathOfABigEndianFileIsThePathUnchanged) {
  const REALobject object =
      Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({}, {}), Variant::BigEndian));
  EXPECT_EQ(Host().GetText(object, "VolumeName"), Text("iTunesDB", kUntagged));
  for (const std::string &path :
       {std::string("x"), std::string("Disk:Music:a.mp3"), std::string("a\0b", 3), std::string(70000, 'p')}) {
    EXPECT_EQ(AbsolutePathOf(object, path), Text(path, kUntagged));
  }
}

TEST_F(Paths, AbsolutePathUsesAnEmptyVolumeNameAsItIs) {
  Host().pathOfItems = [] { return std::nullopt; };
  const REALobject object = WithPath(u":a");
  EXPECT_EQ(AbsolutePathOf(object, ":a"), Text(":a", kUntagged));
  Host().pathOfItems = nullptr;
}

TEST_F(Paths, AbsolutePathOfLongNamesIsNeverCut) {
  Host().pathOfItems = [] { return std::string(1000, 'v') + ":iPod_Control:iTunes:iTunesDB"; };
  const REALobject object = WithPath(u":a");
  EXPECT_EQ(AbsolutePathOf(object, std::string(1000, 'p')),
            Text(std::string(1000, 'v') + std::string(1000, 'p'), kUntagged));
}

TEST_F(Paths, AbsolutePathTakesTheSongsPathInTheResultEncoding) {
  const REALobject object = WithPath(u":caf\u00e9");
  EXPECT_EQ(Host().CallText(object, kAbsolutePath, 0), Text("iPod:caf\xc3\xa9", kUntagged));
  Host().Set<int32_t>(object, "ResultEncode", kAscii);
  EXPECT_EQ(Host().CallText(object, kAbsolutePath, 0), Text("iPod:caf\xe9", kUntagged));
  Host().Set<int32_t>(object, "ResultEncode", kUtf16);
  EXPECT_EQ(Host().CallText(object, kAbsolutePath, 0),
            Text(std::string("iPod\0:\0c\0a\0f\0\xe9", 14), kUntagged));
}

TEST_F(Paths, AbsolutePathTouchesNoFile) {
  const REALobject object = WithPath(u":no:such:file");
  Host().Forget();
  EXPECT_EQ(Host().CallText(object, kAbsolutePath, 0), Text("iPod:no:such:file", kUntagged));
  EXPECT_EQ(Host().Count("FolderItemFromFSSpec"), 0U);
  EXPECT_EQ(Host().Count("REALpathFromFolderItem"), 0U);
}

TEST_F(Paths, FolderItemNamesTheSongsFile) {
  (void)folder_.write("iPod_Control/Music/A.mp3", "x");
  const REALobject object = WithPath(u":iPod_Control:Music:A.mp3");
  EXPECT_EQ(PathOfFolderItem(object), Text("iPod:iPod_Control:Music:A.mp3"));
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), Text("iPod:iPod_Control:Music:A.mp3"));
}

TEST_F(Paths, FolderItemNamesAFileThatDoesNotExistYet) {
  (void)folder_.makeDirectory("iPod_Control/Music");
  const REALobject object = WithPath(u":iPod_Control:Music:new.mp3");
  EXPECT_EQ(PathOfFolderItem(object), Text("iPod:iPod_Control:Music:new.mp3"));
  EXPECT_EQ(Host().Get<int32_t>(object, "Error"), 0);
}

TEST_F(Paths, FolderItemOfAPathThatCannotBeDescribedIsGivenAsAnEmptySpecification) {
  const REALobject object = WithPath(u":no:such:folder:A.mp3");
  Host().Forget();
  EXPECT_EQ(PathOfFolderItem(object), kNullString);
  EXPECT_EQ(Host().Count("FolderItemFromFSSpec"), 1U);
  const FSSpec &spec = Host().LastSpec();
  EXPECT_EQ(spec.vRefNum, 0);
  EXPECT_EQ(spec.parID, 0);
  for (const uint8_t byte : spec.name) EXPECT_EQ(byte, 0);
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), kNullString);
}

TEST_F(Paths, FolderItemOfASongWithoutAPathIsNil) {
  const REALobject object = WithPath(u"");
  Host().Forget();
  EXPECT_EQ(PathOfFolderItem(object), kNullString);
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), kNullString);
  EXPECT_EQ(Host().Count("FolderItemFromFSSpec"), 0U);
  EXPECT_EQ(Host().Count("REALpathFromFolderItem"), 0U);
}

// A path below the volume's root that makes iPod:... this long, with its folders on disk.
std::u16string PathOfLength(const support::TemporaryFolder &folder, size_t total) {
  std::string mac;
  std::string posix;
  size_t left = total - 4;  // "iPod"
  while (left > 1) {
    const size_t name = std::min<size_t>(left - 1, 50);
    mac += ':';
    mac.append(name, 'n');
    left -= name + 1;
    if (left > 1) posix.append(name, 'n') += '/';
  }
  mac += std::string(left, 'n');
  (void)folder.makeDirectory(posix);
  return {mac.begin(), mac.end()};
}

TEST_F(Paths, FolderItemOfAPathOf255BytesIsMadeWhole) {
  const std::u16string path = PathOfLength(folder_, 255);
  const REALobject object = WithPath(path);
  ASSERT_EQ(Host().CallText(object, kAbsolutePath, 0).bytes.size(), 255U);
  EXPECT_EQ(PathOfFolderItem(object), Text("iPod" + std::string(path.begin(), path.end())));
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0).bytes.size(), 255U);
}

TEST_F(Paths, FolderItemOfALongerPathIsNil) {
  for (const size_t length : {size_t{256}, size_t{257}, size_t{511}, size_t{512}, size_t{600}}) {
    const REALobject object = WithPath(PathOfLength(folder_, length));
    ASSERT_EQ(Host().CallText(object, kAbsolutePath, 0).bytes.size(), length);
    Host().Forget();
    EXPECT_EQ(PathOfFolderItem(object), kNullString);
    EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), kNullString);
    EXPECT_EQ(Host().Count("FolderItemFromFSSpec"), 0U);
  }
}

TEST_F(Paths, AbsolutePath2IsWhatTheHostSays) {
  const REALobject object = WithPath(u":A.mp3");
  Host().pathOfItems = [] { return "/some/other/form"; };
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), Text("/some/other/form"));
  EXPECT_EQ(Host().CallText(object, "GetReferAbsolutePath2(trackID As Integer) As String", 52),
            Text("/some/other/form"));
  Host().pathOfItems = [] { return std::nullopt; };
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), kNullString);
  Host().pathOfItems = nullptr;
}

TEST_F(Paths, AreTheNullStringOrNilForASongThatDoesNotExist) {
  const REALobject object = WithPath(u":A.mp3");
  for (const int32_t index : {-1, 1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(Host().CallText(object, kAbsolutePath, index), kNullString);
    EXPECT_EQ(Host().CallText(object, kAbsolutePath2, index), kNullString);
    EXPECT_EQ(Host().Call<REALfolderItem>(object, kFolderItem, index), nullptr);
  }
  EXPECT_EQ(Host().Get<int32_t>(object, "Error"), 0);
}

TEST_F(Paths, OfPlaylistAndReferenceFormsFallBackToTheFirstSong) {
  const REALobject object = WithPath(u":A.mp3");
  const HostText first = Text("iPod:A.mp3", kUntagged);
  EXPECT_EQ(Host().CallText(object, "GetAbsolutePath(playlist As Integer, index As Integer) As String", 0, 9),
            first);
  EXPECT_EQ(Host().CallText(object, "GetReferAbsolutePath(trackID As Integer) As String", 9), first);
}

TEST_F(Paths, OfABigEndianFileAreTheLocationsTold) {
  samples::Track track;
  track.objects = samples::SongObjects(Variant::BigEndian, {.path = u"iPod:A.mp3"});
  const REALobject object =
      Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), Variant::BigEndian));
  EXPECT_EQ(Host().CallText(object, kAbsolutePath, 0), Text("iPod:A.mp3", kUntagged));
  EXPECT_EQ(Host().CallText(object, kAbsolutePath2, 0), Text("iPod:A.mp3"));
}

}  // namespace
}  // namespace plugin_test
