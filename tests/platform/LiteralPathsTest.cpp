// Thousands of paths, well-formed and not, answered as a literal walk over listed directories answers them.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/platform/MountedVolume.h"

namespace {

namespace fs = std::filesystem;

struct Answer {
  OSErr code;
  fs::path path;  // where the file is, or would be
};

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

// The entry of a directory that a Mac name means; the name itself on disk when there is none.
fs::path entryFor(const fs::path &directory, std::string name) {
  std::replace(name.begin(), name.end(), '/', ':');
  std::set<std::string> inOtherCase;
  for (const auto &entry : fs::directory_iterator(directory)) {
    if (entry.path().filename() == name) return entry.path();
    if (lower(entry.path().filename()) == lower(name)) inOtherCase.insert(entry.path().filename());
  }
  return directory / (inOtherCase.empty() ? name : *inOtherCase.begin());
}

// Walks from `start` in the volume with this root; `names` are separated by colons.
Answer literalWalk(const fs::path &root, fs::path start, const std::string &names) {
  std::vector<std::string> parts;
  std::istringstream stream(names);
  for (std::string part; std::getline(stream, part, ':');) parts.push_back(part);
  for (const std::string &part : parts) {
    if (part == "." || part == ".." || part.size() > 63 || part.find('\0') != std::string::npos)
      return {bdNamErr, {}};
  }
  for (size_t i = 0; i < parts.size(); ++i) {
    if (parts[i].empty()) {
      if (start == root) return {dirNFErr, {}};
      start = start.parent_path();
      continue;
    }
    const fs::path next = entryFor(start, parts[i]);
    if (i + 1 == parts.size()) return {fs::exists(next) ? noErr : fnfErr, next};
    if (!fs::is_directory(next)) return {dirNFErr, {}};
    start = next;
  }
  return {noErr, start};
}

class LiteralPaths : public MountedVolume {
 protected:
  LiteralPaths() {
    for (const char *name :
         {"Alpha/Beta/file", "Alpha/beta/File", "alpha/file", "x:y/z:", "Alpha/Beta/Gamma/f"})
      folder_.write(name);
  }

  // Between 0 and 5 names with colons, now and then more of these than belong there.
  std::string randomNames() {
    static const std::string_view kNames[] = {
        "Alpha", "ALPHA", "alpha", "Beta", "beta", "BETA", "Gamma", "file", "FILE",  "f",    "x/y", "X/Y",
        "z/",    "none",  ".",     "..",   "",     "",     "",      "",     "Alpha", "Beta", "x:y"};
    std::string names;
    for (auto count = random_() % 6; count > 0; --count) {
      if (random_() % 97 == 0) names += std::string(64, 'n');
      if (random_() % 97 == 0) names += std::string(1, '\0');
      names += kNames[random_() % std::size(kNames)];
      if (count > 1 || random_() % 4 == 0) names += ":";
    }
    return names;
  }

  void expectAnswer(const Answer &expected, OSErr code, const FSSpec &spec, const std::string &asked) {
    ASSERT_EQ(code, expected.code) << testing::PrintToString(asked);
    if (code != noErr && code != fnfErr) return;
    std::string mac = "iPod" + expected.path.string().substr(folder_.path().string().size());
    for (char &c : mac) c = c == '/' ? ':' : c == ':' ? '/' : c;
    if (mac == "iPod") mac += ":";
    ASSERT_EQ(macPath(spec), mac) << testing::PrintToString(asked);
    if (code == noErr) {
      ASSERT_EQ(posixPath(spec), expected.path) << testing::PrintToString(asked);
    }
  }

  std::mt19937 random_{1904};
};

TEST_F(LiteralPaths, AnswerFullPathsAlike) {
  int found = 0;
  for (int i = 0; i < 10000; ++i) {
    const std::string names = randomNames();
    FSSpec spec;
    const OSErr code = makeSpec("iPod:" + names, spec);
    expectAnswer(literalWalk(folder_.path(), folder_.path(), names), code, spec, names);
    if (HasFatalFailure()) return;
    if (code == noErr) ++found;
  }
  EXPECT_GT(found, 1000);
}

TEST_F(LiteralPaths, AnswerPartialPathsAlike) {
  FSSpec start;
  ASSERT_EQ(makeSpec("iPod:Alpha:Beta:file", start), noErr);
  int found = 0;
  for (int i = 0; i < 10000; ++i) {
    const std::string names = randomNames();
    FSSpec spec;
    const OSErr code = makeSpec(volume_, start.parID, ":" + names, spec);
    expectAnswer(literalWalk(folder_.path(), at("Alpha/Beta"), names), code, spec, names);
    if (HasFatalFailure()) return;
    if (code == noErr) ++found;
  }
  EXPECT_GT(found, 500);
}

TEST_F(LiteralPaths, RandomRecordsGiveAKnownCodeAndNeverAFileThatIsNotThere) {
  const std::set<OSStatus> codes = {noErr, nsvErr, bdNamErr, fnfErr, dirNFErr};
  FSSpec good;
  ASSERT_EQ(makeSpec("iPod:Alpha:Beta:file", good), noErr);
  std::set<OSStatus> seen;
  for (int i = 0; i < 20000; ++i) {
    FSSpec spec = good;
    auto *bytes = reinterpret_cast<uint8_t *>(&spec);
    for (auto flips = random_() % 4; flips > 0; --flips)
      bytes[random_() % sizeof spec] = static_cast<uint8_t>(random_());
    FSRef ref;
    const OSErr made = FSpMakeFSRef(&spec, &ref);
    seen.insert(made);
    ASSERT_TRUE(codes.count(made)) << made;
    ref.hidden[random_() % sizeof ref] = static_cast<uint8_t>(random_());
    std::vector<uint8_t> path(16384);
    const OSStatus written = FSRefMakePath(&ref, path.data(), 16384);
    ASSERT_TRUE(written == noErr || written == fnfErr) << written;
    if (written == noErr) {
      ASSERT_TRUE(fs::exists(reinterpret_cast<const char *>(path.data())));
    }
  }
  EXPECT_EQ(seen, codes) << "the records reached every answer";
}

TEST_F(LiteralPaths, RandomBytesAsPathsGiveAKnownCode) {
  const std::set<OSErr> codes = {noErr, nsvErr, bdNamErr, fnfErr, dirNFErr};
  const std::string_view alphabet("iPod:Alph/.:\0\x80\xC3\xFF", 16);
  for (int i = 0; i < 20000; ++i) {
    std::vector<unsigned char> path{static_cast<unsigned char>(random_() % 256)};
    for (int n = 0; n < path[0]; ++n) path.push_back(static_cast<unsigned char>(alphabet[random_() % 16]));
    FSSpec spec;
    const auto volume = static_cast<int16_t>(random_() % 4 == 0 ? 0 : volume_);
    const OSErr code = FSMakeFSSpec(volume, static_cast<int32_t>(random_() % 5), path.data(), &spec);
    ASSERT_TRUE(codes.count(code)) << code;
  }
}

}  // namespace
