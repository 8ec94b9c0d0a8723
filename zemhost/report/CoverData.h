#pragma once

// The covers of a page: small pictures that stand in the page itself.

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/Covers.h"

namespace zemhost {

// The longest address that a cover may have, in bytes.
constexpr size_t kMostCoverBytes = 12'000;

// A picture as an address that holds it: "data:image/jpeg;base64,...", of kMostCoverBytes at most. It is made
// smaller and coarser until it fits. What stood in a JPEG file beside its pixels is left out. Throws
// HostError for a picture that cannot be read.
std::string coverAddress(const KeptPicture &picture);

// The covers of albums, each once, whatever number of albums has it.
class CoverData {
 public:
  explicit CoverData(const Covers &covers) : covers_(covers) {}

  // The number of the cover of an album whose songs have these images (positions in the player's list): its
  // place in addresses(). No value without images, and where none of them can be read.
  std::optional<size_t> add(const std::set<size_t> &images);

  const std::vector<std::string_view> &addresses() const { return addresses_; }
  // Of how many albums no picture could be read.
  size_t unreadable() const { return unreadable_; }

 private:
  std::optional<size_t> load(const std::set<size_t> &images);

  const Covers &covers_;
  std::map<std::string, size_t> places_;                     // of each address
  std::vector<std::string_view> addresses_;                  // the same in order
  std::map<std::set<size_t>, std::optional<size_t>> known_;  // what there is for these images
  size_t unreadable_ = 0;
};

}  // namespace zemhost
