#include <algorithm>
#include <filesystem>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "host/Error.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/FilesSummary.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/export/ExportWriter.h"
#include "zemhost/export/ListEntries.h"
#include "zemhost/library/ListedSongs.h"
#include "zemhost/library/PlaylistChoice.h"
#include "zemhost/output/ListFormat.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/ListExport.h"

namespace zemhost {

namespace {

// The songs that are asked for, and what to say of those that cannot be given.
class Selection {
 public:
  Selection(const MusicLibrary &library, const ExportArguments &arguments)
      : library_(library),
        playlist_(arguments.playlist.empty() ? -1 : choosePlaylist(library, arguments.playlist)),
        sinceSync_(arguments.sinceSync) {
    if (sinceSync_ && !library.hasCounts())
      printError(library.location().name + ": no counts since the last synchronisation stand beside it");
  }

  // The playlist's number; -1: the whole library.
  int32_t playlist() const { return playlist_; }

  // Hands on the index of each song: all in the order of the library, or the playlist's in its order.
  template <typename Sink>
  void eachSong(const Sink &sink) const {
    std::vector<int32_t> songs;
    if (playlist_ >= 0) {
      songs = listedSongs(library_, playlist_);
    } else {
      songs.resize(static_cast<size_t>(library_.songCount()));
      std::iota(songs.begin(), songs.end(), 0);
    }
    uint64_t missing = 0;
    for (const int32_t song : songs) {
      if (song < 0) {
        ++missing;
      } else if (!sinceSync_ || isCounted(song)) {
        sink(song);
      }
    }
    if (missing != 0) {
      printError(library_.location().name + ": the playlist has " + countText(missing, "entry", "entries") +
                 " whose track ID no song carries");
    }
  }

 private:
  // Whether it was played or skipped since the last synchronisation.
  bool isCounted(int32_t song) const {
    const auto counted = library_.song(song).sinceSync;
    return counted && (counted->plays != 0 || counted->skips.value_or(0) != 0);
  }

