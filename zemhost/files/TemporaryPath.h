#pragma once

// Files and directories that must not outlive the program, however it ends.

#include <cstddef>
#include <filesystem>
#include <string>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

// Owns one file or empty directory of the file system: removes it when it goes out of scope, and also when a
// signal that handleSignals() knows ends the program. At most a handful can live at a time.
class TemporaryPath {
 public:
  // Owns nothing.
  TemporaryPath() = default;
  // Takes a path over, before or after something is made there. Throws HostError, naming it, when it is
  // longer than a path can be or too many live already.
  explicit TemporaryPath(std::filesystem::path path);
  TemporaryPath(TemporaryPath &&other) noexcept;
  TemporaryPath &operator=(TemporaryPath &&other) noexcept;
  TemporaryPath(const TemporaryPath &) = delete;
  TemporaryPath &operator=(const TemporaryPath &) = delete;
  ~TemporaryPath() { remove(); }

  const std::filesystem::path &path() const { return path_; }
  // Removes it now; nothing is said when that is not possible.
  void remove() noexcept;
  // Lets it live, after it was given its final name.
  void keep() noexcept;
  // Gives it its final name in an open folder, and lets it live. What has the name is never replaced, not
  // even where another program takes it at the same moment. Throws std::system_error; EEXIST for a name that
  // is taken.
  void nameAs(int folder, const std::string &name);

 private:
  static constexpr size_t kNone = static_cast<size_t>(-1);

  std::filesystem::path path_;
  size_t slot_ = kNone;
};

// A new empty file that nobody else writes, with a name of its own in a folder.
struct TemporaryFile {
  TemporaryPath path;
  carbon::Descriptor content;  // for reading and writing
};

// Throws std::system_error when it cannot be made, HostError as TemporaryPath does.
TemporaryFile makeTemporaryFile(const std::filesystem::path &folder);

// A new directory for this program alone (mode 0700) under the variable TMPDIR, else under /tmp. Throws
// HostError, naming the place, when it cannot be made.
TemporaryPath makeTemporaryDirectory();

// Removes what all live TemporaryPaths own, the youngest first. May be called from a signal handler.
void removeTemporaryPaths() noexcept;

}  // namespace zemhost
