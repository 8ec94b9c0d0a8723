#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Error.h"
#include "zemhost/library/PlaylistChoice.h"

namespace zemhost {
namespace {

using testing::HasSubstr;

const std::vector<std::string> kNames = {"My Pod",           "Jazz",     "jazz", "Jazz Live", "2003",
                                         "\u97F3\u6A02 mix", "Caf\u00E9"};

std::string refusal(std::string_view wanted, const std::vector<std::string> &names = kNames) {
  try {
    return "chose " + std::to_string(choosePlaylist(names, wanted));
  } catch (const HostError &error) {
    return error.what();
  }
}

TEST(ChoosePlaylist, TakesANumberThatExists) {
  EXPECT_EQ(choosePlaylist(kNames, "0"), 0);
  EXPECT_EQ(choosePlaylist(kNames, "6"), 6);
}

TEST(ChoosePlaylist, NumberThatDoesNotExistMayBeAName) { EXPECT_EQ(choosePlaylist(kNames, "2003"), 4); }

TEST(ChoosePlaylist, ExactNameComesBeforeAllOthers) {
  EXPECT_EQ(choosePlaylist(kNames, "Jazz"), 1);
  EXPECT_EQ(choosePlaylist(kNames, "jazz"), 2);
}

TEST(ChoosePlaylist, WholeNameComesBeforeLongerOnes) {
  EXPECT_EQ(choosePlaylist({"Rock Hits", "Rock"}, "ROCK"), 1);
}

TEST(ChoosePlaylist, BeginningOfOneNameIsEnough) {
  EXPECT_EQ(choosePlaylist(kNames, "my"), 0);
  EXPECT_EQ(choosePlaylist(kNames, "\u97F3"), 5);
  EXPECT_EQ(choosePlaylist(kNames, "CAFE\u0301"), 6);
}

TEST(ChoosePlaylist, SeveralThatFitAreListed) {
  EXPECT_EQ(refusal("JAZ"), R"("JAZ" may be any of the playlists 1 "Jazz", 2 "jazz", 3 "Jazz Live")");
  EXPECT_EQ(refusal("Twice", {"Twice", "Twice"}),
            R"("Twice" may be any of the playlists 0 "Twice", 1 "Twice")");
}

TEST(ChoosePlaylist, OfManyThatFitSomeAreListed) {
  EXPECT_THAT(refusal("Same", std::vector<std::string>(5000, "Same")),
              testing::EndsWith("18 \"Same\", 19 \"Same\", and 4980 more"));
}

TEST(ChoosePlaylist, NoneThatFitsIsSaid) {
  EXPECT_THAT(refusal("Rock"), HasSubstr("no playlist is named \"Rock\""));
  EXPECT_THAT(refusal("7"), HasSubstr("no playlist is named \"7\""));
  EXPECT_THAT(refusal("-1"), HasSubstr("no playlist"));
  EXPECT_THAT(refusal("99999999999"), HasSubstr("no playlist"));
  EXPECT_THAT(refusal(""), HasSubstr("no playlist"));
  EXPECT_THAT(refusal("0", {}), HasSubstr("there are 0 of them"));
}

TEST(ChoosePlaylist, EmptyTextIsOnlyTheNameThatIsEmpty) { EXPECT_EQ(choosePlaylist({"a", ""}, ""), 1); }

}  // namespace
}  // namespace zemhost
