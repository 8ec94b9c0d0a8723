#include "zemhost/library/Covers.h"

namespace zemhost {

namespace {

constexpr const char *kArtworkFolder = ":iPod_Control:Artwork";
constexpr const char *kCoverList = ":iPod_Control:Artwork:ArtworkDB";

}  // namespace

const PictureList *Covers::list() const {
  if (!isOnPlayer_) return nullptr;
  if (!list_) list_ = std::make_unique<const PictureList>(files_, kCoverList, kArtworkFolder);
  return list_->isThere() ? list_.get() : nullptr;
}

std::optional<bool> Covers::has(const player::SongFacts &song) const {
  const bool saysWhich = song.image || song.persistentId || song.picture;
  if (!saysWhich || !areKnown()) return std::nullopt;
  if (imageOf(song)) return true;
  // Of a list with a fault the image may be in what was left out.
  return list_->warning().empty() ? std::optional(false) : std::nullopt;
}

// A song names its image, and one that names none is named by it; one that is marked as without a picture may
// still name what was its image.
std::optional<size_t> Covers::imageOf(const player::SongFacts &song) const {
  const PictureList *const list = this->list();
  if (list == nullptr || song.picture == false) return std::nullopt;
  const player::ImageDatabase &images = list->images();
  const player::Image *image = nullptr;
  if (song.image) {
    image = images.withId(*song.image);
  } else if (song.persistentId) {
    image = images.ofSong(*song.persistentId);
  }
  if (image == nullptr || image->pictures.empty()) return std::nullopt;
  return static_cast<size_t>(image - images.images.data());
}

}  // namespace zemhost
