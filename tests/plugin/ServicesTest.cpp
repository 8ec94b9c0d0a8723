#include <functional>
#include <string>

#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

using testing::IsEmpty;

class Services : public PluginTest {
 protected:
  static std::string Library() {
    const samples::SongTexts texts{.title = u"Night", .path = u":iPod_Control:Music:A.mp3"};
    return samples::WriteLibrary(
        samples::OrdinaryLibrary({{.objects = samples::SongObjects(Variant::LittleEndian, texts)}}, {}),
        Variant::LittleEndian);
  }

  HostText Title() { return Host().CallText(object_, "GetTitle(index As Integer) As String", 0); }
  int32_t TitleEncode() {
    return Host().Call<int32_t>(object_, "GetTitleEncode(index As Integer) As Integer", 0);
  }
  void SetTitle(std::string_view text, uint32_t encoding) {
    const REALstring string = Host().MakeString(text, encoding);
    Host().Call<void>(object_, "SetTitle(index As Integer, name As String)", 0, string);
    Host().Release(string);
  }
  HostText Path2() { return Host().CallText(object_, "GetAbsolutePath2(index As Integer) As String", 0); }

  // A look-up that fails is tried again by the next call; one that succeeds is never made again.
  void ExpectLookedUpUntilFound(const std::string &service, const std::function<bool()> &works) {
    const std::string lookUp = "? " + service;
    Host().missing = {service};
    EXPECT_FALSE(works());
    const size_t once = Host().Count(lookUp);
    EXPECT_GE(once, 1U);
    EXPECT_FALSE(works());
    EXPECT_GT(Host().Count(lookUp), once);
    EXPECT_EQ(Host().Count(service), 0U);
    Host().missing.clear();
    EXPECT_TRUE(works());
    EXPECT_GE(Host().Count(service), 1U);
    const size_t found = Host().Count(lookUp);
    Host().missing = {service};
    EXPECT_TRUE(works());
    EXPECT_EQ(Host().Count(lookUp), found);
  }

  REALobject object_ = nullptr;
};

TEST_F(Services, BuildStringIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  ExpectLookedUpUntilFound("REALBuildString", [&] { return !Title().isNull; });
}

TEST_F(Services, ConvertStringIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  ExpectLookedUpUntilFound("REALConvertString", [&] { return Title() == Text("Night"); });
}

TEST_F(Services, SetStringEncodingIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  Host().Set<int32_t>(object_, "ResultEncode", kUtf16);
  ExpectLookedUpUntilFound("REALSetStringEncoding", [&] {
    const HostText title = Title();
    EXPECT_EQ(title.bytes.size(), 10U) << "without the service the string only stays untagged";
    return title.encoding == kUtf16;
  });
}

TEST_F(Services, GetStringEncodingIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  ExpectLookedUpUntilFound("REALGetStringEncoding", [&] {
    SetTitle("x", kUtf8);
    const int32_t code = TitleEncode();
    EXPECT_TRUE(code == 0 || code == kUtf8) << "0 stands for what cannot be asked";
    return code == kUtf8;
  });
}

TEST_F(Services, FolderItemFromFSSpecIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  (void)folder_.write("iPod_Control/Music/A.mp3");
  ExpectLookedUpUntilFound("FolderItemFromFSSpec", [&] { return !Path2().isNull; });
}

TEST_F(Services, PathFromFolderItemIsLookedUpUntilFound) {
  Write(Library());
  ExpectLookedUpUntilFound("REALpathFromFolderItem", [&] {
    const REALobject object = Host().New();
    EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
    return !Host().GetText(object, "VolumeName").isNull;
  });
}

TEST_F(Services, FSSpecFromFolderItemIsLookedUpUntilFound) {
  Write(Library());
  ExpectLookedUpUntilFound("REALFSSpecFromFolderItem",
                           [&] { return Load(Host().New(), Item(DatabasePath())) == 1; });
}

