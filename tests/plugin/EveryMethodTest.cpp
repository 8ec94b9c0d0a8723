#include <set>

#include "tests/plugin/Declarations.h"
#include "tests/plugin/Model.h"
#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

using samples::Track;

constexpr Family kFamilies[] = {Family::Library, Family::Playlist, Family::Refer};

struct ObjectName {
  const char *name;
  int32_t number;
};
constexpr ObjectName kTexts[] = {
    {"TrackTotalInfo", -100}, {"Title", 1},   {"Path", 2}, {"Album", 3}, {"Artist", 4}, {"Genre", 5},
    {"Composer", 12},         {"FileType", 6}};

struct FieldName {
  const char *name;
  uint32_t Track::*field;
};
constexpr FieldName kFields[] = {{"NumOfTrack", &Track::number}, {"TotalTrack", &Track::total},
                                 {"Duration", &Track::duration}, {"FileSize", &Track::filesize},
                                 {"Year", &Track::year},         {"MediaType", &Track::mediaType}};
constexpr FieldName kRates[] = {{"Bitrate", &Track::bitrate}, {"Samplerate", &Track::samplerate}};

// Asks every method with arguments in and out of range, and holds the answers against a model.
class EveryMethod : public PluginTestOfEachVariant {
 protected:
  // The text of a declaration by what it gets, its family, what follows the family's arguments, and its
  // result.
  static std::string Declared(const std::string &name, Family family, const std::string &more,
                              const std::string &result) {
    const char *arguments = family == Family::Library    ? "(index As Integer"
                            : family == Family::Playlist ? "(playlist As Integer, index As Integer"
                                                         : "(trackID As Integer";
    return (family == Family::Refer ? "GetRefer" : "Get") + name + arguments + more + ") As " + result;
  }

  template <typename Result>
  Result Ask(const std::string &declaration, const Pick &pick) {
    if (pick.family == Family::Playlist) {
      return Host().Call<Result>(object_, declaration, pick.playlist, pick.index);
    }
    return Host().Call<Result>(object_, declaration, pick.index);
  }
  HostText AskText(const std::string &declaration, const Pick &pick) {
    return Host().Take(Ask<REALstring>(declaration, pick));
  }
  int32_t AskPlaylist(const char *declaration, int32_t playlist) {
    return Host().Call<int32_t>(object_, declaration, playlist);
  }

  static std::string Where(const std::string &declaration, const Pick &pick) {
    return declaration + " of " + std::to_string(pick.playlist) + ", " + std::to_string(pick.index);
  }

  void ExpectTexts(const Model &model) {
    for (const Family family : kFamilies) {
      for (const ObjectName &text : kTexts) {
        const std::string declaration = Declared(text.name, family, "", "String");
        const std::string code = Declared(std::string(text.name) + "Encode", family, "", "Integer");
        for (const Pick &pick : model.Picks(family)) {
          ASSERT_EQ(AskText(declaration, pick), model.TextOf(pick, text.number)) << Where(declaration, pick);
          if (text.number == -100) continue;
          ASSERT_EQ(Ask<int32_t>(code, pick), model.CodeOf(pick, text.number)) << Where(code, pick);
        }
      }
    }
  }

  void ExpectUnknowns(const Model &model) {
    for (const Family family : kFamilies) {
      const std::string declaration = Declared("Unknown", family, ", num As Integer", "String");
      for (const Pick &pick : model.Picks(family)) {
        for (const int32_t num : {-100, -7, -1, 0, 1, 2, 6, 7, 8, 9, 12, 13, 15, 50, 100, INT32_MAX}) {
          const auto string =
              family == Family::Playlist
                  ? Host().Call<REALstring>(object_, declaration, pick.playlist, pick.index, num)
                  : Host().Call<REALstring>(object_, declaration, pick.index, num);
          ASSERT_EQ(Host().Take(string), model.Unknown(pick, num)) << Where(declaration, pick) << ", " << num;
        }
      }
    }
  }

