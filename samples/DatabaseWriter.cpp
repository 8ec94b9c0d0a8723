#include "samples/DatabaseWriter.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace samples {

namespace {

constexpr size_t kCommonHeader = 16;
constexpr size_t kObjectHeader = 0x18;

size_t IndexOf(Kind kind) { return static_cast<size_t>(kind); }

uint32_t Length32(size_t length) {
  if (length > UINT32_MAX) throw std::length_error("a chunk of 4 GiB or more");
  return static_cast<uint32_t>(length);
}

// Fields of one header, dropped when they would lie past its end.
class HeaderFields {
 public:
  HeaderFields(ChunkWriter &out, size_t chunk) : out_(out), chunk_(chunk), length_(out.Size() - chunk) {}

  void Byte(size_t offset, uint8_t value) {
    if (offset + 1 <= length_) out_.PutByte(chunk_ + offset, value);
  }
  void Word(size_t offset, uint32_t value) {
    if (offset + 4 <= length_) out_.PutWord(chunk_ + offset, value);
  }

 private:
  ChunkWriter &out_;
  size_t chunk_;
  size_t length_;
};

size_t BeginKind(ChunkWriter &out, Kind kind, std::optional<uint32_t> headerLength, uint32_t count = 0) {
  return out.Begin(kind, headerLength.value_or(UsualHeaderLength(kind, out.ByteOrder())), count);
}

template <typename Record>
void AppendList(ChunkWriter &out, const DataSet &set, Kind kind, const std::vector<Record> &records,
                void (*append)(ChunkWriter &, const Record &)) {
  const size_t list = BeginKind(out, kind, set.listHeaderLength);
  out.PutWord(list + 8, set.declaredCount.value_or(Length32(records.size())));
  for (const Record &record : records) append(out, record);
}

std::string PascalField(std::string_view text, size_t width) {
  if (text.size() >= width) throw std::length_error("name too long for its field: " + std::string(text));
  std::string field(1, static_cast<char>(text.size()));
  field.append(text);
  field.resize(width, '\0');
  return field;
}

void AppendHalf(std::string &bytes, size_t value) {
  bytes += static_cast<char>(value >> 8 & 0xff);
  bytes += static_cast<char>(value & 0xff);
}

}  // namespace

std::ostream &operator<<(std::ostream &stream, Variant variant) {
  return stream << (variant == Variant::LittleEndian ? "LittleEndian" : "BigEndian");
}

std::string_view Tag(Kind kind, Variant variant) {
  static constexpr std::array<std::string_view, 8> kLittle{"mhbd", "mhsd", "mhlt", "mhit",
                                                           "mhlp", "mhyp", "mhip", "mhod"};
  static constexpr std::array<std::string_view, 8> kBig{"hdfm", "hdsm", "htlm", "htim",
                                                        "hplm", "hpim", "hptm", "hohm"};
  return (variant == Variant::LittleEndian ? kLittle : kBig).at(IndexOf(kind));
}

uint32_t UsualHeaderLength(Kind kind, Variant variant) {
  static constexpr std::array<uint32_t, 8> kLittle{0xf4, 0x60, 0x5c, 0x248, 0x5c, 0xb8, 0x4c, 0x18};
  static constexpr std::array<uint32_t, 8> kBig{0x84, 0x60, 0x5c, 0xe0, 0x5c, 0x200, 0x4c, 0x18};
  return (variant == Variant::LittleEndian ? kLittle : kBig).at(IndexOf(kind));
}

size_t ChunkWriter::Begin(std::string_view tag, uint32_t headerLength, uint32_t count) {
  if (tag.size() != 4) throw std::invalid_argument("a chunk's tag has four characters");
  const size_t chunk = Size();
  bytes_.append(tag);
  bytes_.resize(chunk + std::max<size_t>(headerLength, kCommonHeader), '\0');
  PutWord(chunk + 4, headerLength);
  PutWord(chunk + 12, count);
  return chunk;
}

size_t ChunkWriter::Begin(Kind kind, uint32_t headerLength, uint32_t count) {
  return Begin(Tag(kind, variant_), headerLength, count);
}

void ChunkWriter::Finish(size_t chunk) { PutWord(chunk + 8, Length32(Size() - chunk)); }

void ChunkWriter::PutByte(size_t at, uint8_t value) { bytes_.at(at) = static_cast<char>(value); }

void ChunkWriter::PutWord(size_t at, uint32_t value) {
  for (size_t i = 0; i < 4; ++i) {
    const size_t shift = 8 * (variant_ == Variant::LittleEndian ? i : 3 - i);
    PutByte(at + i, static_cast<uint8_t>(value >> shift & 0xff));
  }
}