TEST_F(Services, UnlockStringIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  size_t kept = 0;
  const size_t before = Host().LiveStrings();
  ExpectLookedUpUntilFound("RuntimeUnlockString", [&] {
    const size_t live = Host().LiveStrings();
    EXPECT_EQ(Title(), Text("Night"));
    kept += Host().LiveStrings() - live;
    return Host().LiveStrings() == live;
  });
  EXPECT_EQ(kept, 2U) << "each call without the service leaves the text it made on the way";
  EXPECT_EQ(Host().LiveStrings(), before + kept);
  ReleaseStringsFrom(before);
}

TEST_F(Services, UnlockObjectIsLookedUpUntilFound) {
  object_ = Loaded(Library());
  (void)folder_.write("iPod_Control/Music/A.mp3");
  ExpectLookedUpUntilFound("RuntimeUnlockObject", [&] {
    const size_t live = Host().LiveItems();
    EXPECT_EQ(Path2(), Text("iPod:iPod_Control:Music:A.mp3"));
    return Host().LiveItems() == live;
  });
  ReleaseItemsThatAreLeft();
}

TEST_F(Services, RegisterClassIsLookedUpAgainAtTheNextRegistration) {
  TestHost &host = Host();
  host.Forget();
  host.EnterAgain();
  EXPECT_EQ(host.Count("? PluginRegisterClass"), 0U) << "found at the first";
  EXPECT_EQ(host.Count("PluginRegisterClass"), 1U);
}

TEST(RegistrationWithoutTheService, IsLookedUpAgainAtTheNextRegistration) {
  TestHost host({.missing = {"PluginRegisterClass"}});
  EXPECT_EQ(host.Class(), nullptr);
  host.Forget();
  host.EnterAgain();
  EXPECT_EQ(host.Count("? PluginRegisterClass"), 1U);
  EXPECT_EQ(host.Class(), nullptr);
  host.missing.clear();
  host.Forget();
  host.EnterAgain();
  EXPECT_EQ(host.Count("? PluginRegisterClass"), 1U);
  EXPECT_EQ(host.Count("PluginRegisterClass"), 1U);
  ASSERT_NE(host.Class(), nullptr);
  EXPECT_EQ(host.Declarations().size(), 130U);
}

TEST(RegistrationInAnEarlierVersion, MayBeRepeated) {
  TestHost host({.version = 5.8});
  const std::vector<std::string> once = host.Declarations();
  host.EnterAgain();
  EXPECT_EQ(host.Declarations(), once);
}

TEST(RegistrationInAnEarlierVersion, WithoutTheServiceConvertsTheListAllTheSame) {
  TestHost host({.version = 5.8, .missing = {"PluginRegisterClass"}});
  host.missing.clear();
  host.EnterAgain();
  EXPECT_EQ(host.Declarations().size(), 130U);
  EXPECT_EQ(host.MethodAt(129).declaration,
            std::string("GetReferAbsolutePath2(trackID As Integer) As String"));
}

TEST_F(Services, OneThatFailsGivesTheNoValueResult) {
  object_ = Loaded(Library());
  Host().Forget();
  Host().buildFails = true;
  EXPECT_EQ(Title(), kNullString);
  EXPECT_EQ(Host().GetText(object_, "VolumeName"), kNullString);
  EXPECT_EQ(Host().CallText(object_, "GetAbsolutePath(index As Integer) As String", 0), kNullString);
  EXPECT_EQ(Path2(), kNullString);
  EXPECT_THAT(Host().Conversions(), IsEmpty()) << "nothing to convert";
  EXPECT_EQ(Host().Count("REALSetStringEncoding"), 0U) << "nor to tag";
  Host().buildFails = false;
  Host().convertFails = true;
  EXPECT_EQ(Title(), kNullString);
  EXPECT_EQ(Host().Conversions().size(), 1U);
  EXPECT_EQ(Path2(), kNullString);
}

}  // namespace
}  // namespace plugin_test
