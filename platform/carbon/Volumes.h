#pragma once

// The volumes that paths can begin with, and their reference numbers.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace carbon {

constexpr int16_t kBootVolume = -1;

struct Volume {
  std::string name;  // as the Mac writes it
  std::string root;  // absolute POSIX path without symbolic links
};

class Volumes {
 public:
  // Mounted volumes are looked for under `prefix` + "/Volumes" and the other usual places.
  explicit Volumes(std::string prefix);

  // Declares a volume, in place of one that was declared under the name before. Throws bdNamErr, or fnfErr
  // when the root is no directory.
  void declare(const std::string &name, const std::string &root);

  // The reference number (below 0) of the volume with this name: an exact match first, declared volumes
  // before mounted ones, the boot volume last. Throws nsvErr.
  int16_t find(std::string_view name);

  // The reference number of the volume with the longest root that holds this absolute path, which has no
  // symbolic links in it.
  int16_t holding(std::string_view path);

  // The volume of a reference number. Throws nsvErr for a number never given out and for a declaration that
  // was replaced.
  const Volume &at(int16_t reference) const;

 private:
  enum class Standing { kDeclared, kMounted, kReplaced };
  struct Record {
    Volume volume;
    Standing standing;
  };

  std::vector<Volume> inOrder() const;
  int16_t referenceOf(const Volume &volume, Standing standing);

  std::string prefix_;
  std::vector<Record> records_;  // kBootVolume comes first
};

}  // namespace carbon
