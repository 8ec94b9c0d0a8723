#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "host/Host.h"
#include "tests/support/TemporaryFolder.h"

namespace zemhost {
namespace {

using testing::AllOf;
using testing::HasSubstr;

Host::Options toyOptions(double version = 5.9, std::vector<std::string> leftOut = {}) {
  return {TOY_PLUGIN, version, std::move(leftOut)};
}

template <typename Action>
std::string errorOf(Action action) {
  try {
    action();
  } catch (const HostError &error) {
    return error.what();
  }
  return "(no error)";
}

std::string loadErrorOf(const std::filesystem::path &plugin) {
  return errorOf([&] { Host::load({plugin, 5.9, {}}); });
}

class HostTest : public testing::Test {
 protected:
  HostTest() : host_(Host::load(toyOptions())), toy_(host_->make("Toy")) {}

  void TearDown() override {
    toy_.reset();
    host_.reset();
    EXPECT_EQ(liveHandles().strings, before_.strings);
    EXPECT_EQ(liveHandles().folderItems, before_.folderItems);
    EXPECT_EQ(liveHandles().objects, before_.objects);
  }

  Object &toy() { return *toy_; }
  std::string errorOfCall(std::string_view line) {
    return errorOf([&] { toy().evaluate(line); });
  }

  LiveHandles before_ = liveHandles();
  std::optional<Host> host_;
  std::optional<Object> toy_;
};

TEST_F(HostTest, ClassesAndMethodsAreInRegistrationOrder) {
  ASSERT_EQ(host_->classes().size(), 2U);
  EXPECT_EQ(host_->classes()[0]->name, "Toy");
  EXPECT_EQ(host_->classes()[1]->name, "Plain");
  EXPECT_EQ(host_->classInfo("TOY").methods.at(3).text, "Add(a As Integer, b As Integer) As Integer");
  EXPECT_EQ(host_->classInfo("toy").properties.at(2).name, "Flag");
  ASSERT_EQ(host_->methods().size(), 1U);
  EXPECT_EQ(host_->methods()[0].text, "ToyDestructorsRun As Integer");
  EXPECT_EQ(host_->announcedVersion(), 9);
  EXPECT_EQ(host_->plugin(), TOY_PLUGIN);
}

TEST_F(HostTest, UnknownClassIsAnErrorThatNamesTheFile) {
  EXPECT_THAT(errorOf([&] { host_->make("Ty"); }),
              AllOf(HasSubstr("registers no class \"Ty\""), HasSubstr("toy_plugin")));
}

TEST_F(HostTest, ConstructorsRunInOrderSlotFirst) { EXPECT_EQ(toy().call("Next").integer(), 1101); }

TEST_F(HostTest, ConstructorIsChosenByItsArguments) {
  EXPECT_EQ(host_->make("Toy", {5}).call("Next").integer(), 1006);
  EXPECT_THAT(errorOf([&] { host_->make("Toy", {"x"}); }),
              HasSubstr("no method of Toy takes Constructor(String)"));
}

TEST_F(HostTest, ClassWithoutConstructorOrDataCanBeMade) {
  const Object plain = host_->make("Plain");
  EXPECT_EQ(plain.classInfo().name, "Plain");
  EXPECT_THAT(errorOf([&] { host_->make("Plain", {1}); }), HasSubstr("Plain has no method \"Constructor\""));
}

TEST_F(HostTest, DestructorRunsWithTheLastCopyOfAnObject) {
  const int32_t before = host_->call("toydestructorsrun").integer();
  {
    const Object one = host_->make("Toy");
    std::optional<Object> two;
    two = one;
    const Method next = two->method("Next As Integer");
    EXPECT_EQ(next().integer(), 1101);
    EXPECT_EQ(one.call("Next").integer(), 1102);
    EXPECT_EQ(host_->call("ToyDestructorsRun").integer(), before);
  }
  EXPECT_EQ(host_->call("ToyDestructorsRun").integer(), before + 1);
}

TEST_F(HostTest, ObjectKeepsThePluginLoaded) {
  host_.reset();
  EXPECT_EQ(toy().call("Add", {1, 2}).integer(), 3);
}

TEST_F(HostTest, EveryKindPassesAndReturns) {
  const support::TemporaryFolder scratch;
  mountVolume("Disk", scratch.path());
  const FolderItem item = FolderItem::fromPath(scratch.write("a.mp3"));
  EXPECT_EQ(toy().call("Mix", {-1, true, "caf\u00E9", item, 7, ""}).text(),
            "-1|1|caf\u00E9|Disk:a.mp3|7||1100");
  EXPECT_EQ(toy().call("SameItem", {item}).folderItem().path(), item.path());
  EXPECT_TRUE(toy().call("Opposite", {false}).boolean());
  EXPECT_EQ(toy().call("Remember", {3}).kind(), Kind::None);
  EXPECT_EQ(toy().call("Next").integer(), 4);
  EXPECT_TRUE(toy().call("Nothing").isNil());
  EXPECT_TRUE(toy().call("NoItem").isNil());
  EXPECT_TRUE(toy().call("IsNull", {HostString()}).boolean());
  EXPECT_FALSE(toy().call("IsNull", {""}).boolean());
}

TEST_F(HostTest, BooleansMayCarryOtherNumbers) {
  EXPECT_EQ(toy().call("RawOf", {Value::rawBoolean(-2)}).integer(), -2);
  EXPECT_EQ(toy().call("TruthOf", {77}).rawBoolean(), 77);
}

TEST_F(HostTest, StringKeepsItsEncodingThroughThePlugin) {
  const Value echoed = toy().call("Echo", {HostString::fromBytes("\x30\x42", kUtf16)});
  EXPECT_EQ(echoed.encoding(), kUtf16);
  EXPECT_EQ(echoed.text(), "\u3042");
}

TEST_F(HostTest, OverloadsAreToldApartByNumberAndKinds) {
  EXPECT_EQ(toy().call("Which", {1}).text(), "Integer");
  EXPECT_EQ(toy().call("WHICH", {true}).text(), "Boolean");
  EXPECT_EQ(toy().call("which", {"x"}).text(), "String");
  EXPECT_EQ(toy().call("Which", {1, 2}).text(), "Integer, Integer");
}

TEST_F(HostTest, NilFitsAStringWhereNothingFitsBetter) {
  EXPECT_TRUE(toy().evaluate("IsNull(nil)").boolean());
  EXPECT_EQ(toy().evaluate("Which(nil)").text(), "String");
  EXPECT_EQ(toy().evaluate("Either(nil, 1)").text(), "FolderItem, Integer");
}

TEST_F(HostTest, TextFitsAFolderItemAsAPathWhereNothingFitsBetter) {
  const support::TemporaryFolder scratch;
  mountVolume("Disk", scratch.path());
  const std::string path = scratch.write("a.mp3").string();
  EXPECT_EQ(toy().evaluate("ItemOnly(\"" + path + "\")").text(), "FolderItem Disk:a.mp3");
  EXPECT_EQ(toy().evaluate("Either(\"" + path + "\", 1)").text(), "String, Integer");
  EXPECT_THAT(errorOfCall("ItemOnly(\"" + path + "/no/such\")"),
              HasSubstr("there is no folder for the path"));
}

TEST_F(HostTest, CallThatFitsNothingListsWhatThereIs) {
  EXPECT_EQ(
      errorOfCall("Which(True, 1)"),
      "no method of Toy takes Which(Boolean, Integer); there is: Which(n As Integer) As String; Which(b As "
      "Boolean) As String; Which(s As String) As String; which(n As Integer, m As Integer) As String");
  EXPECT_EQ(errorOfCall("Witch(1)"), "Toy has no method \"Witch\"");
  EXPECT_EQ(errorOfCall("Witch"), "Toy has no property or method \"Witch\"");
  EXPECT_THAT(errorOfCall("Remember"),
              HasSubstr("no method of Toy takes Remember(); there is: Remember(n As Int"));
}

TEST_F(HostTest, PropertiesAreReadAndWritten) {
  toy().set("First", 5);
  toy().set("second", -6);
  EXPECT_EQ(toy().get("FIRST").integer(), 5);
  EXPECT_EQ(toy().get("Second").integer(), -6);
  toy().set("Flag", Value::rawBoolean(9));
  EXPECT_EQ(toy().get("Flag").rawBoolean(), 9);
  EXPECT_EQ(toy().get("Name").text(), "none");
  toy().set("Name", "x");
  EXPECT_EQ(toy().get("Name").text(), "some");
  toy().set("Name", HostString());
  EXPECT_EQ(toy().get("Name").text(), "none");
  EXPECT_TRUE(toy().get("File").isNil());
}

TEST_F(HostTest, WrongUseOfAPropertyIsAnError) {
  EXPECT_EQ(errorOf([&] { toy().get("Third"); }), "Toy has no property \"Third\"");
  EXPECT_EQ(errorOf([&] { toy().set("File", FolderItem()); }), "the property File is read only");
  EXPECT_EQ(errorOf([&] { toy().get("WriteOnly"); }), "the property WriteOnly cannot be read");
  EXPECT_EQ(errorOf([&] { toy().set("First", true); }), "the property First is Integer, not Boolean");
  EXPECT_EQ(errorOf([&] { toy().set("Flag", 1); }), "the property Flag is Boolean, not Integer");
}

TEST_F(HostTest, LinesOfHostCodeRun) {
  EXPECT_EQ(toy().evaluate("Add(40, 2)").describe(), "42");
  EXPECT_EQ(toy().evaluate("First = &h0100").describe(), "(no result)");
  EXPECT_EQ(toy().evaluate("first").describe(), "256");
  EXPECT_EQ(toy().evaluate("Flag = True").kind(), Kind::None);
  EXPECT_EQ(toy().evaluate("Flag").describe(), "True");
  EXPECT_EQ(toy().evaluate("Next").describe(), "1101");
  EXPECT_EQ(toy().evaluate("next()").describe(), "1102");
  EXPECT_EQ(toy().evaluate("Echo(\"say \"\"hi\"\"\")").describe(), "\"say \"\"hi\"\"\" (UTF-8)");
  EXPECT_EQ(toy().evaluate("Name = nil").kind(), Kind::None);
  EXPECT_EQ(toy().evaluate("Nothing").describe(), "nil");
}

TEST_F(HostTest, LineThatCannotBeReadIsAnErrorWithItsPlace) {
  EXPECT_EQ(errorOfCall("Add(1, 2"),
            "cannot read the call \"Add(1, 2\": expected \",\" or \")\", found the end at character 9");
  EXPECT_EQ(errorOfCall("Flag = 1"), "the property Flag is Boolean, not Integer");
  EXPECT_EQ(errorOfCall("First()"), "Toy has no method \"First\"");
}

TEST_F(HostTest, PreparedMethodIsFoundByNameKindsAndResult) {
  const Method two = toy().method("WHICH ( a as integer,b AS integer ) as string");
  EXPECT_EQ(two.info().text, "which(n As Integer, m As Integer) As String");
}

TEST_F(HostTest, PreparedMethodChecksNumberAndKindsOfArguments) {
  const Method add = toy().method("Add(a As Integer, b As Integer) As Integer");
  EXPECT_EQ(add(2, 3).integer(), 5);
  EXPECT_EQ(errorOf([&] { add(2); }),
            "\"Add(a As Integer, b As Integer) As Integer\" does not take (Integer)");
  EXPECT_EQ(errorOf([&] { add(2, true); }),
            "\"Add(a As Integer, b As Integer) As Integer\" does not take (Integer, Boolean)");
}

TEST_F(HostTest, UnknownDeclarationIsAnError) {
  EXPECT_EQ(errorOf([&] { toy().method("Add(a As Integer) As Integer"); }),
            "Toy has no method \"Add(a As Integer) As Integer\"");
  EXPECT_EQ(errorOf([&] { toy().method("Add(a As Integer, b As Integer)"); }),
            "Toy has no method \"Add(a As Integer, b As Integer)\"");
  EXPECT_THAT(errorOf([&] { toy().method("Add(a"); }),
              HasSubstr("expected As, found the end at character 6"));
}

TEST_F(HostTest, ManyCallsLeaveNothingBehind) {
  const Method echo = toy().method("Echo(s As String) As String");
  const HostString text = HostString::fromUtf8("x");
  const int64_t before = liveHandles().strings;
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(echo(text).bytes(), "x");
  EXPECT_EQ(liveHandles().strings, before);
}

TEST_F(HostTest, SecondHostAtATimeIsAnError) {
  EXPECT_THAT(errorOf([&] { Host::load(toyOptions()); }), HasSubstr("one plug-in host at a time"));
  EXPECT_EQ(toy().call("Add", {1, 2}).integer(), 3);
}

TEST(HostVersions, OldHostReadsTheThreeWordListAsTheSameClass) {
  std::vector<std::vector<std::string>> lists;
  for (const Host::Options &options : {toyOptions(5.9), toyOptions(5.8), toyOptions(10), toyOptions(0),
                                       toyOptions(5.9, {"REALGetRBVersion"})}) {
    const Host host = Host::load(options);
    std::vector<std::string> &texts = lists.emplace_back();
    for (const MethodInfo &method : host.classInfo("Toy").methods) texts.push_back(method.text);
    EXPECT_EQ(host.make("Toy").call("Add", {1, 2}).integer(), 3);
  }
  EXPECT_EQ(lists[0].size(), 21U);
  for (const auto &list : lists) EXPECT_EQ(list, lists[0]);
}

TEST(HostLoading, HostsFollowOneAnother) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Host::load(toyOptions()).make("Toy").call("Next").integer(), 1101);
}

