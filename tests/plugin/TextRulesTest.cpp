#include <string>

#include "tests/plugin/PluginTest.h"

namespace plugin_test {
namespace {

using namespace std::string_literals;
using support::Conversion;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint32_t kUnknownForm = 3;
constexpr uint32_t kTrackText = static_cast<uint32_t>(-100);
constexpr const char *kGetTitle = "GetTitle(index As Integer) As String";
constexpr const char *kGetPath = "GetPath(index As Integer) As String";
constexpr const char *kGetTrackTotalInfo = "GetTrackTotalInfo(index As Integer) As String";

// One song, whose title is set as a host string of any bytes and any code, and then handed out.
class TextRules : public PluginTest {
 protected:
  TextRules() {
    samples::Track track;
    track.number = 5;
    track.total = 12;
    track.objects = samples::SongObjects(Variant::LittleEndian, {.title = u"T", .path = u":a\u00e9\u3042"});
    object_ = Loaded(samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), Variant::LittleEndian));
  }

  void SetTitle(std::string_view bytes, uint32_t code) {
    const REALstring string = Host().MakeString(bytes, code);
    Host().Call<void>(object_, "SetTitle(index As Integer, name As String)", 0, string);
    Host().Release(string);
    Host().Forget();
  }
  HostText Title() { return Host().CallText(object_, kGetTitle, 0); }
  void ResultEncode(uint32_t code) {
    Host().Set<int32_t>(object_, "ResultEncode", static_cast<int32_t>(code));
  }
  void UseSJIS(bool use) { Host().Set<int32_t>(object_, "UseSJIS", use ? 1 : 0); }

  // Without a ResultEncode that anything carries, the one conversion shows how the text was tagged.
  Conversion Asked(std::string_view bytes, uint32_t code) {
    ResultEncode(0x7777);
    SetTitle(bytes, code);
    EXPECT_EQ(Title().encoding, 0x7777U);
    EXPECT_EQ(Host().Conversions().size(), 1U);
    return Host().Conversions().empty() ? Conversion{} : Host().Conversions()[0];
  }

  REALobject object_ = nullptr;
};

TEST_F(TextRules, EmptyTextIsTheNullString) {
  for (const uint32_t code : {kUtf8, kUtf16, kUnknownForm, kTrackText, kShiftJIS}) {
    for (const bool sjis : {false, true}) {
      UseSJIS(sjis);
      SetTitle("", code);
      EXPECT_EQ(Title(), kNullString);
      EXPECT_EQ(Host().Count("REALBuildString"), 0U);
    }
  }
}

TEST_F(TextRules, PathIsHandedOutAsAscii) {
  ResultEncode(kAscii);
  Host().Forget();
  EXPECT_EQ(Host().CallText(object_, kGetPath, 0), Text(":a\xe9", kAscii));
  EXPECT_THAT(Host().Conversions(), IsEmpty()) << "it is what was asked for";
  ResultEncode(kUtf8);
  EXPECT_EQ(Host().CallText(object_, kGetPath, 0), Text(":a\xc3\xa9"));
  EXPECT_THAT(Host().Conversions(), ElementsAre(Conversion{":a\xe9", kAscii, kUtf8}));
}

TEST_F(TextRules, PathIsHandedOutAsAsciiEvenWithUseSJIS) {
  UseSJIS(true);
  ResultEncode(kAscii);
  EXPECT_EQ(Host().CallText(object_, kGetPath, 0), Text(":a\xe9", kAscii));
  ResultEncode(kShiftJIS);
  Host().Forget();
  (void)Host().CallText(object_, kGetPath, 0);
  EXPECT_THAT(Host().Conversions(), ElementsAre(Conversion{":a\xe9", kAscii, kShiftJIS}));
}

TEST_F(TextRules, UnknownFormOfSingleByteUnitsIsAsciiWithoutItsZeros) {
  EXPECT_EQ(Asked("\0A\0B"s, kUnknownForm), (Conversion{"AB", kAscii, 0x7777}));
  EXPECT_EQ(Asked("\0A\0\xe9"s, kUnknownForm), (Conversion{"A\xe9", kAscii, 0x7777}));
  EXPECT_EQ(Asked("\0\x01"s, kUnknownForm), (Conversion{"\x01", kAscii, 0x7777}));
}

