#include "player/ImageDatabase.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "player/Error.h"
#include "player/Fields.h"
#include "player/FileBytes.h"
#include "player/Utf16.h"

namespace player {

namespace {

constexpr size_t kShortestPiece = 12;
constexpr size_t kObjectStart = 0x10;  // that says what the object is
constexpr size_t kObjectTextAt = 0x24;
constexpr size_t kLongestName = 4096;  // bytes; a path, or the name of an album
constexpr uint32_t kLongestStart = 0x1000;

enum ObjectType : uint16_t { kAlbumName = 1, kSmallPicture = 2, kPictureFile = 3, kWholePhoto = 5 };

// A piece of the file that one chunk fills, or the rest of a list.
struct Piece {
  std::string_view bytes;
  size_t at = 0;      // in the file
  size_t header = 0;  // bytes

  std::string_view tag() const { return bytes.substr(0, 4); }
  Fields fields() const { return Fields(bytes.substr(0, header)); }
};

class ImageReader {
 public:
  explicit ImageReader(std::string_view file) : file_(file) {}

  ImageDatabase run() {
    const Fields header(file_);
    const uint32_t length = header.word(4).value_or(0);
    if (!file_.starts_with("mhfd") || length < kShortestPiece || length > kLongestStart)
      throw PlayerError("it is no list of pictures");
    const size_t from = std::min<size_t>(length, file_.size());
    if (header.word(8).value_or(0) > file_.size()) breakAt(file_.size());
    eachChild(Piece{file_, 0, from}, [this](const Piece &set) {
      if (set.tag() == "mhsd") readSet(set);
    });
    index();
    return std::move(found_);
  }

 private:
  void breakAt(size_t at) {
    if (!found_.brokenAt || at < *found_.brokenAt) found_.brokenAt = at;
  }

  // Hands on what follows the header of a chunk, one by one, up to its end or to what is no chunk.
  template <typename Sink>
  void eachChild(const Piece &holder, const Sink &sink) {
    size_t at = holder.header;
    while (at < holder.bytes.size()) {
      const std::string_view rest = holder.bytes.substr(at);
      const Fields fields(rest);
      const uint32_t header = fields.word(4).value_or(0);
      size_t length = fields.word(8).value_or(0);
      // The rest of a file that is cut off is not lost with the whole set that it breaks.
      if (rest.starts_with("mhsd") && length > rest.size()) {
        breakAt(holder.at + holder.bytes.size());
        length = rest.size();
      }
      if (!rest.starts_with("mh") || header < kShortestPiece || header > length || length > rest.size())
        return breakAt(holder.at + at);
      sink(Piece{rest.substr(0, length), holder.at + at, header});
      at += length;
    }
  }

  // A list states how many it holds, in place of its length.
  void readSet(const Piece &set) {
    const std::string_view rest = set.bytes.substr(set.header);
    const uint32_t header = Fields(rest).word(4).value_or(0);
    if (!rest.starts_with("mhl") || header < kShortestPiece || header > rest.size())
      return breakAt(set.at + set.header);
    eachChild(Piece{rest, set.at + set.header, header}, [this](const Piece &record) {
      if (record.tag() == "mhii") readImage(record);
      if (record.tag() == "mhba") readAlbum(record);
    });
  }

  void readImage(const Piece &record) {
    Image image;
    image.id = record.fields().word(0x10).value_or(0);
    image.song = record.fields().twoWords(0x14).value_or(0);
    eachChild(record, [&](const Piece &object) {
      const uint16_t type = typeOf(object);
      if (type != kSmallPicture && type != kWholePhoto) return;
      eachChild(object, [&](const Piece &picture) {
        if (picture.tag() == "mhni") image.pictures.push_back(pictureIn(picture, type == kWholePhoto));
      });
    });
    found_.images.push_back(std::move(image));
  }

  StoredPicture pictureIn(const Piece &record, bool isWhole) {
    const Fields fields = record.fields();
    const auto padding = [&](size_t at) { return static_cast<int16_t>(fields.half(at).value_or(0)); };
    StoredPicture picture;
    picture.format = fields.word(0x10).value_or(0);
    picture.offset = fields.word(0x14).value_or(0);
    picture.bytes = fields.word(0x18).value_or(0);
    picture.visible = {padding(0x1c), padding(0x1e), fields.half(0x20).value_or(0),
                       fields.half(0x22).value_or(0)};
    picture.isWhole = isWhole;
    eachChild(record, [&](const Piece &object) {
      if (typeOf(object) == kPictureFile) picture.file = textOf(object);
    });
    return picture;
  }

  void readAlbum(const Piece &record) {
    PhotoAlbum album;
    album.isAll = record.fields().byte(0x1e) == 1;
    eachChild(record, [&](const Piece &child) {
      if (typeOf(child) == kAlbumName) album.name = textOf(child);
      if (child.tag() == "mhia") album.images.push_back(child.fields().word(0x10).value_or(0));
    });
    found_.albums.push_back(std::move(album));
  }

  // 0 for a chunk that is no object.
  static uint16_t typeOf(const Piece &object) {
    const bool isObject = object.tag() == "mhod" && object.bytes.size() >= kObjectStart;
    return isObject ? Fields(object.bytes).half(0x0c).value_or(0) : uint16_t{0};
  }

  static std::string textOf(const Piece &object) {
    const Fields fields(object.bytes);
    const size_t length = fields.word(0x18).value_or(0);
    if (object.bytes.size() < kObjectTextAt || length > object.bytes.size() - kObjectTextAt ||
        length > kLongestName)
      return {};
    const std::string_view text = object.bytes.substr(kObjectTextAt, length);
    constexpr uint8_t kUtf16 = 2;
    return fields.byte(0x1c) == kUtf16 ? utf8OfUtf16(text, false) : std::string(text);
  }

  void index() {
    for (size_t i = 0; i < found_.images.size(); ++i) {
      found_.byId.emplace_back(found_.images[i].id, i);
      found_.bySong.emplace_back(found_.images[i].song, i);
    }
    std::sort(found_.byId.begin(), found_.byId.end());
    std::sort(found_.bySong.begin(), found_.bySong.end());
  }

  std::string_view file_;
  ImageDatabase found_;
};

const Image *firstOf(const std::vector<std::pair<uint64_t, size_t>> &index, uint64_t key,
                     const std::vector<Image> &images) {
  const auto found = std::lower_bound(index.begin(), index.end(), std::pair(key, size_t{0}));
  return found == index.end() || found->first != key ? nullptr : &images[found->second];
}

}  // namespace

const Image *ImageDatabase::withId(uint32_t id) const { return firstOf(byId, id, images); }

const Image *ImageDatabase::ofSong(uint64_t persistentId) const {
  return firstOf(bySong, persistentId, images);
}

ImageDatabase readImageDatabase(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
  if (static_cast<uint64_t>(status.st_size) > kMostImageDatabaseBytes)
    throw PlayerError("it is too large for a list of pictures");
  return readImageDatabase(readAt(file, 0, static_cast<size_t>(status.st_size)));
}

ImageDatabase readImageDatabase(std::string_view bytes) { return ImageReader(bytes).run(); }

}  // namespace player
