// The host with the real plug-in, on the sample player and the sample desktop library.

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "host/Host.h"
#include "samples/SampleLibrary.h"
#include "tests/host/ReferenceText.h"
#include "tests/support/Folders.h"

// A plug-in never frees the three-word method list that it makes for an old host, and the address goes with
// the plug-in's memory when it is closed.
extern "C" const char *leaksThatAreMeant() __asm__("__lsan_default_suppressions");
extern "C" const char *leaksThatAreMeant() { return "leak:NewPtr\n"; }

namespace zemhost {
namespace {

const std::filesystem::path kPlayer = support::SamplesFolder() / "player";
const std::filesystem::path kPlayerDatabase = kPlayer / "iPod_Control" / "iTunes" / "iTunesDB";
const std::filesystem::path kDesktopLibrary = support::SamplesFolder() / "big-endian.library";

std::string utf8(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit >> 8);
    bytes += static_cast<char>(unit & 0xFF);
  }
  return reference::utf8(reference::charactersOfUtf16(bytes).characters);
}

Host loadPlugin(double version = 5.9) { return Host::load({support::PluginFile(), version, {}}); }

class RealPlugin : public testing::Test {
 protected:
  static void SetUpTestSuite() { checkHandles(true); }

  void TearDown() override {
    // The path that a load of a player's database asks for stays with the host.
    std::vector<std::string> left;
    for (const HostString &string : liveStrings()) left.push_back(string.text());
    left.erase(left.begin(), left.begin() + before_);
    EXPECT_EQ(left, paths_);
    EXPECT_EQ(liveHandles().folderItems, 0);
    EXPECT_EQ(liveHandles().objects, 0);
    EXPECT_EQ(liveHandles().misuses, 0);
  }

  // The item goes only after the object: the plug-in keeps the pointer.
  struct Library {
    FolderItem file;
    Object object;
  };

  Library loaded(const Host &host, const std::filesystem::path &database) {
    mountVolume("Sampler", kPlayer);
    Library library{FolderItem::fromPath(database), host.make("ZemiTunesDB")};
    EXPECT_TRUE(library.object.call("Load", {library.file}).boolean());
    EXPECT_EQ(library.object.get("Error").integer(), 0);
    if (library.object.get("LibType").integer() != 0) paths_.push_back(library.file.macPath());
    return library;
  }

 private:
  std::ptrdiff_t before_ = static_cast<std::ptrdiff_t>(liveStrings().size());
  std::vector<std::string> paths_;
};

TEST_F(RealPlugin, ClassHasItsPropertiesAndMethodsForEveryHostVersion) {
  for (const double version : {5.8, 5.9, 10.0}) {
    const Host host = loadPlugin(version);
    const ClassInfo &info = host.classInfo("ZemiTunesDB");
    EXPECT_EQ(host.announcedVersion(), 9);
    EXPECT_EQ(info.version, 9);
    ASSERT_EQ(info.methods.size(), 130U);
    EXPECT_EQ(info.methods.front().text, "Constructor");
    EXPECT_EQ(info.methods[25].text, "GetTitle(index As Integer) As String");
    EXPECT_EQ(info.methods.back().text, "GetReferAbsolutePath2(trackID As Integer) As String");
    std::vector<std::string> properties;
    for (const PropertyInfo &property : info.properties) {
      const char *access = property.setter != nullptr ? " rw" : "";
      properties.push_back(property.name + ' ' + kindName(property.kind) + access);
    }
    EXPECT_THAT(properties, testing::ElementsAre("Error Integer", "LibType Integer", "UseSJIS Boolean rw",
                                                 "ResultEncode Integer rw", "VolumeName String",
                                                 "ZerobasePlayerlist Boolean rw"));
  }
}

TEST_F(RealPlugin, EachLoadOfAPlayersDatabaseKeepsOneStringAndNothingElse) {
  const Host host = loadPlugin();
  const LiveHandles before = liveHandles();
  for (int i = 0; i < 1000; ++i) loaded(host, kPlayerDatabase);
  EXPECT_EQ(liveHandles().strings, before.strings + 1000);
  for (int i = 0; i < 10; ++i) loaded(host, kDesktopLibrary);
  EXPECT_EQ(liveHandles().strings, before.strings + 1000);
}

