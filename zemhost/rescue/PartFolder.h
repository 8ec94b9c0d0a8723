#pragma once

// Copies that have no names of their own yet, in a hidden folder beside the music. It goes with its object,
// and when a signal ends the program; one that a killed program leaves is known by its lock (Leftovers.h).

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

// One of its files, gone with the object unless it has got a name. The folder must outlive it.
class Part {
 public:
  Part() = default;
  Part(Part &&other) noexcept
      : folder_(other.folder_), name_(std::exchange(other.name_, {})), content_(std::move(other.content_)) {}
  Part &operator=(Part &&other) noexcept;
  Part(const Part &) = delete;
  Part &operator=(const Part &) = delete;
  ~Part();

  // For reading and writing, until close().
  const carbon::Descriptor &content() const { return content_; }
  // Some file systems report only now what they could not store. Throws std::system_error.
  void close();
  // The content of a closed one, for reading. Throws std::system_error.
  carbon::Descriptor reopen() const;
  // Its name in the folder of parts.
  const std::string &name() const { return name_; }
  // Gives it its final name: see giveName().
  void nameAs(int folder, const std::string &name);

 private:
  friend class PartFolder;

  int folder_ = -1;   // that of parts, which owns it
  std::string name_;  // empty: none
  carbon::Descriptor content_;
};

class PartFolder {
 public:
  // Of a folder of music; the folder of parts is made with the first of them.
  explicit PartFolder(std::filesystem::path music) : music_(std::move(music)) {}

  // A new, empty file. Throws std::system_error, or HostError as TemporaryPath does.
  Part make();

  // Brings the parts with these names to the disk, all at once where the file system can; returns 0 or the
  // system's error. Does not change the object: another thread may go on to make parts.
  int sync(const std::vector<std::string> &names) const noexcept;

 private:
  std::filesystem::path music_;
  TemporaryFile folder_;
  size_t made_ = 0;
};

}  // namespace zemhost
