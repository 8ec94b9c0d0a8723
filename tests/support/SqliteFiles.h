#pragma once

// Changes to SQLite files, and a folder's content, for tests.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sqlite3.h>
#include <stdexcept>
#include <string>

namespace support {

// Runs statements on a file, which is created when it is not there.
inline void runSql(const std::filesystem::path &file, const std::string &sql) {
  sqlite3 *handle = nullptr;
  std::string message;
  if (sqlite3_open(file.c_str(), &handle) != SQLITE_OK ||
      sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
    message = sqlite3_errmsg(handle);
  sqlite3_close(handle);
  if (!message.empty()) throw std::runtime_error(file.string() + ": " + message);
}

inline std::string contentOf(const std::filesystem::path &file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The bytes of every file below a folder, by its path from there.
inline std::map<std::string, std::string> filesBelow(const std::filesystem::path &folder) {
  std::map<std::string, std::string> files;
  for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file())
      files[entry.path().lexically_relative(folder).string()] = contentOf(entry.path());
  }
  return files;
}

}  // namespace support
