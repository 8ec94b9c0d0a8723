#include "zemhost/rescue/SongTags.h"

#include "host/Error.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/Apart.h"
#include "zemhost/rescue/TagWriter.h"

namespace zemhost {

namespace {

constexpr int32_t kComment = 8;

std::string dateAdded(const Song &song) {
  std::string date = song.facts.added ? dateText(*song.facts.added) : std::string();
  if (const size_t blank = date.find(' '); blank != std::string::npos) date[blank] = 'T';
  return date;
}

std::string coverOf(const MusicLibrary &library, const Song &song) {
  try {
    const auto image = library.covers().imageOf(song.facts);
    return image ? library.covers().largest({*image}).bytes : std::string();
  } catch (const HostError &) {
    return {};
  }
}

}  // namespace

SongTags songTags(const MusicLibrary &library, int32_t index) {
  const Song song = library.song(index);
  SongTags tags;
  tags.title = song.title;
  tags.artist = song.artist;
  tags.albumArtist = library.numberedText(index, kAlbumArtistText).value_or("");
  tags.album = song.album;
  tags.genre = song.genre;
  tags.composer = song.composer;
  tags.comment = library.numberedText(index, kComment).value_or("");
  tags.track = song.track;
  tags.trackTotal = song.trackTotal;
  tags.disc = song.facts.disc.value_or(0);
  tags.discs = song.facts.discs.value_or(0);
  tags.year = song.year;
  tags.compilation = song.facts.compilation.value_or(false);
  tags.rating = song.facts.rating.value_or(0);
  tags.plays = song.facts.plays.value_or(0);
  tags.dateAdded = dateAdded(song);
  tags.cover = coverOf(library, song);
  return tags;
}

TagOutcome writeTags(const carbon::Descriptor &copy, std::string_view extension, const SongTags &tags,
                     TagMode mode) {
  const int outcome =
      runApart([&] { return static_cast<int>(writeTagsHere(copy.number(), extension, tags, mode)); });
  const bool isKnown = outcome >= 0 && outcome <= static_cast<int>(TagOutcome::Broken);
  return isKnown ? static_cast<TagOutcome>(outcome) : TagOutcome::Broken;
}

}  // namespace zemhost
