#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "db/ByteString.h"
#include "samples/GeneratedLibrary.h"

namespace db_test {
namespace {

using namespace std::string_literals;
using Keep = ByteString::Keep;

// Longer than what fits inside the object itself.
const std::string kLong = "a text that lives on the heap";

TEST(ByteString, FreshOneIsEmpty) {
  const ByteString text{};
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.size(), 0U);
  EXPECT_EQ(text.View(), "");
  EXPECT_NE(text.data(), nullptr);
}

TEST(ByteString, HoldsAnyBytesOfAnyLength) {
  for (size_t n = 0; n <= 40; ++n) {
    std::string bytes;
    for (size_t i = 0; i < n; ++i) bytes += static_cast<char>(i * 37);
    EXPECT_EQ(ByteString(bytes).View(), bytes);
    EXPECT_EQ(ByteString(bytes).size(), n);
    EXPECT_EQ(ByteString(bytes).empty(), n == 0);
  }
}

TEST(ByteString, OwnsACopyOfWhatItIsMadeFrom) {
  for (const std::string &bytes : {"short"s, kLong}) {
    std::string source = bytes;
    const ByteString text(source);
    source.assign(source.size(), 'x');
    EXPECT_EQ(text.View(), bytes);
  }
}

TEST(ByteString, BorrowedBytesAreReadWhereTheyStand) {
  for (std::string source : {"abc"s, kLong}) {
    ByteString text;
    text.Append(source, Keep::Borrow);
    EXPECT_EQ(text.data(), source.data());
    source[0] = 'Z';
    EXPECT_EQ(text.View(), source);
  }
}

TEST(ByteString, CopyOfABorrowedTextOwnsItsBytes) {
  std::string source = kLong;
  ByteString text;
  text.Append(source, Keep::Borrow);
  const ByteString copy(text);
  ByteString assigned("old");
  assigned = text;
  source.assign(source.size(), 'x');
  EXPECT_EQ(copy.View(), kLong);
  EXPECT_EQ(assigned.View(), kLong);
}

TEST(ByteString, MoveOfABorrowedTextStillBorrows) {
  const std::string source = kLong;
  ByteString text;
  text.Append(source, Keep::Borrow);
  const ByteString moved(std::move(text));
  EXPECT_EQ(moved.data(), source.data());
}

TEST(ByteString, AppendToABorrowedTextCopiesBothParts) {
  const std::string source = "borrowed bytes";
  ByteString text;
  text.Append(source, Keep::Borrow);
  text.Append("+", Keep::Borrow);
  EXPECT_EQ(source, "borrowed bytes");
  EXPECT_EQ(text.View(), "borrowed bytes+");
  EXPECT_NE(text.data(), source.data());
}

TEST(ByteString, AppendToAShortBorrowedTextLeavesTheSourceAlone) {
  std::string source = "ab";
  ByteString text;
  text.Append({source.data(), 1}, Keep::Borrow);
  text.Append("X");
  EXPECT_EQ(source, "ab");
  EXPECT_EQ(text.View(), "aX");
}

TEST(ByteString, AppendOfNothingChangesNothing) {
  const std::string source = kLong;
  ByteString text;
  text.Append("", Keep::Borrow);
  EXPECT_TRUE(text.empty());
  text.Append(source, Keep::Borrow);
  text.Append("");
  EXPECT_EQ(text.data(), source.data());
}

TEST(ByteString, SelfAssignmentKeepsTheText) {
  for (const std::string &bytes : {"near"s, kLong}) {
    ByteString text(bytes);
    ByteString &same = text;
    text = same;
    EXPECT_EQ(text.View(), bytes);
    text = std::move(same);
    EXPECT_EQ(text.View(), bytes);
  }
}

TEST(ByteString, AssignmentReplacesWhatWasThere) {
  for (const std::string &before : {""s, "near"s, kLong}) {
    for (const std::string &after : {""s, "here"s, kLong + "!"}) {
      ByteString copied(before);
      const ByteString other(after);
      copied = other;
      EXPECT_EQ(copied.View(), after);
      ByteString moved(before);
      moved = ByteString(after);
      EXPECT_EQ(moved.View(), after);
      EXPECT_EQ(other.View(), after);
    }
  }
}

TEST(ByteString, EqualityIsThatOfTheBytes) {
  EXPECT_EQ(ByteString("ab"), ByteString("ab"));
  EXPECT_FALSE(ByteString("ab") == ByteString("aB"));
  EXPECT_FALSE(ByteString("abc") == ByteString("abcd"));
  EXPECT_EQ(ByteString("a\0b"s), "a\0b"s);
  std::string source = kLong;
  ByteString borrowed;
  borrowed.Append(source, Keep::Borrow);
  EXPECT_EQ(borrowed, ByteString(kLong));
}

TEST(ByteString, VectorOfTextsMayMoveThemAbout) {
  std::string source = kLong;
  std::vector<ByteString> texts;
  for (size_t i = 0; i < 100; ++i) {
    texts.emplace_back(std::string(i, 'n'));
    texts.emplace_back();
    texts.back().Append(source, Keep::Borrow);
  }
  for (size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(texts[2 * i].View(), std::string(i, 'n'));
    EXPECT_EQ(texts[2 * i + 1].data(), source.data());
  }
}

TEST(ByteString, RandomUseGivesWhatAStdStringGives) {
  samples::Random random(4);
  const std::string source(64, 's');
  for (int round = 0; round < 500; ++round) {
    ByteString text;
    std::string expected;
    for (int step = 0; step < 12; ++step) {
      const std::string piece(random.Below(12), static_cast<char>('a' + random.Below(26)));
      switch (random.Below(5)) {
        case 0:
          text.Append(std::string_view(source).substr(0, piece.size()), Keep::Borrow);
          expected += source.substr(0, piece.size());
          break;
        case 1: {
          ByteString other(text);
          text = std::move(other);
          break;
        }
        case 2: {
          const ByteString other(text);
          text = other;
          break;
        }
        default:
          text.Append(piece);
          expected += piece;
      }
      ASSERT_EQ(text.View(), expected);
    }
  }
}

TEST(ScratchText, GivesRoomOfAnyLength) {
  ScratchText scratch;
  for (const size_t size : {size_t{0}, size_t{1}, size_t{512}, size_t{513}, size_t{100000}, size_t{3}}) {
    char *room = scratch.Room(size);
    ASSERT_NE(room, nullptr);
    for (size_t i = 0; i < size; ++i) room[i] = static_cast<char>(i);
    for (size_t i = 0; i < size; ++i) ASSERT_EQ(room[i], static_cast<char>(i));
  }
}

}  // namespace
}  // namespace db_test
