#include "zemhost/library/PictureList.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "host/Error.h"
#include "player/Chunk.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/StatedFormats.h"
#include "zemhost/output/Png.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

constexpr const char *kStatedFormats = ":iPod_Control:Device:SysInfoExtended";
constexpr const char *kPhotos = ":Photos";

// Opens a file that was found; it must be one with content, not a pipe that took its name meanwhile.
carbon::Descriptor openRegular(const SongFiles &files, const SongFile &file) {
  if (file.isOutside()) throw HostError(file.place + " lies outside the player");
  if (!file.isThere()) throw HostError(file.place, file.error);
  carbon::Descriptor open = files.open(file);
  struct stat status {};
  if (!open || fstat(open.number(), &status) != 0) throw HostError(file.path.string(), errno);
  if (!S_ISREG(status.st_mode)) throw HostError(file.path.string(), EINVAL);
  return open;
}

std::string readBytes(const SongFiles &files, const SongFile &file, uint64_t offset, size_t size) {
  const carbon::Descriptor open = openRegular(files, file);
  try {
    return player::readAt(open.number(), offset, size);
  } catch (const std::system_error &error) {
    throw HostError(file.path.string(), error.code().value());
  }
}

}  // namespace

PictureList::PictureList(SongFiles &files, const std::string &place, std::string pictures)
    : files_(files), pictures_(std::move(pictures)) {
  read(place);
  if (isThere_) readStatedFormats();
}

void PictureList::read(const std::string &place) {
  const SongFile file = files_.find(place);
  if (file.error == ENOENT || file.error == ENOTDIR) return;
  isThere_ = true;
  const std::string &name = file.place;
  try {
    const carbon::Descriptor open = openRegular(files_, file);
    images_ = player::readImageDatabase(open.number());
    if (images_.brokenAt) {
      warning_ = name + ": the list of pictures is damaged at " + player::hex(*images_.brokenAt) + ", and " +
                 countText(images_.images.size(), "image was", "images were") + " read";
    }
  } catch (const player::PlayerError &error) {
    warning_ = name + ": " + error.what() + "; its pictures are left out";
  } catch (const std::system_error &error) {
    warning_ = name + ": " + error.code().message() + "; its pictures are left out";
  } catch (const HostError &error) {
    warning_ = std::string(error.what()) + "; its pictures are left out";
  }
}

// Most players have no such file; the known forms do then.
void PictureList::readStatedFormats() {
  const SongFile file = files_.find(kStatedFormats);
  if (!file.isThere()) return;
  try {
    stated_ = player::statedFormats(readBytes(files_, file, 0, player::kMostStatedBytes + 1));
  } catch (const HostError &) {
    stated_.clear();
  }
}

std::vector<PictureList::Candidate> PictureList::candidates(const std::set<size_t> &images) const {
  std::vector<Candidate> found;
  for (const size_t image : images) {
    for (const player::StoredPicture &picture : images_.images[image].pictures) {
      if (picture.isWhole) continue;
      const auto format = player::pictureFormat(picture.format, picture.bytes, stated_);
      if (format) found.push_back({&picture, *format, uint64_t{format->width} * format->height});
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Candidate &a, const Candidate &b) { return a.pixels > b.pixels; });
  return found;
}

KeptPicture PictureList::largestKept(const std::set<size_t> &images) const {
  const std::vector<Candidate> found = candidates(images);
  std::optional<HostError> first;
  for (const Candidate &candidate : found) {
    try {
      return load(candidate);
    } catch (const HostError &error) {
      if (!first) first = error;
    }
  }
  if (first) throw HostError(*first);
  throw HostError("the player keeps it in no form that is known");
}

PictureFile PictureList::largest(const std::set<size_t> &images) const {
  KeptPicture kept = largestKept(images);
  if (!kept.jpeg.empty()) return {std::move(kept.jpeg), ".jpg"};
  return {pngOf(kept.pixels), ".png"};
}

KeptPicture PictureList::load(const Candidate &candidate) const {
  const player::StoredPicture &picture = *candidate.picture;
  const SongFile file = files_.find(pictures_ + picture.file);
  const std::string bytes = readBytes(files_, file, picture.offset, picture.bytes);
  if (bytes.size() != picture.bytes) {
    throw HostError(file.path.string() + ": the file ends before the picture at " +
                    player::hex(picture.offset) + " does");
  }
  if (candidate.format.pixels == player::PixelForm::Jpeg) {
    const std::string_view jpeg = player::jpegIn(bytes);
    if (jpeg.empty())
      throw HostError(file.path.string() + ": no JPEG stands at " + player::hex(picture.offset));
    return {{}, std::string(jpeg)};
  }
  return {player::visiblePart(player::decodedSlot(bytes, candidate.format), picture.visible), {}};
}

carbon::Descriptor PictureList::open(const SongFile &photo) const { return openRegular(files_, photo); }

SongFile PictureList::wholePhoto(const player::Image &image) const {
  for (const player::StoredPicture &picture : image.pictures) {
    if (picture.isWhole && picture.file.starts_with(':')) return files_.find(kPhotos + picture.file);
  }
  return {};
}

}  // namespace zemhost
