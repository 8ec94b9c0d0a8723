#pragma once

// The File Manager's calls over volumes and directory identifiers, in C++: failures are thrown.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/carbon/Directories.h"
#include "platform/carbon/Failure.h"
#include "platform/carbon/Volumes.h"

namespace carbon {

class FileManager {
 public:
  // Mounted volumes are looked for under `prefix` + "/Volumes" and the other usual places.
  explicit FileManager(std::string prefix = {}) : volumes_(std::move(prefix)) {}

  // FSMakeFSSpec; returns noErr or fnfErr.
  OSErr makeSpec(int16_t volume, int32_t directory, std::string_view path, FSSpec &spec);
  // CarbonSpecFromPath; returns noErr or fnfErr.
  OSErr specFromPath(const std::string &posixPath, FSSpec &spec);
  // The reference of a file that exists.
  FSRef makeRef(const FSSpec &spec);
  // The POSIX path of a file that exists.
  std::string posixPath(const FSRef &ref);
  // The colon-separated full path of a file that need not exist.
  std::string macPath(const FSSpec &spec);
  // CarbonMountVolume.
  void mount(const std::string &name, const std::string &root) { volumes_.declare(name, root); }

 private:
  // A file in a directory, which need not exist, or the directory itself.
  struct Target {
    Directory directory;
    std::optional<std::string> name;  // in the disk's bytes
    bool exists = true;
  };

  Directory open(int16_t volume, int32_t id);
  Target walk(int16_t volume, int32_t directory, const std::vector<std::string> &names);
  Target targetOf(const FSSpec &spec);
  FSSpec specOf(const Target &target) const;

  Volumes volumes_;
  Directories directories_;
};

}  // namespace carbon
