#include <gtest/gtest.h>

#include "zemhost/output/M3u.h"

namespace zemhost {
namespace {

TEST(M3uEntry, DescribesTheSongAndNamesItsFile) {
  EXPECT_EQ(m3uHeading(), "#EXTM3U\n");
  EXPECT_EQ(m3uEntry({221'000, "Mira Solvang", "Harbour Lights at Five", "F00/A.mp3"}),
            "#EXTINF:221,Mira Solvang - Harbour Lights at Five\nF00/A.mp3\n");
}

TEST(M3uEntry, SecondsAreRoundedAndNoDurationIsMinusOne) {
  EXPECT_EQ(m3uEntry({1'499, "a", "b", "c"}), "#EXTINF:1,a - b\nc\n");
  EXPECT_EQ(m3uEntry({1'500, "a", "b", "c"}), "#EXTINF:2,a - b\nc\n");
  EXPECT_EQ(m3uEntry({4'294'967'295, "a", "b", "c"}), "#EXTINF:4294967,a - b\nc\n");
  EXPECT_EQ(m3uEntry({0, "a", "b", "c"}), "#EXTINF:-1,a - b\nc\n");
}

TEST(M3uEntry, NamesWhatIsKnown) {
  EXPECT_EQ(m3uEntry({1000, "", "Title", "F00/A.mp3"}), "#EXTINF:1,Title\nF00/A.mp3\n");
  EXPECT_EQ(m3uEntry({1000, "", "", "F00/A.mp3"}), "#EXTINF:1,A.mp3\nF00/A.mp3\n");
  EXPECT_EQ(m3uEntry({1000, "Artist", "", ":iPod_Control:Music:F00:A.mp3"}),
            "#EXTINF:1,Artist - A.mp3\n:iPod_Control:Music:F00:A.mp3\n");
}

TEST(M3uEntry, TakesTwoLinesWhateverTheTextsHold) {
  EXPECT_EQ(m3uEntry({1000, "a\nb", "c\r\nd\te", "f\ng"}), "#EXTINF:1,a b - c  d e\nf g\n");
  EXPECT_EQ(m3uEntry({1000, "a\u0085b", "c\u2028\u2029d", "f"}), "#EXTINF:1,a b - c  d\nf\n");
}

TEST(M3uEntry, PathIsNeverReadAsACommentOrTrimmed) {
  EXPECT_EQ(m3uEntry({1000, "a", "b", "#1 Hits/c.mp3"}), "#EXTINF:1,a - b\n./#1 Hits/c.mp3\n");
  EXPECT_EQ(m3uEntry({1000, "a", "b", " c.mp3"}), "#EXTINF:1,a - b\n./ c.mp3\n");
}

TEST(M3uEntry, PathIsNeverReadAsAnAddressADriveOrANetworkShare) {
  for (const char *path : {"http://evil.example/x.mp3", "a+b-c.1:x", "C:/x.mp3", "//evil.example/share/x.mp3",
                           "\\\\evil\\share\\x.mp3", "/\\evil/x.mp3", "\\x.mp3", "file:///etc/passwd"})
    EXPECT_EQ(m3uEntry({1000, "a", "b", path}), std::string("#EXTINF:1,a - b\n./") + path + "\n");
  for (const char *path :
       {"/http:/x/y.mp3", "a b: c/d.mp3", ":a:b.mp3", "1: one.mp3", "a\\b.mp3", "x.mp3", "a/b:c"})
    EXPECT_EQ(m3uEntry({1000, "a", "b", path}), std::string("#EXTINF:1,a - b\n") + path + "\n");
}

}  // namespace
}  // namespace zemhost
