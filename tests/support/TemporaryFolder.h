#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace support {

// A new empty folder, removed with all that is in it at the end. The path has no symbolic links in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "zem-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
    path_ = std::filesystem::canonical(name);
  }
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path &path() const { return path_; }

  // Makes a folder, with those on the way; returns its path.
  std::filesystem::path makeDirectory(const std::filesystem::path &name) const {
    std::filesystem::create_directories(path_ / name);
    return path_ / name;
  }

  // Writes a file, with the folders on the way; returns its path.
  std::filesystem::path write(const std::filesystem::path &name, const std::string &bytes = {}) const {
    makeDirectory(name.parent_path());
    std::ofstream out(path_ / name, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write " + (path_ / name).string());
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace support
