// Runs a target over every file of the folders and files that are named, without a fuzzer. Fails when there
// is no such target or no file.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/Target.h"

namespace {

std::vector<std::filesystem::path> FilesOf(const std::vector<std::string> &names) {
  std::vector<std::filesystem::path> files;
  for (const std::string &name : names) {
    if (!std::filesystem::is_directory(name)) {
      files.emplace_back(name);
      continue;
    }
    for (const auto &entry : std::filesystem::directory_iterator(name)) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

void Replay(fuzz::Target target, const std::filesystem::path &path) {
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  if (!in) throw std::runtime_error("cannot read " + path.string());
  // Printed beforehand, so that the last line names the file that ends the program.
  (void)std::fprintf(stderr, "%s\n", path.filename().c_str());
  // A block of just this size, so that a sanitizer sees a read past its end.
  const auto exact = std::make_unique<uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), exact.get());
  target(exact.get(), bytes.size());
}

}  // namespace

int main(int argc, char **argv) {
  try {
    const auto target = argc > 1 ? fuzz::targets().find(argv[1]) : fuzz::targets().end();
    const std::vector<std::filesystem::path> files = FilesOf({argv + std::min(argc, 2), argv + argc});
    if (target == fuzz::targets().end() || files.empty())
      throw std::runtime_error("usage: " + std::string(argv[0]) + " TARGET FOLDER|FILE...");
    for (const std::filesystem::path &file : files) Replay(target->second, file);
    std::printf("%zu files\n", files.size());
  } catch (const std::exception &error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
