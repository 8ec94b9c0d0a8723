#include "tests/property/RandomFile.h"

#include <algorithm>

namespace property {
namespace {

using samples::ChunkWriter;
using samples::DataObject;
using samples::Kind;
using samples::Random;
using samples::Variant;

constexpr int32_t kTrackIDs[] = {0, 1, 2, 3, 4, 5, 6, 7, 52, 53, -1, -2, INT32_MIN, INT32_MAX, 0x01000000};

constexpr uint32_t kWords[] = {0,     1,          2,          3,          15,         16,
                               24,    40,         41,         0x28,       0x10,       65536,
                               99999, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFFFFF0, 0x01000000};

constexpr uint32_t kNamedTypes[] = {1, 2, 3, 4, 5, 6, 12};
constexpr uint32_t kOtherTypes[] = {0, 7, 7, 8, 8, 13, 15, 50, 100, 0xFFFFFFFF, 0xFFFFFF9C};

// Texts that meet each other, that differ in a little, and what the Shift_JIS conversion has rules for.
constexpr std::u16string_view kTexts[] = {u"",
                                          u"A",
                                          u"B",
                                          u"a",
                                          u"Air",
                                          u"air",
                                          u"Air ",
                                          u"Airs",
                                          u"\u00DCber",
                                          u"\u3042\u3044",
                                          u"\u6771\u4EAC \uFF76\uFF85",
                                          u"~}|",
                                          u"\u3042\u2460\u2460",
                                          u"\uFF5E\uFFE5\uFF3C\u203E",
                                          u"\uFEFFBOM \u3042",
                                          u"\uFFFE\u4230\u4100",
                                          u"x\u0000y",
                                          u"\U0001F600",
                                          u"e\u0301\u0100\uA000",
                                          u"\u4EFF\u9FA5\u0451\u0400"};

constexpr std::u16string_view kPaths[] = {u":iPod_Control:Music:F00:A.mp3",
                                          u":ipod_control:music:F00:a.MP3",
                                          u":iPod_Control:Music:F00:B.mp3",
                                          u":Nowhere:C.mp3",
                                          u"::",
                                          u":",
                                          u"D.mp3",
                                          u":\u30D5:\u00DC.mp3",
                                          u"\u30D5"};

constexpr std::string_view kBytes[] = {"",
                                       "a",
                                       "ab",
                                       "abc",
                                       {"\0A", 2},
                                       {"\0A\0B", 4},
                                       {"\0A\0B\0", 5},
                                       {"A\0B\0", 4},
                                       "\x30\x42\xFF\x76",
                                       "Air",
                                       "\xC3\x9C",
                                       "\x82\xA0",
                                       "~ !",
                                       "\x80\x7F",
                                       {"\0", 1}};

constexpr std::string_view kLocations[] = {
    "Disk:Music:A.mp3", "Disk:Disk:A.mp3", "D:", ":A.mp3", "A", "iPod:iPod_Control:Music:F00:A.mp3"};

std::u16string LongText(Random &random) {
  std::u16string text;
  const uint32_t length = 4500 + random.Below(7000);
  for (uint32_t i = 0; i < length; ++i) {
    text += random.OneIn(3) ? u'\u00FF' : static_cast<char16_t>(0x3040 + random.Below(0x60));
  }
  return text;
}

// About as long as the file manager takes, and with its folders on the volume.
std::u16string LongPath(Random &random) {
  std::u16string path;
  for (int i = 0; i < 3; ++i) path += u':' + std::u16string(62, u'd');
  return path + u':' + std::u16string(56 + random.Below(8), u'x');
}

// How much less often than in the wildest files something goes wrong that may end or derail a reader's walk.
constexpr uint32_t kCares[] = {1, 6, 50, 1000, 1000, 1000};

class FileMaker {
 public:
  explicit FileMaker(Random &random)
      : random_(random),
        variant_(random.OneIn(2) ? Variant::LittleEndian : Variant::BigEndian),
        care_(Pick(random, kCares)),
        out_(variant_) {}

  std::vector<std::string> Make() {
    Header();
    if (random_.OneIn(60)) {
      ReachingBodies();
      return pieces_;
    }
    const uint32_t sets = random_.Below(5);
    // Most files are laid out so that entries find their songs.
    if (!random_.OneIn(8)) Tracks();
    if (!random_.OneIn(8)) Playlists(2);
    for (uint32_t i = 0; i < sets; ++i) {
      switch (random_.Below(4)) {
        case 0:
          Tracks();
          break;
        case 1:
          Playlists(random_.OneIn(2) ? 2 : random_.Below(5));
          break;
        case 2:
          Strange();
          break;
        default:
          Objects();
          break;
      }
    }
    if (Fault(2)) Damage();
    if (Fault(4)) CutTail();
    return pieces_;
  }

 private:
  bool Fault(uint32_t chances) { return random_.OneIn(chances * care_); }

  void Keep() {
    if (out_.Size() > 0) pieces_.push_back(out_.TakeBytes());
    out_.Clear();
  }