TEST_F(TextRules, UnknownFormOfPrintableBytesIsAsciiAsItStands) {
  EXPECT_EQ(Asked("ABC", kUnknownForm), (Conversion{"ABC", kAscii, 0x7777}));
  EXPECT_EQ(Asked(" ~", kUnknownForm), (Conversion{" ~", kAscii, 0x7777}));
  EXPECT_EQ(Asked("x", kUnknownForm), (Conversion{"x", kAscii, 0x7777}));
}

TEST_F(TextRules, UnknownFormOfUtf16ThatLooksPrintableIsTakenForAscii) {
  EXPECT_EQ(Asked("\x30\x42", kUnknownForm), (Conversion{"0B", kAscii, 0x7777}));
}

TEST_F(TextRules, UnknownFormOfAnyOtherBytesIsUtf16) {
  for (const std::string &bytes : {"A\0B\0"s, "\0A\x30\x42"s, "\0A\0\0"s, "\0A\0"s, "\0"s, "\0\0"s, "AB\x7f"s,
                                   "\x1f"
                                   "A"s,
                                   "caf\xe9"s, "\x30\x42"s + "\0A"s}) {
    EXPECT_EQ(Asked(bytes, kUnknownForm), (Conversion{bytes, kUtf16, 0x7777}))
        << testing::PrintToString(bytes);
  }
}

TEST_F(TextRules, UnknownFormIsComparedWithTheEncodingTheHostReports) {
  ResultEncode(kAscii);
  SetTitle("\0A\0B"s, kUnknownForm);
  EXPECT_EQ(Title(), Text("AB", kAscii));
  EXPECT_THAT(Host().Conversions(), IsEmpty());
  EXPECT_EQ(Host().Count("REALGetStringEncoding"), 1U);
  ResultEncode(kUtf16);
  EXPECT_EQ(Title(), Text("\0A\0B"s, kUtf16));
  EXPECT_THAT(Host().Conversions(), ElementsAre(Conversion{"AB", kAscii, kUtf16}));
  SetTitle("\x59\x1c", kUnknownForm);
  EXPECT_EQ(Title(), Text("\x59\x1c", kUtf16));
  EXPECT_THAT(Host().Conversions(), IsEmpty());
}

TEST_F(TextRules, UnknownFormGoesBeforeUseSJIS) {
  UseSJIS(true);
  EXPECT_EQ(Asked("\0A\0B"s, kUnknownForm), (Conversion{"AB", kAscii, 0x7777}));
  EXPECT_EQ(Asked("\x59\x1c", kUnknownForm), (Conversion{"\x59\x1c", kUtf16, 0x7777}));
}

TEST_F(TextRules, UnknownFormOfALongTextIsClassifiedWhole) {
  std::string units;
  for (int i = 0; i < 3000; ++i) units += "\0z"s;
  EXPECT_EQ(Asked(units, kUnknownForm).bytes, std::string(3000, 'z'));
  EXPECT_EQ(Asked(units + "zz", kUnknownForm), (Conversion{units + "zz", kUtf16, 0x7777}));
  EXPECT_EQ(Asked(std::string(5000, 'z'), kUnknownForm),
            (Conversion{std::string(5000, 'z'), kAscii, 0x7777}));
}

TEST_F(TextRules, UseSJISHandsShiftJISOutAsItIs) {
  UseSJIS(true);
  EXPECT_EQ(Asked("\x82\xa0", kShiftJIS), (Conversion{"\x82\xa0", kShiftJIS, 0x7777}));
}

TEST_F(TextRules, UseSJISConvertsUtf16) {
  UseSJIS(true);
  // Code 1 is UTF-16; any other takes text of single-byte units as it stands.
  EXPECT_EQ(Asked("\x30\x42\0A"s, 1), (Conversion{"\x82\xa0"
                                                  "A",
                                                  kShiftJIS, 0x7777}));
  EXPECT_EQ(Asked("\x30\x42\0A"s, 16777216), (Conversion{"\x82\xa0"
                                                         "A",
                                                         kShiftJIS, 0x7777}));
  EXPECT_EQ(Asked("\0H\0\xe9"s, 1), (Conversion{"HH", kShiftJIS, 0x7777}));
  EXPECT_EQ(Asked("\0H\0\xe9"s, 16777216), (Conversion{"H\xe9", kShiftJIS, 0x7777}));
  EXPECT_EQ(Asked("\0H\x30\x42"s, 0), (Conversion{"H\x82\xa0", kShiftJIS, 0x7777}));
}

