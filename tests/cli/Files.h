#pragma once

// Files that tests make and leave behind nothing of.

#include <filesystem>
#include <string>

namespace zemhost {

class TemporaryFolder {
 public:
  // A new empty directory; throws std::system_error when it cannot be made.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;
  ~TemporaryFolder();

  const std::filesystem::path &path() const { return path_; }

  // Writes a file, with the directories on its way, and returns its path.
  std::filesystem::path write(const std::filesystem::path &name, const std::string &bytes) const;

 private:
  std::filesystem::path path_;
};

}  // namespace zemhost
