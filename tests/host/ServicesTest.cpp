#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/runtime/FolderItem.h"
#include "host/runtime/HostObject.h"
#include "host/runtime/HostString.h"
#include "host/runtime/LiveHandles.h"
#include "host/runtime/Services.h"
#include "tests/support/TemporaryFolder.h"

namespace zemhost {
namespace {

using testing::ElementsAre;
using Resolver = void *(*)(const char *);

Resolver services() { return reinterpret_cast<Resolver>(ServiceSession::resolver()("ResolverPPC")); }

// A service as a plug-in sees it.
template <typename Function>
Function *service(const char *name) {
  return reinterpret_cast<Function *>(services()(name));
}

class Services : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(liveHandles().strings, before_.strings);
    EXPECT_EQ(liveHandles().folderItems, before_.folderItems);
    EXPECT_EQ(liveHandles().objects, before_.objects);
  }

  ServiceSession session_{{}};

 private:
  LiveHandles before_ = liveHandles();
};

TEST_F(Services, FirstResolverKnowsTheSecondOnly) {
  EXPECT_NE(ServiceSession::resolver()("ResolverPPC"), nullptr);
  EXPECT_EQ(ServiceSession::resolver()("REALBuildString"), nullptr);
  EXPECT_EQ(ServiceSession::resolver()("resolverppc"), nullptr);
  EXPECT_EQ(ServiceSession::resolver()(nullptr), nullptr);
}

TEST_F(Services, EveryServiceOfTheInterfaceIsThere) {
  EXPECT_THAT(
      ServiceSession::serviceNames(),
      ElementsAre("RegisterPluginVersion", "PluginRegisterClass", "PluginRegisterMethod", "REALBuildString",
                  "REALGetStringEncoding", "REALSetStringEncoding", "REALConvertString",
                  "FolderItemFromFSSpec", "REALFSSpecFromFolderItem", "REALpathFromFolderItem",
                  "REALGetRBVersion", "RuntimeUnlockString", "RuntimeUnlockObject"));
  for (const std::string_view name : ServiceSession::serviceNames())
    EXPECT_NE(services()(std::string(name).c_str()), nullptr) << name;
}

TEST_F(Services, NamesAreExact) {
  EXPECT_EQ(services()("REALFolderItemFromFSSpec"), nullptr);
  EXPECT_EQ(services()("realbuildstring"), nullptr);
  EXPECT_EQ(services()("ResolverPPC"), nullptr);
  EXPECT_EQ(services()(""), nullptr);
  EXPECT_EQ(services()(nullptr), nullptr);
}

TEST_F(Services, LookUpsAreRememberedInOrder) {
  services()("REALBuildString");
  services()("nonsense");
  services()("REALBuildString");
  std::vector<std::string> names;
  for (const auto &lookUp : session_.lookUps())
    names.push_back(lookUp.name + ' ' + std::to_string(lookUp.times));
  EXPECT_THAT(names, ElementsAre("ResolverPPC 3", "REALBuildString 2", "nonsense 1"));
}

TEST_F(Services, AnnouncedVersionIsKept) {
  EXPECT_EQ(session_.announcedVersion(), 0);
  service<void(int32_t)>("RegisterPluginVersion")(9);
  EXPECT_EQ(session_.announcedVersion(), 9);
}

TEST_F(Services, BuiltStringIsACopyInTheHostsOwnEncoding) {
  char bytes[] = {'a', '\0', 'b'};
  REALstring string = service<REALstring(const char *, int32_t)>("REALBuildString")(bytes, 3);
  bytes[0] = 'z';
  EXPECT_EQ(string->mPrivateUsageCount, 1);
  const HostString owned = HostString::adopt(string);
  EXPECT_EQ(owned.bytes(), std::string_view("a\0b", 3));
  EXPECT_EQ(owned.encoding(), kUtf8);
}

TEST_F(Services, BuildStringOfNothingIsEmptyAndOfABadLengthNull) {
  auto *build = service<REALstring(const char *, int32_t)>("REALBuildString");
  EXPECT_TRUE(HostString::adopt(build("abc", 0)));
  EXPECT_TRUE(HostString::adopt(build(nullptr, 0)));
  EXPECT_EQ(build("abc", -1), nullptr);
  EXPECT_EQ(build(nullptr, 5), nullptr);
}

