#include <gtest/gtest.h>
#include <set>
#include <string>

#include "db/KeyedHash.h"
#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"

namespace db_test {
namespace {

// As another implementation of SipHash-1-3, Python's hash of bytes, gives them: its key is zero when
// PYTHONHASHSEED is 0.
TEST(KeyedHash, GivesTheKnownHashesOfAKeyOfZeros) {
  constexpr int64_t kHashes[] = {
      4644417185603328019,  218105715947209698,   -1881818547221642267, 3148572687339693582,
      2744756206333081827,  -3950483424524469221, -4795617760070146434, -8209050833648793301,
      -9173748243231406586, -6618636858271880023, -741516908071264055,  -141072464427957727,
      -1166462085492090866, 5466999210360285275,  -977152045097405443,  8274170245145187908,
      -3316715462717021101, 6331309128718995857,  8856976423753119356};
  const KeyedHash hash(0, 0);
  std::string text;
  for (const int64_t expected : kHashes) {
    text += static_cast<char>('a' + text.size() * 13);
    EXPECT_EQ(hash(text), static_cast<uint64_t>(expected)) << text.size();
  }
}

TEST(KeyedHash, DependsOnEveryByteTheLengthAndTheKey) {
  for (size_t n = 1; n <= 40; ++n) {
    const KeyedHash hash(1, 2);
    const std::string text(n, 'x');
    std::set<uint64_t> hashes = {hash(text), hash(text + 'x'), KeyedHash(1, 3)(text), KeyedHash(2, 2)(text)};
    for (size_t i = 0; i < n; ++i) {
      std::string other = text;
      other[i] = 'y';
      hashes.insert(hash(other));
    }
    EXPECT_EQ(hashes.size(), 4 + n);
  }
}

TEST(KeyedHash, OfAProcessHasOneRandomKey) {
  EXPECT_EQ(KeyedHash()("text"), KeyedHash()("text"));
  EXPECT_NE(randomKey.texts[0], randomKey.texts[1]);
  EXPECT_NE(randomKey.ids[0], randomKey.ids[1]);
}

// How many searches in a table twice the number of texts end at the place of another text.
size_t Meetings(const KeyedHash &hash, uint32_t count) {
  std::set<uint64_t> places;
  for (uint32_t i = 0; i < count; ++i)
    places.insert(hash(HighByteFirst(samples::CancellingText(i))) & (2 * count - 1));
  return count - places.size();
}

TEST(KeyedHash, ScattersTextsThatWereMadeToMeet) {
  constexpr uint32_t kTexts = 4096;
  // Of so many at random a fifth meet.
  for (uint64_t key = 0; key < 5; ++key) EXPECT_LT(Meetings(KeyedHash(key, ~key), kTexts), kTexts / 4);
  EXPECT_LT(Meetings(KeyedHash(), kTexts), kTexts / 4);
}

}  // namespace
}  // namespace db_test
