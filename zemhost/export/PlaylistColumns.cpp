#include <memory>

#include "zemhost/export/ClassAnswers.h"
#include "zemhost/export/Columns.h"
#include "zemhost/export/ExportValues.h"
#include "zemhost/library/PlaylistWords.h"
#include "zemhost/library/PodcastGroups.h"
#include "zemhost/library/SmartLists.h"

namespace zemhost {

struct PlaylistColumns::State {
  explicit State(const MusicLibrary &source) : library(source), smart(source) {
    if (const Object *const object = library.object()) answers.emplace(*object);
  }

  // Null where the class has no part in the playlist.
  const PlaylistAnswers *answersFor(int32_t playlist) const {
    return answers && library.isAnsweredByClass(playlist) ? &*answers : nullptr;
  }
  // What the class answers; null where it answers nothing.
  Json wordOf(Method PlaylistAnswers::*method, int32_t playlist) const {
    const PlaylistAnswers *const asked = answersFor(playlist);
    return asked != nullptr ? word((asked->*method)(playlist)) : Json();
  }

  // The podcast that an entry belongs to. The groups of the list at hand are kept.
  Json podcastOf(int32_t playlist, int32_t position) {
    if (playlist != groupsOf) {
      groupsOf = playlist;
      podcasts.assign(static_cast<size_t>(library.entryCount(playlist)), {});
      for (const EntryGroup &group : entryGroups(library, playlist)) {
        for (const int32_t member : group.positions) podcasts[static_cast<size_t>(member)] = group.name;
      }
    }
    return textOrNull(podcasts[static_cast<size_t>(position)]);
  }

  const MusicLibrary &library;
  SmartLists smart;
  std::optional<PlaylistAnswers> answers;
  int32_t groupsOf = -1;
  std::vector<std::string> podcasts;  // of each entry
};

PlaylistColumns::PlaylistColumns(const MusicLibrary &library) : state_(std::make_unique<State>(library)) {}

PlaylistColumns::~PlaylistColumns() = default;

const std::vector<ExportColumn> &PlaylistColumns::columns() {
  using enum ColumnType;
  static const std::vector<ExportColumn> kColumns = {
      {"playlist_number", Integer}, {"name", Text},       {"kind", Text},           {"entry_count", Integer},
      {"type_1", Integer},          {"type_2", Integer},  {"name_encode", Integer}, {"date_created", Text},
      {"date_modified", Text},      {"sort_order", Text}, {"rules", Text},          {"persistent_id", Text},
      {"folder_id", Text}};
  return kColumns;
}

const std::vector<ExportColumn> &PlaylistColumns::entryColumns() {
  using enum ColumnType;
  static const std::vector<ExportColumn> kColumns = {{"position", Integer}, {"song_index", Integer},
                                                     {"track_id", Integer}, {"play", Boolean},
                                                     {"flags", Integer},    {"podcast", Text}};
  return kColumns;
}

Row PlaylistColumns::row(int32_t playlist) const {
  const MusicLibrary &library = state_->library;
  const player::PlaylistFacts facts = library.playlistFacts(playlist);
  return {playlist,
          textOrNull(library.playlistName(playlist)),
          playlistKindText(facts.kind),
          library.entryCount(playlist),
          state_->wordOf(&PlaylistAnswers::typeI, playlist),
          state_->wordOf(&PlaylistAnswers::typeII, playlist),
          state_->wordOf(&PlaylistAnswers::nameEncode, playlist),
          dateOrNull(facts.created),
          dateOrNull(facts.modified),
          textOrNull(sortOrderText(facts.sortOrder)),
          facts.rules ? textOrNull(state_->smart.text(*facts.rules)) : Json(),
          hexOrNull(facts.persistentId),
          hexOrNull(facts.folder)};
}

Row PlaylistColumns::entryRow(int32_t playlist, int32_t position) const {
  const PlaylistEntry entry = state_->library.entry(playlist, position);
  const PlaylistAnswers *const answers = state_->answersFor(playlist);
  return {position,
          entry.song < 0 ? Json() : Json(entry.song),
          known(entry.trackID),
          answers != nullptr ? Json(answers->play(playlist, position).boolean()) : Json(),
          answers != nullptr ? word(answers->flags(playlist, position)) : Json(),
          state_->podcastOf(playlist, position)};
}

}  // namespace zemhost
