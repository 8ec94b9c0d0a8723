#include "samples/ImageDatabaseWriter.h"

#include <string_view>

#include "samples/DatabaseWriter.h"

namespace samples {

namespace {

constexpr uint32_t kTextHeader = 0x18;

enum Encoding : uint8_t { kUtf8 = 1, kUtf16 = 2 };

void AppendTwoBytes(ChunkWriter &out, uint32_t value) {
  out.AppendByte(static_cast<uint8_t>(value));
  out.AppendByte(static_cast<uint8_t>(value >> 8));
}

void PutHalf(ChunkWriter &out, size_t at, uint32_t value) {
  out.PutByte(at, static_cast<uint8_t>(value));
  out.PutByte(at + 1, static_cast<uint8_t>(value >> 8));
}

// Filled up to a multiple of four bytes; a byte of the header says with how many.
void AppendText(ChunkWriter &out, uint32_t type, std::string_view text, Encoding encoding) {
  const size_t object = out.Begin("mhod", kTextHeader, type);
  const size_t bytes = encoding == kUtf16 ? 2 * text.size() : text.size();
  out.AppendWord(static_cast<uint32_t>(bytes));
  out.AppendWord(encoding);
  out.AppendWord(0);
  for (const char c : text) {
    if (encoding == kUtf16) {
      AppendTwoBytes(out, static_cast<unsigned char>(c));
    } else {
      out.AppendByte(static_cast<uint8_t>(c));
    }
  }
  const auto padding = static_cast<uint8_t>((4 - bytes % 4) % 4);
  for (uint8_t i = 0; i < padding; ++i) out.AppendByte(0);
  out.PutByte(object + 0x0f, padding);
  out.Finish(object);
}

void AppendSize(ChunkWriter &out, const StoredSize &size) {
  const size_t object = out.Begin("mhod", kTextHeader, size.whole ? 5 : 2);
  const size_t picture = out.Begin("mhni", 0x4c, size.file.empty() ? 0 : 1);
  out.PutWord(picture + 0x10, size.format);
  out.PutWord(picture + 0x14, size.offset);
  out.PutWord(picture + 0x18, size.bytes);
  PutHalf(out, picture + 0x1c, static_cast<uint16_t>(size.verticalPadding));
  PutHalf(out, picture + 0x1e, static_cast<uint16_t>(size.horizontalPadding));
  PutHalf(out, picture + 0x20, size.height);
  PutHalf(out, picture + 0x22, size.width);
  if (!size.file.empty()) AppendText(out, 3, size.file, kUtf16);
  out.Finish(picture);
  out.Finish(object);
}

void AppendImage(ChunkWriter &out, const StoredImage &image) {
  const size_t record = out.Begin("mhii", 0x98, static_cast<uint32_t>(image.sizes.size()));
  out.PutWord(record + 0x10, image.id);
  out.PutWord(record + 0x14, static_cast<uint32_t>(image.song));
  out.PutWord(record + 0x18, static_cast<uint32_t>(image.song >> 32));
  for (const StoredSize &size : image.sizes) AppendSize(out, size);
  out.Finish(record);
}

void AppendAlbum(ChunkWriter &out, const ImageAlbum &album, uint32_t id) {
  const size_t record = out.Begin("mhba", 0x94, 1);
  out.PutWord(record + 0x10, static_cast<uint32_t>(album.images.size()));
  out.PutWord(record + 0x14, id);
  out.PutByte(record + 0x1e, album.kind);
  AppendText(out, 1, album.name, kUtf8);
  for (const uint32_t image : album.images) {
    const size_t entry = out.Begin("mhia", 0x28);
    out.PutWord(entry + 0x10, image);
    out.Finish(entry);
  }
  out.Finish(record);
}

// A list states how many it holds where other chunks state their length.
size_t BeginSet(ChunkWriter &out, uint32_t type, std::string_view list, size_t count) {
  const size_t set = out.Begin("mhsd", 0x60, type);
  out.PutWord(out.Begin(list, 0x5c) + 8, static_cast<uint32_t>(count));
  return set;
}

}  // namespace

std::string WriteImageDatabase(const std::vector<StoredImage> &images,
                               const std::vector<ImageAlbum> &albums) {
  ChunkWriter out(Variant::LittleEndian);
  const size_t file = out.Begin("mhfd", 0x84);
  out.PutWord(file + 0x14, 3);
  size_t set = BeginSet(out, 1, "mhli", images.size());
  for (const StoredImage &image : images) AppendImage(out, image);
  out.Finish(set);
  set = BeginSet(out, 2, "mhla", albums.size());
  for (size_t i = 0; i < albums.size(); ++i) AppendAlbum(out, albums[i], static_cast<uint32_t>(i + 100));
  out.Finish(set);
  set = BeginSet(out, 3, "mhlf", 0);
  out.Finish(set);
  out.Finish(file);
  return out.TakeBytes();
}

}  // namespace samples