void ChunkWriter::AppendByte(uint8_t value) { bytes_ += static_cast<char>(value); }

void ChunkWriter::AppendWord(uint32_t value) {
  const size_t at = Size();
  bytes_.resize(at + 4);
  PutWord(at, value);
}

void ChunkWriter::AppendBytes(std::string_view bytes) { bytes_.append(bytes); }

void ChunkWriter::AppendUtf16(std::u16string_view text) {
  const size_t high = variant_ == Variant::LittleEndian ? 1 : 0;
  size_t at = Size();
  bytes_.resize(at + text.size() * 2);
  for (const char16_t unit : text) {
    bytes_[at + high] = static_cast<char>(unit >> 8 & 0xff);
    bytes_[at + 1 - high] = static_cast<char>(unit & 0xff);
    at += 2;
  }
}

std::string ChunkWriter::TakeBytes() { return std::exchange(bytes_, {}); }

DataObject TextObject(uint32_t type, std::u16string text) {
  DataObject object;
  object.type = type;
  object.text = std::move(text);
  return object;
}

DataObject EightBitObject(uint32_t type, std::string bytes, uint32_t encodingWord) {
  DataObject object;
  object.type = type;
  object.form = DataObject::Form::Bytes;
  object.bytes = std::move(bytes);
  object.encodingWord = encodingWord;
  return object;
}

DataObject RawObject(uint32_t type, std::string bytes) {
  DataObject object;
  object.type = type;
  object.form = DataObject::Form::Raw;
  object.bytes = std::move(bytes);
  return object;
}

DataObject LocationObject(std::string_view path) {
  if (path.size() > 0xffff) throw std::length_error("path longer than its 16-bit length can state");
  const std::string_view volume = path.substr(0, path.find(':'));
  const std::string_view file = path.substr(path.rfind(':') + 1);

  std::string alias;
  AppendHalf(alias, 2);                        // version
  AppendHalf(alias, 0);                        // a file, not a folder
  alias += PascalField(volume, 28);            // at 0x22 of the object
  alias.append("\0\0\0\0H+\0\0\0\0\0\0", 12);  // volume date and kind, drive kind, parent folder
  alias += PascalField(file.substr(0, 31), 64);
  alias.append(36, '\0');  // file number, dates and codes
  AppendHalf(alias, 2);    // the tagged field that holds the full path
  AppendHalf(alias, path.size());
  alias.append(path);
  if (path.size() % 2 != 0) alias += '\0';
  alias.append("\xff\xff\0\0", 4);  // end of the tagged fields

  std::string body("\0\0\0\1", 4);
  AppendHalf(body, alias.size() + 6);
  body += alias;
  return RawObject(1, std::move(body));
}

DataObject PositionObject(Variant variant, uint32_t position) {
  ChunkWriter body(variant);
  body.AppendWord(position);
  body.AppendBytes(std::string(16, '\0'));
  return RawObject(100, body.TakeBytes());
}

std::vector<DataObject> SongObjects(Variant variant, const SongTexts &texts) {
  const bool little = variant == Variant::LittleEndian;
  std::vector<DataObject> objects;
  const auto add = [&objects](uint32_t type, const std::u16string &text) {
    if (!text.empty()) objects.push_back(TextObject(type, text));
  };
  add(little ? 1 : 2, texts.title);
  add(4, texts.artist);
  add(12, texts.composer);
  add(3, texts.album);
  add(5, texts.genre);
  add(6, texts.filetype);
  if (little) {
    add(2, texts.path);
  } else if (!texts.path.empty()) {
    std::string path;
    for (const char16_t unit : texts.path) {
      if (unit >= 0x80) throw std::invalid_argument("a location is written from ASCII text alone");
      path += static_cast<char>(unit);
    }
    objects.push_back(LocationObject(path));
  }
  return objects;
}

Library OrdinaryLibrary(std::vector<Track> tracks, std::vector<Playlist> playlists) {
  Library library;
  library.sets.resize(2);
  library.sets[0].type = 1;
  library.sets[0].content = std::move(tracks);
  library.sets[1].type = 2;
  library.sets[1].content = std::move(playlists);
  return library;
}

