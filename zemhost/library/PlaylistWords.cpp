#include "zemhost/library/PlaylistWords.h"

#include <algorithm>

#include "zemhost/output/Units.h"

namespace zemhost {

std::string playlistKindText(player::PlaylistKind kind) {
  switch (kind) {
    case player::PlaylistKind::Library:
      return "library";
    case player::PlaylistKind::Smart:
      return "smart";
    case player::PlaylistKind::Folder:
      return "folder";
    case player::PlaylistKind::Podcasts:
      return "podcasts";
    case player::PlaylistKind::OnTheGo:
      return "on-the-go";
    case player::PlaylistKind::Ordinary:
      break;
  }
  return "playlist";
}

std::string sortOrderText(const std::optional<uint32_t> &order) {
  struct Order {
    uint32_t number;
    const char *text;
  };
  static constexpr Order kOrders[] = {
      {1, "manual"},       {3, "title"},          {4, "album"},        {5, "artist"},
      {6, "bit rate"},     {7, "genre"},          {8, "kind"},         {9, "date modified"},
      {10, "track"},       {11, "size"},          {12, "time"},        {13, "year"},
      {14, "sample rate"}, {15, "comment"},       {16, "date added"},  {17, "equalizer"},
      {18, "composer"},    {20, "plays"},         {21, "last played"}, {22, "disc"},
      {23, "rating"},      {24, "date released"}, {25, "BPM"},         {26, "grouping"},
      {27, "category"},    {28, "description"},   {29, "show"},        {30, "season"},
      {31, "episode"}};
  if (!order) return {};
  const auto *const known = std::find_if(std::begin(kOrders), std::end(kOrders),
                                         [&](const Order &one) { return one.number == *order; });
  return known == std::end(kOrders) ? numberText(*order) : known->text;
}

}  // namespace zemhost
