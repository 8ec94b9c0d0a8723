#include "tests/golden/Samples.h"

#include <utility>

#include "samples/SampleLibrary.h"

namespace golden {
namespace {

using samples::ChunkWriter;
using samples::DataObject;
using samples::Kind;
using samples::Playlist;
using samples::TextObject;
using samples::Track;
using samples::Variant;

std::string RepeatedIDs() {
  std::vector<Track> tracks(6);
  const int32_t ids[] = {52, 52, 0, -1, 3, 0};
  for (size_t i = 0; i < tracks.size(); ++i) {
    const auto number = static_cast<uint32_t>(i);
    Track &track = tracks[i];
    track.id = static_cast<uint32_t>(ids[i]);
    track.res = {number, 0, number % 2 == 0 ? 0x10000U : 0U, 0xC0000000U + number};
    track.number = number;
    track.total = number * number * 11;
    track.year = 2000 + number;
    track.moviefileflag = static_cast<uint8_t>(number % 3);
    track.objects = {TextObject(1, u"Song " + std::u16string(1, static_cast<char16_t>(u'A' + i))),
                     TextObject(4, i < 3 ? u"Same" : u"Other")};
  }
  Playlist all;
  all.name = u"All";
  all.entries = {{.ref = 52}, {.ref = 0, .ply = 1}, {.ref = 0xFFFFFFFF},
                 {.ref = 3},  {.ref = 99},          {.ref = 52}};
  Playlist none;
  return WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), {all, none, all}), Variant::LittleEndian);
}

DataObject Bytes(uint32_t type, std::string bytes, uint32_t encodingWord = 1) {
  DataObject object;
  object.type = type;
  object.form = DataObject::Form::Bytes;
  object.bytes = std::move(bytes);
  object.encodingWord = encodingWord;
  return object;
}

std::string OddTexts() {
  std::vector<Track> tracks(3);
  // Two objects of one type, an odd length, and what Shift_JIS has rules for.
  tracks[0].objects = {TextObject(1, u"First "),         TextObject(1, u"and second"),
                       Bytes(3, std::string("a\0b", 3)), TextObject(4, u"A\u2460~\u00E9"),
                       TextObject(5, u"\uFF5E\u3042"),   TextObject(12, u"\uFEFF\u3042"),
                       TextObject(2, u":\u30D5:a.mp3")};
  // Raw bodies, one of which reaches into the next object; objects without a name of their own, two alike.
  DataObject reaching = samples::RawObject(8, "reach");
  reaching.headerLength = 0x18 - 12;
  tracks[1].objects = {samples::RawObject(1, "raw"),
                       reaching,
                       TextObject(7, u"seven"),
                       TextObject(7, u"again"),
                       samples::EightBitObject(6, "8-bit"),
                       TextObject(0, u"zero"),
                       TextObject(2, u"no colon")};
  // Used, empty, and with nothing but what was there before.
  tracks[2].objects = {TextObject(1, u"used"), TextObject(4, u""), TextObject(100, u"\u6771\u4EAC")};
  tracks[2].objects[0].usedWord = 1;
  const uint32_t codes[] = {0x03000000, 0x03000000, 0x03000000, 0x9CFFFFFF, 0x010A0000, 0x00010008};
  const std::string texts[] = {
      std::string("A\0B\0", 4), std::string("\0A\0B", 4), "ba", "sAIC", "\xA0\x82", "\xA9\xC3"};
  std::vector<Playlist> playlists(6);
  for (size_t i = 0; i < playlists.size(); ++i) {
    playlists[i].type = static_cast<uint32_t>(i * 7);
    playlists[i].typeII = static_cast<uint8_t>(i * 50);
    playlists[i].objects = {Bytes(1, texts[i], codes[i])};
  }
  playlists[5].entries = {{.ref = 0}};
  return WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), std::move(playlists)),
                      Variant::LittleEndian);
}

std::string Damaged() {
  ChunkWriter out(Variant::BigEndian);
  samples::BeginFile(out, 1, 0x10);
  out.Begin(Kind::DataSet, 0x10, 2);
  AppendEntry(out, {.ref = 7});  // before any playlist
  Playlist early;
  early.name = u"Before its songs";
  early.entries = {{.ref = 8}};
  AppendPlaylist(out, early);
  AppendObject(out, TextObject(2, u"Title of an entry"));
  Track whole;
  whole.id = 7;
  whole.bitrate = 128;
  DataObject unmatched = samples::LocationObject("Disk:A.mp3");
  unmatched.bytes[unmatched.bytes.rfind("Disk:")] = 'd';
  whole.objects = {TextObject(2, u"Whole"), unmatched, TextObject(6, u"dropped")};
  AppendTrack(out, whole);
  out.Begin("mhip", 0x20);  // an entry of the other variant
  out.PutWord(out.Size() - 8, 7);
  out.Begin("abcd", 0x18);
  Track located;
  located.id = 8;
  located.objects = {samples::LocationObject("Disk:Music:A.mp3"), TextObject(2, u"Located")};
  AppendTrack(out, located);
  // Cut within the year.
  const size_t last = out.Size();
  AppendTrack(out, {.id = 9, .year = 1999, .bitrate = 128});
  return out.TakeBytes().substr(0, last + 0x37);
}

}  // namespace

std::vector<Sample> Samples() {
  return {
      {"sample-player", "The sample player's database.", samples::SamplePlayerDatabase()},
      {"desktop-library", "The same songs as a big-endian desktop library.", samples::SampleDesktopLibrary()},
      {"repeated-ids", "Songs that share track IDs, 0 and -1 among them, and entries of unknown ones.",
       RepeatedIDs()},
      {"odd-texts", "Texts of odd lengths, raw and repeated ones, and names of every encoding code.",
       OddTexts()},
      {"damaged", "A big-endian file with its chunks in the wrong order, faults in them, and no end.",
       Damaged()}};
}

}  // namespace golden