void AppendObject(ChunkWriter &out, const DataObject &object) {
  const size_t chunk = out.Begin(Tag(Kind::Object, out.ByteOrder()), kObjectHeader, object.type);
  out.PutWord(chunk + 4, object.headerLength);
  out.PutWord(chunk + 0x14, object.usedWord);
  if (object.form != DataObject::Form::Raw) {
    const bool utf16 = object.form == DataObject::Form::Utf16;
    out.AppendWord(object.encodingWord);
    out.AppendWord(Length32(utf16 ? object.text.size() * 2 : object.bytes.size()));
    out.AppendWord(0);
    out.AppendWord(0);
  }
  if (object.form == DataObject::Form::Utf16) {
    out.AppendUtf16(object.text);
  } else {
    out.AppendBytes(object.bytes);
  }
  out.Finish(chunk);
  if (object.totalLength) out.PutWord(chunk + 8, *object.totalLength);
}

void AppendTrack(ChunkWriter &out, const Track &track) {
  const size_t chunk = BeginKind(out, Kind::Track, track.headerLength, Length32(track.objects.size()));
  HeaderFields fields(out, chunk);
  fields.Word(0x10, track.id);
  for (size_t i = 0; i < track.res.size(); ++i) fields.Word(0x14 + 4 * i, track.res.at(i));
  fields.Word(0x24, track.filesize);
  fields.Word(0x28, track.duration);
  fields.Word(0x2c, track.number);
  fields.Word(0x30, track.total);
  fields.Word(0x34, track.year);
  fields.Word(0x38, track.bitrate);
  fields.Word(0x3c, track.samplerate);
  fields.Byte(0xb1, track.moviefileflag);
  fields.Word(0xd0, track.mediaType);
  for (const auto &[offset, value] : track.words) fields.Word(offset, value);
  for (const DataObject &object : track.objects) AppendObject(out, object);
  out.Finish(chunk);
}

void AppendEntry(ChunkWriter &out, const Entry &entry) {
  const size_t chunk = BeginKind(out, Kind::Entry, entry.headerLength, Length32(entry.objects.size()));
  HeaderFields fields(out, chunk);
  fields.Word(0x10, entry.ply);
  fields.Word(0x18, entry.ref);
  for (const auto &[offset, value] : entry.words) fields.Word(offset, value);
  for (const DataObject &object : entry.objects) AppendObject(out, object);
  out.Finish(chunk);
}

void AppendPlaylist(ChunkWriter &out, const Playlist &playlist) {
  const bool little = out.ByteOrder() == Variant::LittleEndian;
  const size_t objects = playlist.objects.size() + (playlist.name ? 1 : 0);
  const size_t chunk =
      BeginKind(out, Kind::Playlist, playlist.headerLength, playlist.type.value_or(Length32(objects)));
  HeaderFields fields(out, chunk);
  fields.Word(0x10, Length32(playlist.entries.size()));
  if (playlist.master) fields.Word(0x14, little ? 1 : 0x100);
  fields.Byte(0x2c, playlist.typeII);
  for (const auto &[offset, value] : playlist.words) fields.Word(offset, value);
  if (playlist.name) AppendObject(out, TextObject(little ? 1 : 100, *playlist.name));
  for (const DataObject &object : playlist.objects) AppendObject(out, object);
  for (const Entry &entry : playlist.entries) AppendEntry(out, entry);
  out.Finish(chunk);
}

void AppendDataSet(ChunkWriter &out, const DataSet &set) {
  const size_t chunk = BeginKind(out, Kind::DataSet, set.headerLength, set.type);
  if (const auto *tracks = std::get_if<std::vector<Track>>(&set.content)) {
    AppendList(out, set, Kind::TrackList, *tracks, AppendTrack);
  } else if (const auto *playlists = std::get_if<std::vector<Playlist>>(&set.content)) {
    AppendList(out, set, Kind::PlaylistList, *playlists, AppendPlaylist);
  } else {
    out.AppendBytes(std::get<std::string>(set.content));
  }
  out.Finish(chunk);
}

size_t BeginFile(ChunkWriter &out, size_t sets, std::optional<uint32_t> headerLength) {
  const bool little = out.ByteOrder() == Variant::LittleEndian;
  const size_t chunk = BeginKind(out, Kind::File, headerLength, little ? 1 : 0x00040002);
  HeaderFields fields(out, chunk);
  if (little) fields.Word(0x10, 0x19);  // version of the layout
  fields.Word(little ? 0x14 : 0x30, Length32(sets));
  return chunk;
}

std::string WriteLibrary(const Library &library, Variant variant) {
  ChunkWriter out(variant);
  const size_t file = BeginFile(out, library.sets.size(), library.headerLength);
  HeaderFields fields(out, file);
  for (const auto &[offset, value] : library.words) fields.Word(offset, value);
  for (const DataSet &set : library.sets) AppendDataSet(out, set);
  out.Finish(file);
  return out.TakeBytes();
}

}  // namespace samples
