#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/SafeName.h"
#include "zemhost/rescue/TargetNames.h"

namespace zemhost {
namespace {

std::string take(TargetNames &names, const std::string &text, const std::set<std::string> &others = {}) {
  return names.take([&](std::string_view suffix) { return safeName(text, "Unknown", suffix, ".mp3"); },
                    [&](const std::string &name) { return !others.contains(name); });
}

TEST(TargetNames, AreNumberedFromTheSecondOn) {
  TargetNames names;
  EXPECT_EQ(take(names, "Home"), "Home.mp3");
  EXPECT_EQ(take(names, "HOME"), "HOME (2).mp3");
  EXPECT_EQ(take(names, "home"), "home (3).mp3");
  EXPECT_EQ(take(names, "Home (2)"), "Home (2) (2).mp3");
  EXPECT_EQ(take(names, "Other"), "Other.mp3");
}

TEST(TargetNames, SkipNamesThatAreNotFree) {
  TargetNames names;
  const std::set<std::string> others = {"Home.mp3", "Home (2).mp3", "Home (4).mp3"};
  EXPECT_EQ(take(names, "Home", others), "Home (3).mp3");
  EXPECT_EQ(take(names, "Home", others), "Home (5).mp3");
}

// The names that n texts take, and how many were looked at for them.
template <typename Text>
void expectFewTries(size_t n, const Text &text) {
  TargetNames names;
  std::set<std::string> given;
  for (size_t i = 0; i < n; ++i) given.insert(foldedText(take(names, text(i))));
  EXPECT_EQ(given.size(), n);
  EXPECT_LE(names.tried(), 3 * n);
}

TEST(TargetNames, TakeAFewTriesEachHoweverTheyMeet) {
  constexpr size_t kMany = 3000;
  expectFewTries(kMany, [](size_t) { return std::string("Same"); });
  // The same when they are cut, with and without a number.
  expectFewTries(kMany, [](size_t i) { return std::string(260, 'x') + std::to_string(i); });
  // Each twice, and the same only when a number has cut them.
  expectFewTries(kMany, [](size_t i) { return std::string(247, 'x') + std::to_string(1000 + i / 2); });
  expectFewTries(kMany, [](size_t i) { return std::string(243, 'x') + std::to_string(10000000 + i / 2); });
  // Letters of one, two and three bytes that are the same without regard to case.
  const std::vector<std::string> letters = {"k", "K", "\u212A"};
  expectFewTries(kMany, [&](size_t i) {
    std::string text;
    for (size_t rest = i, at = 0; at < 100; ++at, rest /= 3) text += letters[rest % 3];
    return text;
  });
}

}  // namespace
}  // namespace zemhost
