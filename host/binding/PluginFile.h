#pragma once

// A plug-in's shared library, open as long as this object lives.

#include <filesystem>

#include "sdk/HostTypes.h"

namespace zemhost {

class PluginFile {
 public:
  using EntryPoint = void (*)(REALresolver);

  // Throws HostError naming the file and the reason when it cannot be opened or has no "REALPluginMain".
  explicit PluginFile(const std::filesystem::path &file);
  PluginFile(const PluginFile &) = delete;
  PluginFile &operator=(const PluginFile &) = delete;
  ~PluginFile();

  EntryPoint entryPoint() const { return entryPoint_; }

 private:
  void *handle_;
  EntryPoint entryPoint_;
};

}  // namespace zemhost
