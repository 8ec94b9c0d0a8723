// Writing the files of a sample.
#pragma once

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace samples {

// Writes a file, and the folders on its way. Throws std::runtime_error, naming it, when that fails.
inline void WriteFile(const std::filesystem::path &path, const std::string &bytes) {
  std::error_code error;
  std::filesystem::create_directories(path.parent_path(), error);
  if (error) throw std::runtime_error(path.string() + ": " + error.message());
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error(path.string() + ": " + std::strerror(errno));
}

}  // namespace samples
