#pragma once

// The columns of an export: what each is called and holds, and its value for a song, playlist or entry, read
// through the class's methods. Names and meanings are part of the interface; docs/export-schema.json says the
// same for other programs.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/JsonText.h"

namespace zemhost {

enum class ColumnType {
  Integer,
  Real,
  Boolean,
  Text,  // UTF-8
  Texts  // an object of texts, by number
};

struct ExportColumn {
  std::string_view name;
  ColumnType type;
};

// One value for each column: a number, a boolean, a text, an object, or null for what is not there.
using Row = std::vector<Json>;

// What a person reads of a song, in tables that are not asked for other columns.
const std::vector<std::string> &usualFields();

class SongColumns {
 public:
  // These columns in this order; none: all of them. Throws HostError for an unknown name, listing the
  // known ones. The library's ResultEncode must stay as MusicLibrary sets it.
  SongColumns(const MusicLibrary &library, const std::vector<std::string> &names);
  ~SongColumns();

  // All columns that there are, in their order.
  static std::vector<ExportColumn> all();

  const std::vector<ExportColumn> &columns() const;
  // The values of one song of the library.
  Row row(int32_t index) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// The library's playlists, and the entries of each, likewise; always all columns.
class PlaylistColumns {
 public:
  explicit PlaylistColumns(const MusicLibrary &library);
  ~PlaylistColumns();

  static const std::vector<ExportColumn> &columns();
  static const std::vector<ExportColumn> &entryColumns();

  Row row(int32_t playlist) const;
  // An entry whose track ID no song carries has null for its song.
  Row entryRow(int32_t playlist, int32_t position) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zemhost