TEST_F(Services, EncodingIsReadAndWrittenWithoutTouchingTheBytes) {
  const HostString string = HostString::fromUtf8("\u3042");
  service<void(REALstring, uint32_t)>("REALSetStringEncoding")(string.handle(), kShiftJis);
  EXPECT_EQ(service<uint32_t(REALstring)>("REALGetStringEncoding")(string.handle()), kShiftJis);
  EXPECT_EQ(string.bytes(), "\u3042");
  service<void(REALstring, uint32_t)>("REALSetStringEncoding")(nullptr, kShiftJis);
  EXPECT_EQ(service<uint32_t(REALstring)>("REALGetStringEncoding")(nullptr), 0U);
}

TEST_F(Services, ConvertedStringIsNewAndTheArgumentStaysTheCallers) {
  const HostString string = HostString::fromBytes("0B", kUtf16);
  const HostString result = HostString::adopt(
      service<REALstring(REALstring, uint32_t)>("REALConvertString")(string.handle(), kUtf8));
  EXPECT_EQ(result.bytes(), "\u3042");
  EXPECT_EQ(result.encoding(), kUtf8);
  EXPECT_EQ(string.handle()->mPrivateUsageCount, 1);
}

TEST_F(Services, ConversionToTheSameEncodingAddsAReference) {
  const HostString string = HostString::fromBytes("\xFF", kAscii);
  REALstring result = service<REALstring(REALstring, uint32_t)>("REALConvertString")(string.handle(), kAscii);
  EXPECT_EQ(result, string.handle());
  EXPECT_EQ(string.handle()->mPrivateUsageCount, 2);
  releaseString(result);
}

TEST_F(Services, ConversionToAnUnknownEncodingTagsTheSameBytes) {
  const HostString string = HostString::fromBytes("\xFFz", kUtf8);
  const HostString result = HostString::adopt(
      service<REALstring(REALstring, uint32_t)>("REALConvertString")(string.handle(), 12345));
  EXPECT_EQ(result.bytes(), "\xFFz");
  EXPECT_EQ(result.encoding(), 12345U);
}

TEST_F(Services, ConversionOfTheNullStringIsNull) {
  EXPECT_EQ(service<REALstring(REALstring, uint32_t)>("REALConvertString")(nullptr, kUtf8), nullptr);
}

TEST_F(Services, ReplacementsOfConversionsAreAccountedFor) {
  const int64_t before = liveHandles().replacements;
  const HostString string = HostString::fromBytes("a\xE9\xEAz", kAscii);
  releaseString(service<REALstring(REALstring, uint32_t)>("REALConvertString")(string.handle(), kUtf8));
  EXPECT_EQ(liveHandles().replacements, before + 2);
}

TEST_F(Services, FolderItemAndSpecificationGoBothWays) {
  const support::TemporaryFolder scratch;
  mountVolume("Disk", scratch.path());
  const FolderItem item = FolderItem::fromPath(scratch.write("a.mp3"));
  FSSpec spec = {};
  EXPECT_EQ(service<int32_t(FSSpec *, REALfolderItem)>("REALFSSpecFromFolderItem")(&spec, item.handle()), 1);
  const FolderItem again =
      FolderItem::adopt(service<REALfolderItem(const FSSpec *)>("FolderItemFromFSSpec")(&spec));
  EXPECT_EQ(again.path(), item.path());
  const HostString path =
      HostString::adopt(service<REALstring(REALfolderItem)>("REALpathFromFolderItem")(again.handle()));
  EXPECT_EQ(path.text(), "Disk:a.mp3");
  EXPECT_EQ(path.encoding(), kUtf8);
}

TEST_F(Services, NilFolderItemHasNoSpecificationAndNoPath) {
  FSSpec spec;
  std::memset(&spec, 0x55, sizeof spec);
  EXPECT_EQ(service<int32_t(FSSpec *, REALfolderItem)>("REALFSSpecFromFolderItem")(&spec, nullptr), 0);
  EXPECT_EQ(spec.name[0], 0x55);
  EXPECT_EQ(service<REALstring(REALfolderItem)>("REALpathFromFolderItem")(nullptr), nullptr);
  const FSSpec nothing = {};
  EXPECT_EQ(service<REALfolderItem(const FSSpec *)>("FolderItemFromFSSpec")(&nothing), nullptr);
}

