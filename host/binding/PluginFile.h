#pragma once

// A plug-in's shared library, open as long as this object lives.

#include <filesystem>

#include "sdk/HostTypes.h"

namespace zemhost {

class Library {
 public:
  using EntryPoint = void (*)(REALresolver);

  // Throws HostError naming the file and the reason when it cannot be opened or has no "REALPluginMain".
  explicit Library(const std::filesystem::path &file);
  Library(const Library &) = delete;
  Library &operator=(const Library &) = delete;
  ~Library();

  EntryPoint entryPoint() const { return entryPoint_; }

 private:
  void *handle_;
  EntryPoint entryPoint_;
};

}  // namespace zemhost
