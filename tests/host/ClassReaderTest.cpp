#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "host/Error.h"
#include "host/binding/ClassReader.h"

namespace zemhost {
namespace {

using testing::HasSubstr;

void someFunction() {}
void otherFunction() {}

class ClassReader : public testing::Test {
 protected:
  void SetUp() override {
    methods_ = {{someFunction, nullptr, "Constructor", 0},
                {otherFunction, nullptr, "Get(n As Integer) As String", 0},
                {someFunction, nullptr, "Get(n As Integer, m As Integer) As String", 0}};
    properties_ = {{"Group", "Size", "Integer", 1, someFunction, nullptr, 5, nullptr},
                   {nullptr, "Name", "String", 1, someFunction, otherFunction, 0, nullptr}};
    record_.version = 9;
    record_.name = "Thing";
    record_.dataSize = 16;
    record_.destructor = otherFunction;
    useLists();
  }

  void useLists() {
    record_.methods = methods_.data();
    record_.methodCount = static_cast<intptr_t>(methods_.size());
    record_.properties = properties_.data();
    record_.propertyCount = static_cast<intptr_t>(properties_.size());
  }

  std::string errorOf() {
    try {
      readClass(record_, false);
    } catch (const HostError &error) {
      return error.what();
    }
    return "";
  }

  REALclassDefinition record_ = {};
  std::vector<REALmethodDefinition> methods_;
  std::vector<REALproperty> properties_;
};

TEST_F(ClassReader, ReadsTheWholeRecord) {
  const ClassInfo info = readClass(record_, false);
  EXPECT_EQ(info.name, "Thing");
  EXPECT_EQ(info.superName, "");
  EXPECT_EQ(info.version, 9);
  EXPECT_EQ(info.dataSize, 16U);
  EXPECT_EQ(info.constructor, nullptr);
  EXPECT_EQ(info.destructor, otherFunction);
  ASSERT_EQ(info.methods.size(), 3U);
  EXPECT_EQ(info.methods[1].text, "Get(n As Integer) As String");
  EXPECT_EQ(info.methods[1].declaration.result, Kind::String);
  EXPECT_EQ(info.methods[1].function, otherFunction);
  ASSERT_EQ(info.properties.size(), 2U);
  EXPECT_EQ(info.properties[0].group, "Group");
  EXPECT_EQ(info.properties[0].kind, Kind::Integer);
  EXPECT_EQ(info.properties[0].parameter, 5);
  EXPECT_EQ(info.properties[0].setter, nullptr);
  EXPECT_EQ(info.properties[1].group, "");
  EXPECT_EQ(info.properties[1].setter, otherFunction);
}

TEST_F(ClassReader, ThreeWordListGivesTheSameMethods) {
  std::vector<REALmethodDefinitionV6> rows;
  for (const REALmethodDefinition &m : methods_) rows.push_back({m.function, m.setter, m.declaration});
  record_.methods = reinterpret_cast<REALmethodDefinition *>(rows.data());
  const ClassInfo info = readClass(record_, true);
  ASSERT_EQ(info.methods.size(), 3U);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(info.methods[i].text, methods_[i].declaration);
    EXPECT_EQ(info.methods[i].function, methods_[i].function);
  }
}

TEST_F(ClassReader, ClassWithoutMembers) {
  methods_.clear();
  properties_.clear();
  useLists();
  record_.methods = nullptr;
  record_.properties = nullptr;
  EXPECT_TRUE(readClass(record_, false).methods.empty());
}

TEST_F(ClassReader, MissingNameIsAnError) {
  record_.name = nullptr;
  EXPECT_EQ(errorOf(), "a class is registered without a name");
}

TEST_F(ClassReader, NegativeSizeOrCountIsAnError) {
  record_.dataSize = -1;
  EXPECT_EQ(errorOf(), "class \"Thing\": a negative data size");
  record_.dataSize = 16;
  record_.methodCount = -1;
  EXPECT_EQ(errorOf(), "class \"Thing\": -1 methods are registered");
  record_.methodCount = 1000000;
  EXPECT_EQ(errorOf(), "class \"Thing\": 1000000 methods are registered");
  record_.propertyCount = -7;
  EXPECT_EQ(errorOf(), "class \"Thing\": -7 properties are registered");
}

TEST_F(ClassReader, MissingListIsAnError) {
  record_.methods = nullptr;
  EXPECT_EQ(errorOf(), "class \"Thing\": the list of methods is missing");
}

TEST_F(ClassReader, BadDeclarationIsNamedWithItsPlace) {
  methods_[1].declaration = "Get(n As Integer";
  EXPECT_EQ(
      errorOf(),
      "class \"Thing\", method 1: cannot read the declaration \"Get(n As Integer\": expected \",\" or \")\", "
      "found the end at character 17");
  methods_[1].declaration = nullptr;
  EXPECT_THAT(errorOf(), HasSubstr("class \"Thing\", method 1: cannot read the declaration \"\""));
}

TEST_F(ClassReader, MethodWithoutAFunctionIsAnError) {
  methods_[2].function = nullptr;
  EXPECT_THAT(errorOf(),
              HasSubstr("method 2: \"Get(n As Integer, m As Integer) As String\" has no function"));
}

TEST_F(ClassReader, MethodsThatCannotBeToldApartAreAnError) {
  methods_[2].declaration = "get(m As Integer) As Integer";
  EXPECT_EQ(
      errorOf(),
      "class \"Thing\": \"Get(n As Integer) As String\" and \"get(m As Integer) As Integer\" cannot be told "
      "apart");
}

TEST_F(ClassReader, WrongPropertiesAreErrors) {
  const REALproperty good = properties_[1];
  const auto errorWith = [&](const std::function<void(REALproperty &)> &spoil) {
    properties_[1] = good;
    spoil(properties_[1]);
    return errorOf();
  };
  EXPECT_EQ(errorWith([](REALproperty &p) { p.name = nullptr; }), "class \"Thing\", property 1 has no name");
  EXPECT_EQ(errorWith([](REALproperty &p) { p.type = "Double"; }),
            "class \"Thing\", property 1 \"Name\" is of the type \"Double\", which this host does not know");
  EXPECT_EQ(errorWith([](REALproperty &p) { p.type = nullptr; }),
            "class \"Thing\", property 1 \"Name\" is of the type \"\", which this host does not know");
  EXPECT_EQ(errorWith([](REALproperty &p) { p.getter = p.setter = nullptr; }),
            "class \"Thing\", property 1 \"Name\" has neither a getter nor a setter");
  EXPECT_EQ(errorWith([](REALproperty &p) { p.name = "SIZE"; }),
            "class \"Thing\": two properties named \"SIZE\"");
}

}  // namespace
}  // namespace zemhost
