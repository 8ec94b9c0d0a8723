// What the shared library shows to the outside, and what it needs from there.

#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct CloseProcess {
  void operator()(std::FILE *process) const { pclose(process); }
};

// The last word of each line that the command prints.
std::vector<std::string> lastWords(const std::string &command) {
  const std::unique_ptr<std::FILE, CloseProcess> process(popen(command.c_str(), "r"));
  std::vector<std::string> words;
  char line[512];
  while (process != nullptr && std::fgets(line, sizeof line, process.get()) != nullptr) {
    std::istringstream stream(line);
    std::string word;
    while (stream >> word) {
    }
    words.push_back(word);
  }
  return words;
}

TEST(SharedLibrary, ExportsItsTwelveCallsAndNothingElse) {
  EXPECT_THAT(lastWords("nm -D --defined-only '" CARBON_LIBRARY "'"),
              testing::UnorderedElementsAre(
                  "FSMakeFSSpec", "FSpMakeFSRef", "FSRefMakePath", "NewPtr", "CFStringCreateWithBytes",
                  "CFStringGetLength", "CFStringGetMaximumSizeForEncoding", "CFStringGetCString", "CFRelease",
                  "CarbonMountVolume", "CarbonSpecFromPath", "CarbonPathFromSpec"));
}

TEST(SharedLibrary, NeedsTheCAndCxxLibrariesOnly) {
  const auto needed = lastWords("readelf -d '" CARBON_LIBRARY "' | grep NEEDED");
  EXPECT_FALSE(needed.empty());
  for (const std::string &library : needed)
    EXPECT_THAT(library, testing::MatchesRegex(R"(\[(libstdc\+\+|libgcc_s|libc|libm|ld.*)\.so\.[0-9]+\])"));
}

}  // namespace