  void Header() {
    if (random_.OneIn(20)) {
      out_.Begin(Pick(random_, std::vector<std::string_view>{"xxbd", "hdfm", "mhbd", "xxfm", "mhsd"}),
                 16 + random_.Below(20));
    } else {
      out_.Begin(Kind::File, random_.OneIn(3) ? 16 + random_.Below(200) : 0x68);
    }
    if (Fault(10)) out_.PutWord(4, SomeWord(random_));
    Keep();
  }

  // A header of one kind; now and then with the other variant's tag, a length of its own or a wrong one.
  size_t Begin(Kind kind, uint32_t length, uint32_t count = 0) {
    const Variant other = variant_ == Variant::LittleEndian ? Variant::BigEndian : Variant::LittleEndian;
    if (random_.OneIn(6)) length = 16 + random_.Below(300);
    const size_t chunk = out_.Begin(Tag(kind, random_.OneIn(25) ? other : variant_), length, count);
    if (random_.OneIn(3)) out_.PutWord(8, random_.Below(50));
    if (Fault(20)) out_.PutWord(Pick(random_, std::vector<size_t>{4, 8, 12}), SomeWord(random_));
    return chunk;
  }

  // A word of the header, if it is long enough to have it.
  void Put(size_t at, uint32_t value) {
    if (at + 4 <= out_.Size()) out_.PutWord(at, value);
  }

  void Tracks() {
    Begin(Kind::DataSet, 0x60, 1);
    Keep();
    if (!random_.OneIn(10)) {
      Begin(Kind::TrackList, 0x5C);
      Keep();
    }
    const uint32_t count = random_.OneIn(40) ? 30 : random_.Below(9);
    for (uint32_t i = 0; i < count; ++i) {
      OneTrack();
      Objects();
    }
  }

  void OneTrack() {
    constexpr uint32_t kLengths[] = {0x9C, 0xD4, 0xF4, 0x184};
    Begin(Kind::Track, Pick(random_, kLengths));
    for (size_t at = 0x14; at + 4 <= out_.Size(); at += 4) {
      if (!random_.OneIn(3)) out_.PutWord(at, random_.OneIn(2) ? random_.Below(2000) : SomeWord(random_));
    }
    Put(0x10, static_cast<uint32_t>(SomeTrackID(random_)));
    if (out_.Size() > 0xB1) out_.PutByte(0xB1, static_cast<uint8_t>(random_.Below(3)));
    Keep();
  }

  void Playlists(uint32_t type) {
    Begin(Kind::DataSet, 0x60, type);
    Keep();
    if (!random_.OneIn(10)) {
      Begin(Kind::PlaylistList, 0x5C);
      Keep();
    }
    const uint32_t count = random_.Below(6);
    for (uint32_t i = 0; i < count; ++i) {
      Begin(Kind::Playlist, 0x6C, random_.OneIn(2) ? random_.Below(5) : SomeWord(random_));
      if (out_.Size() > 0x2C) out_.PutByte(0x2C, static_cast<uint8_t>(random_.Below(256)));
      Keep();
      Name();
      if (random_.OneIn(4)) Objects();
      Entries();
    }
  }

  void Name() {
    if (random_.OneIn(5)) return;
    DataObject name = SomeObject();
    name.type = variant_ == Variant::LittleEndian ? 1 : 100;
    // A name keeps its encoding word whatever it is.
    constexpr uint32_t kCodes[] = {1, 3, 0xFFFFFF9C, 0x0A01, 0x08000100, 0x0100};
    if (random_.OneIn(3)) name.encodingWord = Pick(random_, kCodes);
    AppendObject(out_, name);
    // As host code sees the code only when it is stored most significant byte first.
    if (random_.OneIn(4)) {
      ChunkWriter word(Variant::BigEndian);
      word.AppendWord(Pick(random_, kCodes));
      for (size_t i = 0; i < 4 && 0x18 + i < out_.Size(); ++i)
        out_.PutByte(0x18 + i, static_cast<uint8_t>(word.Bytes()[i]));
    }
    Keep();
  }

  void Entries() {
    const uint32_t count = random_.Below(8);
    for (uint32_t i = 0; i < count; ++i) {
      Begin(Kind::Entry, 0x4C);
      Put(0x10, random_.OneIn(2) ? 0 : SomeWord(random_));
      Put(0x18, static_cast<uint32_t>(SomeTrackID(random_)));
      Keep();
      if (random_.OneIn(3)) {
        AppendObject(out_, samples::PositionObject(variant_, i));
        Keep();
      }
    }
  }

  // Data objects for whatever record is being filled.
  void Objects() {
    const uint32_t count = random_.Below(12);
    for (uint32_t i = 0; i < count; ++i) {
      AppendObject(out_, SomeObject());
      Keep();
    }
  }

