#include <array>
#include <vector>

#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

using samples::Track;

class Setters : public PluginTestOfEachVariant {
 protected:
  Setters() {
    Track song;
    song.id = 52;
    song.res = {1, 2, 0, 4};
    song.filesize = 1000;
    song.duration = 2000;
    song.number = 3;
    song.total = 9;
    song.year = 1999;
    song.mediaType = 7;
    song.objects = samples::SongObjects(
        GetParam(), {.title = u"T", .album = u"A", .artist = u"R", .genre = u"G", .composer = u"C"});
    Track other = song;
    other.id = 53;
    object_ = Loaded(Bytes({song, other}));
  }

  // Track number, track total, file size, year, media type.
  using Fields = std::array<int32_t, 5>;
  static constexpr Fields kAsLoaded{3, 9, 1000, 1999, 7};

  Fields Of(int32_t index) {
    const auto get = [&](const char *declaration) {
      return Host().Call<int32_t>(object_, declaration, index);
    };
    return {get("GetNumOfTrack(index As Integer) As Integer"),
            get("GetTotalTrack(index As Integer) As Integer"),
            get("GetFileSize(index As Integer) As Integer"), get("GetYear(index As Integer) As Integer"),
            get("GetMediaType(index As Integer) As Integer")};
  }
  void Set(const char *declaration, int32_t index, int32_t value) {
    Host().Call<void>(object_, declaration, index, value);
  }
  int32_t Prop(int32_t index, int32_t num) {
    return Host().Call<int32_t>(object_, "GetProp(index As Integer, num As Integer) As Integer", index, num);
  }
  HostText TextAt(const char *declaration, int32_t index) {
    return Host().CallText(object_, declaration, index);
  }

  static constexpr const char *kSetNumber = "SetNumOfTrack(index As Integer, trkNum As Integer)";
  static constexpr const char *kSetTotal = "SetTotalTrack(index As Integer, trkToral As Integer)";
  static constexpr const char *kSetFileSize = "SetFileSize(index As Integer, filesize As Integer)";
  static constexpr const char *kSetYear = "SetYear(index As Integer, year As Integer)";
  static constexpr const char *kSetMediaType = "SetMediaType(index As Integer, flag As Integer)";
  static constexpr const char *kSetCompilation = "SetCompilation(index As Integer, b As Boolean)";
  static constexpr const char *kGetCompilation = "GetCompilation(index As Integer) As Boolean";

  REALobject object_ = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Plugin, Setters, BothVariants(), VariantName);

TEST_P(Setters, EachStoresItsFieldAndAllThatFollow) {
  Set(kSetMediaType, 0, 5);
  EXPECT_EQ(Of(0), (Fields{3, 9, 1000, 1999, 5}));
  Set(kSetYear, 0, 2001);
  EXPECT_EQ(Of(0), (Fields{3, 9, 1000, 2001, 2001}));
  Set(kSetFileSize, 0, -6);
  EXPECT_EQ(Of(0), (Fields{3, 9, -6, -6, -6}));
  Set(kSetTotal, 0, INT32_MAX);
  EXPECT_EQ(Of(0), (Fields{3, INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX}));
  Set(kSetNumber, 0, INT32_MIN);
  EXPECT_EQ(Of(0), (Fields{INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN}));
  EXPECT_EQ(Of(1), kAsLoaded) << "the other song";
}

TEST_P(Setters, LeaveEveryOtherFieldAlone) {
  Set(kSetNumber, 0, 77);
  const std::array<int32_t, 4> res{1, 2, 0, 4};
  for (int32_t num = 0; num < 4; ++num) EXPECT_EQ(Prop(0, num), res.at(static_cast<size_t>(num)));
  EXPECT_EQ(Prop(0, -1), 52);
  EXPECT_EQ(Prop(0, 6), 2000);
  EXPECT_EQ(TextAt("GetTitle(index As Integer) As String", 0), Text("T"));
}

TEST_P(Setters, OfTheTrackNumberLeaveTheTrackTextAsItWasLoaded) {
  Set(kSetNumber, 0, 77);
  EXPECT_EQ(TextAt("GetTrackTotalInfo(index As Integer) As String", 0), Text("03/09"));
}

TEST_P(Setters, OutOfRangeDoNothing) {
  for (const int32_t index : {-1, 2, INT32_MAX, INT32_MIN}) {
    for (const char *setter :
         {kSetNumber, kSetTotal, kSetFileSize, kSetYear, kSetMediaType, kSetCompilation}) {
      Set(setter, index, 1);
    }
  }
  EXPECT_EQ(Of(0), kAsLoaded);
  EXPECT_EQ(Of(1), kAsLoaded);
  EXPECT_EQ(Prop(0, 2), 0);
}

