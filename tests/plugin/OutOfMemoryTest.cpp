// A program of its own, since it replaces the allocation functions, the plug-in's included.

#include <string>
#include <vector>

#include "tests/plugin/Declarations.h"
#include "tests/plugin/PluginTest.h"
#include "tests/plugin/VariedLibrary.h"
#include "tests/support/Allocations.h"
#include "tests/support/AnyCall.h"

namespace plugin_test {
namespace {

using support::AllocationFailed;
using support::Answer;

class OutOfMemory : public PluginTestOfEachVariant {
 protected:
  OutOfMemory() {
    Host().crossing = [this](bool inHost) {
      support::PauseGranting(inHost);
      kept_ += (inHost ? 1 : -1) * static_cast<long>(support::BytesInUse());
    };
    support::PauseGranting(true);
  }
  ~OutOfMemory() override {
    Host().crossing = nullptr;
    support::GrantAllAllocations();
    support::PauseGranting(false);
  }

  // The answer when the method is granted only so many allocations.
  Answer CallWith(long allocations, REALobject object, std::string_view declaration,
                  const support::Arguments &arguments) {
    support::GrantAllocations(allocations);
    Answer answer = CallAny(Host(), object, declaration, arguments);
    support::GrantAllAllocations();
    return answer;
  }

  // The bytes that the plug-in has asked for in this test and not given back.
  [[nodiscard]] long Kept() const { return kept_; }

  static constexpr const char *kLoad = "Load(f As FolderItem) As Boolean";

