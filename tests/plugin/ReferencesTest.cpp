#include "tests/plugin/Declarations.h"
#include "tests/plugin/PluginTest.h"
#include "tests/plugin/VariedLibrary.h"
#include "tests/support/AnyCall.h"

namespace plugin_test {
namespace {

using support::Answer;
using support::ShapeOf;

// Every method is called in range, out of range and with nil; what it returns is released. At the end of the
// test there must be no other string or item than before, and nothing released twice.
class References : public PluginTestOfEachVariant {
 protected:
  static bool IsAsked(std::string_view declaration) {
    return declaration != "Constructor" && !declaration.starts_with("Load(");
  }

  void CallEveryMethod(REALobject object) {
    const size_t strings = Host().LiveStrings();
    const REALstring text = Host().MakeString(":iPod_Control:Music:F00:A.mp3");
    for (const std::string_view declaration : kDeclarations) {
      if (!IsAsked(declaration)) continue;
      for (const std::array<int32_t, 3> &numbers : {std::array{0, 0, 0},
                                                    {1, 2, 7},
                                                    {2, 0, 13},
                                                    {4, 4, 50},
                                                    {52, 1, 100},
                                                    {-1, -1, -1},
                                                    {99, 99, 99}}) {
        (void)CallAny(Host(), object, declaration, {.numbers = numbers, .text = text});
        (void)CallAny(Host(), object, declaration, {.numbers = numbers});
        ASSERT_EQ(Host().LiveStrings(), strings + 1) << declaration;
        ASSERT_EQ(text->mPrivateUsageCount, 1) << declaration << " borrows its argument";
      }
    }
    Host().Release(text);
  }
};

INSTANTIATE_TEST_SUITE_P(Plugin, References, BothVariants(), VariantName);

TEST_P(References, NoMethodLeaksOrReleasesTwice) {
  (void)folder_.write("iPod_Control/Music/F00/A.mp3");
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  CallEveryMethod(object);
}

TEST_P(References, NoMethodLeaksWhateverEncodingIsAskedFor) {
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  for (const uint32_t encoding : {kUtf16, kAscii, kShiftJIS, 0U}) {
    for (const int32_t useSJIS : {0, 1}) {
      Host().Set<int32_t>(object, "ResultEncode", static_cast<int32_t>(encoding));
      Host().Set<int32_t>(object, "UseSJIS", useSJIS);
      CallEveryMethod(object);
    }
  }
}

TEST_P(References, NoMethodLeaksWhenTheHostFails) {
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  Host().convertFails = true;
  CallEveryMethod(object);
  Host().buildFails = true;
  CallEveryMethod(object);
  Host().buildFails = false;
  Host().convertFails = false;
  Host().pathOfItems = [] { return std::nullopt; };
  CallEveryMethod(object);
  Host().pathOfItems = nullptr;
}

TEST_P(References, NoMethodLeaksBeforeLoad) { CallEveryMethod(Host().New()); }

TEST_P(References, ResultCarriesOneReference) {
  (void)folder_.write("iPod_Control/Music/F00/A.mp3");
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  for (const char *declaration :
       {"GetTitle(index As Integer) As String", "GetPath(index As Integer) As String",
        "GetTrackTotalInfo(index As Integer) As String", "GetAbsolutePath(index As Integer) As String",
        "GetAbsolutePath2(index As Integer) As String", "GetPlayListName(playlist As Integer) As String"}) {
    const auto string = Host().Call<REALstring>(object, declaration, 0);
    ASSERT_NE(string, nullptr) << declaration;
    EXPECT_EQ(string->mPrivateUsageCount, 1) << declaration;
    Host().Release(string);
  }
}

TEST_P(References, GetAbsolutePathOfAPathIsANewString) {
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  const REALstring path = Host().MakeString(":a");
  const auto joined = Host().Call<REALstring>(object, "GetAbsolutePath(path As String) As String", path);
  EXPECT_NE(joined, path);
  Host().Release(path);
  Host().Release(joined);
}

// A host that cannot release gets the same results; what is made on the way is then left to it.
class ReferencesWithoutRelease : public References {};

INSTANTIATE_TEST_SUITE_P(Plugin, ReferencesWithoutRelease, BothVariants(), VariantName);

TEST_P(ReferencesWithoutRelease, EveryMethodAnswersTheSame) {
  (void)folder_.write("iPod_Control/Music/F00/A.mp3");
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  const REALstring text = Host().MakeString(":iPod_Control:Music:F00:A.mp3");
  const auto answers = [&] {
    std::vector<Answer> all;
    for (const std::string_view declaration : kDeclarations) {
      if (!IsAsked(declaration) || ShapeOf(declaration).ends_with('v')) continue;
      for (int32_t i = -1; i < 6; ++i) {
        all.push_back(CallAny(Host(), object, declaration, {.numbers = {i, i, 7}, .text = text}));
      }
    }
    return all;
  };
  const size_t before = Host().LiveStrings();
  Host().missing = {"RuntimeUnlockString", "RuntimeUnlockObject"};
  const std::vector<Answer> without = answers();
  EXPECT_GT(Host().LiveStrings(), before) << "nobody released what was made on the way";
  ReleaseStringsFrom(before);
  ReleaseItemsThatAreLeft();
  Host().missing.clear();
  EXPECT_EQ(answers(), without);
  EXPECT_EQ(Host().LiveStrings(), before);
  Host().Release(text);
}

}  // namespace
}  // namespace plugin_test
