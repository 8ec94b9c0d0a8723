#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

// A new folder of its own, removed with everything in it at the end.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "zemhost-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder");
    path_ = std::filesystem::canonical(name);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path &path() const { return path_; }

  // Makes a file with this text, and the folders on the way to it.
  std::filesystem::path file(const std::string &name, const std::string &text = "x") const {
    std::filesystem::path whole = path_ / name;
    std::filesystem::create_directories(whole.parent_path());
    std::ofstream(whole) << text;
    return whole;
  }

 private:
  std::filesystem::path path_;
};