  const MusicLibrary &library_;
  int32_t playlist_;
  bool sinceSync_;
};

// Whether a file is there that holds something.
bool holdsSomething(const std::filesystem::path &file) {
  std::error_code error;
  return std::filesystem::is_regular_file(file, error) && std::filesystem::file_size(file, error) > 0 &&
         !error;
}

// An empty list takes no other's place. Returns the exit status.
int writeList(const MusicLibrary &library, const Selection &selection, const ListFormat &format,
              const ExportArguments &arguments) {
  EncodedOutput out(arguments.encoding, library.host(), arguments.output);
  std::filesystem::path folder = std::filesystem::current_path();
  if (!arguments.writesStandardOutput()) folder /= std::filesystem::path(arguments.output).parent_path();
  const ListEntries entries(library, listPathsNamed(arguments.paths), folder);
  const bool isAll = selection.playlist() < 0;
  out.write(format.heading(isAll ? "" : out.fit(library.playlistName(selection.playlist())), ""));
  uint64_t written = 0;
  uint64_t leftOut = 0;
  selection.eachSong([&](int32_t song) {
    std::optional<ListedSong> entry = entries.of(song);
    if (!entry) {
      ++leftOut;
      return;
    }
    ++written;
    for (std::string *text : {&entry->artist, &entry->title, &entry->path, &entry->album})
      *text = out.fit(*text);
    out.write(format.entry(*entry));
  });
  out.write(format.end());
  const bool keepsOld = written == 0 && !arguments.writesStandardOutput() && holdsSomething(arguments.output);
  if (!keepsOld) out.finish();
  if (leftOut != 0) {
    printError(library.location().name + ": " + countText(leftOut, "song", "songs") +
               " left out: " + entries.whyLeftOut());
  }
  if (keepsOld) printError(arguments.output + ": kept as it was: the new list would be empty");
  return keepsOld || leftOut != 0 ? kIncomplete : kSuccess;
}

int writeAllLists(const MusicLibrary &library, const ListFormat &format, const ExportArguments &arguments) {
  return writeFilesSummary(
      exportLists(library, format, listPathsNamed(arguments.paths), arguments.listFolder),
      {"playlist", "playlists", "", ""});
}

std::unique_ptr<ExportWriter> makeWriter(const MusicLibrary &library, const ExportArguments &arguments,
                                         const SongColumnList &columns) {
  if (arguments.format == "sqlite") return makeSqliteWriter(arguments.output, columns);
  auto out = std::make_unique<EncodedOutput>(arguments.encoding, library.host(), arguments.output);
  if (arguments.format == "tsv") return makeTextTableWriter(TextTable::Tsv, std::move(out), columns);
  if (arguments.format == "csv") {
    return makeTextTableWriter(arguments.excel ? TextTable::ExcelCsv : TextTable::Csv, std::move(out),
                               columns);
  }
  if (arguments.format == "listenbrainz")
    return makeListenWriter(std::move(out), library.form() == LibraryForm::Sqlite);
  if (arguments.format == "json") return makeJsonWriter(std::move(out), columns);
  return makeNdjsonWriter(std::move(out), columns);
}

void writePlaylist(ExportWriter &writer, const PlaylistColumns &columns, const MusicLibrary &library,
                   int32_t playlist) {
  writer.playlist(columns.row(playlist));
  const int32_t count = library.entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) writer.entry(columns.entryRow(playlist, position));
}

std::vector<std::string> fieldsOf(const ExportArguments &arguments) {
  if (arguments.format == "listenbrainz") return listenFields();
  std::vector<std::string> fields = arguments.fields;
  if (fields == std::vector<std::string>{"all"}) return {};
  if (fields.empty() && (arguments.format == "csv" || arguments.format == "tsv")) return usualFields();
  if (fields.empty() || arguments.format != "sqlite") return fields;
  // The keys that entries refer to.
  for (const char *const key : {"track_id", "song_index"}) {
    if (std::find(fields.begin(), fields.end(), key) == fields.end()) fields.insert(fields.begin(), key);
  }
  return fields;
}

// The songs, and behind them the playlists in the formats that have a place for those. These hold a song once
// that stands in a playlist twice, as entries refer to it. Of what was counted since the last synchronisation
// there are songs alone: most of those that entries refer to are not among them.
void writeTables(const MusicLibrary &library, const Selection &selection, const ExportArguments &arguments) {
  const bool holdsPlaylists = arguments.format == "json" || arguments.format == "sqlite";
  const SongColumns songs(library, fieldsOf(arguments));
  const auto writer = makeWriter(library, arguments, songs.columns());
  std::vector<bool> written(holdsPlaylists ? static_cast<size_t>(library.songCount()) : 0);
  selection.eachSong([&](int32_t song) {
    if (holdsPlaylists) {
      if (written[static_cast<size_t>(song)]) return;
      written[static_cast<size_t>(song)] = true;
    }
    writer->song(songs.row(song));
  });
  if (holdsPlaylists && !arguments.sinceSync) {
    const PlaylistColumns playlists(library);
    const int32_t count = library.playlistCount();
    for (int32_t number = 0; number < count; ++number) {
      if (selection.playlist() < 0 || selection.playlist() == number)
        writePlaylist(*writer, playlists, library, number);
    }
  }
  writer->finish();
}

}  // namespace

int exportLibrary(const ExportArguments &arguments) {
  const MusicLibrary library = openAndWarn(arguments.path);
  const ListFormat *const list = listFormatNamed(arguments.format);
  if (!arguments.listFolder.empty()) return writeAllLists(library, *list, arguments);
  const Selection selection(library, arguments);
  int status = kSuccess;
  if (list != nullptr) {
    status = writeList(library, selection, *list, arguments);
  } else {
    writeTables(library, selection, arguments);
  }
  warnOfCovers(library);
  return status;
}

}  // namespace zemhost