TEST_P(Setters, CompilationTrueSetsBit16OfProp2AndStoresItEverywhere) {
  Set(kSetCompilation, 0, 1);
  EXPECT_EQ(Prop(0, 2), 65536);
  EXPECT_EQ(Of(0), (Fields{65536, 65536, 65536, 65536, 65536}));
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetCompilation, 0), 1);
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetCompilation, 1), 0);
  EXPECT_EQ(Of(1), kAsLoaded);
}

TEST_P(Setters, CompilationFalseClearsBit16AndKeepsTheOthers) {
  Track song;
  song.res[2] = 0xffffffff;
  object_ = Loaded(Bytes({song}));
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetCompilation, 0), 1);
  Set(kSetCompilation, 0, 0);
  EXPECT_EQ(Prop(0, 2), static_cast<int32_t>(0xfffeffff));
  EXPECT_EQ(Of(0), (Fields{-65537, -65537, -65537, -65537, -65537}));
  EXPECT_EQ(Host().Call<int32_t>(object_, kGetCompilation, 0), 0);
}

TEST_P(Setters, CompilationTakesAnyNonzeroValueForTrue) {
  for (const int32_t value : {2, -1, 256, INT32_MIN, 0x10000}) {
    Set(kSetCompilation, 0, 0);
    Set(kSetCompilation, 0, value);
    EXPECT_EQ(Prop(0, 2), 65536) << value;
  }
}

TEST_P(Setters, NeverTouchTheFile) {
  const std::string path = DatabasePath();
  const auto before = std::filesystem::last_write_time(path);
  Set(kSetCompilation, 0, 1);
  const REALstring text = Host().MakeString("new");
  Host().Call<void>(object_, "SetTitle(index As Integer, name As String)", 0, text);
  Host().Release(text);
  const REALobject again = Host().New();
  EXPECT_EQ(Load(again, Item(path)), 1);
  EXPECT_EQ(Host().Call<int32_t>(again, "GetYear(index As Integer) As Integer", 0), 1999);
  EXPECT_EQ(Host().CallText(again, "GetTitle(index As Integer) As String", 0), Text("T"));
  EXPECT_EQ(std::filesystem::last_write_time(path), before);
}

TEST_P(Setters, OfTextsStoreBytesAndCodeAsTheyAre) {
  struct Setter {
    const char *set;
    const char *get;
    const char *encode;
  };
  for (const Setter &setter :
       {Setter{"SetTitle(index As Integer, name As String)", "GetTitle(index As Integer) As String",
               "GetTitleEncode(index As Integer) As Integer"},
        Setter{"SetAlbum(index As Integer, alb As String)", "GetAlbum(index As Integer) As String",
               "GetAlbumEncode(index As Integer) As Integer"},
        Setter{"SetArtist(index As Integer, art As String)", "GetArtist(index As Integer) As String",
               "GetArtistEncode(index As Integer) As Integer"},
        Setter{"SetGenre(index As Integer, gnr As String)", "GetGenre(index As Integer) As String",
               "GetGenreEncode(index As Integer) As Integer"},
        Setter{"SetComposer(index As Integer, cmp As String)", "GetComposer(index As Integer) As String",
               "GetComposerEncode(index As Integer) As Integer"}}) {
    const HostText other = TextAt(setter.get, 1);
    const REALstring text = Host().MakeString("caf\xc3\xa9", kUtf8);
    Host().Call<void>(object_, setter.set, 0, text);
    EXPECT_EQ(Host().Call<int32_t>(object_, setter.encode, 0), static_cast<int32_t>(kUtf8)) << setter.set;
    Host().Forget();
    EXPECT_EQ(TextAt(setter.get, 0), Text("caf\xc3\xa9"));
    EXPECT_EQ(Host().Conversions().size(), 0U);
    EXPECT_EQ(TextAt(setter.get, 1), other);
    for (const int32_t index : {-1, 2, INT32_MAX}) Host().Call<void>(object_, setter.set, index, text);
    EXPECT_EQ(TextAt(setter.get, 1), other);
    Host().Release(text);
    EXPECT_EQ(TextAt(setter.get, 0), Text("caf\xc3\xa9")) << "the plug-in has bytes of its own";
  }
}

