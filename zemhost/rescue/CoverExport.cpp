#include "zemhost/rescue/CoverExport.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/NewFileWriter.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace {

// An album, or a song that stands on none.
struct Album {
  std::string name;
  std::string artist;
  std::set<size_t> images;  // of its songs

  std::string label() const { return inQuotes(name) + (artist.empty() ? "" : " by " + artist); }
};

// Those of one name, by their artists, both in a form in which case has gone.
using Namesakes = std::map<std::string, Album>;

std::string albumArtist(const MusicLibrary &library, int32_t index, const Song &song) {
  for (const player::SongText &text : library.textsInFile(index)) {
    if (text.type == kAlbumArtistText && !text.text.empty()) return text.text;
  }
  return song.facts.compilation.value_or(false) ? "Various Artists" : song.artist;
}

std::map<std::string, Namesakes> albumsOf(const MusicLibrary &library) {
  std::map<std::string, Namesakes> albums;
  const int32_t songs = library.songCount();
  for (int32_t index = 0; index < songs; ++index) {
    const Song song = library.song(index);
    const std::string &name = song.album.empty() ? song.title : song.album;
    const std::string artist = albumArtist(library, index, song);
    Album &album =
        albums[foldedText(name)].try_emplace(foldedText(artist), Album{name, artist, {}}).first->second;
    if (const auto image = library.covers().imageOf(song.facts)) album.images.insert(*image);
  }
  return albums;
}

class CoverExport {
 public:
  CoverExport(const MusicLibrary &library, const std::filesystem::path &path)
      : covers_(library.covers()), writer_(path, library.location().volumeRoot) {}

  FilesResult run(const MusicLibrary &library) {
    writer_.begin();
    for (const auto &[name, namesakes] : albumsOf(library)) writeNamesakes(namesakes);
    return writer_.finish();
  }

 private:
  // Albums that share a name and a cover are one, as far as a cover is concerned.
  void writeNamesakes(const Namesakes &namesakes) {
    std::vector<const Album *> withCover;
    for (const auto &[artist, album] : namesakes) {
      if (album.images.empty()) {
        writer_.addWithout();
      } else {
        withCover.push_back(&album);
      }
    }
    const bool areOne = withCover.size() < 2 || shareCover(withCover);
    if (areOne && !withCover.empty()) withCover.erase(withCover.begin() + 1, withCover.end());
    for (const Album *const album : withCover)
      write(*album, areOne ? album->name : artistOf(*album) + " - " + album->name);
  }

  bool shareCover(const std::vector<const Album *> &albums) const {
    try {
      const std::string first = covers_.largest(albums.front()->images).bytes;
      return std::all_of(albums.begin() + 1, albums.end(),
                         [&](const Album *album) { return covers_.largest(album->images).bytes == first; });
    } catch (const HostError &) {
      return false;  // which of them has none that can be read is reported when each is written
    }
  }

  static std::string artistOf(const Album &album) {
    return album.artist.empty() ? "Unknown Artist" : album.artist;
  }

  void write(const Album &album, const std::string &name) {
    PictureFile picture;
    writer_.write(
        album.label(),
        [&] {
          picture = covers_.largest(album.images);
          return fileOf(picture.bytes);
        },
        [&](std::string_view suffix) { return safeName(name, "Untitled", suffix, picture.extension); });
  }

  const Covers &covers_;
  NewFileWriter writer_;
};

}  // namespace

FilesResult writeCovers(const MusicLibrary &library, const std::filesystem::path &destination) {
  CoverExport covers(library, destination);
  if (!library.covers().areKnown()) {
    throw HostError(library.location().name +
                    ": no list of covers stands beside it (iPod_Control/Artwork/ArtworkDB)");
  }
  return covers.run(library);
}

}  // namespace zemhost
