// The functions behind the methods, linked into this program instead of loaded, with databases set up by
// hand.

#include <cstring>
#include <string_view>

#include "plugin/Forwarders.h"
#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

using namespace std::string_view_literals;
using testing::ElementsAre;

class Dispatchers : public PluginTest {
 protected:
  Dispatchers() : PluginTest({.entryPoint = REALPluginMain}) {
    gListSet = 0;
    object_ = Host().New();
    CiTunesDB &db = Database();
    db.libType = 1;
    for (int32_t i = 0; i < 3; ++i) {
      CSongList song;
      const auto word = [&](uint32_t field) { return static_cast<uint32_t>(i + 1) * 1000 + field; };
      song.id = 50 + i;
      for (uint32_t k = 0; k < 4; ++k) song.res[k] = static_cast<int32_t>(word(k));
      song.track = {word(4), word(5)};
      song.duration = word(6);
      song.filesize = word(7);
      song.bitrate = word(8);
      song.samplerate = word(9);
      song.mediaType = word(10);
      song.year = word(11);
      song.moviefileflag = static_cast<uint8_t>(253 + i);
      song.title = {1, kUtf8, std::string(1, static_cast<char>('a' + i))};
      song.unknown = {{7, kUtf8, std::string("u").append(std::to_string(i))}, {7, kUtf8, "second"}};
      db.songs.push_back(song);
    }
    fsbbStruct chunk{};
    CPlayList list(&chunk);
    list.name = {-1, kUtf8, "list"};
    list.refnum = {{50, 0, 0, 0}, {52, 2, 0, 0}, {999, 77, 0, 0}, {998, -1, 0, 0}};
    db.plays.push_back(list);
  }
  ~Dispatchers() override { gListSet = 0; }

  CiTunesDB &Database() { return *static_cast<RbiTunesDBData *>(Host().Data(object_))->db; }
  int32_t Get(int32_t selector, int32_t index, int32_t playlist = 0) {
    return ZemRbiTunesDB_GetIntegerData(object_, selector, index, playlist);
  }
  HostText String(int32_t dataType, int32_t param, int32_t playlist, int32_t index) {
    return Host().Take(ZemRbiTunesDB_GetEncodingStringData(object_, dataType, param, playlist, index));
  }
  int32_t Number(int32_t dataType, int32_t param, int32_t playlist, int32_t index) {
    return ZemRbiTunesDB_GetEncodingStringNumber(object_, dataType, param, playlist, index);
  }

  // Every field that integer setters may touch, of song 0.
  std::vector<uint32_t> Fields() {
    const CSongList &song = Database().songs[0];
    std::vector<uint32_t> fields(std::begin(song.res), std::end(song.res));
    for (const uint32_t field :
         {static_cast<uint32_t>(song.error), static_cast<uint32_t>(song.id), song.track.num, song.track.total,
          song.filesize, song.year, song.mediaType, song.duration, song.bitrate, song.samplerate,
          uint32_t{song.moviefileflag}}) {
      fields.push_back(field);
    }
    return fields;
  }

  REALobject object_ = nullptr;
};

TEST_F(Dispatchers, EverySelectorReadsItsField) {
  // Library index 2, position 1 of playlist 0 and track ID 52 all mean the last song.
  EXPECT_EQ(Get(0, 2), 52);
  EXPECT_EQ(Get(1, 2), 3004);
  EXPECT_EQ(Get(2, 2), 3005);
  EXPECT_EQ(Get(3, 1), 2);
  EXPECT_EQ(Get(4, 1), 52);
  EXPECT_EQ(Get(5, 1), 3004);
  EXPECT_EQ(Get(6, 1), 3005);
  EXPECT_EQ(Get(7, 52), 2);
  EXPECT_EQ(Get(8, 52), 3004);
  EXPECT_EQ(Get(9, 52), 3005);
  EXPECT_EQ(Get(10, 2), 2);
  for (int32_t num = 0; num < 10; ++num) EXPECT_EQ(Get(11, 2, num), 3000 + num);
  const std::vector<std::pair<int32_t, int32_t>> threes = {{12, 3006}, {15, 3007}, {18, 3011}, {21, 3003},
                                                           {24, 3008}, {27, 3009}, {30, 3010}, {33, 255}};
  for (const auto &[first, value] : threes) {
    EXPECT_EQ(Get(first, 2), value) << first;
    EXPECT_EQ(Get(first + 1, 1), value) << first + 1;
    EXPECT_EQ(Get(first + 2, 52), value) << first + 2;
  }
}

