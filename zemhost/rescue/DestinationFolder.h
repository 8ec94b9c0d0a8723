#pragma once

// The folder that music is copied to, and its own files alone: nothing is written on the player, and no
// symbolic link is followed out of the folder.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <utility>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/PartFolder.h"

namespace zemhost {

class DestinationFolder {
 public:
  // A folder that need not exist, for the music of the player with this root (empty: of none). Throws
  // HostError, naming it, when it lies on the player.
  DestinationFolder(std::filesystem::path path, const std::filesystem::path &playerRoot);

  // Makes the folder where it is missing, and locks it where its file system knows locks. Removes what killed
  // programs left there. Throws HostError, naming it, when it cannot be made or another rescue is writing
  // there.
  void make();
  // Temporary files and folders that make() found there and that may be in use.
  const std::vector<std::string> &leftovers() const { return leftovers_; }

  const std::filesystem::path &path() const { return path_; }
  // How many bytes fit on its disk; nothing when that is not known.
  std::optional<uint64_t> bytesFree() const;

  // What has a name below the folder ("artist/title.mp3"), links not followed; nothing when it is free.
  // Throws CopyFailure (ThisFile) when that name would lead out of the folder or onto the player.
  std::optional<struct stat> statusOf(const std::string &name) const;
  // Opens it for reading, without waiting. Throws CopyFailure (ThisFile).
  carbon::Descriptor open(const std::string &name) const;

  // A copy that is complete and has no name of its own yet; gone with the object.
  struct NewCopy {
    Part part;
    CopiedContent content;
  };

  // Copies an open file into the folder: see copyContent(). The final name never stands for a part, since the
  // copy gets it when it is complete and on the disk. Throws CopyFailure; nothing is left of a copy that
  // failed.
  NewCopy copy(const carbon::Descriptor &source, const std::function<void(uint64_t)> &onBytes) const;
  // Closes a copy's file. Throws CopyFailure.
  static void close(NewCopy &copy);
  // Brings all names that copies got to the disk. Throws CopyFailure.
  void sync() const;
  // Brings closed copies to the disk: see PartFolder::sync().
  int sync(const std::vector<std::string> &parts) const noexcept { return parts_->sync(parts); }
  // Gives a copy a free name, its folders made where they are missing. Throws CopyFailure; EEXIST when the
  // name is not free any more, and another may be given then.
  void name(NewCopy &copy, const std::string &name) const;

  // All of it at once, for a file that has no gaps: it fails where something cannot be read.
  void add(const carbon::Descriptor &source, const std::string &name) const;

 private:
  bool liesOnPlayer(int folder) const;
  carbon::Descriptor openFolder(const std::string &folder, bool make) const;
  const carbon::Descriptor &folderOf(const std::string &name, bool make) const;

  std::filesystem::path path_;
  carbon::Descriptor folder_;  // locked once it is made; none while it does not exist
  std::unique_ptr<PartFolder> parts_;
  std::vector<std::string> leftovers_;
  carbon::Descriptor playerRoot_;
  struct stat player_ {};
  bool playerIsMounted_ = false;  // so that all its files are on a device of their own
  // Folders that were found to lie elsewhere: to look at each of them once is enough.
  mutable std::set<std::pair<dev_t, ino_t>> elsewhere_;
  // The folder that was asked for last, until the next file is copied: mostly the next name lies there too.
  struct Folder {
    std::string name;         // empty: none
    carbon::Descriptor open;  // none where it is not there
  };
  mutable Folder last_;
};

}  // namespace zemhost
