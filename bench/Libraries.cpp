#include "bench/Libraries.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "samples/GeneratedLibrary.h"

namespace bench {
namespace {

using samples::Track;
using samples::Variant;

constexpr uint32_t kPlaylists = 11;

samples::GeneratedLibrary Generated(uint32_t songs, Texts texts) {
  return {.seed = 1904,
          .songs = songs,
          .playlists = kPlaylists,
          .entries = songs / 10,
          .variant = texts <= Texts::kHostile ? Variant::LittleEndian : Variant::BigEndian};
}

std::u16string Numbered(std::u16string_view word, uint32_t number) {
  std::u16string text(word);
  for (const char digit : std::to_string(number)) text += static_cast<char16_t>(digit);
  return text;
}

Track SongWith(const samples::GeneratedLibrary &library, uint32_t index, Texts texts) {
  Track track = library.Song(index);
  if (texts == Texts::kHostile) {
    track.id = 0;
    return track;
  }
  if (texts == Texts::kTenObjects) {
    for (uint32_t type = 20; track.objects.size() < 10; ++type)
      track.objects.push_back(samples::TextObject(type, Numbered(u"Note ", index)));
    return track;
  }
  samples::SongTexts words;
  words.title = Numbered(u"Song ", index);
  words.path = Numbered(u"Disk:Music:F", index);
  if (texts == Texts::kCrafted) {
    words.artist = words.album = words.genre = words.composer = samples::CancellingText(index);
  } else if (texts != Texts::kMissing) {
    const uint32_t number = texts == Texts::kDistinct ? index : 0;
    words.artist = Numbered(u"The Band of ", number);
    words.album = Numbered(u"Collected ", number);
    words.genre = Numbered(u"Genre ", number);
    words.composer = Numbered(u"Composer ", number);
  }
  track.objects = SongObjects(library.variant, words);
  return track;
}

void Write(const std::string &path, uint32_t songs, Texts texts) {
  std::ofstream stream(path, std::ios::binary);
  const samples::GeneratedLibrary library = Generated(songs, texts);
  if (texts == Texts::kUsual || texts == Texts::kBigEndian) {
    library.WriteTo(stream);
  } else {
    std::vector<Track> tracks;
    for (uint32_t i = 0; i < songs; ++i) tracks.push_back(SongWith(library, i, texts));
    std::vector<samples::Playlist> lists;
    for (uint32_t i = 0; i < kPlaylists; ++i) lists.push_back(library.List(i));
    stream << WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), std::move(lists)), library.variant);
  }
  if (!stream.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace

const char *NameOf(Texts texts) {
  switch (texts) {
    case Texts::kUsual:
      return "usual";
    case Texts::kTenObjects:
      return "ten-objects";
    case Texts::kHostile:
      return "hostile";
    case Texts::kBigEndian:
      return "big-endian";
    case Texts::kMissing:
      return "missing";
    case Texts::kDistinct:
      return "distinct";
    case Texts::kEqual:
      return "equal";
    case Texts::kCrafted:
      return "crafted";
  }
  return "";
}

std::string LibraryFile(uint32_t songs, Texts texts) {
  const std::filesystem::path files = ZEM_BENCH_FILES;
  std::filesystem::create_directories(files);
  const std::filesystem::path path = files / (std::string(NameOf(texts)) + "-" + std::to_string(songs));
  if (!std::filesystem::exists(path)) {
    const std::string unfinished = path.string() + ".part";
    Write(unfinished, songs, texts);
    std::filesystem::rename(unfinished, path);
  }
  return path.string();
}

}  // namespace bench
