#include "tests/property/Volumes.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "tests/platform/MountedVolume.h"
#include "tests/support/TemporaryFolder.h"

namespace property {
namespace {

constexpr const char *kNames[] = {"iPod", "B\xC3\xA9ta"};

class Volumes {
 public:
  Volumes() {
    for (size_t i = 0; i < 2; ++i) {
      folders_[i].makeDirectory("Databases");
      folders_[i].makeDirectory("iPod_Control/iTunes");
      for (const char *folder : {"F00", "F01", "F02", "F03"}) {
        folders_[i].makeDirectory(std::filesystem::path("iPod_Control/Music") / folder);
      }
      folders_[i].write("iPod_Control/Music/F00/A.mp3");
      std::filesystem::path deep;
      for (int level = 0; level < 3; ++level) deep /= std::string(62, 'd');
      folders_[i].makeDirectory(deep);
      if (CarbonMountVolume(kNames[i], folders_[i].path().c_str()) != noErr)
        throw std::runtime_error("no volume");
    }
  }

  [[nodiscard]] std::filesystem::path Path(DatabaseFile::Place place, size_t number) const {
    const std::filesystem::path &root = folders_[number].path();
    switch (place) {
      case DatabaseFile::Place::Player:
        return root / "iPod_Control" / "iTunes" / "iTunesDB";
      case DatabaseFile::Place::Folder:
        return root / "Databases" / "library.itdb";
      case DatabaseFile::Place::Missing:
        break;
    }
    return root / "Databases" / "missing.itdb";
  }

 private:
  support::TemporaryFolder folders_[2];
};

}  // namespace

FSSpec PutOnVolume(const DatabaseFile &file, size_t number) {
  static const Volumes volumes;
  const std::filesystem::path path = volumes.Path(file.place, number);
  if (file.place != DatabaseFile::Place::Missing) {
    // Truncating the old file makes some file systems write to the disk at once.
    std::filesystem::remove(path);
    std::ofstream out(path, std::ios::binary);
    out << file.Bytes();
    if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
  }
  FSSpec spec{};
  const OSErr result = CarbonSpecFromPath(path.c_str(), &spec);
  if (result != noErr && result != fnfErr) throw std::runtime_error("no specification for " + path.string());
  return spec;
}

}  // namespace property