TEST_F(Dispatchers, SelectorOutsideTheTableReadsZero) {
  for (const int32_t selector : {-1, 36, 37, 100, INT32_MAX, INT32_MIN}) {
    for (const int32_t index : {0, 1, 2, 52}) EXPECT_EQ(Get(selector, index), 0) << selector;
  }
}

TEST_F(Dispatchers, SelectorOfAnIndexOutOfRangeReadsZero) {
  for (int32_t selector = 0; selector <= 35; ++selector) {
    const bool refers =
        selector == 7 || selector == 8 || selector == 9 || (selector >= 12 && selector % 3 == 2);
    if (refers) continue;  // an unknown track ID means song 0
    for (const int32_t index : {-1, 4, INT32_MAX, INT32_MIN}) EXPECT_EQ(Get(selector, index), 0) << selector;
  }
  for (const int32_t selector : {8, 9, 14, 17, 20, 23, 26, 29, 32, 35}) {
    EXPECT_EQ(Get(selector, 777), Get(selector, 50)) << selector;
  }
  EXPECT_EQ(Get(7, 777), 0);
}

TEST_F(Dispatchers, PlaylistSelectorsOfAnInvalidPlaylistReadZero) {
  for (const int32_t selector : {3, 4, 5, 6, 13, 16, 19, 22, 25, 28, 31, 34}) {
    for (const int32_t playlist : {-1, 1, INT32_MAX, INT32_MIN}) EXPECT_EQ(Get(selector, 1, playlist), 0);
    gListSet = 1;
    EXPECT_EQ(Get(selector, 1, 0), 0);
    EXPECT_NE(Get(selector, 1, -1), 0) << "the first playlist";
    gListSet = 0;
  }
}

TEST_F(Dispatchers, EntryWithAnInvalidSongIndexReadsThatIndexButNoField) {
  EXPECT_EQ(Get(3, 2), 77);
  EXPECT_EQ(Get(4, 2), 999);
  EXPECT_EQ(Get(3, 3), -1);
  for (const int32_t position : {2, 3}) {
    for (const int32_t selector : {5, 6, 13, 16, 19, 22, 25, 28, 31, 34})
      EXPECT_EQ(Get(selector, position), 0);
    EXPECT_EQ(String(2, 1, 0, position), kNullString) << "the position is valid, so it is not song 0";
    EXPECT_EQ(Number(2, 1, 0, position), 0);
    EXPECT_EQ(String(5, 7, 0, position), kNullString);
    EXPECT_EQ(ZemRbiTunesDB_CompareSongObject(object_, 4, 0, 0, position), REALboolean::False);
  }
}

TEST_F(Dispatchers, SelectorsThatSetRunOnIntoOneAnother) {
  const auto after = [&](int32_t selector, int32_t num) {
    ZemRbiTunesDB_SetIntegerData(object_, selector, 0, num, 7);
    const CSongList &song = Database().songs[0];
    return std::vector<uint32_t>{static_cast<uint32_t>(song.res[1]),
                                 song.track.num,
                                 song.track.total,
                                 song.filesize,
                                 song.year,
                                 song.mediaType};
  };
  EXPECT_THAT(after(30, 0), ElementsAre(1001, 1004, 1005, 1007, 1011, 7));
  EXPECT_THAT(after(18, 0), ElementsAre(1001, 1004, 1005, 1007, 7, 7));
  EXPECT_THAT(after(15, 0), ElementsAre(1001, 1004, 1005, 7, 7, 7));
  EXPECT_THAT(after(2, 0), ElementsAre(1001, 1004, 7, 7, 7, 7));
  EXPECT_THAT(after(1, 0), ElementsAre(1001, 7, 7, 7, 7, 7));
  EXPECT_THAT(after(11, 1), ElementsAre(7, 7, 7, 7, 7, 7));
  EXPECT_EQ(Database().songs[0].duration, 1006U);
  EXPECT_EQ(Database().songs[1].mediaType, 2010U);
}

