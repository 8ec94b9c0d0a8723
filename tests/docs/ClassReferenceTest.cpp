// The two pages of the class reference against the plug-in: it lists what is registered, and what it says of
// a new object and of songs that are not there is what the plug-in answers.

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "samples/DatabaseWriter.h"
#include "tests/docs/MarkdownTables.h"
#include "tests/support/Folders.h"

namespace docs_test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;
using zemhost::FolderItem;
using zemhost::Kind;
using zemhost::MethodInfo;
using zemhost::Value;

constexpr int32_t kLargest = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();
constexpr int32_t kOtherText = 8;

// Three songs, of which the first has a value of its own for every method, and a playlist in another order
// than the library.
constexpr int32_t kSongs = 3;
constexpr int32_t kFirstID = 500;
constexpr int32_t kPlaylists = 2;
constexpr int32_t kEntryOfSongOne = 0;
constexpr int32_t kEntryOfSongZero = 1;
constexpr int32_t kEntries = 2;

std::string Database() {
  using samples::Variant;
  std::vector<samples::Track> tracks(kSongs);
  for (uint32_t i = 0; i < kSongs; ++i) {
    const auto text = [i](const char16_t *begin) { return begin + std::u16string(1, char16_t(u'A' + i)); };
    const std::u16string path = u":iPod_Control:Music:" + text(u"Song ") + u".m4a";
    tracks[i] = {.id = kFirstID + i,
                 .res = {1, 2, 0x10000, 3000 + i},
                 .filesize = 1000 + i,
                 .duration = 2000 + i,
                 .number = 3 + i,
                 .total = 7 + i,
                 .year = 2001 + i,
                 .bitrate = 128 + i,
                 .samplerate = (44100 + i) << 16,
                 .moviefileflag = static_cast<uint8_t>(i == 0 ? 1 : 0),
                 .mediaType = 1 + i,
                 .objects = samples::SongObjects(Variant::LittleEndian, {.title = text(u"Title "),
                                                                         .path = path,
                                                                         .album = text(u"Album "),
                                                                         .artist = text(u"Artist "),
                                                                         .genre = text(u"Genre "),
                                                                         .filetype = text(u"Type "),
                                                                         .composer = text(u"Composer ")})};
    tracks[i].objects.push_back(samples::TextObject(kOtherText, text(u"Comment ")));
  }
  samples::Playlist playlist{.name = u"List",
                             .entries = {{.ref = kFirstID + 1, .ply = 1}, {.ref = kFirstID, .ply = 1}}};
  return samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), {playlist, playlist}),
                               Variant::LittleEndian);
}

// A player with that database, and a file for each song, in a folder that goes with the object.
class Player {
 public:
  Player() : root_(std::filesystem::temp_directory_path() / ("class-reference-" + std::to_string(getpid()))) {
    const std::filesystem::path control = root_ / "iPod_Control";
    std::filesystem::create_directories(control / "iTunes");
    std::filesystem::create_directories(control / "Music");
    std::ofstream(Path(), std::ios::binary) << Database();
    for (const char *name : {"Song A.m4a", "Song B.m4a", "Song C.m4a"})
      std::ofstream(control / "Music" / name);
    zemhost::mountVolume("Pod", root_);
  }
  Player(const Player &) = delete;
  Player &operator=(const Player &) = delete;
  ~Player() {
    std::error_code failed;
    std::filesystem::remove_all(root_, failed);
  }
  std::filesystem::path Path() const { return root_ / "iPod_Control" / "iTunes" / "iTunesDB"; }

 private:
  std::filesystem::path root_;
};

std::vector<Table> Document() {
  std::vector<Table> tables = ReadTables(support::DocumentsFolder() / "class-reference.md");
  for (Table &table : ReadTables(support::DocumentsFolder() / "class-reference-lists.md"))
    tables.push_back(std::move(table));
  return tables;
}

// The song, and for two songs the second one, that a call asks for.
using Place = std::vector<int32_t>;

std::string NameOf(const Value &value) { return value.isNil() ? "nil" : value.describe(); }

class ClassReference : public testing::Test {
 protected:
  ClassReference() : object_(host_.make("ZemiTunesDB")) {
    if (!object_.call("Load", {file_}).boolean()) throw std::runtime_error("the database cannot be loaded");
  }

