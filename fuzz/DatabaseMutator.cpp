// Changes database files without losing their structure: chunks stay chunks and keep nesting, while counts,
// lengths and other header words get the values that readers get wrong.

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "samples/DatabaseWriter.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t *data, size_t size, size_t maxSize);
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed);

namespace {

using samples::Kind;
using samples::Variant;

constexpr size_t kHeader = 16;
constexpr std::array kKinds = {Kind::File,         Kind::DataSet,  Kind::TrackList, Kind::Track,
                               Kind::PlaylistList, Kind::Playlist, Kind::Entry,     Kind::Object};

// How deep chunks of the kind stand, and whether their word at 8 counts children instead of bytes.
struct Place {
  int depth;
  bool countsChildren;
};

Place PlaceOf(Kind kind) {
  switch (kind) {
    case Kind::File:
      return {0, false};
    case Kind::DataSet:
      return {1, false};
    case Kind::TrackList:
    case Kind::PlaylistList:
      return {2, true};
    case Kind::Track:
    case Kind::Playlist:
      return {3, false};
    case Kind::Entry:
      return {4, false};
    case Kind::Object:
      break;
  }
  return {5, false};
}

// One chunk with all bytes up to the next one.
struct Chunk {
  Kind kind;
  std::string bytes;
};

class Mutator {
 public:
  Mutator(std::string_view file, unsigned seed) : random_(seed) {
    variant_ = file.starts_with(samples::Tag(Kind::File, Variant::BigEndian)) ? Variant::BigEndian
                                                                              : Variant::LittleEndian;
    Split(file);
  }

  [[nodiscard]] bool HasChunks() const { return chunks_.size() > 1; }

  void Mutate(size_t maxSize) {
    const uint32_t times = 1 + Below(4);
    bool repaired = !OneIn(6);
    for (uint32_t i = 0; i < times; ++i) {
      switch (Below(10)) {
        case 0:
          Duplicate(maxSize);
          break;
        case 1:
          Drop();
          break;
        case 2:
          Move();
          break;
        case 3:
          ChangeTag();
          break;
        case 4:
        case 5:
          ChangeBody(maxSize);
          break;
        default:
          if (repaired) Repair();
          repaired = false;  // what is hostile now stays so
          MakeHostile();
      }
    }
    if (repaired) Repair();
  }

  [[nodiscard]] std::string File() const {
    std::string file;
    for (const Chunk &chunk : chunks_) file += chunk.bytes;
    return file;
  }

 private:
  uint32_t Below(size_t n) { return static_cast<uint32_t>(random_() % n); }
  bool OneIn(size_t n) { return Below(n) == 0; }
  size_t SomeChunk() { return Below(chunks_.size()); }

  static Kind KindAt(std::string_view bytes) {
    for (const Variant variant : {Variant::LittleEndian, Variant::BigEndian}) {
      for (const Kind kind : kKinds) {
        if (bytes.starts_with(samples::Tag(kind, variant))) return kind;
      }
    }
    return Kind::File;
  }

  uint32_t Word(std::string_view bytes, size_t at) const {
    uint32_t word = 0;
    for (size_t i = 0; i < 4; ++i) {
      const size_t from = variant_ == Variant::LittleEndian ? 3 - i : i;
      word = word << 8 | static_cast<uint8_t>(bytes[at + from]);
    }
    return word;
  }

  void PutWord(std::string &bytes, size_t at, uint32_t word) const {
    samples::ChunkWriter out(variant_);
    out.AppendWord(word);
    bytes.replace(at, 4, out.Bytes());
  }

  // As a reader walks: to the end of a header, or of an object.
  void Split(std::string_view file) {
    while (!file.empty()) {
      const Kind kind = KindAt(file);
      size_t length = file.size();
      if (length >= kHeader) {
        const size_t stated = Word(file, kind == Kind::Object ? 8 : 4);
        if (stated != 0 && stated < length) length = stated;
      }
      chunks_.push_back({kind, std::string(file.substr(0, length))});
      file.remove_prefix(length);
    }
  }

  // The end of the chunk with all that stands deeper after it.
  [[nodiscard]] size_t EndOf(size_t i) const {
    const int depth = PlaceOf(chunks_[i].kind).depth;
    size_t end = i + 1;
    while (end < chunks_.size() && PlaceOf(chunks_[end].kind).depth > depth) ++end;
    return end;
  }

  // Every chunk states its real length, or the real number of its children.
  void Repair() {
    for (size_t i = 0; i < chunks_.size(); ++i) {
      Chunk &chunk = chunks_[i];
      if (chunk.bytes.size() < kHeader) continue;
      const Place place = PlaceOf(chunk.kind);
      uint32_t word = place.countsChildren ? 0 : static_cast<uint32_t>(chunk.bytes.size());
      for (size_t at = i + 1; at < EndOf(i); ++at) {
        if (!place.countsChildren) {
          word += static_cast<uint32_t>(chunks_[at].bytes.size());
        } else if (PlaceOf(chunks_[at].kind).depth == place.depth + 1) {
          ++word;
        }
      }
      PutWord(chunk.bytes, 8, word);
      if (chunk.kind != Kind::Object) PutWord(chunk.bytes, 4, static_cast<uint32_t>(chunk.bytes.size()));
    }
  }

