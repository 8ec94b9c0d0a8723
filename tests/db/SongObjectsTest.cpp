#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "db/SongRecords.h"

namespace db_test {
namespace {

using namespace std::string_literals;

constexpr int32_t kLittle = 1;
constexpr int32_t kBig = 0;

// One data object in memory: 40 bytes before the text (or 24 before a raw body), then the bytes, then spare
// ones.
class ObjectInMemory {
 public:
  ObjectInMemory(uint32_t type, std::string_view body, uint32_t bodyAt, int32_t libType)
      : bytes_(std::string(bodyAt, 'h').append(body)), libType_(libType) {
    fsbb_.jump = 0x18;
    fsbb_.myLen = static_cast<uint32_t>(bytes_.size());
    fsbb_.count = type;
    bytes_.resize(bytes_.size() + 64, '~');
  }

  // The text's object: encoding word 1 of the variant.
  static ObjectInMemory Text(uint32_t type, std::string_view text, int32_t libType) {
    ObjectInMemory object(type, text, 0x28, libType);
    object.encode_ = libType == kLittle ? 0x01000000U : 1U;
    return object;
  }

  static ObjectInMemory Raw(uint32_t type, std::string_view body, int32_t libType) {
    return {type, body, 0x18, libType};
  }

  ObjectInMemory &Encode(uint32_t word) {
    encode_ = word;
    return *this;
  }
  ObjectInMemory &Length(uint32_t myLen) {
    fsbb_.myLen = myLen;
    return *this;
  }
  ObjectInMemory &Jump(uint32_t jump) {
    fsbb_.jump = jump;
    return *this;
  }

  int32_t StoreIn(CSongList &song) { return song.SetObj(&fsbb_, Body(), encode_, libType_); }
  int32_t StoreIn(CPlayList &list) { return list.SetTitle(&fsbb_, Body(), encode_, libType_); }

  [[nodiscard]] std::string Bytes(size_t at, size_t n) const { return bytes_.substr(at, n); }
  [[nodiscard]] const fsbbStruct &Header() const { return fsbb_; }

 private:
  uint8_t *Body() { return reinterpret_cast<uint8_t *>(bytes_.data()) + 0x28; }

