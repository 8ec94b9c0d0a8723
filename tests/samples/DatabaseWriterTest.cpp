#include <gtest/gtest.h>
#include <stdexcept>

#include "samples/DatabaseWriter.h"
#include "tests/samples/FileBytes.h"

namespace samples_test {
namespace {

using namespace std::string_literals;
using samples::ChunkWriter;
using samples::DataObject;
using samples::Kind;
using samples::Library;
using samples::Playlist;
using samples::Track;
using samples::Variant;

Track FullTrack() {
  Track track;
  track.id = 0x01020304;
  track.res = {0x11121314, 0x21222324, 0x00010000, 0x41424344};
  track.filesize = 0x51525354;
  track.duration = 0x61626364;
  track.number = 5;
  track.total = 12;
  track.year = 2003;
  track.bitrate = 128;
  track.samplerate = 44100U << 16;
  track.moviefileflag = 0xa5;
  track.mediaType = 0x71727374;
  return track;
}

std::string Written(Variant variant, const Track &track) {
  ChunkWriter out(variant);
  AppendTrack(out, track);
  return out.TakeBytes();
}

std::string Written(Variant variant, const DataObject &object) {
  ChunkWriter out(variant);
  AppendObject(out, object);
  return out.TakeBytes();
}

void ExpectTrackFields(std::string_view file, uint32_t (*word)(std::string_view, size_t)) {
  EXPECT_EQ(word(file, 0x10), 0x01020304U);
  EXPECT_EQ(word(file, 0x14), 0x11121314U);
  EXPECT_EQ(word(file, 0x18), 0x21222324U);
  EXPECT_EQ(word(file, 0x1c), 0x00010000U);
  EXPECT_EQ(word(file, 0x20), 0x41424344U);
  EXPECT_EQ(word(file, 0x24), 0x51525354U);
  EXPECT_EQ(word(file, 0x28), 0x61626364U);
  EXPECT_EQ(word(file, 0x2c), 5U);
  EXPECT_EQ(word(file, 0x30), 12U);
  EXPECT_EQ(word(file, 0x34), 2003U);
  EXPECT_EQ(word(file, 0x38), 128U);
  EXPECT_EQ(word(file, 0x3c), 0xac440000U);
  EXPECT_EQ(ByteAt(file, 0xb1), 0xa5);
  EXPECT_EQ(word(file, 0xd0), 0x71727374U);
}

TEST(DatabaseWriter, LittleEndianTrackHasEachFieldAtItsOffset) {
  const std::string file = Written(Variant::LittleEndian, FullTrack());
  EXPECT_EQ(file.substr(0, 4), "mhit");
  EXPECT_EQ(Little(file, 4), 0x248U);
  EXPECT_EQ(Little(file, 8), file.size());
  EXPECT_EQ(file.substr(0x38, 8), "\x80\0\0\0\0\0\x44\xac"s);
  ExpectTrackFields(file, Little);
}

TEST(DatabaseWriter, BigEndianTrackHasEachFieldAtItsOffset) {
  const std::string file = Written(Variant::BigEndian, FullTrack());
  EXPECT_EQ(file.substr(0, 4), "htim");
  EXPECT_EQ(Big(file, 4), 0xe0U);
  EXPECT_EQ(Big(file, 8), file.size());
  EXPECT_EQ(file.substr(0x38, 8), "\0\0\0\x80\xac\x44\0\0"s);
  ExpectTrackFields(file, Big);
}

TEST(DatabaseWriter, TrackFieldsPastAShortHeaderAreNotWritten) {
  Track track = FullTrack();
  track.headerLength = 0x9c;
  const std::string file = Written(Variant::LittleEndian, track);
  EXPECT_EQ(file.size(), 0x9cU);
  EXPECT_EQ(Little(file, 0x3c), 0xac440000U);

  track.headerLength = 0x12;
  EXPECT_EQ(Written(Variant::LittleEndian, track), "mhit\x12\0\0\0\x12\0\0\0\0\0\0\0\0\0"s);
}

TEST(DatabaseWriter, HeaderLengthBelow16IsToldButAllSixteenBytesAreWritten) {
  Track track;
  track.headerLength = 3;
  EXPECT_EQ(Written(Variant::BigEndian, track), "htim\0\0\0\3\0\0\0\x10\0\0\0\0"s);
}

TEST(DatabaseWriter, TextIsUtf16InTheVariantsByteOrder) {
  const DataObject object = samples::TextObject(3, u"é夜");
  EXPECT_EQ(Written(Variant::LittleEndian, object), "mhod\x18\0\0\0\x2c\0\0\0\3\0\0\0"s +
                                                        "\0\0\0\0\0\0\0\0\1\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0"s +
                                                        "\xe9\0\x1c\x59"s);
  EXPECT_EQ(Written(Variant::BigEndian, object), "hohm\0\0\0\x18\0\0\0\x2c\0\0\0\3"s +
                                                     "\0\0\0\0\0\0\0\0\0\0\0\1\0\0\0\4\0\0\0\0\0\0\0\0"s +
                                                     "\0\xe9\x59\x1c"s);
}

TEST(DatabaseWriter, EightBitTextStandsAt0x28AfterItsLength) {
  EXPECT_EQ(
      Written(Variant::BigEndian, samples::EightBitObject(2, "Caf\x8e")),
      "hohm\0\0\0\x18\0\0\0\x2c\0\0\0\2"s + "\0\0\0\0\0\0\0\0\0\0\0\3\0\0\0\4\0\0\0\0\0\0\0\0"s + "Caf\x8e");
}

TEST(DatabaseWriter, RawBodyStandsAt0x18WhateverHeaderLengthIsTold) {
  DataObject object = samples::RawObject(100, "\1\2\3");
  object.headerLength = 0x30;
  object.usedWord = 9;
  EXPECT_EQ(Written(Variant::LittleEndian, object),
            "mhod\x30\0\0\0\x1b\0\0\0\x64\0\0\0"s + "\0\0\0\0\x09\0\0\0\1\2\3"s);
}

TEST(DatabaseWriter, TotalLengthCanBeToldWrong) {
  DataObject object = samples::TextObject(1, u"abc");
  object.totalLength = 40;
  const std::string file = Written(Variant::LittleEndian, object);
  EXPECT_EQ(Little(file, 8), 40U);
  EXPECT_EQ(file.size(), 46U);
}

TEST(DatabaseWriter, LocationHoldsTheVolumeNameAtItsPlaceAndTheFullPathAfterItsLength) {
  const std::string path = "Disk:Music:F00:song.mp3";
  const std::string file = Written(Variant::BigEndian, samples::LocationObject(path));
  EXPECT_EQ(Big(file, 0x0c), 1U);
  EXPECT_EQ(Big(file, 0x14), 0U);
  EXPECT_EQ(Big(file, 0x18), 1U);
  EXPECT_EQ(file.substr(0x22, 5), "\4Disk");
  const size_t match = file.find("Disk", 0x27);
  ASSERT_NE(match, std::string::npos);
  EXPECT_EQ(file.substr(match, path.size()), path);
  EXPECT_EQ(ByteAt(file, match - 2) * 256U + ByteAt(file, match - 1), path.size());
}

TEST(DatabaseWriter, LocationRefusesWhatItsFieldsCannotTell) {
  EXPECT_THROW(samples::LocationObject(std::string(65536, 'x')), std::length_error);
  EXPECT_THROW(samples::LocationObject(std::string(28, 'v') + ":file"), std::length_error);
  EXPECT_THROW(samples::SongObjects(Variant::BigEndian, {.path = u"Disk:é"}), std::invalid_argument);
}

TEST(DatabaseWriter, SongObjectsHaveTheTypeNumbersOfTheVariant) {
  const samples::SongTexts texts{u"T", u"D:p", u"L", u"A", u"G", u"F", u"C"};
  const auto types = [&](Variant variant) {
    std::vector<std::pair<uint32_t, std::u16string>> pairs;
    for (const DataObject &object : SongObjects(variant, texts)) pairs.emplace_back(object.type, object.text);
    return pairs;
  };
  using Pairs = std::vector<std::pair<uint32_t, std::u16string>>;
  EXPECT_EQ(types(Variant::LittleEndian),
            (Pairs{{1, u"T"}, {4, u"A"}, {12, u"C"}, {3, u"L"}, {5, u"G"}, {6, u"F"}, {2, u"D:p"}}));
  EXPECT_EQ(types(Variant::BigEndian),
            (Pairs{{2, u"T"}, {4, u"A"}, {12, u"C"}, {3, u"L"}, {5, u"G"}, {6, u"F"}, {1, u""}}));
  EXPECT_TRUE(SongObjects(Variant::LittleEndian, {}).empty());
  EXPECT_TRUE(SongObjects(Variant::BigEndian, {}).empty());
}

Library SmallLibrary() {
  Track track = FullTrack();
  track.objects = {samples::TextObject(9, u"one"), samples::TextObject(9, u"two")};
  Playlist list;
  list.name = u"All";
  list.typeII = 7;
  list.master = true;
  list.objects = {samples::RawObject(102, "raw")};
  list.entries = {{.ref = 0x01020304, .ply = 0x0a0b0c0d}, {.ref = 2}};
  return samples::OrdinaryLibrary({track, track, track}, {list});
}

std::vector<std::string> Tags(const std::vector<ChunkAt> &chunks) {
  std::vector<std::string> tags;
  tags.reserve(chunks.size());
  for (const ChunkAt &chunk : chunks) tags.push_back(chunk.tag);
  return tags;
}

TEST(DatabaseWriter, LittleEndianChunksNestAndTellTheirLengthsAndCounts) {
  const std::string file = WriteLibrary(SmallLibrary(), Variant::LittleEndian);
  const std::vector<ChunkAt> chunks = Walk(file);
  EXPECT_EQ(Tags(chunks), (std::vector<std::string>{"mhbd", "mhsd", "mhlt", "mhit", "mhod", "mhod", "mhit",
                                                    "mhod", "mhod", "mhit", "mhod", "mhod", "mhsd", "mhlp",
                                                    "mhyp", "mhod", "mhod", "mhip", "mhip"}));
  EXPECT_EQ(chunks[0].length, file.size());
  EXPECT_EQ(chunks[1].length, chunks[12].at - chunks[1].at);
  EXPECT_EQ(chunks[1].count, 1U);
  EXPECT_EQ(chunks[2].length, 3U);
  EXPECT_EQ(chunks[3].length, chunks[6].at - chunks[3].at);
  EXPECT_EQ(chunks[3].count, 2U);
  EXPECT_EQ(chunks[12].count, 2U);
  EXPECT_EQ(chunks[12].length, file.size() - chunks[12].at);
  EXPECT_EQ(chunks[13].length, 1U);
  EXPECT_EQ(chunks[14].length, file.size() - chunks[14].at);
  EXPECT_EQ(chunks[14].count, 2U);
  EXPECT_EQ(Little(file, chunks[14].at + 0x10), 2U);
  EXPECT_EQ(Little(file, chunks[14].at + 0x14), 1U);
  EXPECT_EQ(ByteAt(file, chunks[14].at + 0x2c), 7);
  EXPECT_EQ(chunks[15].count, 1U);
  EXPECT_EQ(Little(file, chunks[17].at + 0x10), 0x0a0b0c0dU);
  EXPECT_EQ(Little(file, chunks[17].at + 0x18), 0x01020304U);
  EXPECT_EQ(chunks[17].length, 0x4cU);
}

TEST(DatabaseWriter, BigEndianChunksHaveTheirOwnTagsAndByteOrder) {
  const std::string file = WriteLibrary(SmallLibrary(), Variant::BigEndian);
  const std::vector<ChunkAt> chunks = Walk(file);
  EXPECT_EQ(Tags(chunks), (std::vector<std::string>{"hdfm", "hdsm", "htlm", "htim", "hohm", "hohm", "htim",
                                                    "hohm", "hohm", "htim", "hohm", "hohm", "hdsm", "hplm",
                                                    "hpim", "hohm", "hohm", "hptm", "hptm"}));
  EXPECT_EQ(chunks[0].length, file.size());
  EXPECT_EQ(chunks[15].count, 100U);
  EXPECT_EQ(ByteAt(file, chunks[14].at + 0x2c), 7);
  EXPECT_EQ(Big(file, chunks[17].at + 0x10), 0x0a0b0c0dU);
  EXPECT_EQ(Big(file, chunks[17].at + 0x18), 0x01020304U);
}

TEST(DatabaseWriter, CountsTypesAndHeaderLengthsCanBeChosen) {
  Library library = SmallLibrary();
  library.headerLength = 0x68;
  library.sets[0].headerLength = 0x64;
  library.sets[0].listHeaderLength = 0x58;
  library.sets[0].declaredCount = 0xffffffff;
  library.sets[1].type = 3;
  auto &list = std::get<std::vector<Playlist>>(library.sets[1].content)[0];
  list.type = 77;
  list.headerLength = 0x6c;
  list.entries[0].headerLength = 0x50;
  const std::string file = WriteLibrary(library, Variant::LittleEndian);
  const std::vector<ChunkAt> chunks = Walk(file);
  EXPECT_EQ(chunks[0].headerLength, 0x68U);
  EXPECT_EQ(chunks[1].headerLength, 0x64U);
  EXPECT_EQ(chunks[2].headerLength, 0x58U);
  EXPECT_EQ(chunks[2].length, 0xffffffffU);
  EXPECT_EQ(chunks[12].count, 3U);
  EXPECT_EQ(chunks[14].headerLength, 0x6cU);
  EXPECT_EQ(chunks[14].count, 77U);
  EXPECT_EQ(chunks[17].headerLength, 0x50U);
}

TEST(DatabaseWriter, HandWrittenChunksGoIntoADataSetAsTheyStand) {
  ChunkWriter albums(Variant::LittleEndian);
  const size_t list = albums.Begin("mhla", 0x5c);
  albums.PutWord(list + 8, 1);
  const size_t album = albums.Begin("mhia", 0x58, 1);
  AppendObject(albums, samples::TextObject(200, u"Album"));
  albums.Finish(album);
  Library library;
  library.sets.push_back({.type = 4, .content = albums.TakeBytes()});
  const std::string file = WriteLibrary(library, Variant::LittleEndian);
  EXPECT_EQ(Tags(Walk(file)), (std::vector<std::string>{"mhbd", "mhsd", "mhla", "mhia", "mhod"}));
  EXPECT_EQ(Walk(file)[3].length, file.size() - Walk(file)[3].at);
}

TEST(DatabaseWriter, PositionObjectNumbersAnEntry) {
  EXPECT_EQ(
      Written(Variant::LittleEndian, samples::PositionObject(Variant::LittleEndian, 0x0102)),
      "mhod\x18\0\0\0\x2c\0\0\0\x64\0\0\0"s + "\0\0\0\0\0\0\0\0"s + "\2\1\0\0"s + std::string(16, '\0'));
}

TEST(ChunkWriter, RefusesToWritePastTheEnd) {
  ChunkWriter out(Variant::BigEndian);
  out.Begin(Kind::Entry, 0x10);
  EXPECT_THROW(out.PutByte(0x10, 1), std::out_of_range);
  EXPECT_THROW(out.PutWord(0x0d, 1), std::out_of_range);
  EXPECT_THROW(out.Begin("too long", 0x10), std::invalid_argument);
}

}  // namespace
}  // namespace samples_test
