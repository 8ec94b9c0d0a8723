#include <array>
#include <gtest/gtest.h>
#include <numeric>
#include <string>

#include "db/ChunkFormat.h"

namespace db_test {
namespace {

fsbbStruct Tagged(const std::string &tag) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(tag.at(i)); };
  return {{byte(0), byte(1)}, {byte(2), byte(3)}, 0, 0, 0};
}

// The kinds by their tags, as a chain of questions in the order in which they are asked.
ChunkKind KindByQuestions(const std::string &tag) {
  const std::string pad = tag.substr(0, 2);
  const std::string code = tag.substr(2);
  if (code == "sd" || (code == "sm" && pad == "hd")) return ChunkKind::DataSet;
  if (code == "lt" || (code == "lm" && pad == "ht")) return ChunkKind::TrackList;
  if (code == "it" || (code == "im" && pad == "ht")) return ChunkKind::Track;
  if (code == "lp" || (code == "lm" && pad == "hp")) return ChunkKind::PlayListList;
  if (code == "yp" || (code == "im" && pad == "hp")) return ChunkKind::PlayList;
  if (code == "ip" || (code == "tm" && pad == "hp")) return ChunkKind::PlayListEntry;
  if (code == "od" || (code == "hm" && pad == "ho")) return ChunkKind::DataObject;
  return ChunkKind::Other;
}

const std::array<std::string, 9> kPads{"mh", "hd", "ht", "hp", "ho", "hm", "HD", "xx", std::string(2, '\0')};

TEST(ChunkTag, EveryKindIsKnownByItsLittleEndianTag) {
  EXPECT_EQ(KindOf(Tagged("mhsd")), ChunkKind::DataSet);
  EXPECT_EQ(KindOf(Tagged("mhlt")), ChunkKind::TrackList);
  EXPECT_EQ(KindOf(Tagged("mhit")), ChunkKind::Track);
  EXPECT_EQ(KindOf(Tagged("mhlp")), ChunkKind::PlayListList);
  EXPECT_EQ(KindOf(Tagged("mhyp")), ChunkKind::PlayList);
  EXPECT_EQ(KindOf(Tagged("mhip")), ChunkKind::PlayListEntry);
  EXPECT_EQ(KindOf(Tagged("mhod")), ChunkKind::DataObject);
  EXPECT_EQ(KindOf(Tagged("mhbd")), ChunkKind::Other);
}

TEST(ChunkTag, EveryKindIsKnownByItsBigEndianTag) {
  EXPECT_EQ(KindOf(Tagged("hdsm")), ChunkKind::DataSet);
  EXPECT_EQ(KindOf(Tagged("htlm")), ChunkKind::TrackList);
  EXPECT_EQ(KindOf(Tagged("htim")), ChunkKind::Track);
  EXPECT_EQ(KindOf(Tagged("hplm")), ChunkKind::PlayListList);
  EXPECT_EQ(KindOf(Tagged("hpim")), ChunkKind::PlayList);
  EXPECT_EQ(KindOf(Tagged("hptm")), ChunkKind::PlayListEntry);
  EXPECT_EQ(KindOf(Tagged("hohm")), ChunkKind::DataObject);
  EXPECT_EQ(KindOf(Tagged("hdfm")), ChunkKind::Other);
}

TEST(ChunkTag, LittleEndianFormNeedsItsLastTwoCharactersOnly) {
  EXPECT_EQ(KindOf(Tagged("xxit")), ChunkKind::Track);
  EXPECT_EQ(KindOf(Tagged("hpit")), ChunkKind::Track);
  EXPECT_EQ(KindOf(Tagged(std::string("\0\0od", 4))), ChunkKind::DataObject);
}

TEST(ChunkTag, BigEndianFormNeedsBothHalves) {
  EXPECT_EQ(KindOf(Tagged("mhim")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("hdim")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("htsm")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("httm")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("hdlm")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("hphm")), ChunkKind::Other);
}

TEST(ChunkTag, IsComparedWithItsCase) {
  EXPECT_EQ(KindOf(Tagged("mhIT")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("mhiT")), ChunkKind::Other);
  EXPECT_EQ(KindOf(Tagged("HTim")), ChunkKind::Other);
}

TEST(ChunkTag, EveryPairOfLastCharactersGivesTheKindOfTheTable) {
  for (const std::string &pad : kPads) {
    for (int code = 0; code < 0x10000; ++code) {
      const std::string tag = pad + static_cast<char>(code >> 8) + static_cast<char>(code & 0xff);
      ASSERT_EQ(KindOf(Tagged(tag)), KindByQuestions(tag)) << testing::PrintToString(tag);
    }
  }
}

TEST(FileTag, LastCharactersBdMeanLittleEndianWhateverStandsBefore) {
  for (const std::string &pad : kPads) EXPECT_EQ(LibTypeOf(Tagged(pad + "bd")), 1);
}

TEST(FileTag, HdfmMeansBigEndianAndAnythingElseNothing) {
  for (const std::string &pad : kPads) {
    for (int code = 0; code < 0x10000; ++code) {
      const std::string last = {static_cast<char>(code >> 8), static_cast<char>(code & 0xff)};
      if (last == "bd") continue;
      ASSERT_EQ(LibTypeOf(Tagged(pad + last)), pad == "hd" && last == "fm" ? 0 : -1)
          << testing::PrintToString(pad + last);
    }
  }
}

TEST(ChunkHeader, WordIsReadInTheOrderOfTheVariant) {
  const std::array<uint8_t, 4> bytes{0x11, 0x12, 0x13, 0x14};
  EXPECT_EQ(FileWord(bytes.data(), 0), 0x11121314U);
  EXPECT_EQ(FileWord(bytes.data(), 1), 0x14131211U);
}

TEST(ChunkHeader, KeepsItsTagAndConvertsItsThreeWords) {
  std::array<uint8_t, 16> bytes{};
  std::iota(bytes.begin(), bytes.end(), uint8_t{0x12});
  const fsbbStruct big = ChunkHeader(bytes.data(), 0);
  EXPECT_EQ(big.pad[0], 0x12);
  EXPECT_EQ(big.pad[1], 0x13);
  EXPECT_EQ(big.code[0], 0x14);
  EXPECT_EQ(big.code[1], 0x15);
  EXPECT_EQ(big.jump, 0x16171819U);
  EXPECT_EQ(big.myLen, 0x1a1b1c1dU);
  EXPECT_EQ(big.count, 0x1e1f2021U);
  const fsbbStruct little = ChunkHeader(bytes.data(), 1);
  EXPECT_EQ(little.pad[0], 0x12);
  EXPECT_EQ(little.code[1], 0x15);
  EXPECT_EQ(little.jump, 0x19181716U);
  EXPECT_EQ(little.myLen, 0x1d1c1b1aU);
  EXPECT_EQ(little.count, 0x21201f1eU);
}

}  // namespace
}  // namespace db_test
