#include "host/runtime/FolderItem.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>
#include <system_error>

#include "host/Error.h"
#include "host/runtime/HostObject.h"
#include "host/runtime/LiveHandles.h"
#include "host/runtime/MacPaths.h"
#include "host/runtime/Names.h"
#include "platform/carbon/CarbonFiles.h"

struct REALfolderItemStruct : REALobjectStruct {
  FSSpec spec;
};

namespace zemhost {
namespace {

constexpr uint32_t kPathRoom = 16384;

void destroyFolderItem(REALobject self) {
  removeHandle(self, &LiveHandles::folderItems);
  ::operator delete(self);
}

std::string fullName(const FSSpec &spec) {
  std::array<char, kPathRoom> path;
  return CarbonPathFromSpec(&spec, path.data(), kPathRoom) == noErr ? path.data() : std::string();
}

// The path of this machine of a file or directory that exists; empty for any other.
std::filesystem::path existingPath(const FSSpec &spec) {
  FSRef reference;
  std::array<char, kPathRoom> path;
  if (FSpMakeFSRef(&spec, &reference) != noErr) return {};
  if (FSRefMakePath(&reference, reinterpret_cast<uint8_t *>(path.data()), kPathRoom) != noErr) return {};
  return path.data();
}

// Fills the specification of a full colon-separated path; false when the file manager cannot name it.
bool makeSpec(std::string_view macPath, FSSpec &spec) {
  if (macPath.empty() || macPath.size() > 255) return false;
  std::array<unsigned char, 256> name;
  name[0] = static_cast<unsigned char>(macPath.size());
  std::copy(macPath.begin(), macPath.end(), name.begin() + 1);
  const OSErr result = FSMakeFSSpec(0, 0, name.data(), &spec);
  return result == noErr || result == fnfErr;
}

}  // namespace

REALfolderItem newFolderItem(const FSSpec *spec) {
  if (spec == nullptr || spec->name[0] == 0 || fullName(*spec).empty()) return nullptr;
  void *block = ::operator new(sizeof(REALfolderItemStruct), std::nothrow);
  if (block == nullptr) return nullptr;
  auto *item = new (block) REALfolderItemStruct{{1, destroyFolderItem}, *spec};
  addHandle(static_cast<REALobject>(item), &LiveHandles::folderItems);
  return item;
}

void retainFolderItem(REALfolderItem item) { retainObject(item); }

void releaseFolderItem(REALfolderItem item) { releaseObject(item); }

FolderItem FolderItem::fromPath(const std::filesystem::path &path) {
  std::error_code failed;
  const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
  FSSpec spec = {};
  if (failed || path.empty()) return {};
  const OSErr result = CarbonSpecFromPath(absolute.c_str(), &spec);
  return result == noErr || result == fnfErr ? adopt(newFolderItem(&spec)) : FolderItem();
}

FolderItem FolderItem::fromMacPath(const std::string &path) {
  FSSpec spec = {};
  return makeSpec(path, spec) ? adopt(newFolderItem(&spec)) : FolderItem();
}

std::filesystem::path FolderItem::path() const {
  if (item_ == nullptr) return {};
  if (std::filesystem::path there = existingPath(item_->spec); !there.empty()) return there;
  const std::string full = macPath();
  const size_t colon = full.rfind(':');
  FSSpec folder = {};
  if (colon == std::string::npos || !makeSpec(full.substr(0, colon + 1), folder)) return {};
  const std::filesystem::path parent = existingPath(folder);
  if (parent.empty()) return {};
  return parent / diskPath(full.substr(colon + 1));
}

std::string FolderItem::macPath() const { return item_ == nullptr ? std::string() : fullName(item_->spec); }

bool FolderItem::exists() const { return item_ != nullptr && !existingPath(item_->spec).empty(); }

FSSpec FolderItem::spec() const { return item_ == nullptr ? FSSpec{} : item_->spec; }

void mountVolume(const std::string &name, const std::filesystem::path &root) {
  if (CarbonMountVolume(name.c_str(), root.c_str()) != noErr)
    throw HostError("cannot mount " + root.string() + " as the volume " + inQuotes(name));
}

}  // namespace zemhost