TEST_F(Services, UnlockingDropsAReference) {
  HostString string = HostString::fromUtf8("x");
  retainString(string.handle());
  service<void(REALstring)>("RuntimeUnlockString")(string.handle());
  EXPECT_EQ(string.handle()->mPrivateUsageCount, 1);
  service<void(REALstring)>("RuntimeUnlockString")(nullptr);

  const support::TemporaryFolder scratch;
  REALfolderItem item = nullptr;
  {
    const FolderItem owner = FolderItem::fromPath(scratch.path());
    item = owner.handle();
    retainFolderItem(item);
  }
  service<void(REALobject)>("RuntimeUnlockObject")(reinterpret_cast<REALobject>(item));
  service<void(REALobject)>("RuntimeUnlockObject")(newObject(8, nullptr, nullptr));
}

TEST_F(Services, OneSessionAtATime) { EXPECT_THROW(ServiceSession{{}}, std::logic_error); }

TEST(ServiceSettings, VersionIsWhatTheHostClaims) {
  for (const double version : {0.0, 5.8, 5.9, 2006.1}) {
    const ServiceSession session({version, {}, {}, {}});
    EXPECT_EQ(service<double()>("REALGetRBVersion")(), version);
    EXPECT_EQ(session.wantsThreeWordMethods(), version < 5.9);
  }
}

TEST(ServiceSettings, LeftOutServiceIsUnknownAndStillRemembered) {
  const ServiceSession session({5.9, {"REALConvertString", "RuntimeUnlockString"}, {}, {}});
  EXPECT_EQ(services()("REALConvertString"), nullptr);
  EXPECT_EQ(services()("RuntimeUnlockString"), nullptr);
  EXPECT_NE(services()("REALBuildString"), nullptr);
  EXPECT_EQ(session.lookUps().at(1).name, "REALConvertString");
}

TEST(ServiceSettings, HostWithoutAVersionWantsThreeWordMethods) {
  EXPECT_TRUE(ServiceSession({5.9, {"REALGetRBVersion"}, {}, {}}).wantsThreeWordMethods());
}

TEST(ServiceSettings, OnlyServicesCanBeLeftOut) {
  EXPECT_THROW(ServiceSession({5.9, {"REALBuildStrings"}, {}, {}}), std::invalid_argument);
  const ServiceSession next{{}};
  EXPECT_NE(services(), nullptr);
}

TEST(ServiceSettings, NothingIsAnsweredWithoutASession) {
  EXPECT_EQ(ServiceSession::resolver()("ResolverPPC"), nullptr);
}

TEST(ServiceSettings, ClassRecordGetsTheDataOffsetBeforeItIsPassedOn) {
  REALclassDefinition record = {};
  intptr_t seen = -1;
  ServiceSession session({5.9, {}, [&](const REALclassDefinition &r) { seen = r.dataOffset; }, {}});
  service<void(REALclassDefinition *)>("PluginRegisterClass")(&record);
  EXPECT_EQ(seen, static_cast<intptr_t>(kObjectDataOffset));
  service<void(REALclassDefinition *)>("PluginRegisterClass")(nullptr);
  session.rethrowFailure();
}

TEST(ServiceSettings, FailureInACallbackWaitsUntilThePluginHasReturned) {
  int calls = 0;
  const auto failing = [&](const REALmethodDefinition &) {
    throw std::runtime_error("failure " + std::to_string(++calls));
  };
  ServiceSession session({5.9, {}, {}, failing});
  REALmethodDefinition record = {};
  service<void(REALmethodDefinition *)>("PluginRegisterMethod")(&record);
  service<void(REALmethodDefinition *)>("PluginRegisterMethod")(&record);
  try {
    session.rethrowFailure();
    FAIL();
  } catch (const std::runtime_error &error) {
    EXPECT_STREQ(error.what(), "failure 1");
  }
  session.rethrowFailure();
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace zemhost
