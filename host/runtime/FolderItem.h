#pragma once

// The host's folder items: a file specification that names a file, which need not exist.

#include <filesystem>
#include <string>
#include <utility>

#include "platform/carbon/FileRecords.h"
#include "sdk/HostTypes.h"

namespace zemhost {

// A new item with one reference, owned by the caller. Null for a null specification, for one that names
// nothing, and when there is no memory.
REALfolderItem newFolderItem(const FSSpec *spec);

// Adds a reference, or drops one; the last one frees the item. Null is allowed.
void retainFolderItem(REALfolderItem item);
void releaseFolderItem(REALfolderItem item);

// Owns one reference to a folder item, or is nil.
class FolderItem {
 public:
  FolderItem() = default;
  FolderItem(const FolderItem &other) : FolderItem(share(other.item_)) {}
  FolderItem(FolderItem &&other) noexcept : item_(std::exchange(other.item_, nullptr)) {}
  FolderItem &operator=(FolderItem other) noexcept {
    std::swap(item_, other.item_);
    return *this;
  }
  ~FolderItem() { releaseFolderItem(item_); }

  // The item of a path of this machine, made absolute first. The file need not exist but its directory must;
  // nil when the file manager cannot name it (missing directory, name over 63 bytes).
  static FolderItem fromPath(const std::filesystem::path &path);
  // The item of a colon-separated path (`iPod:iPod_Control:iTunes:iTunesDB`); nil as above.
  static FolderItem fromMacPath(const std::string &path);

  // Takes over the reference that the caller owns.
  static FolderItem adopt(REALfolderItem item) { return FolderItem(item); }
  // Adds a reference of its own.
  static FolderItem share(REALfolderItem item) {
    retainFolderItem(item);
    return FolderItem(item);
  }

  // False for nil.
  explicit operator bool() const { return item_ != nullptr; }

  // The path of this machine, of a file that exists or could be made; empty for nil and for an item whose
  // directory has gone.
  std::filesystem::path path() const;
  // The colon-separated full path, UTF-8; empty as above.
  std::string macPath() const;
  // True when the file or directory is there now.
  bool exists() const;
  // The specification; naming nothing (all zero) for nil.
  FSSpec spec() const;

  // The record, still owned by this object; null for nil.
  REALfolderItem handle() const { return item_; }

 private:
  explicit FolderItem(REALfolderItem item) : item_(item) {}

  REALfolderItem item_ = nullptr;
};

// Declares a mounted volume by its Mac name (1 to 63 bytes) and root directory; a name declared before is
// replaced. Throws HostError, naming both, when the directory does not exist or the name is bad.
void mountVolume(const std::string &name, const std::filesystem::path &root);

}  // namespace zemhost