TEST_F(Dispatchers, EveryOtherSelectorSetsNothing) {
  const std::vector<uint32_t> before = Fields();
  for (int32_t selector = -40; selector <= 60; ++selector) {
    if (selector == 1 || selector == 2 || selector == 11 || selector == 15 || selector == 18 ||
        selector == 30) {
      continue;
    }
    ZemRbiTunesDB_SetIntegerData(object_, selector, 0, 0, 7);
    ASSERT_EQ(Fields(), before) << selector;
  }
  for (const int32_t selector : {INT32_MIN, INT32_MAX})
    ZemRbiTunesDB_SetIntegerData(object_, selector, 0, 0, 7);
  for (const int32_t index : {-1, 3, INT32_MAX, INT32_MIN}) {
    for (const int32_t selector : {1, 2, 11, 15, 18, 30}) {
      ZemRbiTunesDB_SetIntegerData(object_, selector, index, 0, 7);
    }
  }
  EXPECT_EQ(Fields(), before);
}

TEST_F(Dispatchers, SetPropReachesTheWordsAroundAndTheCascadeFollows) {
  ZemRbiTunesDB_SetIntegerData(object_, 11, 0, -1, 60);
  EXPECT_EQ(Get(7, 60), 0);
  EXPECT_EQ(Get(0, 0), 60);
  EXPECT_EQ(Get(1, 0), 60);
  ZemRbiTunesDB_SetIntegerData(object_, 11, 1, 99, 61);
  EXPECT_EQ(Get(1, 1), 61) << "an unknown prop is no reason to stop";
  EXPECT_EQ(Get(11, 1, 3), 2003);
}

TEST_F(Dispatchers, TextsComeFromTheirSources) {
  EXPECT_EQ(String(0, 15, 0, 0), Text("list"));
  EXPECT_EQ(String(0, 1, 0, 9), Text("list")) << "neither the object's number nor the index counts";
  EXPECT_EQ(String(1, 1, 9, 1), Text("b"));
  EXPECT_EQ(String(2, 1, 0, 1), Text("c"));
  EXPECT_EQ(String(3, 1, 9, 52), Text("c"));
  EXPECT_EQ(String(4, 7, 9, 1), Text("u1"));
  EXPECT_EQ(String(5, 7, 0, 1), Text("u2"));
  EXPECT_EQ(String(6, 7, 9, 52), Text("u2"));
  EXPECT_EQ(String(1, 7, 0, 1), kNullString) << "other objects are not named ones";
  EXPECT_EQ(String(4, 1, 0, 1), kNullString);
}

TEST_F(Dispatchers, TextsOfInvalidPositionsComeFromTheFirstSong) {
  for (const int32_t playlist : {-1, 1, 0}) {
    EXPECT_EQ(String(2, 1, playlist, 99), Text("a"));
    EXPECT_EQ(String(5, 7, playlist, -1), Text("u0"));
    EXPECT_EQ(Number(2, 1, playlist, 99), static_cast<int32_t>(kUtf8));
  }
  EXPECT_EQ(String(3, 1, 0, 777), Text("a"));
  EXPECT_EQ(String(6, 7, 0, 777), Text("u0"));
  EXPECT_EQ(String(1, 1, 0, 99), kNullString);
}

