#pragma once

// Where the files of songs are: the one place that makes a song's path a file of this machine.

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/DatabaseLocation.h"

namespace zemhost {

struct SongFile {
  // On this machine, whether or not the file is there. Empty when the path names no place on the volume, or
  // one in a folder that is not there. A folder on the way where that cannot be read, as the error says.
  std::filesystem::path path;
  std::string name;   // colon-separated, with the volume where the path is one of it; the same on any machine
  std::string place;  // in messages: what the path names on this machine, there or not, as far as it is known
  std::string below;  // the same file as `path`, from the volume's root; empty in a desktop library
  int error = ENOENT;  // 0: a regular file is there; EXDEV: what is named lies outside the volume
  uint64_t size = 0;   // of the file that is there, as its time is
  timespec modified{};

  bool isThere() const { return error == 0; }
  bool isOutside() const { return error == EXDEV; }
  // Whether something is there that cannot be read, rather than nothing or what is no song.
  bool isUnreadable() const {
    return !isThere() && !isOutside() && error != ENOENT && error != ENOTDIR && error != EISDIR &&
           error != EINVAL;
  }
};

// A song of a player names a place below the root of the volume that holds its database, and no other:
// neither the joined name of another volume nor a symbolic link leads out of it. Names are matched exactly,
// else without regard to case and composition; the folder with the player's own files may have another name.
// The database of a desktop library that lies on no player may name any volume; one that lies on a player,
// that player alone.
class SongFiles {
 public:
  // `namesVolumes`: the paths begin with a volume's name, as those of a desktop library do.
  SongFiles(const player::DatabaseLocation &location, bool namesVolumes);

  // The file of a song's path, colon-separated UTF-8. Reads a folder once, however many names are looked up.
  SongFile find(const std::string &path);

  // Opens a file that was found, for reading; no descriptor, and errno, when that fails. What is opened lies
  // on the volume and may still be another kind of file than the one that was found.
  carbon::Descriptor open(const SongFile &file) const;

  // The entries of folders that were read until now, for showing how the work grows.
  uint64_t entriesRead() const { return entriesRead_; }
  // The folders that were looked up until now, there or not.
  size_t foldersTried() const { return folders_.size(); }

 private:
  struct Folder {
    int error = 0;
    std::filesystem::path path;  // without symbolic links
    bool isRead = false;
    int readError = 0;  // why its names could not be read
    std::set<std::string> names;
    std::map<std::string, std::string> byFolded;  // the least of those that differ in case alone
  };

  SongFile findOnVolume(const std::string &path);
  Folder &folder(const std::string &below);
  std::string folderNamed(const std::string &parent, const std::string &name);
  std::string nameIn(const std::string &below, const std::string &name);

  bool onPlayer_;
  bool namesVolumes_;
  std::string volume_;
  std::filesystem::path root_;
  std::string controlName_;  // of the folder with the player's own files
  carbon::Descriptor rootFolder_;
  // Ordered, since whoever wrote the names on a player could make them meet in any hash that is known.
  std::map<std::string, Folder> folders_;
  uint64_t entriesRead_ = 0;
};

}  // namespace zemhost
