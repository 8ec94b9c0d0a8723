#pragma once

// The folder that a command writes new files to, and what came of it.

#include <filesystem>
#include <functional>
#include <string>

#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/FilesResult.h"
#include "zemhost/rescue/NewFiles.h"

namespace zemhost {

class NewFileWriter {
 public:
  // As DestinationFolder; the folder is made, and locked, by begin().
  NewFileWriter(const std::filesystem::path &destination, const std::filesystem::path &playerRoot);

  // Throws HostError when nothing can be written there. From here on an interruption advises to run the
  // command again.
  void begin();

  // Adds a file, whose content `open` gives, under the first name that is free or holds it already, and
  // shows a new file's name on standard output. What fails becomes a problem of what `label` names. Throws
  // HostError when nothing more can be written.
  void write(const std::string &label, const std::function<carbon::Descriptor()> &open,
             const TargetNames::Named &named);

  void addProblem(const std::string &label, const std::string &what);
  void addWithout() { ++result_.without; }
  FilesResult finish();

 private:
  DestinationFolder destination_;
  NewFiles files_;
  FilesResult result_;
};

}  // namespace zemhost
