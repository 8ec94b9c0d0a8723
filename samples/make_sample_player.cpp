// Writes the sample player: a directory laid out like a player's disk, with its database and placeholder
// music files, and beside it the same songs as a big-endian desktop library.

#include <exception>
#include <filesystem>
#include <iostream>

#include "samples/SampleCovers.h"
#include "samples/SampleLibrary.h"
#include "samples/WriteFile.h"

namespace {

namespace fs = std::filesystem;
using samples::WriteFile;

void WritePlayer(const fs::path &player) {
  const fs::path control = player / "iPod_Control";
  for (const samples::SampleSong &song : samples::SampleSongs()) {
    if (!song.missing) WriteFile(control / "Music" / song.file, PlaceholderFile(song));
  }
  WriteFile(control / "iTunes" / "iTunesDB", samples::SamplePlayerDatabase());
  WriteFile(control / "iTunes" / "Play Counts", samples::SamplePlayCounts());
  WriteFile(control / "iTunes" / "OTGPlaylistInfo", samples::SampleOnTheGo());
  WriteFile(control / "iTunes" / "DeviceInfo", samples::SampleDeviceInfo());
  WriteFile(control / "Device" / "SysInfo", samples::SampleSysInfo());
  WriteFile(control / "Artwork" / "ArtworkDB", samples::SampleArtworkDB());
  WriteFile(control / "Artwork" / "F1028_1.ithmb", samples::SamplePictures(100));
  WriteFile(control / "Artwork" / "F1029_1.ithmb", samples::SamplePictures(200));
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::cerr << "usage: make_sample_player PLAYER_DIRECTORY LIBRARY_FILE\n";
    return 2;
  }
  try {
    WritePlayer(fs::absolute(argv[1]));
    WriteFile(fs::absolute(argv[2]), samples::SampleDesktopLibrary());
  } catch (const std::exception &error) {
    std::cerr << "make_sample_player: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
