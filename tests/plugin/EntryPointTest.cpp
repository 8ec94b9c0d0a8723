#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/plugin/Declarations.h"
#include "tests/support/TestHost.h"

namespace plugin_test {
namespace {

using support::TestHost;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

TEST(EntryPoint, AnnouncesTheInterfaceBeforeItRegistersTheClass) {
  const TestHost host;
  EXPECT_THAT(host.Events(), ElementsAre("? ResolverPPC", "? RegisterPluginVersion",
                                         "RegisterPluginVersion 9", "? PluginRegisterClass",
                                         "? REALGetRBVersion", "REALGetRBVersion", "PluginRegisterClass"));
}

TEST(EntryPoint, HostWithoutPluginRegisterClassStillHasItsVersionAsked) {
  const TestHost host({.missing = {"PluginRegisterClass"}});
  EXPECT_EQ(host.Count("? REALGetRBVersion"), 1U);
  EXPECT_EQ(host.Count("REALGetRBVersion"), 1U);
  EXPECT_EQ(host.Count("PluginRegisterClass"), 0U);
  EXPECT_EQ(host.Class(), nullptr);
}

TEST(EntryPoint, RegistersNoMethodOutsideTheClass) {
  const TestHost host;
  EXPECT_EQ(host.Count("? PluginRegisterMethod"), 0U);
}

TEST(EntryPoint, MakesNothingOfTheHosts) {
  TestHost host;
  EXPECT_EQ(host.LiveStrings(), 0U);
  EXPECT_EQ(host.LiveItems(), 0U);
  EXPECT_THAT(host.Faults(), IsEmpty());
}

TEST(EntryPoint, RegistersAfreshInEveryLoad) {
  for (int round = 0; round < 3; ++round) {
    const TestHost host;
    ASSERT_NE(host.Class(), nullptr);
    EXPECT_EQ(host.Class()->methodCount, 130);
  }
}

// Where words have 32 bits these are the classic sizes.
TEST(SharedRecords, HaveTheSizesOfTheirWords) {
  constexpr bool kClassic = sizeof(intptr_t) == 4;
  EXPECT_EQ(sizeof(REALstringStruct), kClassic ? 20U : 32U);
  EXPECT_EQ(sizeof(REALmethodDefinition), kClassic ? 16U : 32U);
  EXPECT_EQ(sizeof(REALmethodDefinitionV6), kClassic ? 12U : 24U);
  EXPECT_EQ(sizeof(REALproperty), kClassic ? 32U : 64U);
  EXPECT_EQ(sizeof(REALclassDefinition), kClassic ? 60U : 120U);
  EXPECT_EQ(sizeof(FSSpec), 72U);
  EXPECT_EQ(sizeof(FSRef), 80U);
}

TEST(ClassRecord, DescribesZemiTunesDB) {
  const TestHost host;
  const REALclassDefinition &record = *host.Class();
  EXPECT_EQ(record.version, 9);
  EXPECT_STREQ(record.name, "ZemiTunesDB");
  EXPECT_EQ(record.superName, nullptr);
  EXPECT_EQ(record.constructor, nullptr);
  EXPECT_NE(record.destructor, nullptr);
  EXPECT_EQ(record.propertyCount, 6);
  EXPECT_EQ(record.methodCount, 130);
  EXPECT_EQ(record.events, nullptr);
  EXPECT_EQ(record.eventCount, 0);
  EXPECT_EQ(record.constants, nullptr);
  EXPECT_EQ(record.constantCount, 0);
}

TEST(ClassRecord, InstanceDataHoldsItsFourFields) {
  struct Data {
    int16_t err;
    void *db;
    void *dbf;
    uint32_t ecd;
  };
  const TestHost host;
  EXPECT_EQ(host.Class()->dataSize, static_cast<intptr_t>(sizeof(Data)));
  EXPECT_EQ(host.Class()->dataSize == 16, sizeof(void *) == 4);
}

TEST(ClassRecord, InstanceDataIsFoundAtTheOffsetThatTheHostWrites) {
  for (const size_t offset : {size_t{16}, size_t{48}, size_t{1024}}) {
    TestHost host({.dataOffset = offset});
    const REALobject object = host.New();
    EXPECT_EQ(host.Get<int32_t>(object, "ResultEncode"), 0x08000100);
    host.Delete(object);
    EXPECT_THAT(host.Faults(), IsEmpty());
  }
}

TEST(ClassRecord, PropertiesStandInTheirOrder) {
  struct Expected {
    const char *name;
    const char *type;
    bool settable;
  };
  const std::vector<Expected> expected = {
      {"Error", "Integer", false},     {"LibType", "Integer", false},
      {"UseSJIS", "Boolean", true},    {"ResultEncode", "Integer", true},
      {"VolumeName", "String", false}, {"ZerobasePlayerlist", "Boolean", true}};
  const TestHost host;
  ASSERT_EQ(host.Class()->propertyCount, static_cast<intptr_t>(expected.size()));
  for (size_t i = 0; i < expected.size(); ++i) {
    const REALproperty &property = host.Class()->properties[i];
    EXPECT_EQ(property.group, nullptr);
    EXPECT_STREQ(property.name, expected[i].name);
    EXPECT_STREQ(property.type, expected[i].type);
    EXPECT_EQ(property.flags, 1);
    EXPECT_NE(property.getter, nullptr);
    EXPECT_EQ(property.setter != nullptr, expected[i].settable) << property.name;
    EXPECT_EQ(property.parameter, 0);
    EXPECT_EQ(property.editor, nullptr);
  }
}

TEST(ClassRecord, DeclarationsStandInTheirOrder) {
  const TestHost host;
  EXPECT_THAT(host.Declarations(), ElementsAreArray(kDeclarations));
}

TEST(ClassRecord, EveryMethodHasItsOwnFunctionNoSetterAndNoFlags) {
  const TestHost host;
  std::set<REALproc> functions;
  for (size_t i = 0; i < kDeclarations.size(); ++i) {
    const REALmethodDefinition method = host.MethodAt(i);
    EXPECT_NE(method.function, nullptr);
    EXPECT_EQ(method.setter, nullptr);
    EXPECT_EQ(method.flags, 0);
    functions.insert(method.function);
  }
  EXPECT_EQ(functions.size(), kDeclarations.size());
}

// How many words each entry of the method list has: in a list of four, the sixth word is a setter, null.
size_t WordsPerMethod(const TestHost &host) {
  const auto *words = reinterpret_cast<const char *const *>(host.Class()->methods);
  if (words[5] == nullptr) return 4;
  return words[5] == kDeclarations[1] ? 3 : 0;
}

TEST(MethodList, HasFourWordsForVersion59AndLater) {
  for (const double version : {5.9, 5.91, 6.0, 2024.0}) {
    const TestHost host({.version = version});
    EXPECT_EQ(WordsPerMethod(host), 4U) << version;
    EXPECT_THAT(host.Declarations(), ElementsAreArray(kDeclarations));
  }
}

TEST(MethodList, HasThreeWordsForEarlierVersions) {
  for (const double version : {5.8, 5.89, 5.899999, 1.0, 0.0, -1.0}) {
    const TestHost host({.version = version});
    EXPECT_EQ(WordsPerMethod(host), 3U) << version;
    EXPECT_EQ(host.Class()->methodCount, 130);
    EXPECT_THAT(host.Declarations(), ElementsAreArray(kDeclarations));
    for (size_t i = 0; i < kDeclarations.size(); ++i) EXPECT_NE(host.MethodAt(i).function, nullptr);
  }
}

TEST(MethodList, OfAnEarlierVersionCallsTheSameMethods) {
  TestHost host({.version = 5.8});
  const REALobject object = host.New();
  EXPECT_EQ(host.Call<int32_t>(object, "CountPlayLists As Integer"), 0);
  host.Set<int32_t>(object, "ZerobasePlayerlist", 1);
  EXPECT_EQ(host.Call<int32_t>(object, "CountPlayLists As Integer"), -1);
}

TEST(MethodList, HasThreeWordsWhenTheVersionCannotBeAsked) {
  // The host says 5.8, so that it reads the list as it finds it, but cannot be asked for it.
  const TestHost host({.version = 5.8, .missing = {"REALGetRBVersion"}});
  EXPECT_EQ(host.Count("REALGetRBVersion"), 0U);
  EXPECT_EQ(WordsPerMethod(host), 3U);
  EXPECT_THAT(host.Declarations(), ElementsAreArray(kDeclarations));
}

}  // namespace
}  // namespace plugin_test
