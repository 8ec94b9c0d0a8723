#include "tests/cli/Files.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace zemhost {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string name = (fs::temp_directory_path() / "zemhost-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::write(const fs::path &name, const std::string &bytes) const {
  fs::path file = path_ / name;
  fs::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
  return file;
}

}  // namespace zemhost
