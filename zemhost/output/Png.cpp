#include "zemhost/output/Png.h"

#include <png.h>

#include "host/Error.h"

namespace zemhost {

std::string pngOf(const player::Picture &picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.width;
  image.height = picture.height;
  image.format = PNG_FORMAT_RGB;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string bytes(size, '\0');
  if (png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.rgb.data(), 0, nullptr) == 0)
    throw HostError("the picture cannot be written as PNG: " + std::string(image.message));
  bytes.resize(size);
  return bytes;
}

}  // namespace zemhost