  // Integers of `place` for the first arguments that are Integers, then what fits the argument's name.
  static std::vector<Value> Arguments(const MethodInfo &method, Place place) {
    std::vector<Value> values;
    for (const zemhost::Argument &argument : method.declaration.arguments) {
      if (argument.kind == Kind::FolderItem) {
        values.emplace_back(FolderItem());
      } else if (argument.kind == Kind::String) {
        values.emplace_back(method.declaration.arguments.size() == 1 ? "" : "new");
      } else if (argument.kind == Kind::Boolean) {
        values.emplace_back(false);
      } else if (!place.empty()) {
        values.emplace_back(place.front());
        place.erase(place.begin());
      } else {
        values.emplace_back(kOtherText);
      }
    }
    return values;
  }

  static std::string Answer(const zemhost::Object &object, const MethodInfo &method, const Place &place) {
    return NameOf(object.method(method.text).call(Arguments(method, place)));
  }
  std::string Answer(const MethodInfo &method, const Place &place) const {
    return Answer(object_, method, place);
  }

  // Everything that the object reports about its songs and entries.
  static std::vector<std::string> Snapshot(const zemhost::Object &object) {
    std::vector<std::string> all;
    for (const MethodInfo &method : object.classInfo().methods) {
      if (method.declaration.result == Kind::None || method.declaration.name == "Load") continue;
      for (int32_t a = -1; a <= kSongs; ++a)
        for (int32_t b = -1; b <= kSongs; ++b) all.push_back(Answer(object, method, {a, b}));
    }
    return all;
  }

  static std::vector<Place> PlacesThatAreNotThere(const MethodInfo &method) {
    const auto &arguments = method.declaration.arguments;
    const std::string &first = arguments.front().name;
    if (first == "trackID") return {{0}, {-1}, {kFirstID - 1}, {kFirstID + kSongs}, {kLargest}, {kLeast}};
    if (first == "IndexA")
      return {{kSongs, 0}, {0, kSongs}, {-1, -1}, {0, -1}, {-1, 0}, {kLargest, kLargest}, {kLeast, 0}};
    if (first != "playlist") return {{-1}, {kSongs}, {kLargest}, {kLeast}};
    if (arguments.size() == 1 || arguments[1].name == "reqType")
      return {{-1}, {kPlaylists}, {kLargest}, {kLeast}};
    if (arguments[1].name == "IndexA") return {};  // has a test of its own
    return {{kPlaylists, 0}, {-1, 0}, {kLargest, 0}, {kLeast, 0},
            {0, kEntries},   {0, -1}, {0, kLargest}, {0, kLeast}};
  }

  // What stands for song 0 in a method's own arguments.
  static Place SongZero(const MethodInfo &method) {
    const std::string &first = method.declaration.arguments.front().name;
    if (first == "playlist") return {0, kEntryOfSongZero};
    // GetMovieFileFlag takes its index for a track ID.
    return {first == "trackID" || method.declaration.name == "GetMovieFileFlag" ? kFirstID : 0};
  }

  void ExpectAnswers(const MethodInfo &method, const std::string &stated) {
    const bool changes = stated == "no change";
    const auto before = changes ? Snapshot(object_) : std::vector<std::string>();
    for (const Place &place : PlacesThatAreNotThere(method)) {
      SCOPED_TRACE(testing::PrintToString(place));
      const std::string answer = Answer(method, place);
      if (changes) {
        EXPECT_EQ(answer, "(no result)");
        EXPECT_EQ(Snapshot(object_), before);
      } else if (stated == "song 0") {
        EXPECT_EQ(answer, Answer(method, SongZero(method)));
        EXPECT_THAT((std::set<std::string>{"0", "False", "nil", "(no result)"}), Not(Contains(answer)));
      } else {
        EXPECT_EQ(answer, stated);
      }
    }
  }

  const MethodInfo &Registered(const std::string &declaration) const {
    for (const MethodInfo &method : object_.classInfo().methods)
      if (method.text == declaration) return method;
    throw std::runtime_error("no method " + declaration);
  }