TEST_F(TextRules, UseSJISOutranksEveryCodeButTheUnknownForm) {
  UseSJIS(true);
  EXPECT_EQ(Asked("\x30\x42", kTrackText), (Conversion{"\x82\xa0", kShiftJIS, 0x7777}));
  EXPECT_EQ(Asked("\x30\x42", kUtf8), (Conversion{"\x82\xa0", kShiftJIS, 0x7777}));
  EXPECT_EQ(Asked("\0a"s, kUtf16), (Conversion{"a", kShiftJIS, 0x7777}));
}

TEST_F(TextRules, UseSJISTakesTheTrackTextForUtf16Too) {
  UseSJIS(true);
  ResultEncode(kShiftJIS);
  // The five bytes of 05/12 read as the units 3035, 2F31 and 3200, none of which Shift_JIS has.
  EXPECT_EQ(Host().CallText(object_, kGetTrackTotalInfo, 0), Text("", kShiftJIS));
}

TEST_F(TextRules, UseSJISWithTheSameResultEncodeConvertsNothing) {
  UseSJIS(true);
  ResultEncode(kShiftJIS);
  SetTitle("\x30\x42", 1);
  EXPECT_EQ(Title(), Text("\x82\xa0", kShiftJIS));
  EXPECT_THAT(Host().Conversions(), IsEmpty());
}

TEST_F(TextRules, UseSJISOfTextThatShiftJISLacksIsAnEmptyString) {
  UseSJIS(true);
  EXPECT_EQ(Asked("\xff\x5e", 1), (Conversion{"", kShiftJIS, 0x7777}));
}

TEST_F(TextRules, UseSJISOfAnOddTextPairsItsLastByteWithAZero) {
  UseSJIS(true);
  EXPECT_EQ(Asked("\0A\x30"s, 1), (Conversion{"A\x81\x40", kShiftJIS, 0x7777}));
}

TEST_F(TextRules, UseSJISOfALongTextConvertsAll) {
  UseSJIS(true);
  std::string utf16;
  std::string sjis;
  for (int i = 0; i < 8000; ++i) {
    utf16 += "\x30\x42";
    sjis += "\x82\xa0";
  }
  EXPECT_EQ(Asked(utf16, 1), (Conversion{sjis, kShiftJIS, 0x7777}));
}

TEST_F(TextRules, TrackTextIsAsciiThatEveryResultEncodeButZeroConverts) {
  ResultEncode(0);
  Host().Forget();
  EXPECT_EQ(Host().CallText(object_, kGetTrackTotalInfo, 0), Text("05/12", kAscii));
  EXPECT_THAT(Host().Conversions(), IsEmpty());
  for (const uint32_t code : {kAscii, kUtf8, kUtf16, 1U}) {
    ResultEncode(code);
    Host().Forget();
    EXPECT_EQ(Host().CallText(object_, kGetTrackTotalInfo, 0).encoding, code);
    EXPECT_THAT(Host().Conversions(), ElementsAre(Conversion{"05/12", kAscii, code}));
  }
}

TEST_F(TextRules, ShiftJISTextIsTaggedSo) {
  EXPECT_EQ(Asked("\x82\xa0", kShiftJIS), (Conversion{"\x82\xa0", kShiftJIS, 0x7777}));
  ResultEncode(kShiftJIS);
  SetTitle("\x82\xa0", kShiftJIS);
  EXPECT_EQ(Title(), Text("\x82\xa0", kShiftJIS));
  EXPECT_THAT(Host().Conversions(), IsEmpty());
}

TEST_F(TextRules, Utf8TextIsTaggedSo) {
  EXPECT_EQ(Asked("\xe3\x81\x82", kUtf8), (Conversion{"\xe3\x81\x82", kUtf8, 0x7777}));
  ResultEncode(kUtf8);
  SetTitle("\xe3\x81\x82", kUtf8);
  EXPECT_EQ(Title(), Text("\xe3\x81\x82"));
  EXPECT_THAT(Host().Conversions(), IsEmpty());
}

TEST_F(TextRules, EveryOtherTextIsTaggedUtf16) {
  for (const uint32_t code : {0U, 1U, 2U, 4U, kUtf16, kAscii, 16777216U, 0x08000101U, 0xffffffffU, 99U}) {
    EXPECT_EQ(Asked("\x30\x42", code), (Conversion{"\x30\x42", kUtf16, 0x7777})) << code;
    ResultEncode(kUtf16);
    Host().Forget();
    EXPECT_EQ(Title(), Text("\x30\x42", kUtf16));
    EXPECT_THAT(Host().Conversions(), IsEmpty());
  }
}