  void Duplicate(size_t maxSize) {
    const size_t first = SomeChunk();
    const size_t last = EndOf(first);
    const std::vector<Chunk> copies(chunks_.begin() + static_cast<ptrdiff_t>(first),
                                    chunks_.begin() + static_cast<ptrdiff_t>(last));
    const uint32_t times = OneIn(8) ? 1 + Below(40) : 1;
    const size_t at = OneIn(3) ? SomeChunk() : last;
    for (uint32_t i = 0; i < times && File().size() < maxSize; ++i) {
      chunks_.insert(chunks_.begin() + static_cast<ptrdiff_t>(at), copies.begin(), copies.end());
    }
  }

  void Drop() {
    if (chunks_.size() < 2) return;
    const size_t first = 1 + Below(chunks_.size() - 1);
    const size_t last = OneIn(4) ? first + 1 : EndOf(first);
    chunks_.erase(chunks_.begin() + static_cast<ptrdiff_t>(first),
                  chunks_.begin() + static_cast<ptrdiff_t>(last));
  }

  void Move() {
    const size_t first = SomeChunk();
    const size_t last = EndOf(first);
    const size_t to = SomeChunk();
    const auto at = [&](size_t i) { return chunks_.begin() + static_cast<ptrdiff_t>(i); };
    if (to < first) {
      std::rotate(at(to), at(first), at(last));
    } else if (to > last) {
      std::rotate(at(first), at(last), at(to));
    }
  }

  void ChangeTag() {
    Chunk &chunk = chunks_[SomeChunk()];
    if (chunk.bytes.size() < 4) return;
    chunk.kind = kKinds[Below(kKinds.size())];
    const Variant form = OneIn(6) ? (OneIn(2) ? Variant::BigEndian : Variant::LittleEndian) : variant_;
    chunk.bytes.replace(0, 4, samples::Tag(chunk.kind, form));
  }

  // What follows the common header, in any length.
  void ChangeBody(size_t maxSize) {
    Chunk &chunk = chunks_[SomeChunk()];
    const size_t kept = std::min(chunk.bytes.size(), OneIn(2) ? size_t{0x28} : kHeader);
    const size_t rest = maxSize - std::min(maxSize, File().size());
    std::string body = chunk.bytes.substr(kept);
    const size_t size = body.size();
    const size_t room = size + std::min<size_t>(rest, 64);
    if (room == 0) return;
    body.resize(room);
    body.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t *>(body.data()), size, room));
    chunk.bytes.replace(kept, std::string::npos, body);
  }

  void MakeHostile() {
    const size_t i = SomeChunk();
    Chunk &chunk = chunks_[i];
    if (chunk.bytes.size() < kHeader) return;
    const size_t words = std::min<size_t>(chunk.bytes.size() / 4, OneIn(3) ? 0x36 : 8);
    const size_t at = 4 * (OneIn(2) ? 1 + Below(3) : 1 + Below(words - 1));
    size_t rest = 0;
    for (size_t k = i; k < chunks_.size(); ++k) rest += chunks_[k].bytes.size();
    const auto left = static_cast<uint32_t>(rest);
    const auto own = static_cast<uint32_t>(chunk.bytes.size());
    const std::array<uint32_t, 24> values = {0,          1,
                                             2,          15,
                                             16,         0x18,
                                             0x23,       0x28,
                                             0x29,       0x7fffffff,
                                             0x80000000, 0xffffffff,
                                             0xfffffff0, 0xfffffffe,
                                             0x10000,    left,
                                             left - 1,   left + 1,
                                             own - 1,    own + 1,
                                             own / 2,    left - uint32_t{kHeader},
                                             0x1000000,  Word(chunk.bytes, at) + 1};
    PutWord(chunk.bytes, at, values[Below(values.size())]);
  }

  std::minstd_rand random_;
  Variant variant_;
  std::vector<Chunk> chunks_;
};

}  // namespace

size_t LLVMFuzzerCustomMutator(uint8_t *data, size_t size, size_t maxSize, unsigned seed) {
  if (size < 1 + kHeader || maxSize <= 1 || seed % 8 == 0) return LLVMFuzzerMutate(data, size, maxSize);
  Mutator mutator({reinterpret_cast<const char *>(data) + 1, size - 1}, seed);
  if (!mutator.HasChunks()) return LLVMFuzzerMutate(data, size, maxSize);
  if (seed % 16 == 1) data[0] = static_cast<uint8_t>(seed >> 8);
  mutator.Mutate(maxSize - 1);
  std::string file = mutator.File();
  if (file.size() > maxSize - 1) file.resize(maxSize - 1);
  std::memcpy(data + 1, file.data(), file.size());
  return 1 + file.size();
}
