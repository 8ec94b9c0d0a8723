// Writes the inputs of the database target into a folder: one file for each fault, named for it.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/golden/Samples.h"

namespace {

using samples::ChunkWriter;
using samples::DataObject;
using samples::Kind;
using samples::TextObject;
using samples::Variant;

class Corpus {
 public:
  explicit Corpus(std::filesystem::path folder) : folder_(std::move(folder)) {}

  // The options are those of the database target.
  void Add(const std::string &name, uint8_t options, const std::string &file) const {
    std::ofstream out(folder_ / name, std::ios::binary);
    out << static_cast<char>(options) << file;
    if (!out.flush()) throw std::runtime_error("cannot write " + (folder_ / name).string());
  }

 private:
  std::filesystem::path folder_;
};

// A file with one track that holds the objects.
std::string Song(Variant variant, std::vector<DataObject> objects) {
  samples::Track track;
  track.id = 7;
  track.headerLength = 0xd4;
  track.objects = std::move(objects);
  samples::Library library = samples::OrdinaryLibrary({track}, {});
  library.headerLength = 0x18;
  return samples::WriteLibrary(library, variant);
}

DataObject WithLength(DataObject object, uint32_t headerLength, std::optional<uint32_t> totalLength = {}) {
  object.headerLength = headerLength;
  object.totalLength = totalLength;
  return object;
}

std::string Lists(Variant variant, uint32_t count) {
  samples::Library library = samples::OrdinaryLibrary({{.id = 1}, {.id = 2}}, {{.name = u"a"}});
  for (samples::DataSet &set : library.sets) set.declaredCount = count;
  return samples::WriteLibrary(library, variant);
}

std::string Chunks(Variant variant, const std::function<void(ChunkWriter &)> &add) {
  ChunkWriter out(variant);
  samples::BeginFile(out, 1, 16);
  add(out);
  return out.TakeBytes();
}

void AddOrdinary(const Corpus &corpus) {
  for (const golden::Sample &sample : golden::Samples()) {
    if (sample.bytes.size() < 8192) corpus.Add("golden-" + sample.name, 8, sample.bytes);
  }
}

void AddOfVariant(const Corpus &corpus, Variant variant, const std::string &prefix) {
  const bool little = variant == Variant::LittleEndian;
  const auto add = [&](const std::string &name, uint8_t options, const std::string &file) {
    corpus.Add(prefix + name, options, file);
  };
  const std::string small = db_test::SmallLibrary(variant);
  add("small-library", 8, small);
  add("small-library-shift-jis-from-zero", 3, small);
  add("small-library-twice", 16, small);
  add("small-library-host-fails", 0xe4, small);
  add("cut-in-a-header", 8, small.substr(0, small.size() / 2));
  add("header-alone", 8, small.substr(0, 16));
  add("text-behind-its-end", 0, Song(variant, {WithLength(TextObject(3, u"album"), 0x18, 0x4000)}));
  add("text-of-length-zero", 0, Song(variant, {WithLength(TextObject(3, u"album"), 0x18, 0)}));
  add("text-shorter-than-its-header", 0, Song(variant, {WithLength(TextObject(3, u"album"), 0x18, 0x27)}));
  add("text-of-negative-length", 0, Song(variant, {WithLength(TextObject(3, u"album"), 0x18, 0x80000000)}));
  add("raw-body-reaching-on", 0, Song(variant, {WithLength(samples::RawObject(4, "body"), 0)}));
  add("raw-body-of-greatest-length", 0, Song(variant, {WithLength(samples::RawObject(4, "b"), 0xffffffff)}));
  add("odd-text", 3, Song(variant, {samples::EightBitObject(3, "abc", 1), TextObject(4, u"artist")}));
  add("shift-jis-marks", 1, Song(variant, {TextObject(little ? 1 : 2, u"\uFEFF\u3042\uFFFE\u30A2")}));
  add("list-of-greatest-count", 8, Lists(variant, 0xffffffff));
  add("list-of-negative-count", 8, Lists(variant, 0x80000000));
  add("list-of-no-count", 8, Lists(variant, 0));
  add("step-of-zero", 8,
      Chunks(variant, [](ChunkWriter &out) { out.PutWord(out.Begin("abcd", 16) + 4, 0); }));
  add("step-of-one", 8, Chunks(variant, [](ChunkWriter &out) { out.PutWord(out.Begin("abcd", 40) + 4, 1); }));
  add("step-past-the-end", 8,
      Chunks(variant, [](ChunkWriter &out) { out.PutWord(out.Begin("abcd", 16) + 4, 0x7fffffff); }));
  add("entry-before-any-playlist", 8, Chunks(variant, [](ChunkWriter &out) {
        out.Begin(Kind::DataSet, 16, 2);
        AppendEntry(out, {.ref = 1});
        AppendObject(out, TextObject(100, u"nobody's"));
        AppendPlaylist(out, {.name = u"late"});
      }));
  add("tags-of-the-other-variant", 8, Chunks(variant, [little](ChunkWriter &out) {
        out.Begin(Tag(Kind::Track, little ? Variant::BigEndian : Variant::LittleEndian), 0xd4);
        AppendObject(out, TextObject(3, u"album"));
      }));
}

void AddLocations(const Corpus &corpus) {
  DataObject unmatched = samples::LocationObject("Disk:A.mp3");
  unmatched.bytes[unmatched.bytes.rfind("Disk:")] = 'd';
  DataObject asRaw = samples::LocationObject("Disk:A.mp3");
  asRaw.encodingWord = 0;
  const auto add = [&](const std::string &name, DataObject object) {
    corpus.Add("big-location-" + name, 0, Song(Variant::BigEndian, {std::move(object)}));
  };
  add("plain", samples::LocationObject("Disk:Music:A.mp3"));
  add("unmatched", unmatched);
  add("not-marked-as-text", asRaw);
  add("shorter-than-the-name", WithLength(samples::LocationObject("Disk:A.mp3"), 0x18, 0x23));
  add("of-no-name", samples::LocationObject(":A.mp3"));
  corpus.Add("big-location-in-an-object-too-short-for-text", 0,
             Chunks(Variant::BigEndian, [](ChunkWriter &out) {
               out.Begin(Kind::Track, 0xd4);
               const size_t object = out.Size();
               AppendObject(out, samples::RawObject(1, std::string(15, '\0')));
               out.PutByte(object + 0x11, 0xff);  // the high byte of the path's length
             }));
}

}  // namespace

int main(int argc, char **argv) {
  if (argc != 2) {
    (void)std::fprintf(stderr, "usage: make_fuzz_corpus FOLDER\n");
    return 2;
  }
  try {
    std::filesystem::create_directories(argv[1]);
    const Corpus corpus(argv[1]);
    AddOrdinary(corpus);
    AddOfVariant(corpus, Variant::LittleEndian, "little-");
    AddOfVariant(corpus, Variant::BigEndian, "big-");
    AddLocations(corpus);
  } catch (const std::exception &error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
