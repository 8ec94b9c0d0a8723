#include "zemhost/library/Phrases.h"

#include "host/runtime/Names.h"

namespace zemhost {

namespace {

std::string numbered(const char *what, int32_t number, const std::string &name) {
  return std::string(what) + " " + std::to_string(number) + " " + inQuotes(name);
}

}  // namespace

std::string songLabel(int32_t index, const Song &song) {
  const std::string label = numbered("song", index, song.title);
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

std::string variantText(LibraryForm form) {
  if (form == LibraryForm::Sqlite) return "SQLite files, a newest nano's database";
  return form == LibraryForm::Desktop ? "big-endian, a desktop program's library"
                                      : "little-endian, a player's database";
}

}  // namespace zemhost
