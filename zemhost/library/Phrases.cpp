#include "zemhost/library/Phrases.h"

#include <system_error>

#include "host/runtime/Names.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

std::string numbered(const char *what, int32_t number, const std::string &name) {
  return std::string(what) + " " + std::to_string(number) + " " + inQuotes(name);
}

}  // namespace

std::string songLabel(int32_t index, const Song &song) {
  const std::string label =
      song.isUnnamed ? "unnamed file " + inQuotes(song.title) : numbered("song", index, song.title);
  return song.artist.empty() ? label : label + " by " + song.artist;
}

std::string playlistLabel(int32_t number, const std::string &name) {
  return numbered("playlist", number, name);
}

std::string missingFileText(int32_t index, const Song &song, const SongFile &file) {
  const std::string label = songLabel(index, song);
  if (song.path.empty()) return label + " names no file";
  return label + ": its file is missing: " + file.place +
         (file.isOutside() ? " lies outside the player" : "");
}

SizeOfFile comparedSize(const SongFile &file, const Song &song) {
  if (file.size == 0) return SizeOfFile::Short;
  if (song.size == 0 || file.size == song.size) return SizeOfFile::AsStated;
  return file.size < song.size ? SizeOfFile::Short : SizeOfFile::Long;
}

std::string otherSizeFault(const Song &song, const SongFile &file) {
  const std::string held = file.size == 0 ? std::string("its file is empty")
                                          : "its file has " + countText(file.size, "byte", "bytes");
  return song.size == 0 ? held : held + ", and the database states " + std::to_string(song.size);
}

std::string otherSizeText(int32_t index, const Song &song, const SongFile &file) {
  return songLabel(index, song) + ": " + otherSizeFault(song, file) + ": " + file.path.string();
}

std::string unreadableFault(int error) {
  return "its file cannot be read: " + std::generic_category().message(error);
}

std::string unreadableText(int32_t index, const Song &song, const SongFile &file, int error) {
  return songLabel(index, song) + ": its file cannot be read: " + file.path.string() + ": " +
         std::generic_category().message(error);
}

std::string variantText(LibraryForm form) {
  if (form == LibraryForm::Sqlite) return "SQLite files, a newest nano's database";
  return form == LibraryForm::Desktop ? "big-endian, a desktop program's library"
                                      : "little-endian, a player's database";
}

}  // namespace zemhost
