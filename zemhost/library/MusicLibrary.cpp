#include "zemhost/library/MusicLibrary.h"

#include <utility>

#include "zemhost/library/ClassSource.h"

namespace zemhost {

std::string LibrarySource::text(SongTextField field, int32_t index) const {
  return textOf(song(index), field);
}

namespace {

std::shared_ptr<SongFiles> filesOf(const LibrarySource &source) {
  return std::make_shared<SongFiles>(source.location(), source.form() == LibraryForm::Desktop);
}

std::shared_ptr<const Covers> coversOf(const LibrarySource &source, SongFiles &files) {
  const bool isOnPlayer = !source.location().volumeRoot.empty() && source.form() != LibraryForm::Desktop;
  return std::make_shared<const Covers>(files, isOnPlayer);
}

}  // namespace

MusicLibrary::MusicLibrary(Host host, std::shared_ptr<const LibrarySource> source)
    : host_(std::move(host)),
      source_(std::move(source)),
      files_(filesOf(*source_)),
      covers_(coversOf(*source_, *files_)) {}

MusicLibrary::MusicLibrary(OpenDatabase database)
    : host_(database.host),
      source_(std::make_shared<const ClassSource>(std::move(database))),
      files_(filesOf(*source_)),
      covers_(coversOf(*source_, *files_)) {}

Totals MusicLibrary::playlistTotals(int32_t playlist) const {
  Totals totals;
  const int32_t count = entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) {
    const PlaylistEntry place = entry(playlist, position);
    if (place.song >= 0) totals.add(duration(place.song), size(place.song));
  }
  return totals;
}

}  // namespace zemhost
