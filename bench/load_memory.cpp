// The peak memory of one load as the operating system accounts for it, over what the process had before,
// beside the file's size: `load_memory SONGS` prints "peak-bytes file-bytes ratio".

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "bench/BareHost.h"
#include "bench/Libraries.h"

namespace {

// A line of /proc/self/status, in bytes.
double StatusBytes(const std::string &name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, name.size(), name) == 0) return std::stod(line.substr(name.size() + 1)) * 1024;
  }
  return 0;
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    std::cerr << "usage: load_memory SONGS\n";
    return 2;
  }
  const std::string file =
      bench::LibraryFile(static_cast<uint32_t>(std::atol(argv[1])), bench::Texts::kUsual);
  bench::Instance instance;
  // Writing the file may have taken more memory than loading it.
  std::ofstream("/proc/self/clear_refs") << "5";
  const double before = StatusBytes("VmRSS:");
  if (!instance.Load(bench::Item(file))) {
    std::cerr << "load_memory: " << file << ": rejected\n";
    return 1;
  }
  const double peak = StatusBytes("VmHWM:") - before;
  const auto size = static_cast<double>(std::filesystem::file_size(file));
  std::cout << static_cast<long long>(peak) << ' ' << static_cast<long long>(size) << ' ' << peak / size
            << '\n';
}
