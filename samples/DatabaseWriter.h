// Writes database files of both variants from plain records, byte by byte and by value, so that every machine
// writes the same file. Tests, the sample player, the benchmarks and the fuzz corpus are made with it.
//
// A Library that leaves every length and count to the writer gives a file laid out as players lay it out.
// Every length and count can also be given, to make files that no player would write; what even that cannot
// express is written chunk by chunk with ChunkWriter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace samples {

enum class Variant {
  LittleEndian,  // the player's own file: mhbd, mhsd, ...
  BigEndian      // the desktop library: hdfm, hdsm, ...
};

// Writes the variant's name, for messages and test names.
std::ostream &operator<<(std::ostream &stream, Variant variant);

enum class Kind { File, DataSet, TrackList, Track, PlaylistList, Playlist, Entry, Object };

// The four tag characters that begin a chunk of this kind.
std::string_view Tag(Kind kind, Variant variant);

// The header length in bytes that recent files of the variant have for this kind of chunk.
uint32_t UsualHeaderLength(Kind kind, Variant variant);

// Appends chunks to one byte string. Positions are counted from the first byte of that string.
class ChunkWriter {
 public:
  explicit ChunkWriter(Variant variant) : variant_(variant) {}

  // Appends a header of `headerLength` zero bytes (never fewer than the 16 that every chunk has), sets the
  // tag and the words at 4 (`headerLength`), 8 (0) and 12 (`count`), and returns the position of the chunk.
  size_t Begin(std::string_view tag, uint32_t headerLength, uint32_t count = 0);
  size_t Begin(Kind kind, uint32_t headerLength, uint32_t count = 0);

  // Sets the word at 8 of the chunk to its length so far: header and everything appended since.
  void Finish(size_t chunk);

  // Overwrite bytes that are already there, words in the variant's byte order; std::out_of_range past the
  // end.
  void PutByte(size_t at, uint8_t value);
  void PutWord(size_t at, uint32_t value);

  void AppendByte(uint8_t value);
  void AppendWord(uint32_t value);
  void AppendBytes(std::string_view bytes);
  // Each unit as two bytes in the variant's byte order.
  void AppendUtf16(std::u16string_view text);

  [[nodiscard]] Variant ByteOrder() const { return variant_; }
  [[nodiscard]] size_t Size() const { return bytes_.size(); }
  [[nodiscard]] const std::string &Bytes() const { return bytes_; }
  [[nodiscard]] std::string TakeBytes();
  void Clear() { bytes_.clear(); }

 private:
  Variant variant_;
  std::string bytes_;
};

// One data object (mhod / hohm).
struct DataObject {
  enum class Form {
    Utf16,  // `text` from 0x28, its length in bytes at 0x1c
    Bytes,  // `bytes` from 0x28, their number at 0x1c
    Raw     // `bytes` from 0x18; `encodingWord` is not written
  };
  uint32_t type = 0;
  Form form = Form::Utf16;
  std::u16string text{};
  std::string bytes{};
  uint32_t encodingWord = 1;              // at 0x18, in the variant's byte order; 1 means UTF-16
  uint32_t usedWord = 0;                  // at 0x14; a reader skips the object when it is not 0
  uint32_t headerLength = 0x18;           // as stated at 4; changes no position
  std::optional<uint32_t> totalLength{};  // as stated at 8, when it should differ from the real length
};

// UTF-16 text with encoding word 1.
DataObject TextObject(uint32_t type, std::u16string text);

// 8-bit text as older desktop programs wrote it: encoding word 0 or 3, length, two zero words, the bytes.
DataObject EightBitObject(uint32_t type, std::string bytes, uint32_t encodingWord = 3);

// Any bytes from 0x18 on.
DataObject RawObject(uint32_t type, std::string bytes);

// A big-endian file's location (type 1) in the alias style: encoding word 1, then from 0x1c an alias whose
// volume name, the part of `path` before the first colon, is met again at the start of the full path further
// on. `path` is 8-bit text of at most 65535 bytes, "Volume:Folder:File"; the volume name has at most 27
// bytes.
DataObject LocationObject(std::string_view path);

