#include <array>

#include "tests/plugin/Declarations.h"
#include "tests/plugin/PluginTest.h"
#include "tests/support/AnyCall.h"

namespace plugin_test {
namespace {

constexpr std::array<std::array<int32_t, 3>, 7> kNumbers{{{0, 0, 0},
                                                          {1, 1, 1},
                                                          {-1, 0, 0},
                                                          {0, 5, 2},
                                                          {52, 0, 4},
                                                          {INT32_MAX, INT32_MAX, INT32_MAX},
                                                          {INT32_MIN, INT32_MIN, INT32_MIN}}};

class NothingLoaded : public PluginTest {
 protected:
  // Every method but the constructor and Load answers its no-value result and leaves Error alone.
  void ExpectNoValues(REALobject object) {
    const auto error = Host().Get<int32_t>(object, "Error");
    const REALstring text = Host().MakeString(":iPod_Control:Music:a.mp3");
    for (const std::string_view declaration : kDeclarations) {
      if (declaration == "Constructor" || declaration.starts_with("Load(")) continue;
      for (const auto &numbers : kNumbers) {
        EXPECT_TRUE(CallAny(Host(), object, declaration, {.numbers = numbers, .text = text}).IsNoValue())
            << declaration << " of " << testing::PrintToString(numbers);
        EXPECT_TRUE(CallAny(Host(), object, declaration, {.numbers = numbers}).IsNoValue()) << declaration;
      }
    }
    EXPECT_EQ(Host().Get<int32_t>(object, "Error"), error);
    Host().Release(text);
  }
};

TEST_F(NothingLoaded, EveryMethodOfAFreshObjectReturnsItsNoValueResult) { ExpectNoValues(Host().New()); }

TEST_F(NothingLoaded, EveryMethodOfAnObjectWithoutADatabaseReturnsItsNoValueResult) {
  ExpectNoValues(Host().NewRaw());
  EXPECT_EQ(Host().Count("REALBuildString"), 0U);
}

TEST_F(NothingLoaded, EveryMethodReturnsItsNoValueResultAfterLoadOfNil) {
  const REALobject object = Host().New();
  EXPECT_EQ(Load(object, nullptr), 0);
  ExpectNoValues(object);
}

TEST_F(NothingLoaded, SettersBeforeLoadChangeNothingThatLoadReads) {
  Write(
      samples::WriteLibrary(samples::OrdinaryLibrary({{.id = 3, .year = 1999}}, {{.entries = {{.ref = 3}}}}),
                            Variant::LittleEndian));
  const REALobject object = Host().New();
  Host().Call<void>(object, "SetYear(index As Integer, year As Integer)", 0, 2005);
  Host().Call<void>(object, "SetFlags(playlist As Integer, index As Integer, flags As Integer)", 0, 0, 7);
  EXPECT_EQ(Load(object, Item(DatabasePath())), 1);
  EXPECT_EQ(Host().Call<int32_t>(object, "GetYear(index As Integer) As Integer", 0), 1999);
  EXPECT_EQ(Host().Call<int32_t>(object, "GetFlags(playlist As Integer, index As Integer) As Integer", 0, 0),
            0);
}

TEST_F(NothingLoaded, GetPlaySongIsFalseBeforeLoadAndTrueForAPositionPastTheEndAfterIt) {
  constexpr const char *kGetPlaySong = "GetPlaySong(playlist As Integer, index As Integer) As Boolean";
  const REALobject fresh = Host().New();
  EXPECT_EQ(Host().Call<int32_t>(fresh, kGetPlaySong, 0, 0), 0);
  const REALobject loaded =
      Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({}, {{.name = u"None"}}), Variant::LittleEndian));
  EXPECT_EQ(Host().Call<int32_t>(loaded, kGetPlaySong, 0, 0), 1);
  EXPECT_EQ(Host().Call<int32_t>(loaded, kGetPlaySong, 9, 9), 1);
}

TEST_F(NothingLoaded, GetPlaySongIsTrueAfterLoadOfAFileWithoutPlaylists) {
  const REALobject loaded =
      Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({}, {}), Variant::LittleEndian));
  EXPECT_EQ(
      Host().Call<int32_t>(loaded, "GetPlaySong(playlist As Integer, index As Integer) As Boolean", 0, 0), 1);
}

}  // namespace
}  // namespace plugin_test
