#include <cstring>

#include "platform/carbon/CarbonFiles.h"
#include "plugin/RbiTunesDB.h"

namespace {

std::string_view BytesOf(REALstring string) {
  return {REALstringStruct::CString(string), static_cast<size_t>(REALstringStruct::Length(string))};
}

}  // namespace

REALstring ZemRbiTunesDB_GetPathWithVolume(REALobject instance, REALstring path) {
  const CiTunesDB *db = LoadedDatabase(instance);
  const std::string_view bytes = BytesOf(path);
  if (db == nullptr || bytes.empty()) return nullptr;
  if (db->LIBTYPE() == 0) return REALBuildString(bytes.data(), static_cast<int32_t>(bytes.size()));
  const std::string_view volume = db->VOLNAME();
  ScratchText scratch;
  char *joined = scratch.Room(volume.size() + bytes.size());
  std::memcpy(joined, volume.data(), volume.size());
  std::memcpy(joined + volume.size(), bytes.data(), bytes.size());
  return REALBuildString(joined, static_cast<int32_t>(volume.size() + bytes.size()));
}

REALfolderItem ZemRbiTunesDB_GetFolderItemFromPath(REALstring path) {
  if (path == nullptr) return nullptr;
  const std::string_view bytes = BytesOf(path);
  uint8_t name[256];
  if (bytes.size() >= sizeof name) return nullptr;
  name[0] = static_cast<uint8_t>(bytes.size());
  std::memcpy(name + 1, bytes.data(), bytes.size());
  // A missing file is described all the same; what cannot be described leaves the specification empty, and
  // the host sees that it names nothing.
  FSSpec spec = {};
  FSMakeFSSpec(0, 0, name, &spec);
  return REALFolderItemFromFSSpec(&spec);
}

REALstring ZemRbiTunesDB_GetPathFromFolderItem(REALfolderItem item) {
  return item == nullptr ? nullptr : REALpathFromFolderItem(item);
}