TEST(HostLoading, MissingFileIsAnErrorThatNamesIt) {
  EXPECT_THAT(loadErrorOf("/no/such/plugin.so"), HasSubstr("cannot load the plug-in /no/such/plugin.so: "));
}

TEST(HostLoading, FileThatIsNoLibraryIsAnErrorThatNamesIt) {
  const support::TemporaryFolder scratch;
  const auto file = scratch.write("plugin.so", "not a library");
  EXPECT_THAT(loadErrorOf(file), HasSubstr("cannot load the plug-in " + file.string() + ": "));
}

TEST(HostLoading, BareNameIsAFileOfTheWorkingFolder) {
  EXPECT_THAT(loadErrorOf("libm.so.6"), HasSubstr("cannot load the plug-in libm.so.6: "));
}

TEST(HostLoading, LibraryWithoutTheEntryPointIsAnError) {
  EXPECT_THAT(loadErrorOf(OTHER_LIBRARY), HasSubstr("it has no entry point REALPluginMain"));
}

TEST(HostLoading, BadDeclarationIsAnErrorAndTheNextHostLoads) {
  setenv("TOY_FAULT", "Next As", 1);
  EXPECT_THAT(loadErrorOf(TOY_PLUGIN),
              HasSubstr("class \"Toy\", method 2: cannot read the declaration \"Next As\""));
  unsetenv("TOY_FAULT");
  EXPECT_EQ(Host::load(toyOptions()).classes().size(), 2U);
}

