#include "zemhost/output/Jpeg.h"

#include <cstdint>
#include <memory>
#include <new>
#include <turbojpeg.h>

#include "host/Error.h"

namespace zemhost {

namespace {

constexpr int kMostPixels = 1 << 24;

using Turbo = std::unique_ptr<void, int (*)(tjhandle)>;

Turbo started(tjhandle handle) {
  if (handle == nullptr) throw std::bad_alloc();  // it fails for no other reason
  return {handle, tjDestroy};
}

[[noreturn]] void fail(const char *what, const Turbo &turbo) {
  const std::string reason = tjGetErrorStr2(turbo.get());
  // "Insufficient memory", "Memory allocation failure": nothing that the picture is to blame for.
  if (reason.find("emory") != std::string::npos) throw std::bad_alloc();
  throw HostError(std::string("the picture cannot be ") + what + " as JPEG: " + reason);
}

}  // namespace

std::string jpegOf(const player::Picture &picture, int quality) {
  const Turbo turbo = started(tjInitCompress());
  unsigned char *bytes = nullptr;
  unsigned long size = 0;
  const int result = tjCompress2(turbo.get(), reinterpret_cast<const unsigned char *>(picture.rgb.data()),
                                 static_cast<int>(picture.width), 0, static_cast<int>(picture.height),
                                 TJPF_RGB, &bytes, &size, TJSAMP_420, quality, 0);
  const std::unique_ptr<unsigned char, void (*)(unsigned char *)> owner(bytes, tjFree);
  if (result != 0) fail("written", turbo);
  return {reinterpret_cast<const char *>(bytes), size};
}

player::Picture pixelsOfJpeg(std::string_view bytes) {
  const Turbo turbo = started(tjInitDecompress());
  const auto *const data = reinterpret_cast<const unsigned char *>(bytes.data());
  int width = 0;
  int height = 0;
  int sampling = 0;
  int colours = 0;
  if (tjDecompressHeader3(turbo.get(), data, bytes.size(), &width, &height, &sampling, &colours) != 0)
    fail("read", turbo);
  if (width <= 0 || height <= 0 || height > kMostPixels / width)
    throw HostError("the picture has too many pixels");
  player::Picture picture{static_cast<uint32_t>(width), static_cast<uint32_t>(height), {}};
  picture.rgb.resize(size_t{3} * picture.width * picture.height);
  // A file of a great many passes over the same pixels takes no time that its size does not warrant.
  const int result =
      tjDecompress2(turbo.get(), data, bytes.size(), reinterpret_cast<unsigned char *>(picture.rgb.data()),
                    width, 0, height, TJPF_RGB, TJFLAG_LIMITSCANS | TJFLAG_STOPONWARNING);
  if (result != 0) fail("read", turbo);
  return picture;
}

}  // namespace zemhost
