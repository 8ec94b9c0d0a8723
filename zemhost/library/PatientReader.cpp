#include "zemhost/library/PatientReader.h"

#include <algorithm>
#include <numeric>
#include <system_error>

#include "player/FileBytes.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

constexpr int kTries = 3;
constexpr size_t kPiecesOfABlock = PatientReader::kBlock / PatientReader::kPiece;

}  // namespace

std::string gapsText(const std::vector<Gap> &gaps) {
  constexpr size_t kShown = 5;
  std::string text;
  for (size_t i = 0; i < std::min(gaps.size(), kShown); ++i) {
    text.append(i == 0 ? "" : ", ").append(countText(gaps[i].size, "byte", "bytes"));
    text.append(" at ").append(std::to_string(gaps[i].offset));
  }
  if (gaps.size() > kShown) {
    uint64_t rest = 0;
    for (size_t i = kShown; i < gaps.size(); ++i) rest += gaps[i].size;
    text += " and " + countText(rest, "byte", "bytes") + " at " +
            countText(gaps.size() - kShown, "more place", "more places");
  }
  return text + " cannot be read";
}

// One byte more than there should be is enough to see that a file grows.
PatientReader::PatientReader(const carbon::Descriptor &file, uint64_t size)
    : file_(file), size_(size), block_(static_cast<size_t>(std::min<uint64_t>(kBlock, size + 1))) {}

bool PatientReader::read(uint64_t at, char *bytes, size_t size, size_t &got) {
  try {
    got = player::readAt(file_.number(), at, bytes, size);
    failedPieces_ = 0;
    return true;
  } catch (const std::system_error &error) {
    error_ = error.code().value();
    return false;
  }
}

void PatientReader::lose(uint64_t at, size_t size) {
  failedPieces_ += (size + kPiece - 1) / kPiece;
  if (!gaps_.empty() && gaps_.back().offset + gaps_.back().size == at) {
    gaps_.back().size += size;
  } else {
    gaps_.push_back({at, size});
  }
}

std::string_view PatientReader::block(uint64_t at) {
  const bool isHopeless = failedPieces_ >= kPiecesOfABlock;
  size_t got = 0;
  for (int tries = isHopeless ? 1 : kTries; tries > 0; --tries) {
    if (read(at, block_.data(), block_.size(), got)) return {block_.data(), got};
  }
  const auto wanted = static_cast<size_t>(std::min<uint64_t>(kBlock, size_ - std::min(at, size_)));
  if (wanted == 0) return {};
  std::fill(block_.begin(), block_.end(), '\0');
  if (isHopeless) {
    lose(at, wanted);
    return {block_.data(), wanted};
  }
  for (size_t done = 0; done < wanted; done += kPiece) {
    const size_t piece = std::min(kPiece, wanted - done);
    if (!read(at + done, block_.data() + done, piece, got)) {
      std::fill_n(block_.begin() + static_cast<ptrdiff_t>(done), piece, '\0');
      lose(at + done, piece);
    } else if (got < piece) {
      return {block_.data(), done + got};  // the file has been cut off
    }
  }
  return {block_.data(), wanted};
}

std::string_view PatientReader::retry(const Gap &part) {
  const auto size = static_cast<size_t>(std::min<uint64_t>(part.size, block_.size()));
  size_t got = 0;
  const bool isRead = read(part.offset, block_.data(), size, got) && got == size;
  return isRead ? std::string_view(block_.data(), size) : std::string_view();
}

uint64_t PatientReader::bytesLost() const {
  return std::accumulate(gaps_.begin(), gaps_.end(), uint64_t{0},
                         [](uint64_t sum, const Gap &gap) { return sum + gap.size; });
}

}  // namespace zemhost
