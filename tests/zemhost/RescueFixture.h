#pragma once

// A player of a few songs, and what a rescue of it leaves.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
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

// Every file below a folder with its content, but the report.
inline Files filesBelow(const fs::path &folder) {
  Files files;
  if (!fs::exists(folder)) return files;
  for (const auto &entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().filename() != kReport)
      files[entry.path().lexically_relative(folder).string()] = contentOf(entry.path());
  }
  return files;
}

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
    std::vector<samples::Track> tracks;
    for (size_t i = 0; i < songs.size(); ++i) {
      const std::string name = std::to_string(i) + ".mp3";
      const std::string content = "song " + std::to_string(i);
      folder_.write("My iPod/iPod_Control/Music/F00/" + name, content);
      samples::SongTexts texts;
      texts.title = songs[i].first;
      texts.artist = songs[i].second;
      texts.path = u":iPod_Control:Music:F00:" + std::u16string(name.begin(), name.end());
      samples::Track track;
      track.id = static_cast<uint32_t>(52 + i);
      track.filesize = static_cast<uint32_t>(content.size());
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
