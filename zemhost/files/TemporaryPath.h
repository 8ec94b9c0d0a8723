#pragma once

// Files and directories that must not outlive the program, however it ends.

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

// Owns one file of the file system, or one directory with the files in it: removes it when it goes out of
// scope, and also when a signal that handleSignals() knows ends the program. At most a handful can live at a
// time.
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
  // Gives it its final name in an open folder as giveName() does, and lets it live.
  void nameAs(int folder, const std::string &name);

 private:
  static constexpr size_t kNone = static_cast<size_t>(-1);

  std::filesystem::path path_;
  size_t slot_ = kNone;
};

// Gives a file of an open folder its final name in another. What has the name is never replaced, not even
// where another program takes it at the same moment. Throws std::system_error; EEXIST for a name that is
// taken.
void giveName(int from, const std::string &file, int folder, const std::string &name);

// A new empty file that nobody else writes, with a name of its own in a folder.
struct TemporaryFile {
  TemporaryPath path;
  carbon::Descriptor content;  // for reading and writing
};

// Throws std::system_error when it cannot be made, HostError as TemporaryPath does. Where the file system
// knows locks it is locked as long as it is open: see Leftovers.h.
TemporaryFile makeTemporaryFile(const std::filesystem::path &folder);

// The same of a directory, for files that are to be given their names; open for reading.
TemporaryFile makeTemporaryFolder(const std::filesystem::path &folder);

// Whether a name is of the form that these two give.
bool isTemporaryName(std::string_view name);

// Removes a file of an open folder, or a directory with the files in it; false when it stays. May be called
// from a signal handler.
bool removeTemporary(int folder, const char *name) noexcept;

// A new directory for this program alone (mode 0700) under the variable TMPDIR, else under /tmp. Throws
// HostError, naming the place, when it cannot be made.
TemporaryPath makeTemporaryDirectory();

// Removes what all live TemporaryPaths own, the youngest first. May be called from a signal handler.
void removeTemporaryPaths() noexcept;

}  // namespace zemhost