  std::string bytes_;
  fsbbStruct fsbb_{};
  uint32_t encode_ = 0;
  int32_t libType_;
};

constexpr songInfo CSongList::*kNamed[] = {&CSongList::title,   &CSongList::path,    &CSongList::album,
                                           &CSongList::artist,  &CSongList::genre,   &CSongList::filetype,
                                           &CSongList::comment, &CSongList::composer};

// How many of the song's cells hold a text.
size_t Filled(const CSongList &song) {
  size_t filled = song.unknown.size();
  for (songInfo CSongList::*const cell : kNamed) filled += (song.*cell).obj.empty() ? 0 : 1;
  return filled;
}

TEST(LittleEndianObject, EachNamedTypeFillsItsField) {
  const std::pair<uint32_t, songInfo CSongList::*> table[] = {
      {1, &CSongList::title}, {2, &CSongList::path},     {3, &CSongList::album},    {4, &CSongList::artist},
      {5, &CSongList::genre}, {6, &CSongList::filetype}, {12, &CSongList::composer}};
  for (const auto &[type, field] : table) {
    CSongList song;
    EXPECT_EQ(ObjectInMemory::Text(type, "a\0b\0"s, kLittle).StoreIn(song), 1);
    EXPECT_EQ((song.*field).obj.View(), "\0a\0b"s) << type;
    EXPECT_EQ((song.*field).idx, static_cast<int32_t>(type));
    EXPECT_EQ((song.*field).enc, 16777216U);
    EXPECT_EQ(Filled(song), 1U) << type;
  }
}

TEST(LittleEndianObject, EveryOtherTypeIsAppendedToTheOtherObjects) {
  CSongList song;
  const std::vector<uint32_t> types = {0,  7,  8,  9,   10,         11,         13, 14,
                                       15, 50, 52, 100, 0x7fffffff, 0xffffff9c, 8};
  for (const uint32_t type : types) {
    EXPECT_EQ(ObjectInMemory::Text(type, "\x01\x02"s, kLittle).StoreIn(song), 1);
  }
  ASSERT_EQ(song.unknown.size(), types.size());
  EXPECT_EQ(Filled(song), types.size());
  for (size_t i = 0; i < types.size(); ++i) {
    EXPECT_EQ(song.unknown[i].idx, static_cast<int32_t>(types[i]));
    EXPECT_EQ(song.unknown[i].enc, 16777216U);
    EXPECT_EQ(song.unknown[i].obj.View(), "\x02\x01");
  }
  EXPECT_EQ(song.trackInfo.idx, -100);
  EXPECT_TRUE(song.trackInfo.obj.empty());
}

TEST(LittleEndianObject, AlbumOfFiftyBytesKeepsItsTenSwapped) {
  CSongList song;
  ObjectInMemory object = ObjectInMemory::Text(3, "0123456789", kLittle);
  ASSERT_EQ(object.Header().myLen, 50U);
  EXPECT_EQ(object.StoreIn(song), 1);
  EXPECT_EQ(song.album.obj.View(), "1032547698");
  EXPECT_EQ(song.album.enc, 16777216U);
  EXPECT_EQ(song.album.idx, 3);
  EXPECT_EQ(object.Bytes(0x28, 10), "1032547698");
}

TEST(LittleEndianObject, RawBodyOfType100IsKeptFrom0x18UnswappedWithCode0) {
  CSongList song;
  EXPECT_EQ(ObjectInMemory::Raw(100, "raw body", kLittle).StoreIn(song), 1);
  ASSERT_EQ(song.unknown.size(), 1U);
  EXPECT_EQ(song.unknown[0].idx, 100);
  EXPECT_EQ(song.unknown[0].enc, 0U);
  EXPECT_EQ(song.unknown[0].obj.View(), "raw body");
}

TEST(LittleEndianObject, RawBodyMayFillANamedField) {
  for (const uint32_t encode : {0U, 1U, 2U, 0x02000000U, 0xffffffffU}) {
    CSongList song;
    EXPECT_EQ(ObjectInMemory::Raw(1, "raw", kLittle).Encode(encode).StoreIn(song), 1);
    EXPECT_EQ(song.title.obj.View(), "raw") << encode;
    EXPECT_EQ(song.title.enc, 0U);
    EXPECT_EQ(song.title.idx, 1);
  }
}

TEST(LittleEndianObject, RawBodyIsAsLongAsTheObjectWithoutItsHeader) {
  CSongList song;
  EXPECT_EQ(ObjectInMemory::Raw(7, "0123456789", kLittle).Jump(0x1c).StoreIn(song), 1);
  EXPECT_EQ(song.unknown[0].obj.View(), "012345");
  EXPECT_EQ(ObjectInMemory::Raw(7, "0123456789", kLittle).Jump(0x16).StoreIn(song), 1);
  EXPECT_EQ(song.unknown[1].obj.View(), "0123456789~~");
}

TEST(LittleEndianObject, TwoOfOneTypeConcatenate) {
  CSongList song;
  EXPECT_EQ(ObjectInMemory::Text(1, "a\0"s, kLittle).StoreIn(song), 1);
  EXPECT_EQ(ObjectInMemory::Raw(1, "raw", kLittle).StoreIn(song), 1);
  EXPECT_EQ(song.title.obj.View(), "\0araw"s);
  EXPECT_EQ(song.title.enc, 0U);
  EXPECT_EQ(ObjectInMemory::Text(1, "b\0"s, kLittle).StoreIn(song), 1);
  EXPECT_EQ(song.title.obj.View(), "\0araw\0b"s);
  EXPECT_EQ(song.title.enc, 16777216U);
}

TEST(LittleEndianObject, OddLengthSwapsItsLastByteWithTheOneAfterIt) {
  CSongList song;
  ObjectInMemory object = ObjectInMemory::Text(1, "abc", kLittle);
  EXPECT_EQ(object.StoreIn(song), 1);
  EXPECT_EQ(song.title.obj.View(), "ba~");
  EXPECT_EQ(object.Bytes(0x28, 4), "ba~c");
}

TEST(Object, WithoutAnyBytesStoresNothing) {
  for (const int32_t libType : {kLittle, kBig}) {
    for (const uint32_t length : {40U, 39U, 16U, 0U, 0x80000028U}) {
      CSongList song;
      EXPECT_EQ(ObjectInMemory::Text(3, "text", libType).Length(length).StoreIn(song), 0) << length;
      EXPECT_EQ(Filled(song), 0U);
      EXPECT_EQ(song.album.idx, -1);
      EXPECT_EQ(song.album.enc, 0U);
    }
    CSongList song;
    EXPECT_EQ(ObjectInMemory::Raw(3, "raw", libType).Length(24).StoreIn(song), 0);
    EXPECT_EQ(ObjectInMemory::Raw(3, "raw", libType).Jump(28).StoreIn(song), 0);
    EXPECT_EQ(ObjectInMemory::Raw(3, "raw", libType).Length(20).StoreIn(song), 0);
    EXPECT_EQ(Filled(song), 0U);
  }
}

TEST(Object, WithoutAnAddressStoresNothing) {
  fsbbStruct fsbb{};
  fsbb.jump = 0x18;
  fsbb.myLen = 60;
  fsbb.count = 1;
  CSongList song;
  EXPECT_EQ(song.SetObj(&fsbb, nullptr, 0x01000000, kLittle), 0);
  EXPECT_EQ(song.SetObj(&fsbb, nullptr, 1, kBig), 0);
  EXPECT_EQ(Filled(song), 0U);
  CPlayList list(&fsbb);
  EXPECT_EQ(list.SetTitle(&fsbb, nullptr, 0x01000000, kLittle), 0);
  fsbb.count = 100;
  EXPECT_EQ(list.SetTitle(&fsbb, nullptr, 1, kBig), 0);
  EXPECT_TRUE(list.name.obj.empty());
}

TEST(BigEndianObject, EachNamedTypeFillsItsFieldUnswapped) {
  const std::pair<uint32_t, songInfo CSongList::*> table[] = {{2, &CSongList::title},
                                                              {3, &CSongList::album},
                                                              {4, &CSongList::artist},
                                                              {5, &CSongList::genre},
                                                              {12, &CSongList::composer}};
  for (const auto &[type, field] : table) {
    CSongList song;
    EXPECT_EQ(ObjectInMemory::Text(type, "\0a\0b\0"s, kBig).StoreIn(song), 1);
    EXPECT_EQ((song.*field).obj.View(), "\0a\0b\0"s) << type;
    EXPECT_EQ((song.*field).idx, -1);
    EXPECT_EQ((song.*field).enc, 1U);
    EXPECT_EQ(Filled(song), 1U) << type;
  }
}

TEST(BigEndianObject, EveryOtherTypeIsDropped) {
  CSongList song;
  for (const uint32_t type : {0U, 6U, 7U, 8U, 9U, 10U, 11U, 13U, 15U, 100U, 0xffffffffU, 0xffffff9cU}) {
    EXPECT_EQ(ObjectInMemory::Text(type, "\0a"s, kBig).StoreIn(song), 0);
    EXPECT_EQ(ObjectInMemory::Raw(type, "raw", kBig).StoreIn(song), 0);
  }
  EXPECT_EQ(Filled(song), 0U);
}

TEST(BigEndianObject, RawBodyIsKeptWithCode0) {
  CSongList song;
  EXPECT_EQ(ObjectInMemory::Raw(2, "raw", kBig).Encode(0x01000000).StoreIn(song), 1);
  EXPECT_EQ(song.title.obj.View(), "raw");
  EXPECT_EQ(song.title.enc, 0U);
  EXPECT_EQ(song.title.idx, -1);
}

TEST(BigEndianObject, TwoOfOneTypeConcatenate) {
  CSongList song;
  EXPECT_EQ(ObjectInMemory::Raw(5, "raw", kBig).StoreIn(song), 1);
  EXPECT_EQ(ObjectInMemory::Text(5, "\0a"s, kBig).StoreIn(song), 1);
  EXPECT_EQ(song.genre.obj.View(), "raw\0a"s);
  EXPECT_EQ(song.genre.enc, 1U);
}

TEST(BigEndianObject, AnyVariantButTheLittleEndianOneIsReadSo) {
  CSongList song;
  EXPECT_EQ(ObjectInMemory(2, "ab", 0x28, 2).Encode(1).StoreIn(song), 1);
  EXPECT_EQ(song.title.obj.View(), "ab");
  EXPECT_TRUE(song.path.obj.empty());
}

TEST(PlayListName, IsTakenFromTheTypeOfTheVariant) {
  const fsbbStruct chunk{};
  for (uint32_t type = 0; type < 130; ++type) {
    CPlayList little(&chunk);
    EXPECT_EQ(ObjectInMemory::Text(type, "a\0"s, kLittle).StoreIn(little), type == 1 ? 1 : 0);
    EXPECT_EQ(little.name.obj.View(), type == 1 ? "\0a"s : ""s);
    EXPECT_EQ(little.name.enc, type == 1 ? 16777216U : 0U);
    EXPECT_EQ(little.name.idx, -1);
    CPlayList big(&chunk);
    EXPECT_EQ(ObjectInMemory::Text(type, "\0a"s, kBig).StoreIn(big), type == 100 ? 1 : 0);
    EXPECT_EQ(big.name.obj.View(), type == 100 ? "\0a"s : ""s);
    EXPECT_EQ(big.name.enc, type == 100 ? 1U : 0U);
    EXPECT_EQ(big.name.idx, -1);
  }
}

TEST(PlayListName, IsTakenFrom0x28WhateverTheEncodingWordSays) {
  const fsbbStruct chunk{};
  CPlayList little(&chunk);
  EXPECT_EQ(ObjectInMemory::Text(1, "ba", kLittle).Encode(0x12345678).StoreIn(little), 1);
  EXPECT_EQ(little.name.obj.View(), "ab");
  EXPECT_EQ(little.name.enc, 0x12345678U);
  CPlayList big(&chunk);
  EXPECT_EQ(ObjectInMemory::Text(100, "8bit", kBig).Encode(3).StoreIn(big), 1);
  EXPECT_EQ(big.name.obj.View(), "8bit");
  EXPECT_EQ(big.name.enc, 3U);
}

TEST(PlayListName, TwoConcatenateAndTheLastCodeStays) {
  const fsbbStruct chunk{};
  CPlayList list(&chunk);
  EXPECT_EQ(ObjectInMemory::Text(100, "one", kBig).StoreIn(list), 1);
  EXPECT_EQ(ObjectInMemory::Text(100, "two", kBig).Encode(0).StoreIn(list), 1);
  EXPECT_EQ(list.name.obj.View(), "onetwo");
  EXPECT_EQ(list.name.enc, 0U);
}

TEST(PlayListName, OfAnObjectWithoutTextIsEmptyButHasItsCode) {
  const fsbbStruct chunk{};
  CPlayList list(&chunk);
  EXPECT_EQ(ObjectInMemory::Text(1, "", kLittle).StoreIn(list), 1);
  EXPECT_TRUE(list.name.obj.empty());
  EXPECT_EQ(list.name.enc, 16777216U);
}

TEST(PlayListName, OfAnObjectShorterThan40BytesIsNotStored) {
  const fsbbStruct chunk{};
  for (const uint32_t length : {39U, 16U, 0U}) {
    CPlayList little(&chunk);
    EXPECT_EQ(ObjectInMemory::Text(1, "text", kLittle).Length(length).StoreIn(little), 0);
    CPlayList big(&chunk);
    EXPECT_EQ(ObjectInMemory::Text(100, "text", kBig).Length(length).StoreIn(big), 0);
    EXPECT_TRUE(little.name.obj.empty());
    EXPECT_TRUE(big.name.obj.empty());
    EXPECT_EQ(little.name.enc, 0U);
    EXPECT_EQ(big.name.enc, 0U);
  }
}

}  // namespace
}  // namespace db_test
