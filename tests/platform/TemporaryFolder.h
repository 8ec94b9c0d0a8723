#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

// A new empty directory, removed with all that is in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "carbon-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = std::filesystem::canonical(pattern);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  const std::filesystem::path &path() const { return path_; }

  // Makes a directory, with those on the way; returns its path.
  std::filesystem::path makeDirectory(const std::filesystem::path &name) const {
    std::filesystem::create_directories(path_ / name);
    return path_ / name;
  }

  // Makes a file, with the directories on the way; returns its path.
  std::filesystem::path makeFile(const std::filesystem::path &name, const std::string &content = {}) const {
    makeDirectory(name.parent_path());
    std::ofstream(path_ / name, std::ios::binary) << content;
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};