  DataObject SomeObject() {
    DataObject object;
    object.type = random_.OneIn(4) ? Pick(random_, kOtherTypes) : Pick(random_, kNamedTypes);
    switch (random_.Below(8)) {
      case 0:
        object.form = DataObject::Form::Bytes;
        object.bytes = SomeBytes(random_);
        break;
      case 1:
        object.form = DataObject::Form::Raw;
        object.bytes = SomeBytes(random_) + SomeBytes(random_);
        break;
      case 2:
        object = samples::EightBitObject(object.type, SomeBytes(random_), random_.Below(5));
        break;
      case 3:
        if (variant_ == Variant::BigEndian) {
          object = Location();
          if (random_.OneIn(4)) object.encodingWord = random_.Below(3);
          if (random_.OneIn(4)) object.bytes[random_.Below(static_cast<uint32_t>(object.bytes.size()))] ^= 1;
          break;
        }
        object.type = 2;
        object.text = Pick(random_, kPaths);
        if (random_.OneIn(20)) object.text = LongPath(random_);
        break;
      default:
        object.text = random_.OneIn(150) ? LongText(random_) : std::u16string(Pick(random_, kTexts));
        break;
    }
    if (random_.OneIn(20)) object.usedWord = 1;
    if (random_.OneIn(20)) object.encodingWord = SomeWord(random_);
    if (random_.OneIn(8)) object.headerLength = random_.OneIn(4) ? SomeWord(random_) : random_.Below(60);
    if (random_.OneIn(40)) object.headerLength = 0U - random_.Below(500);
    if (Fault(10)) object.totalLength = random_.OneIn(3) ? SomeWord(random_) : random_.Below(200);
    return object;
  }

  // A song whose raw bodies, their header lengths being negative, reach past their objects, some to the end
  // of the file: more bytes altogether than the file has many times over.
  void ReachingBodies() {
    constexpr uint32_t kLength = 0x2C;
    out_.Begin(Kind::Track, 0xD4);
    Keep();
    for (uint32_t left = (8 + random_.Below(60)) * kLength; left > 0; left -= kLength) {
      const size_t object = out_.Begin(Kind::Object, kLength, random_.OneIn(2) ? 4 : 7);
      out_.PutWord(0x18, random_.OneIn(5) ? 1 : 0);
      out_.PutWord(0x28, 0x41004200);
      out_.Finish(object);
      const uint32_t toTheEnd = left - 0x18;
      out_.PutWord(4, kLength - (random_.OneIn(3) ? random_.Below(2 * left) : toTheEnd));
      Keep();
    }
  }

  // A location; one in four ends where its path does, or one byte before or after that.
  DataObject Location() {
    const std::string path = random_.OneIn(10) ? "Disk:" + std::string(200 + random_.Below(400), 'x')
                                               : std::string(Pick(random_, kLocations));
    DataObject object = samples::LocationObject(path);
    if (random_.OneIn(4)) object.bytes.resize(object.bytes.rfind(path) + path.size() - 1 + random_.Below(3));
    return object;
  }

  // Chunks of kinds that a reader steps into or over, and entries and songs that stand where none should.
  void Strange() {
    const uint32_t count = 1 + random_.Below(4);
    for (uint32_t i = 0; i < count; ++i) {
      switch (random_.Below(5)) {
        case 0:
          out_.Begin("mhia", 16 + random_.Below(40), random_.Below(4));
          break;
        case 1:
          out_.AppendBytes(SomeBytes(random_));
          break;
        case 2:
          Begin(static_cast<Kind>(1 + random_.Below(7)), 16 + random_.Below(0xD0), random_.Below(4));
          break;
        case 3:
          Begin(Kind::DataSet, 16, random_.Below(6));
          break;
        default:
          Begin(Kind::Entry, 0x20, 0);
          break;
      }
      Keep();
    }
  }

  void Damage() {
    const uint32_t count = 1 + random_.Below(3);
    for (uint32_t i = 0; i < count; ++i) {
      std::string &piece = pieces_[random_.Below(static_cast<uint32_t>(pieces_.size()))];
      const auto size = static_cast<uint32_t>(piece.size());
      if (random_.OneIn(3) && size >= 16) {
        out_.AppendWord(SomeWord(random_));
        piece.replace(size_t{4} * random_.Below(std::min(size / 4, 8U)), 4, out_.TakeBytes());
        out_.Clear();
      } else {
        constexpr char kValues[] = {0, 1, 0x7F, '\x80', '\xFF'};
        piece[random_.Below(size)] =
            random_.OneIn(3) ? static_cast<char>(random_.Below(256)) : Pick(random_, kValues);
      }
    }
  }

  void CutTail() {
    pieces_.resize(1 + random_.Below(static_cast<uint32_t>(pieces_.size())));
    std::string &last = pieces_.back();
    last.resize(random_.Below(static_cast<uint32_t>(last.size()) + 1));
  }

  Random &random_;
  Variant variant_;
  uint32_t care_;
  ChunkWriter out_;
  std::vector<std::string> pieces_;
};

}  // namespace

int32_t SomeTrackID(Random &random) {
  return random.OneIn(4) ? Pick(random, kTrackIDs) : static_cast<int32_t>(random.Below(6));
}

uint32_t SomeWord(Random &random) {
  if (random.OneIn(4)) return static_cast<uint32_t>(random.Next());
  return Pick(random, kWords);
}

std::string SomeBytes(Random &random) { return std::string(Pick(random, kBytes)); }

std::vector<std::string> SomeFile(Random &random) { return FileMaker(random).Make(); }

}  // namespace property
