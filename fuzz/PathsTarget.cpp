// Paths for the file manager: the first byte chooses where a path starts, the rest is the path. The volume is
// a scratch folder with files of awkward names. No answer may lie outside it, and nothing in it may change.

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "platform/carbon/CarbonFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using fuzz::Require;
namespace fs = std::filesystem;

bool Equal(const FSSpec &a, const FSSpec &b) {
  return a.vRefNum == b.vRefNum && a.parID == b.parID &&
         std::equal(a.name, a.name + 1 + std::min<size_t>(a.name[0], 63), b.name);
}

OSErr MakeSpec(int16_t volume, int32_t directory, std::string_view path, FSSpec &spec) {
  std::array<unsigned char, 256> name{};
  name[0] = static_cast<unsigned char>(path.size());
  std::copy(path.begin(), path.end(), name.begin() + 1);
  return FSMakeFSSpec(volume, directory, name.data(), &spec);
}

class CheckedVolume {
 public:
  CheckedVolume() {
    for (const char *file : {"iPod_Control/Music/F00/A.mp3", "iPod_Control/iTunes/iTunesDB", "a:b",
                             "caf\xC3\xA9", "CAF\xC3\x89/x", "\xE3\x81\x82/\xE3\x81\x84.m4a", "\xFF\xFE raw",
                             "d/d/d/d/d/d/file", ". .", "...", "e/.hidden"}) {
      folder_.write(file);
    }
    folder_.write(std::string(63, 'n'));
    folder_.write(std::string(64, 'l'));
    fs::create_directory_symlink("iPod_Control", folder_.path() / "link");
    Require(CarbonMountVolume("iPod", folder_.path().c_str()) == noErr, "no volume");
    FSSpec root{};
    Require(MakeSpec(0, 0, "iPod:", root) == noErr, "no root");
    volume_ = root.vRefNum;
    directories_ = {0, 1, 2, 99, -1, Identifier("iPod:iPod_Control:Music"), Identifier("iPod:d:d:d:d")};
    before_ = Look();
  }

  void Try(uint8_t start, std::string_view path) {
    const int32_t directory = directories_[start % directories_.size()];
    const bool isFull = start >= 0x80 || (path.find(':') != 0 && path.find(':') != std::string_view::npos);
    if (isFull) {
      // Other volumes are other people's files.
      if (path.substr(0, path.find(':')) != "iPod") return;
      TrySpec(0, 0, path);
    } else {
      TrySpec(volume_, directory, path);
    }
  }

  void HasNotChanged() const { Require(Look() == before_, "the volume has changed"); }

 private:
  static int32_t Identifier(std::string_view directory) {
    FSSpec inside{};
    Require(MakeSpec(0, 0, std::string(directory) + ":none", inside) == fnfErr, "no directory");
    return inside.parID;
  }

  void TrySpec(int16_t volume, int32_t directory, std::string_view path) const {
    FSSpec spec{};
    const FSSpec untouched = spec;
    const OSErr result = MakeSpec(volume, directory, path, spec);
    if (result != noErr && result != fnfErr) {
      Require(result == nsvErr || result == dirNFErr || result == bdNamErr, "an unknown error");
      Require(Equal(spec, untouched), "an error leaves something in the specification");
      return;
    }
    Require(spec.vRefNum == volume_ && spec.name[0] >= 1 && spec.name[0] <= 63, "a wrong specification");
    LiesInside(spec, result == noErr);
    ReadsBack(spec, result);
  }

  void LiesInside(const FSSpec &spec, bool exists) const {
    FSRef ref{};
    Require((FSpMakeFSRef(&spec, &ref) == noErr) == exists, "a reference to what there is not");
    if (!exists) return;
    std::array<uint8_t, 4096> buffer{};
    Require(FSRefMakePath(&ref, buffer.data(), buffer.size()) == noErr, "no path");
    const std::string path = reinterpret_cast<const char *>(buffer.data());
    Require(fs::exists(fs::symlink_status(path)), "a path that leads nowhere");
    const std::string real = fs::weakly_canonical(path);
    const std::string root = folder_.path();
    Require(real == root || real.starts_with(root + "/"), "a path that leads out: " + real);
  }

  // The full path names the same file again.
  void ReadsBack(const FSSpec &spec, OSErr result) const {
    std::array<char, 4096> path{};
    Require(CarbonPathFromSpec(&spec, path.data(), path.size()) == noErr, "no full path");
    const std::string_view full = path.data();
    Require(full.starts_with("iPod:"), "a full path on another volume");
    if (full.size() > 255) return;
    FSSpec again{};
    Require(MakeSpec(0, 0, full, again) == result && Equal(spec, again), "the full path names another file");
  }

  // Every name there is, with the time of its last change.
  [[nodiscard]] std::map<std::string, std::pair<time_t, long>> Look() const {
    std::map<std::string, std::pair<time_t, long>> all;
    for (const auto &entry : fs::recursive_directory_iterator(folder_.path())) {
      struct stat status {};
      Require(lstat(entry.path().c_str(), &status) == 0, "a file is gone");
      all[entry.path()] = {status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
    }
    return all;
  }

  support::TemporaryFolder folder_;
  int16_t volume_ = 0;
  std::vector<int32_t> directories_;
  std::map<std::string, std::pair<time_t, long>> before_;
};

}  // namespace

FUZZ_TARGET(paths) {
  static CheckedVolume volume;
  static unsigned tries = 0;
  if (size == 0) return;
  volume.Try(data[0], {reinterpret_cast<const char *>(data) + 1, std::min<size_t>(size - 1, 255)});
  // Looking at the whole volume takes longer than many paths.
  if (tries++ % 64 == 0) volume.HasNotChanged();
}
