#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "host/basic/Declaration.h"

namespace zemhost {
namespace {

Declaration declarationOf(std::string_view text) {
  Parsed<Declaration> parsed = parseDeclaration(text);
  if (const auto *error = std::get_if<ParseError>(&parsed)) {
    ADD_FAILURE() << explain("declaration", text, *error);
    return {};
  }
  return std::get<Declaration>(std::move(parsed));
}

ParseError errorOf(std::string_view text) {
  const Parsed<Declaration> parsed = parseDeclaration(text);
  if (const auto *error = std::get_if<ParseError>(&parsed)) return *error;
  ADD_FAILURE() << text << " was read";
  return {};
}

TEST(Declaration, NameAlone) {
  const Declaration d = declarationOf("Constructor");
  EXPECT_EQ(d.name, "Constructor");
  EXPECT_TRUE(d.arguments.empty());
  EXPECT_EQ(d.result, Kind::None);
}

TEST(Declaration, ResultWithoutArguments) {
  const Declaration d = declarationOf("CountSongs As Integer");
  EXPECT_EQ(d.name, "CountSongs");
  EXPECT_TRUE(d.arguments.empty());
  EXPECT_EQ(d.result, Kind::Integer);
}

TEST(Declaration, ArgumentsAndResult) {
  const Declaration d = declarationOf("GetTitle(playlist As Integer, index As Integer) As String");
  EXPECT_EQ(d.name, "GetTitle");
  ASSERT_EQ(d.arguments.size(), 2U);
  EXPECT_EQ(d.arguments[0].name, "playlist");
  EXPECT_EQ(d.arguments[0].kind, Kind::Integer);
  EXPECT_EQ(d.arguments[1].name, "index");
  EXPECT_EQ(d.result, Kind::String);
}

TEST(Declaration, ArgumentsWithoutResult) {
  const Declaration d = declarationOf("SetX(a As Integer, b As Boolean)");
  ASSERT_EQ(d.arguments.size(), 2U);
  EXPECT_EQ(d.arguments[1].kind, Kind::Boolean);
  EXPECT_EQ(d.result, Kind::None);
}

TEST(Declaration, EveryKind) {
  const Declaration d =
      declarationOf("M(a As Integer, b As Boolean, c As String, d As FolderItem) As FolderItem");
  ASSERT_EQ(d.arguments.size(), 4U);
  EXPECT_EQ(d.arguments[0].kind, Kind::Integer);
  EXPECT_EQ(d.arguments[1].kind, Kind::Boolean);
  EXPECT_EQ(d.arguments[2].kind, Kind::String);
  EXPECT_EQ(d.arguments[3].kind, Kind::FolderItem);
  EXPECT_EQ(d.result, Kind::FolderItem);
}

TEST(Declaration, CaseAndBlanksDoNotMatter) {
  EXPECT_EQ(toText(declarationOf("  getTitle ( index\tAS integer,n as STRING )as  folderitem ")),
            "getTitle(index As Integer, n As String) As FolderItem");
  EXPECT_EQ(toText(declarationOf("M()")), "M");
  EXPECT_EQ(toText(declarationOf("M( ) As Boolean")), "M As Boolean");
}

TEST(Declaration, NamesThatBeginLikeAsAreNames) {
  EXPECT_EQ(toText(declarationOf("Assign(asset As Integer)")), "Assign(asset As Integer)");
}

TEST(Declaration, TextOfADeclarationReadsAsTheSame) {
  for (const char *text : {"Constructor", "CountSongs As Integer", "Load(f As FolderItem) As Boolean"})
    EXPECT_EQ(toText(declarationOf(text)), text);
}

struct Fault {
  const char *text;
  size_t position;
  const char *message;
};

// For the names of the tests.
void PrintTo(const Fault &fault, std::ostream *out) { *out << "wrong at " << fault.position; }

class WrongDeclaration : public testing::TestWithParam<Fault> {};

TEST_P(WrongDeclaration, IsAnErrorWithItsPlace) {
  const ParseError error = errorOf(GetParam().text);
  EXPECT_EQ(error.position, GetParam().position);
  EXPECT_THAT(error.message, testing::HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Declaration, WrongDeclaration,
    testing::Values(Fault{"", 0, "expected a method's name, found the end"},
                    Fault{"(a As Integer)", 0, "expected a method's name, found \"(\""},
                    Fault{"1st", 0, "expected a method's name"},
                    Fault{"As Integer", 3, "expected a method's name before As"},
                    Fault{"M(", 2, "expected an argument's name, found the end"},
                    Fault{"M(a", 3, "expected As, found the end"},
                    Fault{"M(a Integer)", 4, "expected As, found \"I\""},
                    Fault{"M(a As)", 6, "expected a type"},
                    Fault{"M(a As Double)", 7, "expected a type (Integer, Boolean, String or FolderItem)"},
                    Fault{"M(a As Integer", 14, "expected \",\" or \")\", found the end"},
                    Fault{"M(a As Integer,)", 15, "expected an argument's name"},
                    Fault{"M(a As Integer b As Integer)", 15, "expected \",\" or \")\""},
                    Fault{"M(a As Integer, A As String)", 16, "a second argument named A"},
                    Fault{"M As", 4, "expected a type"},
                    Fault{"M As Integer()", 12, "expected the end, found \"(\""},
                    Fault{"M(a As Integer) Integer", 16, "expected the end, found \"I\""},
                    Fault{"M(a() As Integer)", 3, "expected As"},
                    Fault{"M(\xC3\xA9 As Integer)", 2, "expected an argument's name, found \"\xC3\xA9\""},
                    Fault{"M\n", 1, "expected the end, found Chr(10)"}));

TEST(Declaration, At32ArgumentsItStops) {
  const auto withArguments = [](int count) {
    std::string text = "M(a0 As Integer";
    for (int i = 1; i < count; ++i) text += ", a" + std::to_string(i) + " As Integer";
    return text + ")";
  };
  EXPECT_EQ(declarationOf(withArguments(32)).arguments.size(), 32U);
  EXPECT_THAT(errorOf(withArguments(33)).message, testing::HasSubstr("more than 32 arguments"));
}

TEST(Declaration, SameCallLooksAtNameAndKindsOnly) {
  EXPECT_TRUE(sameCall(declarationOf("M(a As Integer)"), declarationOf("m(b As Integer) As String")));
  EXPECT_FALSE(sameCall(declarationOf("M(a As Integer)"), declarationOf("M(a As String)")));
  EXPECT_FALSE(sameCall(declarationOf("M(a As Integer)"), declarationOf("M(a As Integer, b As Integer)")));
  EXPECT_FALSE(sameCall(declarationOf("M(a As Integer)"), declarationOf("N(a As Integer)")));
}

TEST(Declaration, ExplanationShowsTextAndColumnInCharacters) {
  const char *text = "M(\xC3\xA9)";
  EXPECT_EQ(explain("declaration", text, errorOf(text)),
            "cannot read the declaration \"M(\xC3\xA9)\": expected an argument's name, found \"\xC3\xA9\" at "
            "character 3");
  EXPECT_EQ(explain("call", "\xC3\xA9)", {2, "x"}), "cannot read the call \"\xC3\xA9)\": x at character 2");
}

TEST(Declaration, AnyTextIsReadOrRefusedInside) {
  const std::vector<std::string> pieces = {"M",
                                           "As",
                                           "Integer",
                                           "String",
                                           "(",
                                           ")",
                                           ",",
                                           " ",
                                           "\t",
                                           "a",
                                           "_1",
                                           "\xFF",
                                           std::string(1, '\0'),
                                           "\xC3\xA9",
                                           "\"",
                                           "9"};
  std::mt19937 random(5);
  int readable = 0;
  for (int i = 0; i < 50000; ++i) {
    std::string text = random() % 2 != 0 ? "M(a As Integer" : "M";
    for (size_t n = random() % 8; n > 0; --n) text += pieces[random() % pieces.size()];
    const Parsed<Declaration> parsed = parseDeclaration(text);
    if (const auto *error = std::get_if<ParseError>(&parsed)) {
      ASSERT_LE(error->position, text.size());
      ASSERT_FALSE(error->message.empty());
    } else {
      ++readable;
      const std::string again = toText(std::get<Declaration>(parsed));
      ASSERT_EQ(toText(declarationOf(again)), again);
    }
  }
  EXPECT_GT(readable, 100);
}

}  // namespace
}  // namespace zemhost
