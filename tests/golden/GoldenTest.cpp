// The plug-in's answers about the samples against the committed listings. tools/update-golden writes these
// anew.
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <set>
#include <sstream>

#include "tests/golden/Listing.h"
#include "tests/model/Methods.h"
#include "tests/property/Runner.h"

namespace golden {

// Keeps CTest's names of the tests free of addresses.
void PrintTo(const Sample &sample, std::ostream *out) { *out << sample.name; }

namespace {

class Golden : public testing::TestWithParam<Sample> {};

INSTANTIATE_TEST_SUITE_P(Listing, Golden, testing::ValuesIn(Samples()), [](const auto &test) {
  std::string name = test.param.name;
  for (char &c : name)
    if (c == '-') c = '_';
  return name;
});

TEST_P(Golden, IsTheCommittedListing) {
  const std::string path = ZEM_GOLDEN_DIR "/" + GetParam().name + ".txt";
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << "cannot read " << path;
  const std::string committed((std::istreambuf_iterator<char>(file)), {});
  const std::string text = List(GetParam()).text;
  if (text == committed) return;
  std::istringstream lines(text);
  std::istringstream committedLines(committed);
  std::string line;
  std::string committedLine;
  for (int number = 1;; ++number) {
    const bool more = static_cast<bool>(std::getline(lines, line));
    const bool committedMore = static_cast<bool>(std::getline(committedLines, committedLine));
    if (more && committedMore && line == committedLine) continue;
    FAIL() << path << ':' << number << ": " << (committedMore ? committedLine : "(end)")
           << "\nis now: " << (more ? line : "(end)")
           << "\ntools/update-golden writes the listings anew, to be read before they "
           << "are committed";
  }
}

TEST_P(Golden, IsWhatTheModelAnswers) {
  const Listing listing = List(GetParam());
  EXPECT_EQ(property::FindDifference({.files = {{.pieces = {GetParam().bytes}}}, .steps = listing.steps}),
            std::nullopt);
}

TEST_P(Golden, AsksEveryMethod) {
  std::set<std::string> asked;
  for (const property::Step &step : List(GetParam()).steps) asked.insert(step.name);
  for (const model::Method &method : model::Methods())
    EXPECT_THAT(asked, testing::Contains(method.declaration));
}

}  // namespace
}  // namespace golden