 private:
  long kept_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Plugin, OutOfMemory, BothVariants(), VariantName);

TEST_P(OutOfMemory, ConstructorSetsErrorMinus108AndTheObjectAnswersForAMissingDatabase) {
  const REALobject object = Host().NewRaw();
  (void)CallWith(0, object, "Constructor", {});
  ASSERT_TRUE(AllocationFailed());
  EXPECT_EQ(Host().Get<int32_t>(object, "Error"), -108);
  EXPECT_EQ(Host().Get<int32_t>(object, "LibType"), -1);
  EXPECT_EQ(Host().Get<int32_t>(object, "ResultEncode"), static_cast<int32_t>(kUtf8));
  Write(VariedLibrary(GetParam()));
  EXPECT_EQ(Load(object, Item(DatabasePath())), 0);
  for (const std::string_view declaration : kDeclarations) {
    if (declaration == "Constructor" || declaration == kLoad) continue;
    EXPECT_TRUE(CallAny(Host(), object, declaration, {}).IsNoValue()) << declaration;
  }
  EXPECT_EQ(Host().Get<int32_t>(object, "Error"), -108);
}

TEST_P(OutOfMemory, LoadThatRunsOutAnswersFalseWithError1AndLeavesAValidObject) {
  const std::string file = VariedLibrary(GetParam());
  Write(file);
  const REALfolderItem item = Item(DatabasePath());
  // What the file manager learns of directories it keeps for good.
  Host().Delete(Loaded(file));
  const long kept = Kept();
  long allocations = 0;
  bool ranOutInTheLoader = false;
  for (; allocations < 3000; ++allocations) {
    const REALobject object = Host().New();
    const size_t strings = Host().LiveStrings();
    const Answer answer = CallWith(allocations, object, kLoad, {.item = item});
    const auto error = Host().Get<int32_t>(object, "Error");
    if (answer.number == 1) {
      EXPECT_EQ(error, 0);
      EXPECT_FALSE(AllocationFailed());
      EXPECT_EQ(Host().Call<int32_t>(object, "CountSongs As Integer"), kVariedSongs);
      ReleaseStringsFrom(strings);
      Host().Delete(object);
      EXPECT_EQ(Kept(), kept);
      break;
    }
    ASSERT_TRUE(AllocationFailed()) << allocations;
    ASSERT_TRUE(error == 1 || error == -50) << "-50 while there is no memory to open the file";
    ranOutInTheLoader = ranOutInTheLoader || error == 1;
    ASSERT_LE(Host().Call<int32_t>(object, "CountSongs As Integer"), kVariedSongs);
    for (const std::string_view declaration : kDeclarations) {
      if (declaration == "Constructor" || declaration == kLoad) continue;
      (void)CallAny(Host(), object, declaration, {.numbers = {0, 0, 0}});
    }
    ReleaseStringsFrom(strings);
    Host().Delete(object);
    ASSERT_EQ(Kept(), kept) << allocations;
  }
  EXPECT_LT(allocations, 3000);
  EXPECT_TRUE(ranOutInTheLoader);
}

TEST_P(OutOfMemory, EveryMethodAnswersItsValueOrNoValueAndKeepsNothing) {
  (void)folder_.write("iPod_Control/Music/F00/A.mp3");
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  const REALstring text = Host().MakeString(std::string(2000, 't'));
  for (const std::string_view declaration : kDeclarations) {
    if (declaration == "Constructor" || declaration == kLoad) continue;
    for (const std::array<int32_t, 3> &numbers : {std::array{0, 0, 7}, {1, 1, 1}, {2, 2, 8}, {99, 99, 99}}) {
      const support::Arguments arguments{.numbers = numbers, .text = text};
      const Answer whole = CallAny(Host(), object, declaration, arguments);
      const long kept = Kept();
      for (long allocations = 0; allocations < 200; ++allocations) {
        const Answer answer = CallWith(allocations, object, declaration, arguments);
        ASSERT_TRUE(answer == whole || answer.IsNoValue()) << declaration << " with " << allocations;
        ASSERT_EQ(Kept(), kept) << declaration << " with " << allocations;
        if (AllocationFailed()) continue;
        ASSERT_EQ(answer, whole) << declaration;
        break;
      }
    }
  }
  Host().Release(text);
}

TEST_P(OutOfMemory, EveryPropertyAnswersAndIsSet) {
  const REALobject object = Loaded(VariedLibrary(GetParam()));
  const HostText volume = Host().GetText(object, "VolumeName");
  support::GrantAllocations(0);
  for (const char *property : {"UseSJIS", "ResultEncode", "ZerobasePlayerlist"}) {
    Host().Set<int32_t>(object, property, 1);
    EXPECT_EQ(Host().Get<int32_t>(object, property), 1) << property;
  }
  EXPECT_EQ(Host().Get<int32_t>(object, "Error"), 0);
  EXPECT_EQ(Host().Get<int32_t>(object, "LibType"), Little() ? 1 : 0);
  EXPECT_EQ(Host().GetText(object, "VolumeName"), volume);
  support::GrantAllAllocations();
  EXPECT_FALSE(AllocationFailed()) << "a property needs no memory of the plug-in's own";
  Host().Set<int32_t>(object, "ZerobasePlayerlist", 0);
}

TEST_P(OutOfMemory, LongTextsThatCannotBeMadeAreNoValue) {
  samples::Track track;
  track.objects =
      samples::SongObjects(GetParam(), {.title = std::u16string(3000, u'\u3042'),
                                        .path = (Little() ? u":" : u"V:") + std::u16string(3000, u'p')});
  const REALobject object = Loaded(Bytes({track}));
  Host().Set<int32_t>(object, "UseSJIS", 1);
  const support::Arguments first{};
  EXPECT_TRUE(CallWith(0, object, "GetTitle(index As Integer) As String", first).IsNoValue());
  EXPECT_TRUE(AllocationFailed());
  EXPECT_EQ(CallAny(Host(), object, "GetTitle(index As Integer) As String", first).text.bytes.size(), 6000U);
  if (!Little()) return;
  EXPECT_TRUE(CallWith(0, object, "GetAbsolutePath(index As Integer) As String", first).IsNoValue());
  EXPECT_TRUE(AllocationFailed());
}

}  // namespace
}  // namespace plugin_test
