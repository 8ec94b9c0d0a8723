// Writes the sample nano: a directory laid out like the disk of a newest nano, with the songs and playlists
// of the sample player in SQLite files.

#include <exception>
#include <filesystem>
#include <iostream>

#include "samples/SampleLibrary.h"
#include "samples/SampleNano.h"
#include "samples/WriteFile.h"

namespace {

void WriteNano(const std::filesystem::path &nano) {
  const std::filesystem::path control = nano / "iPod_Control";
  for (const samples::SampleSong &song : samples::SampleSongs()) {
    if (!song.missing) samples::WriteFile(control / "Music" / song.file, PlaceholderFile(song));
  }
  samples::WriteFile(control / "iTunes" / "iTunesDB", "");  // as such players have it
  samples::WriteFile(control / "iTunes" / "Play Counts", samples::SampleNanoPlayCounts());
  const std::filesystem::path folder = control / "iTunes" / "iTunes Library.itlp";
  std::filesystem::create_directories(folder);
  samples::WriteSampleNano(folder);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: make_sample_nano DIRECTORY\n";
    return 2;
  }
  try {
    WriteNano(std::filesystem::absolute(argv[1]));
  } catch (const std::exception &error) {
    std::cerr << "make_sample_nano: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
