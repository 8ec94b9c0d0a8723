// Writes a generated library: write_generated FILE SONGS PLAYLISTS ENTRIES little|big

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string_view>

#include "samples/GeneratedLibrary.h"

int main(int argc, char **argv) {
  if (argc != 6) {
    std::cerr << "usage: write_generated FILE SONGS PLAYLISTS ENTRIES little|big\n";
    return 2;
  }
  const auto number = [argv](int i) { return static_cast<uint32_t>(std::strtoul(argv[i], nullptr, 10)); };
  samples::GeneratedLibrary library;
  library.songs = number(2);
  library.playlists = number(3);
  library.entries = number(4);
  if (std::string_view(argv[5]) == "big") library.variant = samples::Variant::BigEndian;
  std::ofstream out(argv[1], std::ios::binary);
  library.WriteTo(out);
  if (out.flush()) return 0;
  std::cerr << "write_generated: " << argv[1] << ": the file cannot be written\n";
  return 1;
}
