#pragma once

// A declared volume over a temporary folder, and short forms of the file manager's calls with C++ values.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/carbon/CarbonFiles.h"
#include "tests/support/TemporaryFolder.h"

inline std::vector<unsigned char> pascal(std::string_view text) {
  std::vector<unsigned char> bytes(text.size() + 1);
  bytes[0] = static_cast<unsigned char>(text.size());
  std::copy(text.begin(), text.end(), bytes.begin() + 1);
  return bytes;
}

inline OSErr makeSpec(int16_t volume, int32_t directory, std::string_view path, FSSpec &spec) {
  return FSMakeFSSpec(volume, directory, pascal(path).data(), &spec);
}

inline OSErr makeSpec(std::string_view fullPath, FSSpec &spec) { return makeSpec(0, 0, fullPath, spec); }

inline FSSpec specification(int16_t volume, int32_t directory, std::string_view name) {
  FSSpec spec = {};
  spec.vRefNum = volume;
  spec.parID = directory;
  spec.name[0] = static_cast<uint8_t>(name.size());
  std::memcpy(spec.name + 1, name.data(), name.size());
  return spec;
}

inline bool equal(const FSSpec &one, const FSSpec &other) {
  return one.vRefNum == other.vRefNum && one.parID == other.parID &&
         std::memcmp(one.name, other.name, sizeof one.name) == 0;
}

inline std::string nameOf(const FSSpec &spec) {
  return {reinterpret_cast<const char *>(spec.name) + 1, spec.name[0]};
}

// The POSIX path of an existing file; the code of what failed in its place.
inline std::string posixPath(const FSSpec &spec) {
  FSRef ref;
  if (const OSErr made = FSpMakeFSRef(&spec, &ref); made != noErr) return std::to_string(made);
  std::vector<uint8_t> path(70000);
  const OSStatus written = FSRefMakePath(&ref, path.data(), static_cast<uint32_t>(path.size()));
  return written == noErr ? reinterpret_cast<const char *>(path.data()) : std::to_string(written);
}

// The colon-separated path; the code of what failed in its place.
inline std::string macPath(const FSSpec &spec) {
  std::vector<char> path(70000);
  const OSStatus written = CarbonPathFromSpec(&spec, path.data(), static_cast<uint32_t>(path.size()));
  return written == noErr ? path.data() : std::to_string(written);
}

class MountedVolume : public testing::Test {
 protected:
  MountedVolume() {
    EXPECT_EQ(CarbonMountVolume("iPod", folder_.path().c_str()), noErr);
    FSSpec root;
    EXPECT_EQ(makeSpec("iPod:", root), noErr);
    volume_ = root.vRefNum;
  }

  std::string at(const std::filesystem::path &name) const { return folder_.path() / name; }

  support::TemporaryFolder folder_;
  int16_t volume_ = 0;
};
