// The glue to the host that no method reaches, linked into this program.

#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

#include "platform/carbon/CarbonFiles.h"
#include "plugin/RbiTunesDB.h"
#include "sdk/PluginMain.h"
#include "tests/plugin/Declarations.h"
#include "tests/support/TestHost.h"

namespace {

std::vector<Size> blockSizes;  // that NewPtr was asked for

}  // namespace

// In place of the platform's.
extern "C" Ptr NewPtr(Size byteCount) {
  blockSizes.push_back(byteCount);
  return static_cast<Ptr>(std::malloc(static_cast<size_t>(byteCount)));
}

namespace plugin_test {
namespace {

using support::TestHost;

void Nothing() {}
void NothingElse() {}

TEST(HostString, NullStringHasLengthZeroAndAnEmptyText) {
  EXPECT_EQ(REALstringStruct::Length(nullptr), 0);
  ASSERT_NE(REALstringStruct::CString(nullptr), nullptr);
  EXPECT_STREQ(REALstringStruct::CString(nullptr), "");
}

TEST(HostString, TextStandsOneByteAfterTheLengthByte) {
  uint8_t bytes[] = {3, 'a', 'b', 'c', 0};
  REALstringStruct string{1, bytes, 5, 3, 0x0600};
  EXPECT_EQ(REALstringStruct::Length(&string), 3);
  EXPECT_STREQ(REALstringStruct::CString(&string), "abc");
}

TEST(HostGlue, KeepsBothResolvers) {
  gResolver = nullptr;
  gResolverPPC = nullptr;
  const TestHost host({.entryPoint = REALPluginMain});
  EXPECT_NE(gResolver, nullptr);
  EXPECT_NE(gResolverPPC, nullptr);
  EXPECT_NE(gResolver, gResolverPPC);
}

TEST(HostGlue, RegisterMethodIsLookedUpUntilFound) {
  TestHost host({.missing = {"PluginRegisterMethod"}, .entryPoint = REALPluginMain});
  REALmethodDefinition method{nullptr, nullptr, "M", 0};
  REALRegisterMethod(&method);
  REALRegisterMethod(&method);
  EXPECT_EQ(host.Count("? PluginRegisterMethod"), 2U);
  EXPECT_EQ(host.Count("PluginRegisterMethod"), 0U);
  host.missing.clear();
  REALRegisterMethod(&method);
  REALRegisterMethod(&method);
  EXPECT_EQ(host.Count("? PluginRegisterMethod"), 3U);
  EXPECT_EQ(host.Count("PluginRegisterMethod"), 2U);
}

TEST(HostGlue, UnlockOfNothingAsksNobody) {
  const TestHost host({.entryPoint = REALPluginMain});
  REALUnlockString(nullptr);
  REALUnlockObject(nullptr);
  EXPECT_EQ(host.Count("RuntimeUnlockString"), 0U);
  EXPECT_EQ(host.Count("RuntimeUnlockObject"), 0U);
}

TEST(HostGlue, ClassDataStandsAtTheOffsetOfTheRecord) {
  alignas(16) char object[64] = {};
  REALclassDefinition record{};
  record.dataOffset = 40;
  EXPECT_EQ(REALGetClassData(reinterpret_cast<REALobject>(object), &record), object + 40);
}

TEST(HostGlue, ThreeWordListTakesTheFirstThreeWordsAndLeavesTheOthers) {
  REALmethodDefinitionV6 *converted = ConvertCurrentMethodsToV6(RbiTunesDBMethods, kMethodCount);
  ASSERT_NE(converted, nullptr);
  for (size_t i = 0; i < kMethodCount; ++i) {
    EXPECT_EQ(converted[i].function, RbiTunesDBMethods[i].function);
    EXPECT_EQ(converted[i].setter, RbiTunesDBMethods[i].setter);
    EXPECT_EQ(converted[i].declaration, RbiTunesDBMethods[i].declaration);
    EXPECT_EQ(RbiTunesDBMethods[i].declaration, kDeclarations[i]);
    EXPECT_EQ(RbiTunesDBMethods[i].flags, 0);
  }
  std::free(converted);
}

TEST(HostGlue, ThreeWordListIsABlockOfThePlatformsWithTheSettersCopied) {
  const REALmethodDefinition methods[] = {{Nothing, NothingElse, "A", 4}, {NothingElse, nullptr, "B", 5}};
  blockSizes.clear();
  REALmethodDefinitionV6 *converted = ConvertCurrentMethodsToV6(methods, 2);
  EXPECT_EQ(blockSizes, std::vector{static_cast<Size>(6 * sizeof(intptr_t))});
  ASSERT_NE(converted, nullptr);
  EXPECT_EQ(converted[0].setter, NothingElse);
  EXPECT_EQ(converted[1].setter, nullptr);
  std::free(converted);
}

TEST(HostGlue, ListIsConvertedEvenWithoutTheServiceThatRegisters) {
  const TestHost host({.version = 5.8, .missing = {"PluginRegisterClass"}, .entryPoint = REALPluginMain});
  EXPECT_NE(RbiTunesDBClass.methods, RbiTunesDBMethods);
  const auto *words = reinterpret_cast<const REALmethodDefinitionV6 *>(RbiTunesDBClass.methods);
  EXPECT_EQ(words[129].declaration, RbiTunesDBMethods[129].declaration);
  std::free(RbiTunesDBClass.methods);
  RbiTunesDBClass.methods = RbiTunesDBMethods;
}

TEST(HostGlue, RecordThatIsRegisteredIsTheOneThatInstancesAreFoundBy) {
  const TestHost host({.entryPoint = REALPluginMain});
  EXPECT_EQ(host.Class(), &RbiTunesDBClass);
  EXPECT_EQ(RbiTunesDBClassPointer, &RbiTunesDBClass);
}

TEST(HostGlue, RecordsHaveTheirWords) {
  EXPECT_EQ(sizeof(REALmethodDefinition), 4 * sizeof(intptr_t));
  EXPECT_EQ(sizeof(REALmethodDefinitionV6), 3 * sizeof(intptr_t));
  EXPECT_EQ(sizeof(REALproperty), 8 * sizeof(intptr_t));
  EXPECT_EQ(sizeof(REALclassDefinition), 15 * sizeof(intptr_t));
  EXPECT_EQ(sizeof(FSRef), 80U);
  EXPECT_EQ(offsetof(FSSpec, vRefNum), 0U);
  EXPECT_EQ(offsetof(FSSpec, parID), 4U);
  EXPECT_EQ(offsetof(FSSpec, name), 8U);
  EXPECT_EQ(offsetof(REALstringStruct, mPrivateStringData), sizeof(intptr_t));
  EXPECT_EQ(offsetof(REALstringStruct, mPrivateAllocLength), 2 * sizeof(intptr_t));
  EXPECT_EQ(offsetof(REALstringStruct, mPrivateLength), 2 * sizeof(intptr_t) + 4);
  EXPECT_EQ(offsetof(REALstringStruct, mEncoding), 2 * sizeof(intptr_t) + 8);
}

}  // namespace
}  // namespace plugin_test
