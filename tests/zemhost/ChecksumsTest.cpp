#include <gtest/gtest.h>
#include <string>

#include "zemhost/files/Sha256.h"
#include "zemhost/rescue/Checksums.h"

namespace zemhost {
namespace {

const std::string kSum(64, 'a');

TEST(Sha256Test, SumIsThatOfTheStandardWhateverThePartsOfTheBytes) {
  Sha256 sum;
  sum.add("ab");
  sum.add("");
  sum.add("c");
  EXPECT_EQ(sum.take(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(sum.take(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(ChecksumsTest, NamesWithABackslashOrTheEndOfALineAreEscapedAndReadBack) {
  Checksums sums;
  for (const char *name : {"plain", " blank first", "back\\slash", "line\nend", "return\rhere", "\\n"})
    sums.set(name, kSum);
  const std::string text = sums.text();
  EXPECT_NE(text.find("\n\\" + kSum + "  back\\\\slash\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\n\\" + kSum + "  line\\nend\n"), std::string::npos) << text;
  const auto read = Checksums::read(text);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->sums(), sums.sums());
}

TEST(ChecksumsTest, TextThatIsNoListOfSumsIsNone) {
  EXPECT_TRUE(Checksums::read(""));
  EXPECT_TRUE(Checksums::read(kSum + " *bytes"));
  for (const std::string &text :
       {std::string("notes\n"), kSum + "\n", kSum + "  \n", kSum + " file\n", kSum.substr(1) + "  file\n",
        std::string(64, 'A') + "  file\n", std::string("\\").append(kSum).append("  wrong\\escape\n"),
        std::string("\\").append(kSum).append("  cut\\\n"),
        std::string(kSum).append("  good\n\n").append(kSum).append("  good\n")})
    EXPECT_FALSE(Checksums::read(text)) << text;
}

}  // namespace
}  // namespace zemhost
