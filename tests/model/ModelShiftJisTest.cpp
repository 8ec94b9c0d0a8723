// The model's Shift_JIS against what others say of it, and its conversion by hand-made examples.
#include <cerrno>
#include <fstream>
#include <gmock/gmock.h>
#include <iconv.h>
#include <map>
#include <set>
#include <string>

#include "tests/model/ShiftJis.h"
#include "tests/support/Folders.h"

namespace {

using namespace std::string_literals;

TEST(ModelShiftJis, HasEveryCodeOnce) {
  std::set<uint32_t> codes;
  size_t single = 0;
  for (const auto &[codePoint, code] : model::ShiftJisCodes()) {
    EXPECT_TRUE(codes.insert(code).second) << std::hex << code;
    if (code <= 0xFF) ++single;
  }
  EXPECT_EQ(single, 64U);
  EXPECT_EQ(codes.size() - single, 6866U);
}

TEST(ModelShiftJis, IsThePublishedMapping) {
  std::ifstream file(support::SharedFolder() / "data/shift_jis_mapping.tsv");
  if (!file) GTEST_SKIP() << "no mapping to compare with";
  std::map<uint32_t, uint32_t> published;
  for (std::string line; std::getline(file, line);) {
    unsigned code = 0;
    unsigned codePoint = 0;
    if (std::sscanf(line.c_str(), "0x%x U+%x", &code, &codePoint) != 2) continue;
    if (codePoint > 0xFF && codePoint != 0xFFE5) published[codePoint] = code;
  }
  EXPECT_EQ(model::ShiftJisCodes(), published);
}

TEST(ModelShiftJis, AgreesWithTheSystemsRowsOfJisX0208) {
  const iconv_t toUnicode = iconv_open("UTF-16BE", "EUC-JP");
  // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv_open reports failure by this value.
  if (toUnicode == reinterpret_cast<iconv_t>(-1)) GTEST_SKIP() << "this system has no EUC-JP";
  size_t compared = 0;
  for (uint32_t row = 1; row <= 94; ++row) {
    for (uint32_t cell = 1; cell <= 94; ++cell) {
      char in[] = {static_cast<char>(0xA0 + row), static_cast<char>(0xA0 + cell)};
      char out[8] = {};
      char *from = in;
      char *to = out;
      size_t inLeft = sizeof in;
      size_t outLeft = sizeof out;
      iconv(toUnicode, nullptr, nullptr, nullptr, nullptr);
      if (iconv(toUnicode, &from, &inLeft, &to, &outLeft) != 0 || outLeft != 6) continue;
      const std::string unit(out, 2);
      // Below U+0100 nothing is looked up; the last two are told apart in the rows' reader.
      if (unit[0] == 0 || unit == "\xFF\x3C" || unit == "\xFF\xE5") continue;
      const uint32_t lead = (row + 1) / 2 + (row < 63 ? 0x80 : 0xC0);
      const uint32_t trail = row % 2 == 0 ? cell + 0x9E : cell + (cell < 64 ? 0x3F : 0x40);
      const std::string expected = {static_cast<char>(lead), static_cast<char>(trail)};
      EXPECT_EQ(model::UnicodeToShiftJis(unit), expected) << row << '-' << cell;
      ++compared;
    }
  }
  iconv_close(toUnicode);
  EXPECT_EQ(compared, 6866U);
}

TEST(ModelShiftJis, ConvertsByHandMadeExamples) {
  EXPECT_EQ(model::UnicodeToShiftJis("\0A"s), "A");
  EXPECT_EQ(model::UnicodeToShiftJis("\xFE\xFF"
                                     "A\0"s),
            "A");
  EXPECT_EQ(model::UnicodeToShiftJis("\xFF\xFE\0A"s), "A");
  EXPECT_EQ(model::UnicodeToShiftJis("\x30\x42"s), "\x82\xA0");
  EXPECT_EQ(model::UnicodeToShiftJis("\xFF\x76"s), "\xB6");
  EXPECT_EQ(model::UnicodeToShiftJis("\0A\0\x7E"s), "AA");
  EXPECT_EQ(model::UnicodeToShiftJis("\0\x7E\0A"s), "A");
  EXPECT_EQ(model::UnicodeToShiftJis("\0A\xFF\x5E\0B"s), "AB");
  EXPECT_EQ(model::UnicodeToShiftJis("\0A\0\0\0B"s), "AB");
  EXPECT_EQ(model::UnicodeToShiftJis("\0A\xFF\xE5"s), "A");
  EXPECT_EQ(model::UnicodeToShiftJis("\0A\x24\x60"s), "AA");
  EXPECT_EQ(model::UnicodeToShiftJis("\0A\x31"s), "AA");
}

TEST(ModelShiftJis, ForgetsTheRepeatedResultWhenTheBufferGrows) {
  std::string text;
  for (int i = 0; i < 10229; ++i) text += "\0A"s;
  EXPECT_EQ(model::UnicodeToShiftJis(text + "\0\x7E"s).size(), 10230U);
  EXPECT_EQ(model::UnicodeToShiftJis(text + "\0A\0\x7E"s).size(), 10230U);
  EXPECT_EQ(model::UnicodeToShiftJis(text + "\0A\0A\0\x7E"s).size(), 10232U);
}

TEST(ModelShiftJis, PicksAConversionByTheStoredCode) {
  EXPECT_EQ(model::ConvertToShiftJis("\0H\0\xE9"s, 2), "H\xE9");
  EXPECT_EQ(model::ConvertToShiftJis("\0H\0\xE9"s, 1), "HH");
  EXPECT_EQ(model::ConvertToShiftJis("\0H\x30\x42"s, 2), "H\x82\xA0");
  EXPECT_EQ(model::ConvertToShiftJis("\0H\0"s, 2), "H");
  EXPECT_EQ(model::ConvertToShiftJis("\0H"s, 3), "\0H"s);
  EXPECT_EQ(model::ConvertToShiftJis("", 1), "");
}

}  // namespace
