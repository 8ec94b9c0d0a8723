// The model's object by hand-made examples.
#include <gmock/gmock.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/model/Methods.h"

namespace {

using model::Argument;
using model::HostText;
using model::Result;
using samples::Variant;
using namespace std::string_literals;

constexpr uint32_t kUtf8 = 0x08000100;
const std::optional<HostText> kNoText;

class PlainHost : public model::Host {
 public:
  std::optional<HostText> Convert(const HostText &text, uint32_t encoding) override {
    ++conversions;
    return HostText{text.bytes, encoding};
  }
  std::optional<HostText> Build(const std::string &bytes) override {
    if (buildFails) return std::nullopt;
    return HostText{bytes, 77};
  }
  uint32_t EncodingOfNoString() override { return 78; }
  std::optional<std::string> ItemOfPath(const std::string &path) override { return "item of " + path; }
  std::optional<HostText> PathOfItemOfPath(const std::string &path) override {
    return HostText{"path of " + path, kUtf8};
  }

  int conversions = 0;
  bool buildFails = false;
};

class ModelMethods : public testing::Test {
 protected:
  ModelMethods() { object.Construct(); }

  Result Call(const std::string &declaration, const std::vector<Argument> &arguments = {}) {
    for (const model::Method &method : model::Methods())
      if (method.declaration == declaration) return method.call({object, arguments});
    throw std::logic_error("no method " + declaration);
  }

  // Two songs, "First" of ID 5 and "Second" of ID 0, and two playlists: one entry for each ID, and none.
  void LoadTwoSongs() {
    samples::Track first;
    first.id = 5;
    first.moviefileflag = 1;
    first.objects = {samples::TextObject(1, u"First"), samples::TextObject(2, u":a.mp3")};
    samples::Track second;
    second.objects = {samples::TextObject(1, u"Second")};
    samples::Playlist playlist;
    playlist.name = u"List";
    playlist.entries = {{.ref = 5}, {.ref = 0, .ply = 4}};
    file.path = "Disk:iPod_Control:iTunes:iTunesDB";
    file.bytes = samples::WriteLibrary(samples::OrdinaryLibrary({first, second}, {playlist, {}}),
                                       Variant::LittleEndian);
    EXPECT_EQ(Call("Load(f As FolderItem) As Boolean", {std::optional(file)}), Result(1));
  }

  static Result Utf16(const std::string &bytes) { return std::optional(HostText{bytes, 0x100}); }