TEST(HostLoading, TwoClassesOfOneNameAreAnError) {
  setenv("TOY_FAULT", "Next", 1);
  EXPECT_EQ(loadErrorOf(TOY_PLUGIN), "two classes named \"TOY\"");
  unsetenv("TOY_FAULT");
}

TEST(HostLoading, UnknownServiceCannotBeLeftOut) {
  EXPECT_EQ(errorOf([] { Host::load(toyOptions(5.9, {"Nonsense"})); }),
            "there is no service \"Nonsense\" to leave out");
}

TEST(HostLoading, VariableNamesThePlugin) {
  setenv("ZEM_PLUGIN", TOY_PLUGIN, 1);
  EXPECT_EQ(Host::defaultPlugin(), TOY_PLUGIN);
  EXPECT_EQ(Host::load().classes().size(), 2U);
  unsetenv("ZEM_PLUGIN");
}

TEST(HostLoading, PluginOfABuildGoesBeforeThatOfAnInstallation) {
  const support::TemporaryFolder scratch;
  const auto program = scratch.write("bin/zemhost");
  const auto installed = scratch.write("lib/zemitunesdb/ZemiTunesDB.so");
  EXPECT_EQ(Host::pluginOf(program), installed);
  const auto built = scratch.write("plugin/ZemiTunesDB.so");
  EXPECT_EQ(Host::pluginOf(program), built);
}

TEST(HostLoading, WithoutAPluginTheErrorNamesThePlaces) {
  unsetenv("ZEM_PLUGIN");
  EXPECT_THAT(errorOf([] { Host::defaultPlugin(); }),
              AllOf(HasSubstr("plugin/ZemiTunesDB.so"), HasSubstr("lib/zemitunesdb/ZemiTunesDB.so"),
                    HasSubstr("ZEM_PLUGIN")));
}

}  // namespace
}  // namespace zemhost
