#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "host/basic/CallText.h"

namespace zemhost {
namespace {

using Form = CallText::Form;

CallText read(std::string_view line) {
  Parsed<CallText> parsed = parseCallText(line);
  if (const auto *error = std::get_if<ParseError>(&parsed)) {
    ADD_FAILURE() << explain("call", line, *error);
    return {Form::Call, "", {Value(), Value()}};
  }
  return std::get<CallText>(std::move(parsed));
}

Value valueOf(const std::string &text) {
  const CallText call = read("X = " + text);
  EXPECT_EQ(call.form, Form::Assign);
  return call.arguments.at(0);
}

TEST(CallText, NameAlone) {
  const CallText call = read(" CountSongs ");
  EXPECT_EQ(call.form, Form::Name);
  EXPECT_EQ(call.name, "CountSongs");
  EXPECT_TRUE(call.arguments.empty());
}

TEST(CallText, CallWithoutArguments) {
  for (const char *line : {"CountSongs()", "CountSongs ( )"}) {
    const CallText call = read(line);
    EXPECT_EQ(call.form, Form::Call);
    EXPECT_EQ(call.name, "CountSongs");
    EXPECT_TRUE(call.arguments.empty());
  }
}

TEST(CallText, CallWithArgumentsOfEveryKind) {
  const CallText call = read("SetTitle(0, \"text\",True , false,NIL)");
  EXPECT_EQ(call.form, Form::Call);
  ASSERT_EQ(call.arguments.size(), 5U);
  EXPECT_EQ(call.arguments[0].integer(), 0);
  EXPECT_EQ(call.arguments[1].text(), "text");
  EXPECT_TRUE(call.arguments[2].boolean());
  EXPECT_FALSE(call.arguments[3].boolean());
  EXPECT_EQ(call.arguments[4].kind(), Kind::FolderItem);
  EXPECT_TRUE(call.arguments[4].isNil());
}

TEST(CallText, Assignment) {
  const CallText call = read("ResultEncode = &h0100");
  EXPECT_EQ(call.form, Form::Assign);
  EXPECT_EQ(call.name, "ResultEncode");
  ASSERT_EQ(call.arguments.size(), 1U);
  EXPECT_EQ(call.arguments[0].integer(), 0x0100);
  EXPECT_TRUE(read("UseSJIS=True").arguments.at(0).boolean());
}

TEST(CallText, Numbers) {
  EXPECT_EQ(valueOf("12").integer(), 12);
  EXPECT_EQ(valueOf("-1").integer(), -1);
  EXPECT_EQ(valueOf("+7").integer(), 7);
  EXPECT_EQ(valueOf("007").integer(), 7);
  EXPECT_EQ(valueOf("2147483647").integer(), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(valueOf("-2147483648").integer(), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(valueOf("&h08000100").integer(), 0x08000100);
  EXPECT_EQ(valueOf("&HfFfFfFfF").integer(), -1);
  EXPECT_EQ(valueOf("&o17").integer(), 15);
  EXPECT_EQ(valueOf("&b101").integer(), 5);
  EXPECT_EQ(valueOf("-&h10").integer(), -16);
  EXPECT_EQ(valueOf("&h00000000000000000000001").integer(), 1);
}

TEST(CallText, Texts) {
  EXPECT_EQ(valueOf(R"("")").text(), "");
  EXPECT_TRUE(valueOf(R"("")").string());
  EXPECT_EQ(valueOf(R"("He said ""no""")").text(), "He said \"no\"");
  EXPECT_EQ(valueOf(R"("""")").text(), "\"");
  EXPECT_EQ(valueOf("\"\u97F3\u697D, (1)\"").text(), "\u97F3\u697D, (1)");
  EXPECT_EQ(valueOf("\"x\"").encoding(), kUtf8);
}

struct Wrong {
  const char *line;
  size_t position;
  const char *message;
};

// For the names of the tests.
void PrintTo(const Wrong &wrong, std::ostream *out) { *out << "wrong at " << wrong.position; }

class WrongCallText : public testing::TestWithParam<Wrong> {};

TEST_P(WrongCallText, IsAnErrorWithItsPlace) {
  const Parsed<CallText> parsed = parseCallText(GetParam().line);
  ASSERT_TRUE(std::holds_alternative<ParseError>(parsed));
  const auto &error = std::get<ParseError>(parsed);
  EXPECT_EQ(error.position, GetParam().position);
  EXPECT_THAT(error.message, testing::HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    CallText, WrongCallText,
    testing::Values(
        Wrong{"", 0, "expected the name of a method or property, found the end"},
        Wrong{"(0)", 0, "expected the name"}, Wrong{"=1", 0, "expected the name"},
        Wrong{"GetTitle 0", 9, "expected \"(\" or \"=\", found \"0\""},
        Wrong{"GetTitle(", 9, "expected a number, a text in quotes, True, False or nil, found the end"},
        Wrong{"GetTitle(0", 10, "expected \",\" or \")\", found the end"},
        Wrong{"GetTitle(0,)", 11, "expected a number"}, Wrong{"GetTitle(0 1)", 11, "expected \",\" or \")\""},
        Wrong{"GetTitle(0) + 1", 12, "expected the end, found \"+\""},
        Wrong{"GetTitle(yes)", 9, "expected a number, a text in quotes, True, False or nil, found \"y\""},
        Wrong{"A = ", 4, "expected a number"}, Wrong{"A = 1 2", 6, "expected the end"},
        Wrong{"A(0) = 1", 5, "expected the end, found \"=\""},
        Wrong{"A(\"x)", 2, "the text has no closing quote"},
        Wrong{"A(\"x\"\")", 2, "the text has no closing quote"}, Wrong{"A(\"\xFF\")", 2, "not valid UTF-8"},
        Wrong{"A(2147483648)", 2, "does not fit into 32 bits"},
        Wrong{"A(-2147483649)", 2, "does not fit into 32 bits"},
        Wrong{"A(&h100000000)", 2, "does not fit into 32 bits"},
        Wrong{"A(99999999999999999999999999)", 2, "does not fit into 32 bits"},
        Wrong{"A(1.5)", 2, "only whole numbers"}, Wrong{"A(-)", 3, "expected a digit, found \")\""},
        Wrong{"A(- 1)", 3, "expected a digit"}, Wrong{"A(&h)", 4, "expected a digit"},
        Wrong{"A(&x1)", 3, "expected h, o or b after \"&\""}, Wrong{"A(&o8)", 4, "expected a digit"},
        Wrong{"A(&b12)", 5, "expected \",\" or \")\""}, Wrong{"A(&", 3, "expected h, o or b"}));

TEST(CallText, ZeroByteIsNoEndOfTheLine) {
  const Parsed<CallText> parsed = parseCallText(std::string_view("A\0", 2));
  ASSERT_TRUE(std::holds_alternative<ParseError>(parsed));
  EXPECT_THAT(std::get<ParseError>(parsed).message, testing::HasSubstr("Chr(0)"));
}

TEST(CallText, AnyTextIsReadOrRefusedInside) {
  const std::vector<std::string> pieces = {"A",
                                           "(",
                                           ")",
                                           ",",
                                           " ",
                                           "\"",
                                           "\"\"",
                                           "-",
                                           "&h",
                                           "&",
                                           "12",
                                           "f9",
                                           ".",
                                           "=",
                                           "8",
                                           "T",
                                           "True",
                                           "nil",
                                           "\xFF",
                                           "\xE3\x81\x82",
                                           std::string(1, '\0')};
  std::mt19937 random(6);
  int readable = 0;
  for (int i = 0; i < 50000; ++i) {
    std::string line = random() % 2 != 0 ? "A(" : "A = ";
    for (size_t n = random() % 8; n > 0; --n) line += pieces[random() % pieces.size()];
    const Parsed<CallText> parsed = parseCallText(line);
    if (const auto *error = std::get_if<ParseError>(&parsed)) {
      ASSERT_LE(error->position, line.size());
      ASSERT_FALSE(explain("call", line, *error).empty());
    } else {
      ++readable;
    }
  }
  EXPECT_GT(readable, 1000);
}

}  // namespace
}  // namespace zemhost