TEST_P(Setters, OfTheNullStringEmptyTheText) {
  Host().Call<void>(object_, "SetTitle(index As Integer, name As String)", 0, REALstring());
  EXPECT_EQ(TextAt("GetTitle(index As Integer) As String", 0), kNullString);
  EXPECT_EQ(Host().Call<int32_t>(object_, "GetTitleEncode(index As Integer) As Integer", 0), 0);
  EXPECT_EQ(TextAt("GetTitle(index As Integer) As String", 1), Text("T"));
}

TEST_P(Setters, OfTheNullStringStoreTheCodeThatTheHostGivesIt) {
  Host().encodingOfNoString = 78;
  Host().Call<void>(object_, "SetTitle(index As Integer, name As String)", 0, REALstring());
  EXPECT_EQ(Host().Call<int32_t>(object_, "GetTitleEncode(index As Integer) As Integer", 0), 78);
}

TEST_P(Setters, OfTextsKeepZeroBytesAndLongTexts) {
  for (const std::string &bytes : {std::string("a\0b", 3), std::string(300, 'x'), std::string(100000, 'y')}) {
    const REALstring text = Host().MakeString(bytes, kUtf8);
    Host().Call<void>(object_, "SetTitle(index As Integer, name As String)", 0, text);
    EXPECT_EQ(TextAt("GetTitle(index As Integer) As String", 0), Text(bytes));
    Host().Release(text);
  }
}

TEST_P(Setters, OfTextsAreSeenByTheComparisons) {
  const char *compare = "CompareArtist(IndexA As Integer, IndexB As Integer) As Boolean";
  EXPECT_EQ(Host().Call<int32_t>(object_, compare, 0, 1), 1);
  const REALstring text = Host().MakeString("R", kUtf8);
  const char *set = "SetArtist(index As Integer, art As String)";
  Host().Call<void>(object_, set, 0, text);
  EXPECT_EQ(Host().Call<int32_t>(object_, compare, 0, 1), 0) << "the same word in another encoding";
  Host().Call<void>(object_, set, 1, text);
  EXPECT_EQ(Host().Call<int32_t>(object_, compare, 0, 1), 1);
  Host().Release(text);
}

class MovieFileFlag : public PluginTestOfEachVariant {
 protected:
  int32_t Flag(int32_t index) {
    return Host().Call<int32_t>(object_, "GetMovieFileFlag(index As Integer) As Boolean", index);
  }
  REALobject object_ = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Plugin, MovieFileFlag, BothVariants(), VariantName);

TEST_P(MovieFileFlag, IsThatOfTheSongWhoseTrackIDIsTheIndex) {
  object_ = Loaded(Bytes({{.id = 1}, {.id = 0, .moviefileflag = 1}, {.id = 52, .moviefileflag = 1}}));
  EXPECT_EQ(Flag(0), 1) << "song 1 has track ID 0";
  EXPECT_EQ(Flag(1), 0) << "song 0 has track ID 1";
  EXPECT_EQ(Flag(52), 1);
}

TEST_P(MovieFileFlag, OfAnUnknownTrackIDIsThatOfTheFirstSong) {
  object_ = Loaded(Bytes({{.id = 7, .moviefileflag = 1}, {.id = 8}}));
  for (const int32_t index : {0, 1, 2, -1, INT32_MAX, INT32_MIN}) EXPECT_EQ(Flag(index), 1) << index;
  EXPECT_EQ(Flag(8), 0);
}

TEST_P(MovieFileFlag, OfAByteOtherThan0And1IsFalse) {
  for (const uint8_t byte : {uint8_t{0}, uint8_t{2}, uint8_t{0x80}, uint8_t{0xff}}) {
    object_ = Loaded(Bytes({{.id = 7, .moviefileflag = byte}}));
    EXPECT_EQ(Flag(7), 0) << int{byte};
  }
}

TEST_P(MovieFileFlag, OfThePlaylistAndReferenceFormsIsLookedUpTwice) {
  // Position 0 and track ID 30 both mean library index 1, which is the track ID of song 2.
  object_ =
      Loaded(Bytes({{.id = 10}, {.id = 30}, {.id = 1, .moviefileflag = 1}}, {{.entries = {{.ref = 30}}}}));
  EXPECT_EQ(Host().Call<int32_t>(object_,
                                 "GetMovieFileFlag(playlist As Integer, index As Integer) As Boolean", 0, 0),
            1);
  EXPECT_EQ(Host().Call<int32_t>(object_, "GetReferMovieFileFlag(trackID As Integer) As Boolean", 30), 1);
  EXPECT_EQ(Flag(30), 0);
}

}  // namespace
}  // namespace plugin_test
