#pragma once

// The formats of an export. A writer takes all songs, then each playlist followed by its entries.

#include <filesystem>
#include <memory>
#include <vector>

#include "zemhost/export/Columns.h"
#include "zemhost/output/EncodedOutput.h"

namespace zemhost {

class ExportWriter {
 public:
  ExportWriter() = default;
  ExportWriter(const ExportWriter &) = delete;
  ExportWriter &operator=(const ExportWriter &) = delete;
  virtual ~ExportWriter() = default;

  // Each takes a row of the columns the writer was made for. Throws HostError, naming the output, when it
  // cannot be written.
  virtual void song(Row row) = 0;
  // Formats that hold songs alone pass over these.
  virtual void playlist(const Row & /*row*/) {}
  virtual void entry(const Row & /*row*/) {}

  // Completes the output; without it a file does not appear under its name.
  virtual void finish() = 0;
};

using SongColumnList = std::vector<ExportColumn>;

enum class TextTable {
  Csv,       // CRLF line ends, fields quoted where they must be
  ExcelCsv,  // the same behind a byte-order mark, with an apostrophe before each text that would be a formula
  Tsv        // tabs between fields, LF line ends, no quotes; tabs and line ends inside texts become blanks
};

// A heading line, then a line a song. Null is an empty field, an object its JSON.
std::unique_ptr<ExportWriter> makeTextTableWriter(TextTable form, std::unique_ptr<EncodedOutput> out,
                                                  const SongColumnList &columns);

// One JSON object, its songs and playlists one a line.
std::unique_ptr<ExportWriter> makeJsonWriter(std::unique_ptr<EncodedOutput> out,
                                             const SongColumnList &columns);

// One JSON object a line for each song.
std::unique_ptr<ExportWriter> makeNdjsonWriter(std::unique_ptr<EncodedOutput> out,
                                               const SongColumnList &columns);

// The fields that the following writer takes, in this order.
const std::vector<std::string> &listenFields();

// One JSON object a line for each song that was played since the last synchronisation, as ListenBrainz
// imports them. The player keeps the time of the last play alone, so a song is one listen. Songs that lack
// what a listen must have are left out, and counted on standard error. Dates that are not UTC are taken for
// this machine's zone.
std::unique_ptr<ExportWriter> makeListenWriter(std::unique_ptr<EncodedOutput> out, bool datesAreUtc);

// A SQLite database with the tables songs, playlists and entries. The columns must hold
// song_index and track_id, which entries refer to.
std::unique_ptr<ExportWriter> makeSqliteWriter(const std::filesystem::path &target,
                                               const SongColumnList &columns);

}  // namespace zemhost
