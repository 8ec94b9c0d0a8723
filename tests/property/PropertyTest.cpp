// The built plug-in against the model: random files, and random calls of every method and property.
//
//   ZEM_SEED=N        only the case of this seed, made small if it fails
//   ZEM_TEST_SCALE=P  P percent of the usual number of cases
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <set>
#include <string>

#include "tests/model/Methods.h"
#include "tests/property/Environment.h"
#include "tests/property/RandomCase.h"
#include "tests/property/Runner.h"
#include "tests/property/Shrinker.h"

namespace property {
namespace {

// Makes the case small, writes it beside the test program's working files, and says how to come back to it.
std::string Report(uint64_t seed, const Case &failing) {
  const Case small = Shrink(failing, [](const Case &what) { return FindDifferenceApart(what).has_value(); });
  const std::string name = "property-" + std::to_string(seed);
  const std::string text = FindDifferenceApart(small).value_or("") + "\n\n" + Describe(small);
  std::ofstream(name + ".txt") << text;
  for (size_t i = 0; i < small.files.size(); ++i) {
    std::ofstream(name + "-file" + std::to_string(i) + ".db", std::ios::binary) << small.files[i].Bytes();
  }
  return "seed " + std::to_string(seed) + " fails (ZEM_SEED=" + std::to_string(seed) +
         " ./test Property; made small in " + name + ".txt):\n" + text;
}

constexpr uint64_t kBlocks = 4;
constexpr uint64_t kCasesOfABlock = 3000;

class Property : public testing::TestWithParam<uint64_t> {};

INSTANTIATE_TEST_SUITE_P(Block, Property, testing::Range<uint64_t>(0, kBlocks));

TEST_P(Property, PluginAnswersAsTheModelDoes) {
  if (const auto seed = FromEnvironment("ZEM_SEED")) {
    if (GetParam() != 0) GTEST_SKIP() << "one seed was asked for";
    const Case what = SomeCase(*seed);
    ASSERT_EQ(FindDifference({}), std::nullopt);  // the volumes are made by the process that removes them
    if (FindDifferenceApart(what)) FAIL() << Report(*seed, what);
    ASSERT_EQ(FindDifference(what), std::nullopt);
    return;
  }
  const uint64_t cases = Scaled(kCasesOfABlock);
  const uint64_t first = GetParam() * 1000000 + 1;
  const std::string running = "property-running-" + std::to_string(GetParam()) + ".txt";
  std::cout << "seeds " << first << " to " << first + cases - 1 << "; the one at work is in " << running
            << '\n';
  std::ofstream atWork(running);
  for (uint64_t seed = first; seed < first + cases; ++seed) {
    atWork.seekp(0) << seed << std::endl;
    const Case what = SomeCase(seed);
    if (FindDifference(what)) FAIL() << Report(seed, what);
  }
}

TEST(PropertyTest, CasesReachEveryMethodAndBothVariants) {
  std::set<std::string> called;
  std::set<std::string> headers;
  for (uint64_t seed = 1; seed <= 100; ++seed) {
    const Case what = SomeCase(seed);
    for (const Step &step : what.steps) called.insert(step.name);
    for (const DatabaseFile &file : what.files) headers.insert(file.pieces.front().substr(0, 4));
  }
  for (const model::Method &method : model::Methods())
    EXPECT_THAT(called, testing::Contains(method.declaration));
  EXPECT_THAT(headers, testing::IsSupersetOf({"mhbd", "hdfm"}));
}

TEST(PropertyTest, AWrongAnswerIsFoundAndMadeSmall) {
  const Distortion wrongYears = [](const Step &step, support::Answer &answer) {
    if (step.name == "GetYear(index As Integer) As Integer" && answer.number != 0) ++answer.number;
  };
  uint64_t seed = 1;
  while (!FindDifference(SomeCase(seed), wrongYears) && seed < 1000) ++seed;
  const Case small = Shrink(
      SomeCase(seed), [&](const Case &what) { return FindDifferenceApart(what, wrongYears).has_value(); });
  const std::optional<std::string> difference = FindDifference(small, wrongYears);
  ASSERT_TRUE(difference);
  EXPECT_THAT(*difference, testing::HasSubstr("GetYear"));
  EXPECT_LE(small.steps.size(), 4U) << Describe(small);
  EXPECT_LE(small.files[0].Bytes().size() + small.files[1].Bytes().size(), 100U) << Describe(small);
}

TEST(PropertyTest, ACrashIsAnAnswer) {
  const Distortion crash = [](const Step & /*step*/, support::Answer & /*answer*/) { std::abort(); };
  ASSERT_EQ(FindDifference({}), std::nullopt);
  const auto difference =
      FindDifferenceApart({.files = {}, .steps = {{.kind = Step::Kind::Get, .name = "Error"}}}, crash);
  ASSERT_TRUE(difference);
  EXPECT_THAT(*difference, testing::AnyOf(testing::HasSubstr("signal"), testing::HasSubstr("status")));
}

}  // namespace
}  // namespace property
