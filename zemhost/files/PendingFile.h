#pragma once

// A file that appears under its name only when it is complete.
//
//   PendingFile file("songs.csv");
//   writeAll(file.descriptor(), bytes, file.name());
//   file.commit();
//
// Until commit() the bytes lie in a file of another name in the same folder, which goes with the object when
// something fails and when a signal ends the program. Use OutputFile.h for text or bytes written from here,
// this one where a library writes.

#include <filesystem>
#include <string>
#include <string_view>

#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

class PendingFile {
 public:
  // Makes the temporary file. What stands under `target` is replaced at the end when it is a regular file;
  // its permissions are kept. What comes there meanwhile, where nothing stood, is not replaced. Throws
  // HostError, naming the target, when that is a directory, a symbolic link or a special file, and when the
  // file cannot be made.
  explicit PendingFile(std::filesystem::path target);
  PendingFile(const PendingFile &) = delete;
  PendingFile &operator=(const PendingFile &) = delete;

  // Brings the bytes to the disk, then renames. Throws HostError, naming the target; the temporary file
  // goes with the object then, and what was under the name before is untouched.
  void commit();

  // The open temporary file, for reading and writing; owned by this object.
  int descriptor() const { return file_.content.number(); }
  // Where the temporary file is, for libraries that open it by themselves.
  const std::filesystem::path &temporary() const { return file_.path.path(); }
  // The target as the person named it, for messages.
  std::string name() const { return target_.string(); }

 private:
  std::filesystem::path target_;
  bool replaces_ = false;
  TemporaryFile file_;
};

// Writes all of the bytes. Throws HostError, naming `name` and the reason ("No space left on device").
void writeAll(int descriptor, std::string_view bytes, const std::string &name);

}  // namespace zemhost
