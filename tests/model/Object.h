// One object of the class as host code sees it: its properties, loading, and its 130 methods (Methods.h).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tests/model/Records.h"
#include "tests/model/Text.h"

namespace model {

// What every object of one process shares.
struct Process {
  int32_t listSet = 0;  // 1 when playlist 0 is the file's second
};

// A folder item given to Load, as far as loading can tell.
struct HostFile {
  bool hasSpecification = true;
  std::string specificationName{};
  std::optional<std::string> path{};   // what the host says its path is
  std::optional<std::string> bytes{};  // missing when the file does not open
};

class Object {
 public:
  // A data block of zeros: nothing is constructed yet.
  Object(Process &process, Host &host) : process_(process), host_(host) {}

  void Construct();
  bool LoadFile(const std::optional<HostFile> &file);

  [[nodiscard]] int32_t Error() const { return error_; }
  [[nodiscard]] int32_t LibType() const;
  [[nodiscard]] int32_t UseSJIS() const;
  void SetUseSJIS(int32_t value);
  [[nodiscard]] int32_t ResultEncode() const { return static_cast<int32_t>(resultEncode_); }
  void SetResultEncode(int32_t value) { resultEncode_ = static_cast<uint32_t>(value); }
  [[nodiscard]] std::optional<HostText> VolumeName() const;
  [[nodiscard]] int32_t ZerobasePlayerlist() const { return process_.listSet != 0 ? 1 : 0; }
  void SetZerobasePlayerlist(int32_t value) { process_.listSet = value != 0 ? 1 : 0; }

  [[nodiscard]] int32_t CountSongs() const;
  [[nodiscard]] int32_t CountPlayLists() const;
  [[nodiscard]] int32_t CountSongsInPlayList(int32_t playlist) const;

  // The numbers by selector (0 to 35): `index` is a song, a position in `playlist` or a track ID, as the
  // selector has it; `playlist` is the prop's number for selector 11.
  [[nodiscard]] int32_t Number(int32_t selector, int32_t index, int32_t playlist) const;
  // Selector 1, 2, 11, 15, 18 or 30, and every one after it.
  void SetNumber(int32_t selector, int32_t index, int32_t num, int32_t value);

  [[nodiscard]] int32_t Compilation(int32_t index) const;
  void SetCompilation(int32_t index, int32_t value);
  [[nodiscard]] int32_t MovieFileFlag(int32_t trackID) const;

  // 0 a playlist's name; 1, 2, 3 a song's text by index, by playlist and position, by track ID; 4, 5, 6 one
  // of a song's other objects likewise.
  [[nodiscard]] std::optional<HostText> String(int32_t dataType, int32_t param, int32_t playlist,
                                               int32_t index) const;
  [[nodiscard]] int32_t Encoding(int32_t dataType, int32_t param, int32_t playlist, int32_t index) const;
  void SetString(int32_t param, int32_t index, const HostText &text);

  [[nodiscard]] int32_t PlayListType(int32_t playlist, int32_t reqType) const;

  [[nodiscard]] std::optional<HostText> WithVolume(const std::optional<HostText> &path) const;
  [[nodiscard]] std::optional<std::string> ItemOf(const std::optional<HostText> &path) const;
  [[nodiscard]] std::optional<HostText> PathOfItem(const std::optional<HostText> &path) const;

  [[nodiscard]] int32_t PlaySong(int32_t playlist, int32_t index) const;
  void SetPlaySong(int32_t playlist, int32_t index, int32_t play);
  [[nodiscard]] int32_t Flags(int32_t playlist, int32_t index) const;
  void SetFlags(int32_t playlist, int32_t index, int32_t flags);
  // By library index when `playlist` is below 0, by position in it otherwise.
  [[nodiscard]] int32_t Compare(int32_t object, int32_t playlist, int32_t a, int32_t b) const;

  [[nodiscard]] uint32_t EncodingOfNoString() const { return host_.EncodingOfNoString(); }

  // What is loaded; nullptr before construction.
  [[nodiscard]] const Database *Contents() const { return database_ ? &*database_ : nullptr; }

 private:
  [[nodiscard]] int64_t PlayNum(int32_t playlist) const { return int64_t{playlist} + process_.listSet; }
  [[nodiscard]] Entry *FindEntry(int32_t playlist, int32_t index);
  [[nodiscard]] const Entry *FindEntry(int32_t playlist, int32_t index) const;
  [[nodiscard]] Cell Source(int32_t dataType, int32_t param, int32_t playlist, int32_t index) const;

  Process &process_;
  Host &host_;
  int32_t error_ = 0;
  uint32_t resultEncode_ = 0;
  bool loadWasTried_ = false;
  std::optional<Database> database_;
};

}  // namespace model