TEST_F(RealPlugin, SongsOfThePlayerComeThroughWordForWord) {
  for (const double version : {5.8, 5.9}) {
    const Host host = loadPlugin(version);
    const Library library = loaded(host, kPlayerDatabase);
    const auto &songs = samples::SampleSongs();
    ASSERT_EQ(library.object.evaluate("CountSongs").integer(), static_cast<int32_t>(songs.size()));
    const Method title = library.object.method("GetTitle(index As Integer) As String");
    const Method artist = library.object.method("GetArtist(index As Integer) As String");
    const Method year = library.object.method("GetYear(index As Integer) As Integer");
    for (size_t i = 0; i < songs.size(); ++i) {
      const auto index = static_cast<int32_t>(i);
      EXPECT_EQ(title(index).text(), utf8(songs[i].title));
      EXPECT_EQ(artist(index).text(), utf8(songs[i].artist));
      EXPECT_EQ(artist(index).isNil(), songs[i].artist.empty());
      EXPECT_EQ(year(index).integer(), static_cast<int32_t>(songs[i].year));
    }
    EXPECT_EQ(library.object.get("VolumeName").text(), "Sampler");
    EXPECT_EQ(library.object.evaluate("GetPlayListName(2)").text(), utf8(samples::SamplePlaylists()[2].name));
  }
}

TEST_F(RealPlugin, ResultEncodingIsTheOneAskedFor) {
  const Host host = loadPlugin();
  const Library library = loaded(host, kPlayerDatabase);
  const auto &songs = samples::SampleSongs();
  for (const char *line :
       {"ResultEncode = &h0100", "ResultEncode = &h08000100", "ResultEncode = &h10000100"}) {
    library.object.evaluate(line);
    for (size_t i = 0; i < songs.size(); ++i) {
      const Value title = library.object.call("GetTitle", {static_cast<int32_t>(i)});
      EXPECT_EQ(title.encoding(), static_cast<uint32_t>(library.object.get("ResultEncode").integer()));
      EXPECT_EQ(title.text(), utf8(songs[i].title)) << line;
    }
  }
}

TEST_F(RealPlugin, ShiftJisOfThePluginReadsBackAsTheSameText) {
  if (!isKnownEncoding(kShiftJis)) GTEST_SKIP() << "the C library has no conversion modules here";
  const Host host = loadPlugin();
  const Library library = loaded(host, kPlayerDatabase);
  library.object.evaluate("UseSJIS = True");
  library.object.evaluate("ResultEncode = &h0A01");
  int japanese = 0;
  for (size_t i = 0; i < samples::SampleSongs().size(); ++i) {
    const std::string expected = utf8(samples::SampleSongs()[i].title);
    const bool kana =
        expected.find("\xE3\x81") != std::string::npos || expected.find("\xE3\x82") != std::string::npos;
    if (!kana || convertText(expected, kUtf8, kShiftJis).replacements != 0) continue;
    const Value title = library.object.call("GetTitle", {static_cast<int32_t>(i)});
    EXPECT_EQ(title.encoding(), kShiftJis);
    EXPECT_EQ(title.text(), expected);
    EXPECT_EQ(title.bytes(), convertText(expected, kUtf8, kShiftJis).bytes);
    ++japanese;
  }
  EXPECT_GT(japanese, 0);
}

TEST_F(RealPlugin, FolderItemOfASongIsItsFileOnThePlayer) {
  const Host host = loadPlugin();
  const Library library = loaded(host, kPlayerDatabase);
  const auto &songs = samples::SampleSongs();
  for (size_t i = 0; i < songs.size(); ++i) {
    const auto index = static_cast<int32_t>(i);
    const Value item = library.object.call("GetFolderItem", {index});
    ASSERT_FALSE(item.isNil());
    EXPECT_EQ(item.folderItem().exists(), !songs[i].missing);
    EXPECT_EQ(item.folderItem().path(),
              std::filesystem::canonical(kPlayer) / "iPod_Control" / "Music" / songs[i].file);
    EXPECT_EQ(library.object.call("GetAbsolutePath2", {index}).text(),
              library.object.call("GetAbsolutePath", {index}).text());
  }
}

TEST_F(RealPlugin, TextThatIsSetComesBack) {
  const Host host = loadPlugin();
  const Library library = loaded(host, kPlayerDatabase);
  EXPECT_EQ(library.object.evaluate("SetTitle(0, \"say \"\"\u3042\"\"\")").kind(), Kind::None);
  EXPECT_EQ(library.object.evaluate("GetTitle(0)").describe(), "\"say \"\"\u3042\"\"\" (UTF-8)");
  EXPECT_EQ(library.object.evaluate("GetTitleEncode(0)").integer(), static_cast<int32_t>(kUtf8));
}