  // Cells: declaration, access, before Load, meaning.
  const std::vector<Cells> properties_ = RowsOf(Document(), "Declaration", "Holds");
  // Cells: declaration, meaning, before Load, nothing there.
  const std::vector<Cells> methods_ = RowsOf(Document(), "Declaration", "Nothing there");
  const Player player_;
  const FolderItem file_ = FolderItem::fromPath(player_.Path());
  const zemhost::Host host_ = zemhost::Host::load({support::PluginFile(), 5.9, {}});
  const zemhost::Object object_;
};

TEST_F(ClassReference, ListsEveryRegisteredMethodOnceAndNoOther) {
  std::vector<std::string> registered;
  for (const MethodInfo &method : object_.classInfo().methods) registered.push_back(method.text);
  std::vector<std::string> listed;
  for (const Cells &row : methods_) listed.push_back(row[0]);
  EXPECT_EQ(registered.size(), 130U);
  EXPECT_THAT(listed, UnorderedElementsAreArray(registered));
}

TEST_F(ClassReference, ListsEveryPropertyWithItsAccess) {
  std::vector<std::string> registered;
  for (const zemhost::PropertyInfo &property : object_.classInfo().properties) {
    registered.push_back(property.name + " As " + kindName(property.kind) +
                         (property.setter == nullptr ? ": read" : ": read, write"));
  }
  std::vector<std::string> listed;
  for (const Cells &row : properties_) listed.push_back(row[0] + ": " + row[1]);
  EXPECT_EQ(registered.size(), 6U);
  EXPECT_THAT(listed, UnorderedElementsAreArray(registered));
}

TEST_F(ClassReference, StatesWhatPropertiesHoldBeforeLoad) {
  const zemhost::Object fresh = host_.make("ZemiTunesDB");
  for (const Cells &row : properties_) {
    const std::string name = row[0].substr(0, row[0].find(' '));
    EXPECT_EQ(NameOf(fresh.get(name)), row[2]) << name;
  }
}

TEST_F(ClassReference, StatesWhatANewObjectAnswers) {
  const zemhost::Object fresh = host_.make("ZemiTunesDB");
  const std::vector<std::string> before = Snapshot(fresh);
  for (const Cells &row : methods_) {
    SCOPED_TRACE(row[0]);
    const MethodInfo &method = Registered(row[0]);
    const std::string &stated = row[2];
    if (stated == "-") {
      EXPECT_TRUE(row[0] == "Constructor" || method.declaration.name == "Load");
      continue;
    }
    for (const Place &place : {Place{0, 0}, Place{kFirstID, 0}, Place{-1, -1}, Place{kLargest, kLeast}}) {
      const std::string answer = Answer(fresh, method, place);
      EXPECT_EQ(answer, stated == "no change" ? "(no result)" : stated) << testing::PrintToString(place);
    }
  }
  EXPECT_EQ(Snapshot(fresh), before);
}

TEST_F(ClassReference, StatesWhatAnObjectAnswersWhoseLoadFailed) {
  const FolderItem noLibrary = FolderItem::fromPath(support::DocumentsFolder() / "class-reference.md");
  const zemhost::Object failed = host_.make("ZemiTunesDB");
  ASSERT_FALSE(failed.call("Load", {noLibrary}).boolean());
  EXPECT_EQ(failed.get("Error").integer(), 1);
  for (const Cells &row : methods_) {
    const MethodInfo &method = Registered(row[0]);
    if (row[2] == "-" || row[2] == "no change") continue;
    const bool isOther = method.declaration.name == "GetPlaySong";
    EXPECT_EQ(Answer(failed, method, {0, 0}), isOther ? "True" : row[2]) << row[0];
  }
  EXPECT_EQ(failed.call("GetAbsolutePath", {":a"}).text(), ":a");
}

TEST_F(ClassReference, StatesWhatIsAnsweredWhenNothingIsThere) {
  for (const Cells &row : methods_) {
    SCOPED_TRACE(row[0]);
    const MethodInfo &method = Registered(row[0]);
    const std::string &stated = row[3];
    const auto &arguments = method.declaration.arguments;
    if (arguments.empty()) {
      EXPECT_EQ(stated, "-");
    } else if (method.declaration.name == "Load") {
      EXPECT_EQ(Answer(host_.make("ZemiTunesDB"), method, {}), stated);
    } else if (arguments.front().kind == Kind::String) {
      EXPECT_EQ(Answer(method, {}), stated);
    } else {
      ExpectAnswers(method, stated);
    }
  }
}

