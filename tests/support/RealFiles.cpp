#include "tests/support/RealFiles.h"

#include <algorithm>

#include "tests/support/Folders.h"

namespace support {
namespace {

std::filesystem::path Collection() { return SharedFolder() / "data" / "real"; }

}  // namespace

void PrintTo(const RealFile &file, std::ostream *out) { *out << file.name; }

const std::vector<RealFile> &RealFiles() {
  static const std::vector<RealFile> files = {
      {"small-japanese.itunesdb", 1, 2, 1, 2, "君の知らない物語"},
      {"library-1181-songs.itunesdb", 1, 1181, 8, 2205, "Komm, Suesser Tod"},
      {"one-song-old-header.itunesdb", 1, 1, 1, 1, "229 kbit/s"},
      {"empty-two-playlists.itunesdb", 1, 0, 2, 0, "0 songs"},
      {"smart-playlists.itunesdb", 1, 292, 6, 587, "292 songs"},
      {"signed-350-songs.itunesdb", 1, 350, 1, 350, "350 songs"},
      {"big-endian-1.1.2.library", 0, 5, 4, 11, "Bela Bartók"},
      {"big-endian-3.0.library", 0, 1, 1, 1, "Surabaya Johnny (Weill)"},
      {"big-endian-4.1-bpm-13.library", 0, 1, 5, 2, "1 song"},
      {"big-endian-4.6.library", 0, 1, 5, 4, "Ricky Ian Gordon"},
      {"encrypted.library", 0, 0, 0, 0, "", true}};
  return files;
}

bool HasRealFiles() { return exists(Collection()); }

std::filesystem::path PathOf(const RealFile &file) { return Collection() / file.name; }

std::vector<std::filesystem::path> UntestedRealFiles() {
  std::vector<std::filesystem::path> paths;
  if (!HasRealFiles()) return paths;
  for (const auto &entry : std::filesystem::directory_iterator(Collection())) {
    const std::filesystem::path &path = entry.path();
    const bool isKnown = std::any_of(RealFiles().begin(), RealFiles().end(),
                                     [&](const RealFile &file) { return path.filename() == file.name; });
    if (!isKnown && entry.is_regular_file() && path.extension() != ".md") paths.push_back(path);
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace support