TEST_F(RealPlugin, DesktopLibraryHasTheSameYears) {
  const Host host = loadPlugin();
  const Library library = loaded(host, kDesktopLibrary);
  EXPECT_EQ(library.object.get("LibType").integer(), 0);
  const auto &songs = samples::SampleSongs();
  ASSERT_EQ(library.object.call("CountSongs").integer(), static_cast<int32_t>(songs.size()));
  for (size_t i = 0; i < songs.size(); ++i) {
    const Value year = library.object.call("GetYear", {static_cast<int32_t>(i)});
    EXPECT_EQ(year.integer(), static_cast<int32_t>(songs[i].year));
  }
}

TEST_F(RealPlugin, FileThatIsNoDatabaseIsRejected) {
  const Host host = loadPlugin();
  const FolderItem file = FolderItem::fromPath(support::PluginFile());
  const Object object = host.make("ZemiTunesDB");
  EXPECT_FALSE(object.evaluate("Load(nil)").boolean());
  EXPECT_EQ(object.evaluate("Error").integer(), -50);
  EXPECT_FALSE(object.call("Load", {file}).boolean());
  EXPECT_EQ(object.evaluate("Error").integer(), 1);
}

TEST_F(RealPlugin, EachHostGetsAFreshPlugin) {
  {
    const Host host = loadPlugin();
    const Object object = host.make("ZemiTunesDB");
    object.evaluate("ZerobasePlayerlist = True");
    EXPECT_TRUE(object.evaluate("ZerobasePlayerlist").boolean());
  }
  const Host host = loadPlugin();
  EXPECT_FALSE(host.make("ZemiTunesDB").evaluate("ZerobasePlayerlist").boolean());
}

// Arguments of the declared kinds: `number` for every Integer.
std::vector<Value> argumentsFor(const Declaration &declaration, int32_t number) {
  std::vector<Value> arguments;
  for (const Argument &argument : declaration.arguments) {
    if (argument.kind == Kind::Integer) arguments.emplace_back(number);
    if (argument.kind == Kind::Boolean) arguments.emplace_back(number % 2 != 0);
    if (argument.kind == Kind::String) arguments.emplace_back(":iPod_Control:Music:F00:QHLA.m4a");
    if (argument.kind == Kind::FolderItem) arguments.emplace_back(FolderItem());
  }
  return arguments;
}

TEST_F(RealPlugin, EveryMethodAnswersAndLeavesNothingBehind) {
  const Host host = loadPlugin();
  for (const auto &database : {std::filesystem::path(), kPlayerDatabase, kDesktopLibrary}) {
    const Library library =
        database.empty() ? Library{FolderItem(), host.make("ZemiTunesDB")} : loaded(host, database);
    const int64_t strings = liveHandles().strings;
    const int64_t items = liveHandles().folderItems;
    for (const uint32_t encoding : {kUtf8, kUtf16, kAscii, kShiftJis, 12345U}) {
      library.object.set("ResultEncode", encoding);
      for (const MethodInfo &info : library.object.classInfo().methods) {
        if (info.text == "Constructor") continue;
        const Method method = library.object.method(info.text);
        for (const int32_t number : {0, 1, 5, -1, 1000000}) {
          const Value result = method.call(argumentsFor(info.declaration, number));
          EXPECT_EQ(result.kind(), info.declaration.result) << info.text;
        }
        EXPECT_EQ(liveHandles().strings, strings) << info.text;
        EXPECT_EQ(liveHandles().folderItems, items) << info.text;
      }
    }
  }
}

TEST_F(RealPlugin, RealLibraryIsReadWhole) {
  const std::filesystem::path file = support::SharedFolder() / "data/real/library-1181-songs.itunesdb";
  if (!std::filesystem::exists(file)) GTEST_SKIP() << "the library is not there";
  const Host host = loadPlugin();
  const Library library = loaded(host, file);
  EXPECT_EQ(library.object.evaluate("CountSongs").integer(), 1181);
  EXPECT_EQ(library.object.evaluate("CountPlayLists").integer(), 8);
  const Method title = library.object.method("GetTitle(index As Integer) As String");
  const int64_t replaced = liveHandles().replacements;
  int titles = 0;
  for (int32_t i = 0; i < 1181; ++i) titles += title(i).isNil() ? 0 : 1;
  EXPECT_EQ(titles, 1174);  // the other seven songs carry no title
  EXPECT_EQ(liveHandles().replacements, replaced);
}

}  // namespace
}  // namespace zemhost
