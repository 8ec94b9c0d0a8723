#pragma once

// A player of a few songs, and what a rescue of it leaves.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "samples/SampleLibrary.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"

namespace zemhost {

namespace fs = std::filesystem;

inline std::string contentOf(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

using Files = std::map<std::string, std::string>;

inline constexpr const char *kReport = "rescue-report.ndjson";

// Whether a file is what a rescue says of itself, beside the music.
inline bool isReport(const fs::path &file) {
  const std::string name = file.filename();
  return name == kReport || name == "rescue-report.json" || name == "SHA256SUMS";
}

// Every file below a folder with its content, but those.
inline Files filesBelow(const fs::path &folder) {
  Files files;
  if (!fs::exists(folder)) return files;
  for (const auto &entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && !isReport(entry.path()))
      files[entry.path().lexically_relative(folder).string()] = contentOf(entry.path());
  }
  return files;
}

// A song of a player and its file.
struct StoredSong {
  std::u16string title{};
  std::u16string artist{};
  std::u16string path{};  // below the music folder, "F00/0.mp3"
  std::string content{};
  std::optional<uint32_t> statedSize{};  // when the database states another than the content's
};

class RescueFixture : public testing::Test {
 protected:
  Outcome run(const fs::path &from, const std::vector<std::string> &more = {}) const {
    std::vector<std::string> arguments = {"rescue", from, destination_};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runZemhost(arguments);
  }

  // A player whose songs are "title" and "artist" texts; the file of song i is F00/i.mp3 with its number in
  // it.
  fs::path makePlayer(const std::vector<std::pair<std::u16string, std::u16string>> &songs,
                      std::vector<samples::Playlist> lists = {}) const {
    std::vector<StoredSong> stored;
    for (size_t i = 0; i < songs.size(); ++i) {
      const std::string name = "F00/" + std::to_string(i) + ".mp3";
      stored.push_back({songs[i].first,
                        songs[i].second,
                        std::u16string(name.begin(), name.end()),
                        "song " + std::to_string(i),
                        {}});
    }
    return makePlayerOf(stored, std::move(lists));
  }

  fs::path makePlayerOf(const std::vector<StoredSong> &songs,
                        std::vector<samples::Playlist> lists = {}) const {
    std::vector<samples::Track> tracks;
    for (size_t i = 0; i < songs.size(); ++i) {
      const StoredSong &song = songs[i];
      folder_.write("My iPod/iPod_Control/Music" / fs::path(song.path), song.content);
      samples::SongTexts texts;
      texts.title = song.title;
      texts.artist = song.artist;
      texts.path = u":iPod_Control:Music:" + song.path;
      std::replace(texts.path.begin(), texts.path.end(), u'/', u':');
      samples::Track track;
      track.id = static_cast<uint32_t>(52 + i);
      track.filesize = song.statedSize.value_or(static_cast<uint32_t>(song.content.size()));
      track.objects = samples::SongObjects(samples::Variant::LittleEndian, texts);
      tracks.push_back(std::move(track));
    }
    samples::Playlist master;
    master.name = u"Library";
    lists.insert(lists.begin(), master);
    folder_.write("My iPod/iPod_Control/iTunes/iTunesDB",
                  samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), std::move(lists)),
                                        samples::Variant::LittleEndian));
    return folder_.path() / "My iPod";
  }

  support::TemporaryFolder folder_;
  fs::path destination_ = folder_.path() / "music" / "of mine";
};

}  // namespace zemhost
