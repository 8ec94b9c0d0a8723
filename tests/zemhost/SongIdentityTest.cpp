#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "zemhost/output/JsonText.h"
#include "zemhost/rescue/CopyReport.h"

namespace zemhost {
namespace {

// Each character of ASCII by itself, and texts that JSON escapes, that are not ASCII and that are not UTF-8.
std::vector<std::string> texts() {
  std::vector<std::string> texts = {
      "",   "Home",          "a \"b\" \\ c/d", "two\nlines", "\xE5\xA4\x9C \xF0\x9F\x8C\x99", "cut \xE5\xA4",
      "\\", "{\"a\":[1,2]}", "ends in \\\""};
  for (char c = 0; c < 0x7F; ++c) texts.emplace_back(1, c);
  texts.emplace_back("\x7F");
  return texts;
}

TEST(QuotedLine, IsWhatTheLibraryForJsonWrites) {
  for (const std::string &text : texts()) EXPECT_EQ(quotedLine(text), jsonLine(Json(text)));
}

TEST(SongIdentity, IsTheLineOfAnObjectAndCanBeIndented) {
  for (const std::string &text : texts()) {
    Song song;
    song.title = text;
    song.artist = text + text;
    song.album = "An " + text;
    if (text.size() != 1) song.id = -7;
    SongFile file;
    file.name = "IPOD:" + text;
    const Json json = {{"path", file.name},
                       {"track_id", song.id ? Json(*song.id) : Json()},
                       {"title", song.title},
                       {"artist", song.artist},
                       {"album", song.album}};
    EXPECT_EQ(songIdentity(song, file), jsonLine(json));
    EXPECT_EQ(indentedObject(jsonLine(json), 2), json.dump(2, ' ', false, Json::error_handler_t::replace));
  }
}

}  // namespace
}  // namespace zemhost