  model::Process process;
  PlainHost host;
  model::Object object{process, host};
  model::HostFile file;
};

TEST_F(ModelMethods, Are130WithDifferentDeclarations) {
  std::set<std::string> declarations;
  for (const model::Method &method : model::Methods()) declarations.insert(method.declaration);
  EXPECT_EQ(model::Methods().size(), 130U);
  EXPECT_EQ(declarations.size(), 130U);
}

TEST_F(ModelMethods, LoadOnceAndTakeTheVolumeFromThePath) {
  EXPECT_EQ(Call("Load(f As FolderItem) As Boolean", {std::optional<model::HostFile>()}), Result(0));
  EXPECT_EQ(object.Error(), -50);
  LoadTwoSongs();
  EXPECT_EQ(object.Error(), 0);
  EXPECT_EQ(object.VolumeName(), (HostText{"Disk", 77}));
  EXPECT_EQ(Call("Load(f As FolderItem) As Boolean", {std::optional(file)}), Result(0));
  EXPECT_EQ(object.Error(), 0);
  EXPECT_EQ(Call("CountSongs As Integer"), Result(2));
}

TEST_F(ModelMethods, TellAFileThatDoesNotOpenFromOneThatIsNoDatabase) {
  file.bytes = "something else altogether";
  EXPECT_EQ(Call("Load(f As FolderItem) As Boolean", {std::optional(file)}), Result(0));
  EXPECT_EQ(object.Error(), 1);
  EXPECT_EQ(object.VolumeName(), kNoText);
  model::Object other(process, host);
  other.Construct();
  EXPECT_FALSE(other.LoadFile(model::HostFile{}));
  EXPECT_EQ(other.Error(), -50);
}

TEST_F(ModelMethods, ShiftPlaylistsOfEveryObject) {
  LoadTwoSongs();
  model::Object other(process, host);
  other.SetZerobasePlayerlist(7);
  EXPECT_EQ(object.ZerobasePlayerlist(), 1);
  EXPECT_EQ(Call("CountPlayLists As Integer"), Result(1));
  EXPECT_EQ(Call("CountSongsInPlayList(playlist As Integer) As Integer", {0}), Result(0));
  EXPECT_EQ(Call("CountSongsInPlayList(playlist As Integer) As Integer", {-1}), Result(2));
  EXPECT_EQ(Call("GetRefNum(playlist As Integer, Index As Integer) As Integer", {-1, 0}), Result(5));
}

TEST_F(ModelMethods, FallBackToTheFirstSongForTextsOfNoEntry) {
  LoadTwoSongs();
  object.SetResultEncode(0x100);
  const std::string title = "GetTitle(playlist As Integer, index As Integer) As String";
  EXPECT_EQ(Call(title, {0, 1}), Utf16("\0S\0e\0c\0o\0n\0d"s));
  EXPECT_EQ(Call(title, {0, 2}), Utf16("\0F\0i\0r\0s\0t"s));
  EXPECT_EQ(Call("GetReferTitle(trackID As Integer) As String", {99}), Utf16("\0F\0i\0r\0s\0t"s));
  EXPECT_EQ(Call("GetTitle(index As Integer) As String", {2}), Result(kNoText));
  EXPECT_EQ(Call("GetNumOfTrack(playlist As Integer, index As Integer) As Integer", {0, 2}), Result(0));
}

TEST_F(ModelMethods, HandOutTextsInTheEncodingAskedFor) {
  LoadTwoSongs();
  const std::string path = "GetPath(index As Integer) As String";
  EXPECT_EQ(Call(path, {0}), Result(std::optional(HostText{":a.mp3", kUtf8})));
  EXPECT_EQ(host.conversions, 1);
  object.SetResultEncode(0x600);
  EXPECT_EQ(Call(path, {0}), Result(std::optional(HostText{":a.mp3", 0x600})));
  EXPECT_EQ(host.conversions, 1);
  const std::string track = "GetTrackTotalInfo(index As Integer) As String";
  EXPECT_EQ(Call(track, {0}), Result(std::optional(HostText{"-", 0x600})));
  EXPECT_EQ(host.conversions, 2);
  object.SetResultEncode(0);
  EXPECT_EQ(Call(track, {0}), Result(std::optional(HostText{"-", 0x600})));
  EXPECT_EQ(host.conversions, 2);
  object.SetUseSJIS(-3);
  object.SetResultEncode(0xA01);
  EXPECT_EQ(Call("GetTitle(index As Integer) As String", {0}),
            Result(std::optional(HostText{"First", 0xA01})));
}

TEST_F(ModelMethods, ConvertNothingThatCouldNotBeBuilt) {
  LoadTwoSongs();
  host.buildFails = true;
  EXPECT_EQ(Call("GetTitle(index As Integer) As String", {0}), Result(kNoText));
  EXPECT_EQ(Call("GetAbsolutePath(index As Integer) As String", {0}), Result(kNoText));
  EXPECT_EQ(object.VolumeName(), kNoText);
  EXPECT_EQ(host.conversions, 0);
}

TEST_F(ModelMethods, ClassifyATextOfCodeThree) {
  LoadTwoSongs();
  object.SetResultEncode(0x600);
  const auto titleOf = [&](const std::string &bytes) {
    Call("SetTitle(index As Integer, name As String)", {0, std::optional(HostText{bytes, 3})});
    return object.String(1, 1, 0, 0);
  };
  EXPECT_EQ(titleOf("\0A\0B"s), (HostText{"AB", 0x600}));
  EXPECT_EQ(titleOf("ABC"), (HostText{"ABC", 0x600}));
  EXPECT_EQ(host.conversions, 0);
  object.SetResultEncode(0x100);
  EXPECT_EQ(titleOf("A\0B\0"s), (HostText{"A\0B\0"s, 0x100}));
  EXPECT_EQ(host.conversions, 0);
}

TEST_F(ModelMethods, StoreNothingButTheHostsCodeForTheNullString) {
  LoadTwoSongs();
  Call("SetTitle(index As Integer, name As String)", {0, kNoText});
  EXPECT_EQ(Call("GetTitleEncode(index As Integer) As Integer", {0}), Result(78));
  EXPECT_EQ(Call("GetTitle(index As Integer) As String", {0}), Result(kNoText));
}

TEST_F(ModelMethods, CascadeThroughTheNumberSetters) {
  LoadTwoSongs();
  Call("SetYear(index As Integer, year As Integer)", {0, 2001});
  EXPECT_EQ(Call("GetMediaType(index As Integer) As Integer", {0}), Result(2001));
  EXPECT_EQ(Call("GetFileSize(index As Integer) As Integer", {0}), Result(0));
  Call("SetCompilation(index As Integer, b As Boolean)", {0, 2});
  EXPECT_EQ(Call("GetCompilation(index As Integer) As Boolean", {0}), Result(1));
  EXPECT_EQ(Call("GetNumOfTrack(index As Integer) As Integer", {0}), Result(65536));
}

TEST_F(ModelMethods, TakeTheMovieFlagsIndexForATrackID) {
  LoadTwoSongs();
  EXPECT_EQ(Call("GetMovieFileFlag(index As Integer) As Boolean", {5}), Result(1));
  EXPECT_EQ(Call("GetMovieFileFlag(index As Integer) As Boolean", {0}), Result(0));
  EXPECT_EQ(Call("GetReferMovieFileFlag(trackID As Integer) As Boolean", {5}), Result(0));
}

TEST_F(ModelMethods, JoinPathsWithTheVolume) {
  LoadTwoSongs();
  EXPECT_EQ(Call("GetAbsolutePath(index As Integer) As String", {0}),
            Result(std::optional(HostText{"Disk:a.mp3", 77})));
  EXPECT_EQ(Call("GetReferFolderItem(trackID As Integer) As FolderItem", {5}),
            Result(model::FolderItem{"item of Disk:a.mp3"}));
  EXPECT_EQ(Call("GetAbsolutePath2(index As Integer) As String", {0}),
            Result(std::optional(HostText{"path of Disk:a.mp3", kUtf8})));
  EXPECT_EQ(Call("GetFolderItem(index As Integer) As FolderItem", {1}), Result(model::FolderItem{}));
  const std::string any = "GetAbsolutePath(path As String) As String";
  EXPECT_EQ(Call(any, {std::optional(HostText{"", 0})}), Result(kNoText));
  EXPECT_EQ(object.PathOfItem(HostText{std::string(256, 'x'), 0}), kNoText);
}

TEST_F(ModelMethods, KeepThePlayWordAsOneBit) {
  LoadTwoSongs();
  const std::string set = "SetPlaySong(playlist As Integer, index As Integer, play As Boolean)";
  const std::string get = "GetPlaySong(playlist As Integer, index As Integer) As Boolean";
  EXPECT_EQ(Call(get, {0, 1}), Result(0));
  EXPECT_EQ(Call(get, {0, 2}), Result(1));
  for (const auto &[play, plays] : {std::pair(1, 1), {0, 0}, {2, 0}, {-1, 1}}) {
    Call(set, {0, 0, play});
    EXPECT_EQ(Call(get, {0, 0}), Result(plays)) << play;
  }
}

TEST_F(ModelMethods, AnswerNothingBeforeConstruction) {
  model::Object raw(process, host);
  EXPECT_EQ(raw.LibType(), -1);
  EXPECT_EQ(raw.ResultEncode(), 0);
  EXPECT_FALSE(raw.LoadFile(model::HostFile{}));
  EXPECT_EQ(raw.Error(), 0);
  EXPECT_EQ(raw.PlaySong(0, 0), 0);
  EXPECT_EQ(raw.CountPlayLists(), 0);
  EXPECT_EQ(raw.String(1, 1, 0, 0), kNoText);
}

}  // namespace
