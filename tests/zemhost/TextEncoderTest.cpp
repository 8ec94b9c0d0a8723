// Encodings by name, and what they lose; Shift_JIS against the C library's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "host/Error.h"
#include "host/text/TextEncoding.h"
#include "platform/carbon/UnicodeForms.h"
#include "tests/support/Folders.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/TextEncoder.h"

namespace zemhost {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

class TextEncoderTest : public testing::Test {
 protected:
  TextEncoder encoder(const std::string &name) const { return {name, host_}; }

  std::string refusal(const std::string &name) const {
    try {
      const TextEncoder made(name, host_);
      return "made";
    } catch (const HostError &error) {
      return error.what();
    }
  }

 private:
  static Host load() {
    Host::Options options;
    options.plugin = support::PluginFile();
    return Host::load(options);
  }

  Host host_ = load();
};

TEST_F(TextEncoderTest, WritesUnicodeInEveryFormWithItsMark) {
  const std::string text = "A\u3042\U0001F319";
  const auto bytes = [&](const std::string &name) {
    TextEncoder made = encoder(name);
    return made.mark() + made.encode(text);
  };
  EXPECT_EQ(bytes("UTF-8"), text);
  EXPECT_EQ(bytes("utf8"), text);
  EXPECT_EQ(bytes("UTF-16"), "\xFF\xFE"s + "A\0\x42\x30\x3C\xD8\x19\xDF"s);
  EXPECT_EQ(bytes("utf-16le"), "A\0\x42\x30\x3C\xD8\x19\xDF"s);
  EXPECT_EQ(bytes("UTF-16BE"), "\0A\x30\x42\xD8\x3C\xDF\x19"s);
  EXPECT_EQ(bytes("UTF-32"), "\xFF\xFE\0\0A\0\0\0\x42\x30\0\0\x19\xF3\x01\0"s);
  EXPECT_EQ(bytes("UTF-32BE"), "\0\0\0A\0\0\x30\x42\0\x01\xF3\x19"s);
}

TEST_F(TextEncoderTest, NothingIsLostInUnicode) {
  for (const char *const name : {"UTF-8", "UTF-16", "UTF-16BE", "UTF-32LE"}) {
    TextEncoder made = encoder(name);
    EXPECT_EQ(made.isUtf8(), name == "UTF-8"s);
    EXPECT_EQ(made.fit("\u3042\U0001F319\uFFFD"), "\u3042\U0001F319\uFFFD");
    EXPECT_FALSE(made.lossReport());
  }
}

TEST_F(TextEncoderTest, CharactersWithoutAPlaceAreShownAndCounted) {
  TextEncoder made = encoder("ISO-8859-1");
  EXPECT_EQ(made.fit("Caf\u00E9"), "Caf\u00E9");
  EXPECT_FALSE(made.lossReport());
  EXPECT_EQ(made.fit("\u03A9"), "?");
  EXPECT_EQ(made.lossReport(), "1 character in 1 text has no place in ISO-8859-1 and is shown as '?'");
  EXPECT_EQ(made.fit("\u96E8 caf\u00E9 \u591C"), "? caf\u00E9 ?");
  EXPECT_EQ(made.lossReport(), "3 characters in 2 texts have no place in ISO-8859-1 and are shown as '?'");
  EXPECT_EQ(made.encode("caf\u00E9 \u96E8"), "caf\xE9 ?");
}

TEST_F(TextEncoderTest, MarkOfAnEarlierLossIsNotCountedAgain) {
  for (const char *const name : {"ISO-8859-1", "Shift_JIS"}) {
    TextEncoder made = encoder(name);
    EXPECT_EQ(made.fit("a\uFFFD"), "a?");
    EXPECT_FALSE(made.lossReport()) << name;
  }
}

TEST_F(TextEncoderTest, CharacterSpelledInPartsTakesItsComposedPlace) {
  const std::string parts = "\u30AB\u3099\u30E9\u30B9";
  for (const char *const name : {"Shift_JIS", "EUC-JP", "CP932"}) {
    TextEncoder made = encoder(name);
    EXPECT_EQ(made.fit(parts), "\u30AC\u30E9\u30B9") << name;
    EXPECT_FALSE(made.lossReport()) << name;
    EXPECT_EQ(made.encode(parts), made.encode("\u30AC\u30E9\u30B9")) << name;
  }
  EXPECT_EQ(encoder("Shift_JIS").encode(parts), "\x83\x4B\x83\x89\x83\x58");
  EXPECT_EQ(encoder("Shift_JIS").encode("\uFA10"), encoder("Shift_JIS").encode("\u585A"));
  EXPECT_EQ(encoder("ISO-8859-1").encode("Cafe\u0301 \u30AB\u3099"), "Caf\xE9 ?");
  EXPECT_EQ(encoder("EUC-KR").encode("\u1112\u1161\u11AB"), encoder("EUC-KR").encode("\uD55C"));
}

TEST_F(TextEncoderTest, CharacterWithAPlaceOfItsOwnIsNotComposedAway) {
  // The sign of the unit has a place, the letter that it is composed to has none.
  TextEncoder made = encoder("Shift_JIS");
  EXPECT_EQ(made.encode("\u212B"), "\x81\xF0");
  EXPECT_EQ(made.encode("10 \u212B \u30AB\u3099e\u0301"),
            "10 \x81\xF0 \x83\x4B"
            "e?");
  EXPECT_EQ(made.fit("\u212B \u00E9"), "\u212B ?");
  EXPECT_EQ(made.lossReport(), "1 character in 1 text has no place in Shift_JIS and is shown as '?'");
  // A letter without its accent is better than none, and this encoding has a place for the accent.
  EXPECT_EQ(encoder("GB18030").fit("a\u0301"), "a\u0301");
}

TEST_F(TextEncoderTest, EncodingWithShiftStatesMayBeWrittenInPieces) {
  TextEncoder made = encoder("ISO-2022-JP");
  const std::string bytes = made.encode("\u96E8") + made.encode("a") + made.encode("\u591C\n");
  EXPECT_EQ(convertText(bytes, 0x0820, kUtf8).bytes, "\u96E8a\u591C\n");
}

TEST_F(TextEncoderTest, ShiftJisIsThePlugInsOwnTable) {
  TextEncoder made = encoder("shift-jis");
  EXPECT_EQ(made.encode("A\u3042\uFF76~\u301C"), "A\x82\xA0\xB6~\x81\x60");
  // Page 00 has no entries beyond ASCII, and the circled digits are no part of the published table.
  EXPECT_EQ(made.fit("10\u00B0 \u00D7 \u2460 \U0001F319"), "10? ? ? ?");
  EXPECT_EQ(made.lossReport(), "4 characters in 1 text have no place in shift-jis and are shown as '?'");
}

TEST_F(TextEncoderTest, ShiftJisAgreesWithTheCLibraryOnEveryCharacterOfTheTable) {
  if (!isKnownEncoding(kShiftJis)) GTEST_SKIP() << "the C library has no Shift_JIS";
  TextEncoder made = encoder("Shift_JIS");
  size_t places = 0;
  std::set<char32_t> only;  // the C library's
  for (char32_t c = 0x80; c < 0x10000; ++c) {
    if (unicode::isSurrogate(c) || c == 0xFFFD) continue;
    std::string text;
    unicode::appendUtf8(text, c);
    const Conversion library = convertText(text, kUtf8, kShiftJis);
    if (library.replacements != 0 && composedText(text) != text) continue;  // takes the place of another
    const std::string bytes = made.encode(text);
    if (bytes != "?") {
      ++places;
      EXPECT_EQ(bytes, library.bytes) << "U+" << std::hex << static_cast<uint32_t>(c);
    } else if (library.replacements == 0) {
      only.insert(c);
    }
  }
  EXPECT_EQ(places, 6866U + 64U);
  EXPECT_THAT(only, testing::ElementsAre(0xA2, 0xA3, 0xA5, 0xA7, 0xA8, 0xAC, 0xB0, 0xB1, 0xB4, 0xB6, 0xD7,
                                         0xF7, 0xFFE5));
}

TEST_F(TextEncoderTest, UnknownNamesAreRefused) {
  EXPECT_THAT(refusal("Klingon"), HasSubstr("no encoding is named \"Klingon\"; there are UTF-8, UTF-16"));
  EXPECT_THAT(refusal(""), HasSubstr("no encoding is named \"\""));
  EXPECT_THAT(refusal("ISO-8859-1//IGNORE"), HasSubstr("no encoding is named"));
  EXPECT_THAT(refusal("UNICODE"), HasSubstr("use UTF-16"));
}

}  // namespace
}  // namespace zemhost
