#include "zemhost/rescue/PhotoExport.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "player/Folder.h"
#include "zemhost/library/PictureList.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/NewFileWriter.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace fs = std::filesystem;

namespace {

constexpr const char *kPhotoFolder = "Photos";
constexpr const char *kPhotoFile = "Photo Database";

// The list's place, and where its names of smaller pictures start from.
constexpr const char *kPhotoList = ":Photos:Photo Database";
constexpr const char *kThumbnailFolder = ":Photos:Thumbs";

// Of pictures, in small letters; a copy with another one would be opened as something else.
constexpr std::array<std::string_view, 10> kPictureExtensions = {".bmp", ".gif", ".heic", ".jpeg", ".jpg",
                                                                 ".pct", ".png", ".psd",  ".tif",  ".tiff"};

fs::path playerOf(const fs::path &named) {
  std::error_code error;
  if (!fs::exists(named, error)) throw HostError(named.string(), error ? error.value() : ENOENT);
  fs::path path = fs::absolute(named, error).lexically_normal();
  if (!path.has_filename()) path = path.parent_path();  // "player/" is "player"
  if (fs::is_directory(path, error)) return player::isControlFolder(path) ? path.parent_path() : path;
  if (player::isNamed(path, kPhotoFile) && player::isNamed(path.parent_path(), kPhotoFolder))
    return path.parent_path().parent_path();
  throw HostError(named.string() + ": name the player, or its " + kPhotoFile);
}

player::DatabaseLocation locationOf(const fs::path &named) {
  const fs::path root = playerOf(named);
  return {root / kPhotoFolder / kPhotoFile, named.string(), root};
}

class PhotoExport {
 public:
  PhotoExport(const player::DatabaseLocation &location, const fs::path &destination)
      : files_(location, false),
        list_(files_, kPhotoList, kThumbnailFolder),
        writer_(destination, location.volumeRoot) {
    if (!list_.isThere())
      throw HostError(location.name + ": no photos here: the player has no Photos/Photo Database");
  }

  FilesResult run() {
    writer_.begin();
    if (!list_.warning().empty()) writer_.addProblem("the list", list_.warning());
    const std::vector<player::PhotoAlbum> &albums = list_.images().albums;
    for (size_t i = 0; i < albums.size(); ++i) {
      if (!albums[i].isAll) writeAlbum(albums[i], i);
    }
    for (size_t image = 0; image < list_.images().images.size(); ++image) {
      if (!written_.contains(image)) writePhoto(image, "");
    }
    return writer_.finish();
  }

 private:
  void writeAlbum(const player::PhotoAlbum &album, size_t number) {
    const std::string fallback = "Album " + std::to_string(number);
    const std::string folder =
        folders_.take([&](std::string_view suffix) { return safeName(album.name, fallback, suffix); },
                      [](const std::string &) { return true; });
    std::set<size_t> photos;
    for (const uint32_t id : album.images) {
      const player::Image *const image = list_.images().withId(id);
      if (image == nullptr) {
        writer_.addProblem("album " + inQuotes(album.name), "no photo has the ID " + std::to_string(id));
        continue;
      }
      const auto place = static_cast<size_t>(image - list_.images().images.data());
      if (photos.insert(place).second) writePhoto(place, folder + "/");
    }
    written_.insert(photos.begin(), photos.end());
  }

  void writePhoto(size_t place, const std::string &folder) {
    const player::Image &image = list_.images().images[place];
    const SongFile whole = list_.wholePhoto(image);
    const std::string number = "Photo " + std::to_string(image.id);
    const fs::path name = whole.path.filename();
    if (whole.isThere()) {
      writer_.write(
          number, [&] { return list_.open(whole); },
          [&](std::string_view suffix) {
            return folder + safeName(name.stem().string(), number, suffix, extensionOf(name));
          });
      return;
    }
    PictureFile picture;
    writer_.write(
        number,
        [&] {
          picture = list_.largest({place});
          return fileOf(picture.bytes);
        },
        [&](std::string_view suffix) {
          return folder + safeName(name.stem().string(), number, suffix, picture.extension);
        });
  }

  static std::string extensionOf(const fs::path &name) {
    const std::string extension = name.extension().string();
    const bool isKnown = std::find(kPictureExtensions.begin(), kPictureExtensions.end(),
                                   foldedText(extension)) != kPictureExtensions.end();
    return isKnown ? extension : ".bin";
  }

  SongFiles files_;
  PictureList list_;
  NewFileWriter writer_;
  TargetNames folders_;
  std::set<size_t> written_;  // into a folder of an album
};

}  // namespace

FilesResult writePhotos(const fs::path &player, const fs::path &destination) {
  return PhotoExport(locationOf(player), destination).run();
}

}  // namespace zemhost
