#include <gtest/gtest.h>
#include <string>

#include "zemhost/rescue/SafeName.h"

namespace zemhost {
namespace {

std::string safe(std::string_view text) { return safeName(text, "Unknown"); }

TEST(SafeName, KeepsTextOfAnyScript) {
  for (const char *text : {"Harbour Lights", "雨のプラットホーム", "Ночной трамвай", "Neon Moon 🌙", "a.b c",
                           "ﾊﾝｶｸ", "it's (live) [1/2]"}) {
    std::string expected = text;
    if (const size_t slash = expected.find('/'); slash != std::string::npos) expected[slash] = '_';
    EXPECT_EQ(safe(text), expected);
  }
}

TEST(SafeName, ReplacesEveryReservedCharacter) {
  EXPECT_EQ(safe("\\/:*?\"<>|"), "_________");
  EXPECT_EQ(safe("AC/DC"), "AC_DC");
  EXPECT_EQ(safe("a\tb\nc\x7F"
                 "d\xC2\x85"
                 "e"),
            "a_b_c_d_e");
  EXPECT_EQ(safe(std::string("a\0b", 3)), "a_b");
}

TEST(SafeName, TakesBlanksAndDotsFromTheEnds) {
  EXPECT_EQ(safe("  Wait... "), "Wait");
  EXPECT_EQ(safe("Wait . . ."), "Wait");
  EXPECT_EQ(safe("...And Justice"), "_..And Justice");  // else the file would be hidden
  EXPECT_EQ(safe(".."), "Unknown");
  EXPECT_EQ(safe(" "), "Unknown");
  EXPECT_EQ(safe(""), "Unknown");
}

TEST(SafeName, KeepsClearOfTheNamesOfDevices) {
  EXPECT_EQ(safe("CON"), "CON_");
  EXPECT_EQ(safe("aux"), "aux_");
  EXPECT_EQ(safe("Com1"), "Com1_");
  EXPECT_EQ(safe("LPT9.live"), "LPT9_.live");
  EXPECT_EQ(safe("com¹"), "com¹_");
  EXPECT_EQ(safeName("nul", "Unknown", "", ".mp3"), "nul_.mp3");
  for (const char *other : {"CON man", "COM", "COM0", "COM10", "Lptx", "Auxiliary"})
    EXPECT_EQ(safe(other), other);
}

TEST(SafeName, ComposesWhatIsDecomposed) {
  EXPECT_EQ(safe("Cafe\u0301"), "Caf\u00E9");
  EXPECT_EQ(safe("\u1112\u1161\u11AB"), "\uD55C");
  EXPECT_EQ(safe("bad \xFF"), "bad \uFFFD");
}

TEST(SafeName, IsCutBetweenCharactersAndKeepsSuffixAndExtension) {
  std::string wide;
  for (int i = 0; i < 100; ++i) wide += "雨";
  EXPECT_EQ(safe(wide), wide.substr(0, 255));
  const std::string name = safeName(wide, "Unknown", " (2)", ".m4a");
  EXPECT_EQ(name, wide.substr(0, 246) + " (2).m4a");  // 247 bytes are left, and 246 are whole characters
  EXPECT_EQ(safeName(std::string(300, 'x'), "Unknown", "", ".m4a"), std::string(251, 'x') + ".m4a");
  EXPECT_EQ(safe(std::string(254, 'x') + " yz"), std::string(254, 'x'));  // no blank at the new end
}

TEST(SafeName, DevicesAreKnownAfterTheCutToo) {
  EXPECT_EQ(safe("CON" + std::string(300, ' ') + "x"), "CON_");
  EXPECT_EQ(safe("CON ." + std::string(300, 'x')).substr(0, 7), "CON _.x");
  EXPECT_EQ(safe("nul." + std::string(300, 'x')), "nul_." + std::string(250, 'x'));
  EXPECT_EQ(safeName("Aux" + std::string(249, ' ') + "x", "Unknown", "", ".m4a"), "Aux_.m4a");
  EXPECT_EQ(safe("CONIN$"), "CONIN$_");
}

// NOLINTBEGIN(misc-misleading-bidirectional): they stand as escapes
TEST(SafeName, MarksOfDirectionAndSeparatorsOfLinesGo) {
  EXPECT_EQ(safe("a\u202Egpj.exe"), "agpj.exe");
  EXPECT_EQ(safe("\u200Eone\u2028two\u2029\u2066three\u2069\u061C\uFEFF"), "onetwothree");
  EXPECT_EQ(safe("\u202E.hidden"), "_hidden");
  EXPECT_EQ(safe("\u200F \u202C"), "Unknown");
  EXPECT_EQ(safe("\u202ECON"), "CON_");
  EXPECT_EQ(safe("e\u202E\u0301"), "\u00E9");
  EXPECT_EQ(safe("\u200D\U0001F469\u200D\U0001F4BB"),
            "\u200D\U0001F469\u200D\U0001F4BB");  // joins, and stays
}
// NOLINTEND(misc-misleading-bidirectional)

TEST(SafeName, FileThatRunsByItselfIsNotMade) {
  EXPECT_EQ(safe("AutoRun.inf"), "AutoRun_.inf");
  EXPECT_EQ(safeName("autorun", "Unknown", "", ".inf"), "autorun_.inf");
  EXPECT_EQ(safeName("autorun.inf", "Unknown", "", ".mp3"), "autorun.inf.mp3");
}

TEST(SafeExtension, IsOneOfMusicOrVideo) {
  for (const char *extension : {".mp3", ".M4A", ".m4p", ".aif", ".wav", ".mov", ".flac"})
    EXPECT_EQ(safeExtension(extension), extension);
  for (const char *extension :
       {"", ".", ".exe", ".inf", ".desktop", ".html", ".m3u8", ".mp3 ", ".bin", ".pls"})
    EXPECT_EQ(safeExtension(extension), ".bin");
}

}  // namespace
}  // namespace zemhost
