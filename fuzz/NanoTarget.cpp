// What the reader of newest nanos makes of their SQLite files. The first byte chooses: its lowest bit whether
// the rest is the bytes of a file or changes to a sound one, of four bytes each (three for the place), the
// next two which of the files it is. The others are those of the sample nano.

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "player/Error.h"
#include "player/SqliteFile.h"
#include "player/SqliteLibrary.h"
#include "samples/SampleNano.h"
#include "tests/support/SqliteFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using fuzz::Require;

class Nano {
 public:
  Nano() {
    samples::WriteSampleNano(itlp_);
    folder_.write("iTunes/Play Counts", samples::SampleNanoPlayCounts());
    for (size_t i = 0; i < kNames.size(); ++i) sound_.at(i) = support::contentOf(itlp_ / kNames.at(i));
  }

  void Try(uint8_t options, std::string_view bytes) {
    const size_t which = options >> 1 & 3;
    Write(which, options % 2 == 0 ? std::string(bytes) : Changed(sound_.at(which), bytes));
    try {
      Look(player::SqliteLibrary(player::sqliteFilesBeside(itlp_ / kNames[0])));
    } catch (const player::PlayerError &error) {
      const std::string_view words = error.what();
      Require(words.find(".itdb: ") != std::string_view::npos && words.find('\n') == std::string_view::npos,
              words);
    }
    for (const auto &entry : fs::directory_iterator(itlp_))
      Require(entry.path().extension() == ".itdb", "a journal was written");
    Write(which, sound_.at(which));
  }

 private:
  static constexpr std::array<const char *, 4> kNames = {"Library.itdb", "Locations.itdb", "Dynamic.itdb",
                                                         "Extras.itdb"};

  static std::string Changed(std::string sound, std::string_view changes) {
    for (; changes.size() >= 4; changes.remove_prefix(4)) {
      size_t at = 0;
      for (int i = 0; i < 3; ++i) at = at << 8 | static_cast<unsigned char>(changes[static_cast<size_t>(i)]);
      sound[at % sound.size()] = changes[3];
    }
    return sound;
  }

  void Write(size_t which, const std::string &bytes) const {
    std::ofstream file(itlp_ / kNames.at(which), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    Require(static_cast<bool>(file.flush()), "cannot write");
  }

  static void IsText(const std::string &text) {
    size_t lost = 0;
    Require(player::validUtf8(text, &lost) == text && lost == 0, "a text is no UTF-8");
  }

  static void Look(const player::SqliteLibrary &library) {
    const auto &songs = library.songs();
    std::set<int64_t> pids;
    size_t texts = 0;
    for (size_t i = 0; i < songs.size(); ++i) {
      const player::SqliteSong &song = songs[i];
      Require(pids.insert(song.pid).second, "two songs of one ID");
      Require(i == 0 || !song.place || songs[i - 1].place <= song.place, "songs stand in no order");
      Require(!song.facts.rating || *song.facts.rating <= 100, "a rating of more than 100");
      Require(song.path.empty() || song.path.front() == ':', "a path that is not from the root");
      for (const std::string *text : {&song.title, &song.artist, &song.album, &song.genre, &song.path}) {
        IsText(*text);
        texts += text->size();
      }
      for (const player::SongText &text : song.texts) {
        IsText(text.text);
        texts += text.text.size();
      }
    }
    for (const player::SqliteList &list : library.lists()) {
      IsText(list.name);
      for (const player::SqliteList::Entry &entry : list.entries)
        Require(!entry.song || songs.at(*entry.song).pid == entry.pid, "an entry names another song");
    }
    // Each byte may become three, be read four times, and be shared by songs as often.
    Require(texts <= 32 * ((uint64_t{1} << 20) + library.bytes()), "too many texts");
    Require(songs.size() <= library.bytes() / 32, "too many songs");
    Require(library.tables().size() <= 40, "a table was read twice");
  }

  support::TemporaryFolder folder_;
  fs::path itlp_ = folder_.makeDirectory("iTunes/iTunes Library.itlp");
  std::array<std::string, kNames.size()> sound_;
};

}  // namespace

FUZZ_TARGET(nano) {
  static const bool isInMemory = fs::is_directory("/dev/shm") && setenv("TMPDIR", "/dev/shm", 0) == 0;
  static Nano nano;
  (void)isInMemory;
  if (size == 0) return;
  nano.Try(data[0], {reinterpret_cast<const char *>(data) + 1, size - 1});
}
