#include "tests/plugin/VariedLibrary.h"

namespace plugin_test {

using samples::Track;
using samples::Variant;

std::string VariedLibrary(Variant variant) {
  const bool little = variant == Variant::LittleEndian;
  Track full;
  full.id = 52;
  full.res = {0x11, 0x22, 0x10033, 0x44556677};
  full.filesize = 5000001;
  full.duration = 201000;
  full.number = 5;
  full.total = 12;
  full.year = 2003;
  full.bitrate = 128;
  full.samplerate = 44100U << 16;
  full.mediaType = 1;
  full.objects = samples::SongObjects(variant, {.title = u"Nocturne No. 2",
                                                .path = little ? u":iPod_Control:Music:F00:Caf\u00e9.mp3"
                                                               : u"iPod:iPod_Control:Music:F00:A.mp3",
                                                .album = u"Night",
                                                .artist = u"Ren\u00e9e",
                                                .genre = u"Classical",
                                                .filetype = u"MPEG audio file",
                                                .composer = u"F. C."});
  for (const uint32_t type : {7U, 8U, 7U, 13U, 100U}) {
    full.objects.push_back(
        samples::TextObject(type, u"other " + std::u16string(1, u'a' + static_cast<char16_t>(type % 26))));
  }

  Track bare;  // nothing but an ID, which is also a library index
  bare.id = 1;
  bare.moviefileflag = 1;

  Track zero;
  zero.id = 0;
  zero.moviefileflag = 2;
  zero.number = 7;
  zero.total = 150;
  zero.objects = samples::SongObjects(
      variant, {.title = u"\u591c\u60f3\u66f2",
                .path = little ? u":iPod_Control:\u97f3\u697d:B.mp3" : u"iPod:missing:folder:B.mp3",
                .album = u"Night",
                .artist = u"Other"});

  Track twin = full;  // the ID of another song
  twin.res[2] = 0;
  twin.number = 0xfffffff0;
  twin.total = 0;
  twin.year = 0x80000000;
  twin.mediaType = 0xffffffff;
  twin.objects.push_back(samples::TextObject(3, u"fall"));
  twin.objects.push_back(samples::EightBitObject(4, "raw", 3));

  Track last;
  last.id = 0xfffffffb;
  last.moviefileflag = 1;
  last.objects = {samples::RawObject(5, "\xb6 raw genre"), samples::TextObject(12, u"F. C."),
                  samples::RawObject(50, "raw other")};

  const auto entry = [](uint32_t ref, uint32_t ply) { return samples::Entry{.ref = ref, .ply = ply}; };
  samples::Playlist all{.name = u"iPod"};
  all.master = true;
  all.entries = {entry(52, 0), entry(1, 1), entry(0, 0), entry(0xfffffffb, 0xffffffff)};
  samples::Playlist odd{.name = u"\u30d7\u30ec\u30a4\u30ea\u30b9\u30c8"};
  odd.typeII = 0xfd;
  odd.type = 0x80000001;
  odd.entries = {entry(777, 2), entry(0xfffffffb, 0), entry(52, 0), entry(52, 0x80000000), entry(1, 0)};
  const samples::Playlist nameless;

  return samples::WriteLibrary(samples::OrdinaryLibrary({full, bare, zero, twin, last}, {all, odd, nameless}),
                               variant);
}

}  // namespace plugin_test