  void ExpectFields(const Model &model) {
    for (const Family family : kFamilies) {
      for (const Pick &pick : model.Picks(family)) {
        for (const FieldName &field : kFields) {
          const std::string declaration = Declared(field.name, family, "", "Integer");
          ASSERT_EQ(Ask<int32_t>(declaration, pick), model.Field(pick, field.field))
              << Where(declaration, pick);
        }
        for (const FieldName &rate : kRates) {
          const std::string declaration = Declared(rate.name, family, "", "Integer");
          ASSERT_EQ(Ask<int32_t>(declaration, pick), model.Rate(pick, rate.field))
              << Where(declaration, pick);
        }
        const std::string date =
            Declared(family == Family::Refer ? "DateAdded" : "DataAdded", family, "", "Integer");
        ASSERT_EQ(Ask<int32_t>(date, pick), model.DateAdded(pick)) << Where(date, pick);
        const std::string compilation = Declared("Compilation", family, "", "Boolean");
        ASSERT_EQ(Ask<int32_t>(compilation, pick), model.Compilation(pick)) << Where(compilation, pick);
        const std::string movie = Declared("MovieFileFlag", family, "", "Boolean");
        ASSERT_EQ(Ask<int32_t>(movie, pick), model.MovieFileFlag(pick)) << Where(movie, pick);
      }
    }
    for (const int32_t index : model.Indexes()) {
      ASSERT_EQ(Host().Call<int32_t>(object_, "GetID(index As Integer) As Integer", index), model.ID(index));
      ASSERT_EQ(Host().Call<int32_t>(object_, "CountSongUnknown(index As Integer) As Integer", index),
                model.UnknownCount(index));
      for (int32_t num = -4; num <= 12; ++num) {
        ASSERT_EQ(
            Host().Call<int32_t>(object_, "GetProp(index As Integer, num As Integer) As Integer", index, num),
            model.Prop(index, num))
            << index << ", " << num;
      }
    }
  }

  void ExpectPlaylists(const Model &model) {
    ASSERT_EQ(Host().Call<int32_t>(object_, "CountSongs As Integer"), model.Songs());
    ASSERT_EQ(Host().Call<int32_t>(object_, "CountPlayLists As Integer"), model.Playlists() - model.zeroBase);
    for (const int32_t p : model.PlaylistNumbers()) {
      ASSERT_EQ(AskPlaylist("CountSongsInPlayList(playlist As Integer) As Integer", p), model.EntriesOf(p))
          << p;
      ASSERT_EQ(AskPlaylist("GetPlayListEncode(playlist As Integer) As Integer", p), model.PlaylistCode(p))
          << p;
      ASSERT_EQ(AskPlaylist("GetPlayListTypeI(playlist As Integer) As Integer", p), model.TypeI(p)) << p;
      ASSERT_EQ(AskPlaylist("GetPlayListTypeII(playlist As Integer) As Integer", p), model.TypeII(p)) << p;
      for (const int32_t type : {0, 1, 2, -1, INT32_MIN}) {
        ASSERT_EQ(
            Host().Call<int32_t>(
                object_, "GetPlayListType(playlist As Integer, reqType As Integer) As Integer", p, type),
            type == 0 ? model.TypeI(p) : model.TypeII(p))
            << p << ", " << type;
      }
      ASSERT_EQ(Host().CallText(object_, "GetPlayListName(playlist As Integer) As String", p),
                model.PlaylistName(p))
          << p;
    }
    for (const int32_t id : model.TrackIDs()) {
      ASSERT_EQ(Host().Call<int32_t>(object_, "GetIndex(trackID As Integer) As Integer", id),
                model.LibraryIndex({Family::Refer, id, 0}));
    }
    for (const Pick &pick : model.Picks(Family::Playlist)) {
      ASSERT_EQ(Ask<int32_t>("GetIndex(playlist As Integer, Index As Integer) As Integer", pick),
                model.LibraryIndex(pick));
      ASSERT_EQ(Ask<int32_t>("GetRefNum(playlist As Integer, Index As Integer) As Integer", pick),
                model.RefNum(pick.playlist, pick.index));
      ASSERT_EQ(Ask<int32_t>("GetPlaySong(playlist As Integer, index As Integer) As Boolean", pick),
                model.Plays(pick.playlist, pick.index));
      ASSERT_EQ(Ask<int32_t>("GetFlags(playlist As Integer, index As Integer) As Integer", pick), 0);
    }
  }