TEST_F(Dispatchers, UnknownSourceIsAnEmptyText) {
  for (const int32_t dataType : {-1, 7, 8, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(String(dataType, 1, 0, 0), kNullString);
    EXPECT_EQ(Number(dataType, 1, 0, 0), 0);
  }
}

TEST_F(Dispatchers, NumberKnowsTheFirstFourSourcesAlone) {
  for (int32_t dataType = 0; dataType <= 3; ++dataType) {
    EXPECT_EQ(Number(dataType, 1, 0, 0), static_cast<int32_t>(kUtf8)) << dataType;
  }
  for (int32_t dataType = 4; dataType <= 6; ++dataType) EXPECT_EQ(Number(dataType, 7, 0, 0), 0) << dataType;
}

TEST_F(Dispatchers, SetTextKnowsTheLibrarySourceAlone) {
  const REALstring text = Host().MakeString("new");
  for (const int32_t dataType : {-1, 0, 2, 3, 4, 5, 6, 7}) {
    ZemRbiTunesDB_SetEncodingStringData(object_, dataType, 1, 0, 0, text);
  }
  EXPECT_EQ(String(1, 1, 0, 0), Text("a"));
  EXPECT_EQ(String(0, 15, 0, 0), Text("list"));
  ZemRbiTunesDB_SetEncodingStringData(object_, 1, 1, 77, 0, text);
  EXPECT_EQ(String(1, 1, 0, 0), Text("new"));
  EXPECT_EQ(Database().songs[0].title.idx, 1);
  Host().Release(text);
}

TEST_F(Dispatchers, SetTextOfANumberWithoutAFieldSetsAnOtherObject) {
  const REALstring text = Host().MakeString("new");
  ZemRbiTunesDB_SetEncodingStringData(object_, 1, 7, 0, 0, text);
  EXPECT_EQ(String(4, 7, 0, 0), Text("new"));
  EXPECT_EQ(Database().songs[0].unknown[1].obj.View(), "second");
  Host().Release(text);
}

TEST_F(Dispatchers, NullOrEmptyTextIsTheNullString) {
  const auto *data = static_cast<const RbiTunesDBData *>(Host().Data(object_));
  EXPECT_EQ(GetEncodingStringData(nullptr, kUtf8, 1, data), nullptr);
  const std::string_view empty;
  EXPECT_EQ(GetEncodingStringData(&empty, kUtf8, 1, data), nullptr);
}

TEST_F(Dispatchers, ObjectNumberTwoMakesAnyTextAscii) {
  const auto *data = static_cast<const RbiTunesDBData *>(Host().Data(object_));
  Host().Set<int32_t>(object_, "ResultEncode", kAscii);
  const std::string_view text = "\0a"sv;
  for (const uint32_t code : {kUtf8, kUtf16, 3U, 1U, kTrackInfoEncode}) {
    EXPECT_EQ(Host().Take(GetEncodingStringData(&text, code, 2, data)), Text("\0a"sv, kAscii));
  }
}

TEST_F(Dispatchers, CutOffZeroOfAnEmptyTextIsAnEmptyAsciiString) {
  const std::string_view empty;
  EXPECT_EQ(Host().Take(CutOffZeroInString(&empty)), Text("", kAscii));
}

TEST_F(Dispatchers, CutOffZeroClassifiesText) {
  const auto cut = [&](std::string_view text) { return Host().Take(CutOffZeroInString(&text)); };
  EXPECT_EQ(cut("\0A\0B"sv), Text("AB", kAscii));
  EXPECT_EQ(cut("A\0B\0"sv), Text("A\0B\0"sv, kUtf16));
  EXPECT_EQ(cut("ABC"sv), Text("ABC", kAscii));
  Host().buildFails = true;
  EXPECT_EQ(cut("ABC"sv), kNullString);
  EXPECT_EQ(Host().Count("REALSetStringEncoding"), 3U) << "null stays untagged";
}

TEST_F(Dispatchers, NilItemsAndPathsGiveNothing) {
  EXPECT_EQ(ZemRbiTunesDB_GetPathFromFolderItem(nullptr), nullptr);
  EXPECT_EQ(ZemRbiTunesDB_GetFolderItemFromPath(nullptr), nullptr);
  EXPECT_EQ(ZemRbiTunesDB_GetPathWithVolume(object_, nullptr), nullptr);
}

TEST_F(Dispatchers, FunctionsOfANullObjectAnswerForAMissingDatabase) {
  EXPECT_EQ(ZemRbiTunesDB_GetIntegerData(nullptr, 0, 0, 0), 0);
  EXPECT_EQ(ZemRbiTunesDB_GetEncodingStringData(nullptr, 1, 1, 0, 0), nullptr);
  EXPECT_EQ(ZemRbiTunesDB_GetEncodingStringNumber(nullptr, 1, 1, 0, 0), 0);
  EXPECT_EQ(Get_ResultEncode(nullptr, 0), 0) << "no data block";
  EXPECT_EQ(Get_LibType(nullptr, 0), -1);
}

TEST_F(Dispatchers, AccessorsIgnoreTheParameter) {
  Set_ResultEncode(object_, 1, 5);
  Set_UseSJIS(object_, 2, REALboolean::True);
  Set_ZeroBasePlayerlist(object_, 3, REALboolean::True);
  Database().vln = "V";
  for (const intptr_t parameter : {intptr_t{0}, intptr_t{1}, intptr_t{-1}, INTPTR_MAX}) {
    EXPECT_EQ(Get_Error(object_, parameter), 0);
    EXPECT_EQ(Get_LibType(object_, parameter), 1);
    EXPECT_EQ(Get_UseSJIS(object_, parameter), REALboolean::True);
    EXPECT_EQ(Get_ResultEncode(object_, parameter), 5);
    EXPECT_EQ(Host().Take(Get_VolumeName(object_, parameter)), Text("V", kUntagged));
    EXPECT_EQ(Get_ZeroBasePlayerlist(object_, parameter), REALboolean::True);
  }
}

TEST_F(Dispatchers, DestructorLeavesTheItem) {
  auto &data = *static_cast<RbiTunesDBData *>(Host().Data(object_));
  int item = 0;
  data.dbf = reinterpret_cast<REALfolderItem>(&item);
  ZemRbiTunesDB_Destructor(object_);
  EXPECT_EQ(data.db, nullptr);
  EXPECT_EQ(data.dbf, reinterpret_cast<REALfolderItem>(&item));
}

TEST_F(Dispatchers, OtherObjectOfNumber2IsNotReducedAsAPathIs) {
  Database().songs[0].unknown = {{2, 0x01000000, "\0A\x30\x42\0B"sv}};
  EXPECT_EQ(Host().Take(ZemRbiTunesDB_GetUnknown(object_, 0, 2)).bytes, std::string("\0A0B\0B", 6));
}

TEST_F(Dispatchers, AnySharedFlagButZeroIsTrue) {
  for (const int32_t flag : {1, 2, -1, INT32_MIN, INT32_MAX}) {
    gListSet = flag;
    EXPECT_EQ(Get_ZeroBasePlayerlist(object_, 0), REALboolean::True) << flag;
  }
  gListSet = 0;
  EXPECT_EQ(Get_ZeroBasePlayerlist(object_, 0), REALboolean::False);
}

TEST_F(Dispatchers, UseSJISIsAnyOf32BitsAndSetTo0Or1) {
  CiTunesDB &db = Database();
  db.songs[0].title.obj = "\0A"sv;
  for (const int32_t bit : {1, 0x100, 0x10000, INT32_MIN}) {
    db.useSJIS = bit;
    EXPECT_EQ(db.UseSJIS(), bit);
    EXPECT_EQ(Get_UseSJIS(object_, 0), REALboolean::True) << bit;
    EXPECT_EQ(String(1, 1, 0, 0), Text("A")) << bit;
    Set_UseSJIS(object_, 0, static_cast<REALboolean>(bit));
    EXPECT_EQ(db.useSJIS, 1);
  }
}

TEST_F(Dispatchers, PlayNumAddsTheSharedFlag) {
  EXPECT_EQ(PlayNum(3), 3);
  gListSet = 1;
  EXPECT_EQ(PlayNum(3), 4);
  EXPECT_EQ(PlayNum(-1), 0);
  EXPECT_EQ(PlayNum(INT32_MAX), INT32_MIN) << "an invalid playlist, not an accident";
}

}  // namespace
}  // namespace plugin_test