TEST_F(ClassReference, StatesThatComparisonsTakeSongZeroForAnEntryThatIsNotThere) {
  for (const char *what : {"Artist", "Album", "Genre", "Composer"}) {
    const std::string arguments = "IndexA As Integer, IndexB As Integer) As Boolean";
    const std::string declaration =
        std::string("ComparePlaylist") + what + "(playlist As Integer, " + arguments;
    SCOPED_TRACE(declaration);
    const auto row =
        std::find_if(methods_.begin(), methods_.end(), [&](const Cells &r) { return r[0] == declaration; });
    ASSERT_NE(row, methods_.end());
    ASSERT_EQ((*row)[3], "song 0");
    const MethodInfo &method = Registered(declaration);
    for (const int32_t nowhere : {-1, kEntries, kLargest, kLeast}) {
      EXPECT_EQ(Answer(method, {0, kEntryOfSongZero, nowhere}), "True");
      EXPECT_EQ(Answer(method, {0, nowhere, kEntryOfSongZero}), "True");
      EXPECT_EQ(Answer(method, {0, kEntryOfSongOne, nowhere}), "False");
      EXPECT_EQ(Answer(method, {0, nowhere, kEntryOfSongOne}), "False");
    }
    EXPECT_EQ(Answer(method, {kPlaylists, kEntryOfSongOne, kEntryOfSongZero}), "True");
    EXPECT_EQ(Answer(method, {0, kEntryOfSongOne, kEntryOfSongZero}), "False");
  }
}

TEST_F(ClassReference, StatesTheWordsOfGetProp) {
  const std::map<int32_t, const char *> methods = {
      {-1, "GetID"},      {3, "GetDataAdded"}, {4, "GetNumOfTrack"}, {5, "GetTotalTrack"},
      {6, "GetDuration"}, {7, "GetFileSize"},  {8, "GetBitrate"},    {9, "GetSamplerate"},
  };
  std::set<int32_t> stated;
  for (const Cells &row : RowsOf(Document(), "num", "word")) {
    if (row[0] == "any other") continue;
    std::istringstream numbers(row[0]);
    for (std::string number; std::getline(numbers, number, ',');) stated.insert(std::stoi(number));
  }
  EXPECT_THAT(stated, ElementsAre(-2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
  for (const auto &[number, method] : methods)
    EXPECT_EQ(object_.call("GetProp", {1, number}).integer(), object_.call(method, {1}).integer()) << method;
  EXPECT_EQ(object_.call("GetProp", {1, 0}).integer(), 1);
  EXPECT_EQ(object_.call("GetProp", {1, 1}).integer(), 2);
  EXPECT_EQ(object_.call("GetProp", {1, 2}).integer(), 0x10000);
  for (const int32_t number : {-2, -3, 10, kLeast, kLargest})
    EXPECT_EQ(object_.call("GetProp", {1, number}).integer(), 0) << number;
}

TEST_F(ClassReference, StatesTheCodesOfStoredTexts) {
  std::set<std::string> stated;
  for (const Cells &row : RowsOf(Document(), "code", "text")) stated.insert(row[0]);
  const FolderItem file = FolderItem::fromPath(support::SamplesFolder() / "big-endian.library");
  const zemhost::Object desktop = host_.make("ZemiTunesDB");
  ASSERT_TRUE(desktop.call("Load", {file}).boolean());

  std::set<std::string> found;
  const auto meet = [&found](const zemhost::Object &library) {
    for (int32_t song = 0; song < library.call("CountSongs").integer(); ++song)
      found.insert(std::to_string(library.call("GetTitleEncode", {song}).integer()));
    for (int32_t list = 0; list < library.call("CountPlayLists").integer(); ++list)
      found.insert(std::to_string(library.call("GetPlayListEncode", {list}).integer()));
  };
  meet(object_);
  meet(desktop);
  EXPECT_THAT(found, UnorderedElementsAre("16777216", "1", "0", "3"));
  object_.call("SetTitle", {0, "new"});
  EXPECT_EQ(object_.call("GetTitleEncode", {0}).integer(), 0x08000100);
  found.insert("the encoding number of a string");
  EXPECT_EQ(stated, found);
}

}  // namespace
}  // namespace docs_test