  void ExpectComparisons(const Model &model) {
    constexpr ObjectName kCompared[] = {{"Artist", 4}, {"Album", 3}, {"Genre", 5}, {"Composer", 12}};
    for (const ObjectName &object : kCompared) {
      const std::string library =
          "Compare" + std::string(object.name) + "(IndexA As Integer, IndexB As Integer) As Boolean";
      for (const int32_t a : model.Indexes()) {
        for (const int32_t b : model.Indexes()) {
          ASSERT_EQ(Host().Call<int32_t>(object_, library, a, b), model.Same(object.number, -1, a, b))
              << library << a << ", " << b;
        }
      }
      const std::string inPlaylist = "ComparePlaylist" + std::string(object.name) +
                                     "(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean";
      for (const int32_t p : model.PlaylistNumbers()) {
        for (const int32_t a : model.Positions()) {
          for (const int32_t b : model.Positions()) {
            ASSERT_EQ(Host().Call<int32_t>(object_, inPlaylist, p, a, b), model.Same(object.number, p, a, b))
                << inPlaylist << p << ", " << a << ", " << b;
          }
        }
      }
    }
  }

  // The item that the file manager makes of a path, as the host would show it; null for none.
  static HostText PathOfItemAt(const HostText &path) {
    if (path.isNull || path.bytes.size() > 255) return kNullString;
    const std::string pascal = std::string(1, static_cast<char>(path.bytes.size())) + path.bytes;
    FSSpec spec{};
    const OSErr result = FSMakeFSSpec(0, 0, reinterpret_cast<const unsigned char *>(pascal.data()), &spec);
    std::array<char, 1024> full{};
    if ((result != noErr && result != fnfErr) ||
        CarbonPathFromSpec(&spec, full.data(), full.size()) != noErr) {
      return kNullString;
    }
    return Text(full.data());
  }

  void ExpectPaths(const Model &model) {
    for (const Family family : kFamilies) {
      const std::string joined = Declared("AbsolutePath", family, "", "String");
      const std::string item = Declared("FolderItem", family, "", "FolderItem");
      const std::string ofItem = Declared("AbsolutePath2", family, "", "String");
      for (const Pick &pick : model.Picks(family)) {
        const HostText path = model.AbsolutePath(pick);
        ASSERT_EQ(AskText(joined, pick), path) << Where(joined, pick);
        const HostText itemsPath = PathOfItemAt(path);
        ASSERT_EQ(AskText(ofItem, pick), itemsPath) << Where(ofItem, pick);
        const auto made = Ask<REALfolderItem>(item, pick);
        ASSERT_EQ(made == nullptr, itemsPath.isNull) << Where(item, pick);
        if (made == nullptr) continue;
        const FSSpec spec = Host().SpecOf(made);
        std::array<char, 1024> full{};
        ASSERT_EQ(CarbonPathFromSpec(&spec, full.data(), full.size()), noErr);
        ASSERT_EQ(Text(full.data()), itemsPath) << Where(item, pick);
        Host().Release(made);
      }
    }
    for (const char *bytes : {"", "x", ":iPod_Control:Music:F00:A.mp3"}) {
      const REALstring path = Host().MakeString(bytes);
      ASSERT_EQ(Host().CallText(object_, "GetAbsolutePath(path As String) As String", path),
                model.WithVolume(Text(bytes)));
      Host().Release(path);
    }
  }

