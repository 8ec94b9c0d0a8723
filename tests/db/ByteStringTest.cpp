#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "db/ByteString.h"
#include "samples/GeneratedLibrary.h"

namespace db_test {
namespace {

using namespace std::string_literals;

// Longer than what fits inside the object itself.
const std::string kLong = "a text that lives on the heap";

// A block that holds the bytes behind a few others, in use until the end of the test.
class Block {
 public:
  explicit Block(const std::string &bytes) : block_(TextBlock::Make(bytes.size() + 5)), size_(bytes.size()) {
    bytes.copy(block_->Bytes() + 5, size_);
  }
  Block(const Block &) = delete;
  Block &operator=(const Block &) = delete;
  ~Block() { block_->Drop(); }

  [[nodiscard]] BlockText Text() const { return Text(size_); }
  [[nodiscard]] BlockText Text(size_t n) const { return {{block_->Bytes() + 5, n}, block_}; }

 private:
  TextBlock *block_;
  size_t size_;
};

ByteString Sharing(const Block &block) {
  ByteString text;
  text.Append(block.Text());
  return text;
}

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

TEST(ByteString, SharedBytesAreReadWhereTheyStand) {
  for (const std::string &bytes : {"abc"s, kLong}) {
    const Block block(bytes);
    EXPECT_EQ(Sharing(block).data(), block.Text().bytes.data());
    EXPECT_EQ(Sharing(block).View(), bytes);
  }
}

TEST(ByteString, CopyOfASharedTextOwnsItsBytes) {
  const Block block(kLong);
  const ByteString text = Sharing(block);
  const ByteString copy(text);  // NOLINT(performance-unnecessary-copy-initialization): what is tested
  ByteString assigned("old");
  assigned = text;
  EXPECT_EQ(copy.View(), kLong);
  EXPECT_EQ(assigned.View(), kLong);
  EXPECT_NE(copy.data(), text.data());
  EXPECT_NE(assigned.data(), text.data());
}

TEST(ByteString, MoveOfASharedTextPassesTheShareOn) {
  const Block block(kLong);
  ByteString text = Sharing(block);
  const ByteString moved(std::move(text));
  EXPECT_EQ(moved.data(), block.Text().bytes.data());
  ByteString assigned = Sharing(block);
  assigned = Sharing(block);
  EXPECT_EQ(assigned.data(), block.Text().bytes.data());
}

TEST(ByteString, SharedBytesLiveAsLongAsTheLastText) {
  ByteString last;
  {
    std::vector<ByteString> texts;
    const Block block(kLong);
    texts.reserve(5);
    for (int i = 0; i < 5; ++i) texts.push_back(Sharing(block));
    last = std::move(texts[2]);
  }
  EXPECT_EQ(last.View(), kLong);
}

TEST(ByteString, AppendToASharedTextCopiesBothParts) {
  const Block block("shared bytes");
  ByteString text = Sharing(block);
  text.Append(Block("+").Text());
  EXPECT_EQ(block.Text().bytes, "shared bytes");
  EXPECT_EQ(text.View(), "shared bytes+");
  EXPECT_NE(text.data(), block.Text().bytes.data());
}

TEST(ByteString, AppendToAShortSharedTextLeavesTheBlockAlone) {
  const Block block("ab");
  ByteString text;
  text.Append(block.Text(1));
  text.Append("X");
  EXPECT_EQ(block.Text().bytes, "ab");
  EXPECT_EQ(text.View(), "aX");
}

TEST(ByteString, AppendOfNothingChangesNothing) {
  const Block block(kLong);
  ByteString text;
  text.Append("");
  text.Append(block.Text(0));
  EXPECT_TRUE(text.empty());
  text.Append(block.Text());
  text.Append("");
  EXPECT_EQ(text.data(), block.Text().bytes.data());
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
  const Block block(kLong);
  EXPECT_EQ(Sharing(block), ByteString(kLong));
}

TEST(ByteString, VectorOfTextsMayMoveThemAbout) {
  const Block block(kLong);
  std::vector<ByteString> texts;
  for (size_t i = 0; i < 100; ++i) {
    texts.emplace_back(std::string(i, 'n'));
    texts.push_back(Sharing(block));
  }
  for (size_t i = 0; i < 100; ++i) {
    EXPECT_EQ(texts[2 * i].View(), std::string(i, 'n'));
    EXPECT_EQ(texts[2 * i + 1].data(), block.Text().bytes.data());
  }
}

TEST(ByteString, RandomUseGivesWhatAStdStringGives) {
  samples::Random random(4);
  const std::string source(64, 's');
  const Block block(source);
  for (int round = 0; round < 500; ++round) {
    ByteString text;
    std::string expected;
    for (int step = 0; step < 12; ++step) {
      const std::string piece(random.Below(12), static_cast<char>('a' + random.Below(26)));
      switch (random.Below(5)) {
        case 0:
          text.Append(block.Text(piece.size()));
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
