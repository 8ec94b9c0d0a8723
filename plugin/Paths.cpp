#include <cstring>

#include "platform/carbon/CarbonFiles.h"
#include "plugin/RbiTunesDB.h"

namespace {

// A host string made on the way to a result, released when the result stands.
class HeldString {
 public:
  explicit HeldString(REALstring string) : string_(string) {}
  HeldString(const HeldString &) = delete;
  HeldString &operator=(const HeldString &) = delete;
  ~HeldString() { REALUnlockString(string_); }
  REALstring get() const { return string_; }

 private:
  REALstring string_;
};

REALstring WithVolume(REALobject instance, const HeldString &path) {
  return ZemRbiTunesDB_GetPathWithVolume(instance, path.get());
}

REALfolderItem ItemOf(const HeldString &path) { return ZemRbiTunesDB_GetFolderItemFromPath(path.get()); }

// The item's path; the item was made on the way and is released.
REALstring PathOf(REALfolderItem item) {
  REALstring path = ZemRbiTunesDB_GetPathFromFolderItem(item);
  REALUnlockObject(reinterpret_cast<REALobject>(item));
  return path;
}

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

REALstring ZemRbiTunesDB_GetAbsolutePath(REALobject instance, int32_t index) {
  return WithVolume(instance, HeldString(ZemRbiTunesDB_GetPath(instance, index)));
}
REALfolderItem ZemRbiTunesDB_GetFolderItem(REALobject instance, int32_t index) {
  return ItemOf(HeldString(ZemRbiTunesDB_GetAbsolutePath(instance, index)));
}
REALstring ZemRbiTunesDB_GetAbsolutePath2(REALobject instance, int32_t index) {
  return PathOf(ZemRbiTunesDB_GetFolderItem(instance, index));
}

REALstring ZemRbiTunesDB_GetAbsolutePathFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return WithVolume(instance, HeldString(ZemRbiTunesDB_GetPathFromPlayList(instance, playlist, index)));
}
REALfolderItem ZemRbiTunesDB_GetFolderItemFromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return ItemOf(HeldString(ZemRbiTunesDB_GetAbsolutePathFromPlayList(instance, playlist, index)));
}
REALstring ZemRbiTunesDB_GetAbsolutePath2FromPlayList(REALobject instance, int32_t playlist, int32_t index) {
  return PathOf(ZemRbiTunesDB_GetFolderItemFromPlayList(instance, playlist, index));
}

REALstring ZemRbiTunesDB_GetReferAbsolutePath(REALobject instance, int32_t trackID) {
  return WithVolume(instance, HeldString(ZemRbiTunesDB_GetReferPath(instance, trackID)));
}
REALfolderItem ZemRbiTunesDB_GetReferFolderItem(REALobject instance, int32_t trackID) {
  return ItemOf(HeldString(ZemRbiTunesDB_GetReferAbsolutePath(instance, trackID)));
}
REALstring ZemRbiTunesDB_GetReferAbsolutePath2(REALobject instance, int32_t trackID) {
  return PathOf(ZemRbiTunesDB_GetReferFolderItem(instance, trackID));
}