TEST_F(TextRules, FailedBuildIsNullWithoutAConversion) {
  Host().buildFails = true;
  for (const uint32_t code : {kUnknownForm, kTrackText, kShiftJIS, kUtf8, 1U}) {
    for (const bool sjis : {false, true}) {
      UseSJIS(sjis);
      SetTitle("\0A"s, code);
      EXPECT_EQ(Title(), kNullString);
      EXPECT_EQ(Host().Count("REALSetStringEncoding"), 0U);
      EXPECT_EQ(Host().Count("REALConvertString"), 0U);
      EXPECT_EQ(Host().Count("REALGetStringEncoding"), 0U);
    }
  }
}

TEST_F(TextRules, FailedConversionIsNull) {
  Host().convertFails = true;
  ResultEncode(kUtf8);
  SetTitle("\0A"s, 1);
  EXPECT_EQ(Title(), kNullString);
}

TEST_F(TextRules, StoredTextStaysAsItIsWhateverIsAskedFor) {
  SetTitle("\0A\x30\x42"s, 1);
  const auto all = [&] {
    std::vector<HostText> texts;
    for (const uint32_t code : {kUtf16, kUtf8, kAscii}) {
      for (const bool sjis : {false, true}) {
        ResultEncode(code);
        UseSJIS(sjis);
        texts.push_back(Title());
      }
    }
    return texts;
  };
  const std::vector<HostText> once = all();
  EXPECT_EQ(all(), once);
  ResultEncode(kUtf16);
  UseSJIS(false);
  EXPECT_EQ(Title(), Text("\0A\x30\x42"s, kUtf16));
}

class LoadedTexts : public PluginTestOfEachVariant {};

INSTANTIATE_TEST_SUITE_P(Plugin, LoadedTexts, BothVariants(), VariantName);

TEST_P(LoadedTexts, ComeAsTheHostsConversionOfUtf16) {
  const REALobject object = Loaded(
      Bytes({{.objects = samples::SongObjects(GetParam(), {.title = u"\u591c A"})}}, {{.name = u"\u591c"}}));
  Host().Forget();
  EXPECT_EQ(Host().CallText(object, kGetTitle, 0), Text("\xe5\xa4\x9c A"));
  EXPECT_THAT(Host().Conversions(), ElementsAre(Conversion{"\x59\x1c\0 \0A"s, kUtf16, kUtf8}));
  EXPECT_EQ(Host().CallText(object, "GetPlayListName(playlist As Integer) As String", 0),
            Text("\xe5\xa4\x9c"));
  Host().Set<int32_t>(object, "ResultEncode", kUtf16);
  EXPECT_EQ(Host().CallText(object, kGetTitle, 0), Text("\x59\x1c\0 \0A"s, kUtf16));
}

TEST_P(LoadedTexts, HaveTheCodeOfTheVariant) {
  const REALobject object =
      Loaded(Bytes({{.objects = samples::SongObjects(GetParam(), {.title = u"T"})}}, {{.name = u"L"}}));
  const int32_t code = Little() ? 16777216 : 1;
  EXPECT_EQ(Host().Call<int32_t>(object, "GetTitleEncode(index As Integer) As Integer", 0), code);
  EXPECT_EQ(Host().Call<int32_t>(object, "GetPlayListEncode(playlist As Integer) As Integer", 0), code);
}

TEST_P(LoadedTexts, ThatTheFileLacksAreNullWithCodeZero) {
  const REALobject object = Loaded(Bytes({{.id = 1}}));
  for (const char *name : {"Title", "Path", "Album", "Artist", "Genre", "Composer", "FileType"}) {
    const std::string get = "Get" + std::string(name);
    EXPECT_EQ(Host().CallText(object, get + "(index As Integer) As String", 0), kNullString) << name;
    EXPECT_EQ(Host().Call<int32_t>(object, get + "Encode(index As Integer) As Integer", 0), 0) << name;
  }
  EXPECT_EQ(Host().CallText(object, kGetTrackTotalInfo, 0), Text("-"));
}

TEST_P(LoadedTexts, OfAnUnknownTrackIDAreTheFirstSongs) {
  const REALobject object =
      Loaded(Bytes({{.id = 7, .objects = samples::SongObjects(GetParam(), {.title = u"First"})}, {.id = 8}}));
  EXPECT_EQ(Host().CallText(object, "GetReferTitle(trackID As Integer) As String", 99), Text("First"));
  EXPECT_EQ(Host().CallText(object, "GetReferTitle(trackID As Integer) As String", 8), kNullString);
}

}  // namespace
}  // namespace plugin_test
