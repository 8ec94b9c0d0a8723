// Writes the listings of all samples into a folder.
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "tests/golden/Listing.h"

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: update_golden FOLDER\n";
    return 2;
  }
  try {
    for (const golden::Sample &sample : golden::Samples()) {
      const std::filesystem::path path = std::filesystem::path(argv[1]) / (sample.name + ".txt");
      std::ofstream file(path, std::ios::binary);
      file << golden::List(sample).text;
      if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
    }
  } catch (const std::exception &error) {
    std::cerr << "update_golden: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