  // The setters, all out of range or of what stands there already, so that the model holds on.
  void ExpectSettersOutOfRangeToDoNothing(const Model &model) {
    const REALstring text = Host().MakeString("changed");
    for (const int32_t index : {-1, model.Songs(), INT32_MAX, INT32_MIN}) {
      for (const char *setter :
           {"SetTitle(index As Integer, name As String)", "SetAlbum(index As Integer, alb As String)",
            "SetArtist(index As Integer, art As String)", "SetGenre(index As Integer, gnr As String)",
            "SetComposer(index As Integer, cmp As String)"}) {
        Host().Call<void>(object_, setter, index, text);
      }
      for (const char *setter :
           {"SetNumOfTrack(index As Integer, trkNum As Integer)",
            "SetTotalTrack(index As Integer, trkToral As Integer)",
            "SetFileSize(index As Integer, filesize As Integer)",
            "SetYear(index As Integer, year As Integer)", "SetMediaType(index As Integer, flag As Integer)",
            "SetCompilation(index As Integer, b As Boolean)"}) {
        Host().Call<void>(object_, setter, index, 1);
      }
    }
    for (const Pick &pick : model.Picks(Family::Playlist)) {
      if (pick.index >= 0 && pick.index < model.EntriesOf(pick.playlist)) continue;
      Host().Call<void>(object_, "SetPlaySong(playlist As Integer, index As Integer, play As Boolean)",
                        pick.playlist, pick.index, 0);
      Host().Call<void>(object_, "SetFlags(playlist As Integer, index As Integer, flags As Integer)",
                        pick.playlist, pick.index, -1);
    }
    Host().Release(text);
  }

  void ExpectEverything(const Model &model) {
    ExpectSettersOutOfRangeToDoNothing(model);
    ExpectTexts(model);
    ExpectUnknowns(model);
    ExpectFields(model);
    ExpectPlaylists(model);
    ExpectComparisons(model);
    ExpectPaths(model);
    EXPECT_EQ(Host().Get<int32_t>(object_, "Error"), 0);
  }

  void ExpectEveryDeclarationWasCalled() {
    const std::set<std::string, std::less<>> all(kDeclarations.begin(), kDeclarations.end());
    EXPECT_EQ(Host().Called(), all);
  }

  REALobject object_ = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Plugin, EveryMethod, BothVariants(), VariantName);

TEST_P(EveryMethod, AnswersForTheSongsAndPlaylistsOfTheFile) {
  Model model = Model::Varied(GetParam());
  (void)folder_.write("iPod_Control/Music/F00/A.mp3");
  object_ = Loaded(model.File());
  for (const int32_t zeroBase : {0, 1}) {
    model.zeroBase = zeroBase;
    Host().Set<int32_t>(object_, "ZerobasePlayerlist", zeroBase);
    ExpectEverything(model);
  }
  ExpectEveryDeclarationWasCalled();
}

TEST_P(EveryMethod, AnswersInTheEncodingAskedFor) {
  Model model = Model::Varied(GetParam());
  object_ = Loaded(model.File());
  for (const uint32_t encoding : {kUtf16, kAscii, 0U, 0x12345U, 0xffffffffU}) {
    model.resultEncode = encoding;
    Host().Set<int32_t>(object_, "ResultEncode", static_cast<int32_t>(encoding));
    ExpectTexts(model);
    ExpectUnknowns(model);
    ExpectPlaylists(model);
    ExpectPaths(model);
  }
}

TEST_P(EveryMethod, AnswersForALibraryOfNoSongs) {
  Model model = Model::Empty(GetParam());
  object_ = Loaded(model.File());
  for (const int32_t zeroBase : {0, 1}) {
    model.zeroBase = zeroBase;
    Host().Set<int32_t>(object_, "ZerobasePlayerlist", zeroBase);
    ExpectEverything(model);
  }
  ExpectEveryDeclarationWasCalled();
}

TEST_P(EveryMethod, AnswersForAnotherFileInAnotherObject) {
  object_ = Loaded(Model::Varied(GetParam()).File());
  const REALobject first = object_;
  const Model other(GetParam(), {{.id = 9, .objects = {samples::TextObject(4, u"X")}}}, {{.name = u"One"}});
  object_ = Loaded(other.File());
  ExpectEverything(other);
  object_ = first;
  ExpectEverything(Model::Varied(GetParam()));
}

}  // namespace
}  // namespace plugin_test
