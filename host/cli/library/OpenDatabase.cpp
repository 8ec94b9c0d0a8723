#include "host/cli/library/OpenDatabase.h"

#include <string>
#include <utility>

#include "host/cli/library/FileProbe.h"

namespace zemhost {

namespace {

void mountAsVolume(const std::filesystem::path &root) {
  if (const std::string name = volumeName(root); !name.empty()) mountVolume(name, root);
}

// A directory on the way may have a name that no file specification can hold; as a volume it is shortened.
FolderItem itemOf(const std::filesystem::path &file) {
  FolderItem item = FolderItem::fromPath(file);
  if (item) return item;
  mountAsVolume(file.parent_path());
  return FolderItem::fromPath(file);
}

}  // namespace

OpenDatabase openDatabase(const std::filesystem::path &path) {
  DatabaseLocation location = locateDatabase(path);
  const FileProbe probe = probeFile(location.file);
  if (probe.content != FileContent::Database) throw HostError(location.name + ": " + probe.reason);
  mountAsVolume(location.volumeRoot);

  Object object = Host::load().make("ZemiTunesDB");
  const FolderItem item = itemOf(location.file);
  if (!item)
    throw HostError(location.name + ": the file's name is longer than the 63 bytes that can be read");
  if (!object.call("Load", {item}).boolean()) {
    throw HostError(location.name + ": the plug-in could not load it (Error " +
                    std::to_string(object.get("Error").integer()) + ")");
  }
  return {std::move(location), std::move(object)};
}

}  // namespace zemhost
