#include "samples/SampleCovers.h"

#include <algorithm>
#include <array>
#include <vector>

#include "samples/ImageDatabaseWriter.h"
#include "samples/SampleLibrary.h"

namespace samples {

namespace {

// Lengths of drawings are thousandths of a picture's side, and all of them integers, so that every machine
// draws the same.
constexpr int32_t kUnit = 1000;

struct Colour {
  int32_t red = 0;
  int32_t green = 0;
  int32_t blue = 0;
};

// A rectangle from its middle, or an ellipse in it.
struct Shape {
  bool isRound = false;
  int32_t x = 0;
  int32_t y = 0;
  int32_t halfWidth = 0;
  int32_t halfHeight = 0;
  Colour colour{};

  [[nodiscard]] bool Holds(int32_t atX, int32_t atY) const {
    const int64_t dx = atX - x;
    const int64_t dy = atY - y;
    if (!isRound) return dx >= -halfWidth && dx < halfWidth && dy >= -halfHeight && dy < halfHeight;
    const int64_t a = halfWidth;
    const int64_t b = halfHeight;
    return dx * dx * b * b + dy * dy * a * a <= a * a * b * b;
  }
};

constexpr bool kRound = true;
constexpr bool kSquare = false;

// A cover: what it shows, and the songs that have it.
struct Design {
  Colour top{};
  Colour bottom{};
  std::vector<Shape> shapes{};  // later ones over earlier ones
  std::vector<size_t> songs{};
  int32_t height = kUnit;  // less: the picture is wider than high, with bars above and below
  bool isNamed = true;     // whether the songs name it
};

const std::vector<Design> &Designs() {
  static const std::vector<Design> designs{
      // A low sun over the water.
      {.top = {24, 44, 96},
       .bottom = {244, 176, 104},
       .shapes = {{kRound, 500, 560, 170, 170, {255, 226, 140}},
                  {kSquare, 500, 800, 500, 200, {18, 58, 92}},
                  {kSquare, 500, 680, 150, 12, {255, 226, 140}},
                  {kSquare, 470, 750, 110, 12, {236, 190, 120}},
                  {kSquare, 540, 830, 70, 12, {200, 160, 116}}},
       .songs = {0, 1}},
      // A wheel.
      {.top = {232, 224, 208},
       .bottom = {190, 176, 150},
       .shapes = {{kSquare, 500, 500, 60, 420, {150, 40, 32}},
                  {kSquare, 500, 500, 420, 60, {150, 40, 32}},
                  {kRound, 500, 500, 330, 330, {150, 40, 32}},
                  {kRound, 500, 500, 230, 230, {226, 216, 198}},
                  {kRound, 500, 500, 90, 90, {60, 30, 28}}},
       .songs = {3, 4}},
      // The windows of a train at night.
      {.top = {8, 10, 32},
       .bottom = {30, 26, 64},
       .shapes = {{kRound, 780, 210, 70, 70, {240, 240, 214}},
                  {kRound, 750, 195, 62, 62, {12, 14, 38}},
                  {kSquare, 500, 640, 500, 130, {70, 20, 40}},
                  {kSquare, 140, 610, 80, 50, {255, 214, 120}},
                  {kSquare, 380, 610, 80, 50, {255, 214, 120}},
                  {kSquare, 620, 610, 80, 50, {255, 234, 170}},
                  {kSquare, 860, 610, 80, 50, {255, 214, 120}},
                  {kSquare, 500, 800, 500, 10, {120, 120, 130}}},
       .songs = {6, 7, 8}},
      // Against the light.
      {.top = {250, 244, 220},
       .bottom = {236, 190, 150},
       .shapes = {{kRound, 500, 330, 150, 180, {60, 40, 50}}, {kRound, 500, 1000, 380, 480, {60, 40, 50}}},
       .songs = {10, 11, 12}},
      // A road with its signs.
      {.top = {40, 140, 170},
       .bottom = {214, 222, 170},
       .shapes = {{kSquare, 500, 850, 500, 150, {60, 62, 66}},
                  {kSquare, 150, 850, 70, 14, {244, 236, 190}},
                  {kSquare, 500, 850, 70, 14, {244, 236, 190}},
                  {kSquare, 850, 850, 70, 14, {244, 236, 190}},
                  {kSquare, 700, 520, 14, 190, {90, 70, 60}},
                  {kSquare, 700, 340, 190, 120, {206, 50, 60}},
                  {kSquare, 700, 340, 165, 95, {250, 240, 220}}},
       .songs = {14, 15, 16, 17}},
      // A heart of few points.
      {.top = {20, 12, 40},
       .bottom = {60, 12, 90},
       .shapes = {{kSquare, 350, 340, 90, 60, {255, 60, 140}},
                  {kSquare, 650, 340, 90, 60, {255, 60, 140}},
                  {kSquare, 500, 460, 300, 60, {255, 60, 140}},
                  {kSquare, 500, 580, 180, 60, {255, 60, 140}},
                  {kSquare, 500, 700, 60, 60, {255, 60, 140}},
                  {kSquare, 320, 340, 60, 60, {255, 170, 200}}},
       .songs = {22}},
      // Waves from a mast, wider than high.
      {.top = {250, 250, 246},
       .bottom = {206, 214, 222},
       .shapes = {{kRound, 500, 420, 330, 260, {60, 110, 150}},
                  {kRound, 500, 420, 270, 205, {238, 240, 242}},
                  {kRound, 500, 420, 200, 150, {60, 110, 150}},
                  {kRound, 500, 420, 140, 100, {230, 234, 238}},
                  {kRound, 500, 420, 60, 60, {200, 70, 50}},
                  {kSquare, 500, 670, 16, 210, {70, 74, 80}}},
       .songs = {27, 28},
       .height = 750},
      // A lighthouse.
      {.top = {12, 18, 40},
       .bottom = {50, 70, 100},
       .shapes = {{kSquare, 250, 260, 250, 40, {252, 240, 170}},
                  {kSquare, 500, 580, 70, 300, {236, 236, 232}},
                  {kSquare, 500, 520, 70, 60, {190, 40, 40}},
                  {kSquare, 500, 760, 70, 60, {190, 40, 40}},
                  {kSquare, 500, 260, 50, 50, {255, 250, 200}},
                  {kSquare, 500, 940, 500, 70, {20, 26, 34}}},
       .songs = {26},
       .isNamed = false}};
  return designs;
}

int32_t Between(int32_t from, int32_t to, int32_t part) { return from + (to - from) * part / kUnit; }

Colour ColourAt(const Design &design, int32_t x, int32_t y) {
  const int32_t bar = (kUnit - design.height) / 2;
  if (y < bar || y >= kUnit - bar) return {};
  const int32_t part = (y - bar) * kUnit / design.height;
  Colour colour{Between(design.top.red, design.bottom.red, part),
                Between(design.top.green, design.bottom.green, part),
                Between(design.top.blue, design.bottom.blue, part)};
  for (const Shape &shape : design.shapes) {
    if (shape.Holds(x, y)) colour = shape.colour;
  }
  return colour;
}

constexpr uint32_t kFirstId = 100;

struct Size {
  uint32_t format = 0;
  uint32_t side = 0;
};
constexpr std::array<Size, 2> kSizes = {{{1028, 100}, {1029, 200}}};

}  // namespace

uint32_t SampleImageId(size_t song) {
  for (size_t i = 0; i < Designs().size(); ++i) {
    const std::vector<size_t> &songs = Designs()[i].songs;
    if (Designs()[i].isNamed && std::find(songs.begin(), songs.end(), song) != songs.end())
      return static_cast<uint32_t>(kFirstId + i);
  }
  return 0;
}

bool SampleHasCover(size_t song) {
  return std::any_of(Designs().begin(), Designs().end(), [&](const Design &design) {
    return std::find(design.songs.begin(), design.songs.end(), song) != design.songs.end();
  });
}

std::string DrawnCover(size_t picture, uint32_t side) {
  const Design &design = Designs().at(picture);
  std::string pixels;
  const auto unit = [side](uint32_t place) {
    return static_cast<int32_t>((2 * place + 1) * static_cast<uint32_t>(kUnit) / (2 * side));
  };
  for (uint32_t y = 0; y < side; ++y) {
    for (uint32_t x = 0; x < side; ++x) {
      const Colour colour = ColourAt(design, unit(x), unit(y));
      for (const int32_t part : {colour.red, colour.green, colour.blue}) pixels += static_cast<char>(part);
    }
  }
  return pixels;
}

std::string SamplePictures(uint32_t side) {
  std::string bytes;
  for (size_t picture = 0; picture < Designs().size(); ++picture) {
    const std::string pixels = DrawnCover(picture, side);
    for (size_t at = 0; at < pixels.size(); at += 3) {
      const auto part = [&](size_t which) {
        return static_cast<uint32_t>(static_cast<unsigned char>(pixels[at + which]));
      };
      const uint32_t value = part(0) >> 3 << 11 | part(1) >> 2 << 5 | part(2) >> 3;
      bytes += static_cast<char>(value);
      bytes += static_cast<char>(value >> 8);
    }
  }
  return bytes;
}

std::string SampleArtworkDB() {
  std::vector<StoredImage> images;
  for (size_t i = 0; i < Designs().size(); ++i) {
    const Design &design = Designs()[i];
    StoredImage image{static_cast<uint32_t>(kFirstId + i), SamplePersistentId(design.songs.front()), {}};
    for (const Size &size : kSizes) {
      const uint32_t bytes = 2 * size.side * size.side;
      const auto side = static_cast<uint16_t>(size.side);
      const auto bar = static_cast<int16_t>((kUnit - design.height) * side / (2 * kUnit));
      image.sizes.push_back({.format = size.format,
                             .offset = static_cast<uint32_t>(i) * bytes,
                             .bytes = bytes,
                             .verticalPadding = bar,
                             .height = static_cast<uint16_t>(side - bar),
                             .width = side,
                             .file = ":F" + std::to_string(size.format) + "_1.ithmb"});
    }
    images.push_back(std::move(image));
  }
  return WriteImageDatabase(images);
}

}  // namespace samples