// The object (type 100) with which players number a playlist's entries: `position` at 0x18, then 16 zero
// bytes.
DataObject PositionObject(Variant variant, uint32_t position);

// One track (mhit / htim). A field that lies past `headerLength` is not written.
struct Track {
  uint32_t id = 0;
  std::array<uint32_t, 4> res{1, 0, 0, 0};  // at 0x14: visible, type code, flags, date
  uint32_t filesize = 0;                    // bytes
  uint32_t duration = 0;                    // milliseconds
  uint32_t number = 0;
  uint32_t total = 0;
  uint32_t year = 0;
  uint32_t bitrate = 0;     // kbit/s
  uint32_t samplerate = 0;  // Hz in 16.16 fixed point: 44100 Hz is 44100 << 16
  uint8_t moviefileflag = 0;
  uint32_t mediaType = 0;
  std::vector<DataObject> objects{};
  std::optional<uint32_t> headerLength{};
  std::map<uint32_t, uint32_t> words{};  // what else stands in the header, by offset; written last
};

// The texts of an ordinary song; an empty one makes no object.
struct SongTexts {
  std::u16string title{};
  std::u16string path{};
  std::u16string album{};
  std::u16string artist{};
  std::u16string genre{};
  std::u16string filetype{};
  std::u16string composer{};
};

// The data objects of an ordinary song, with the type numbers of the variant. A big-endian path becomes a
// location; there each unit must be below 0x80.
std::vector<DataObject> SongObjects(Variant variant, const SongTexts &texts);

// One playlist entry (mhip / hptm).
struct Entry {
  uint32_t ref = 0;                   // track id, at 0x18
  uint32_t ply = 0;                   // play word, at 0x10
  std::vector<DataObject> objects{};  // players add one of type 100 with the position
  std::optional<uint32_t> headerLength{};
  std::map<uint32_t, uint32_t> words{};  // as of a track
};

// One playlist (mhyp / hpim).
struct Playlist {
  // Written before `objects`, as an object of type 1 (little-endian) or 100 (big-endian).
  std::optional<std::u16string> name{};
  uint8_t typeII = 1;  // the byte at 0x2c
  bool master = false;
  std::vector<DataObject> objects{};
  std::vector<Entry> entries{};
  std::optional<uint32_t> type{};  // at 12, when it should differ from the number of data objects
  std::optional<uint32_t> headerLength{};
  std::map<uint32_t, uint32_t> words{};  // as of a track
};

// One data set (mhsd / hdsm) with a list of tracks, a list of playlists, or chunks written by hand.
struct DataSet {
  uint32_t type = 1;  // 1 tracks, 2 playlists, 3 podcasts, 4 albums
  std::variant<std::vector<Track>, std::vector<Playlist>, std::string> content{};
  std::optional<uint32_t> declaredCount{};  // of the list, when it should differ from the real number
  std::optional<uint32_t> headerLength{};
  std::optional<uint32_t> listHeaderLength{};
};

struct Library {
  std::vector<DataSet> sets{};
  std::optional<uint32_t> headerLength{};
  std::map<uint32_t, uint32_t> words{};  // as of a track
};

// A data set of type 1 with the tracks, then one of type 2 with the playlists.
Library OrdinaryLibrary(std::vector<Track> tracks, std::vector<Playlist> playlists);

// The bytes of the whole file.
std::string WriteLibrary(const Library &library, Variant variant);

// The same for one record and what it holds, appended at the end of `out`.
void AppendObject(ChunkWriter &out, const DataObject &object);
void AppendTrack(ChunkWriter &out, const Track &track);
void AppendEntry(ChunkWriter &out, const Entry &entry);
void AppendPlaylist(ChunkWriter &out, const Playlist &playlist);
void AppendDataSet(ChunkWriter &out, const DataSet &set);

// Starts a file that holds `sets` data sets: its header. Finish the returned position when all is appended.
size_t BeginFile(ChunkWriter &out, size_t sets, std::optional<uint32_t> headerLength = {});

}  // namespace samples
