#include "player/DiskImage.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <sys/stat.h>

#include "player/FileBytes.h"

namespace player {

namespace {

struct Sign {
  size_t at;
  std::string_view bytes;
  const char *what;
};

constexpr size_t kHead = 4608;  // a second sector of 4096 bytes, and a few more

constexpr Sign kVolumes[] = {{1024, "H+", "HFS+"},   {1024, "HX", "HFS+"}, {1024, "BD", "HFS"},
                             {82, "FAT32", "FAT32"}, {54, "FAT", "FAT"},   {3, "EXFAT   ", "exFAT"}};
constexpr Sign kApfs = {32, "NXSB", "APFS"};

constexpr Sign kDisks[] = {{512, "EFI PART", "GPT"},
                           {4096, "EFI PART", "GPT"},
                           {512, "PM", "an Apple partition map"},
                           {2048, "PM", "an Apple partition map"},
                           {4096, "PM", "an Apple partition map"},
                           {510, "\x55\xAA", "MBR"}};

bool has(std::string_view head, const Sign &sign) {
  return head.size() >= sign.at && head.substr(sign.at).starts_with(sign.bytes);
}

template <size_t N>
const char *find(std::string_view head, const Sign (&signs)[N]) {
  const auto *const found =
      std::find_if(std::begin(signs), std::end(signs), [&](const Sign &sign) { return has(head, sign); });
  return found == std::end(signs) ? nullptr : found->what;
}

// How it is mounted without the right to write to it.
std::string howToMount(int file, const std::string &name) {
  struct stat status {};
  const bool isDevice = fstat(file, &status) == 0 && S_ISBLK(status.st_mode);
  return isDevice ? "udisksctl mount -o ro -b "
                  : "udisksctl loop-setup -r -f " + name + " and udisksctl mount -b ";
}

}  // namespace

std::string diskImageText(int file, const std::string &name) {
  const std::string head = readAt(file, 0, kHead);
  if (has(head, kApfs))
    return "it is a volume in APFS, which Linux cannot mount; copy its files to another disk with a Mac";
  // A volume in FAT ends its first sector as a table of partitions does.
  if (const char *const volume = find(head, kVolumes)) {
    return std::string("it is a volume in ") + volume + "; mount it, as by " + howToMount(file, name) +
           "DEVICE, and name the folder where it is mounted";
  }
  if (const char *const table = find(head, kDisks)) {
    return std::string("it is a whole disk with a table of partitions (") + table +
           "); mount the one that holds the music, as by " + howToMount(file, name) +
           "PARTITION, and name the folder where it is mounted";
  }
  return {};
}

}  // namespace player
