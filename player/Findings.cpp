#include "player/Findings.h"

#include <numeric>
#include <utility>

namespace player {

std::string_view kindName(FindingKind kind) {
  switch (kind) {
    case FindingKind::UnexplainedBytes:
      return "unexplained-bytes";
    case FindingKind::WrongLength:
      return "wrong-length";
    case FindingKind::WrongCount:
      return "wrong-count";
    case FindingKind::ClassDiffers:
      return "class-differs";
    case FindingKind::EntryWithoutSong:
      return "entry-without-song";
    case FindingKind::LossyText:
      return "lossy-text";
    case FindingKind::MissingFile:
      return "missing-file";
    case FindingKind::UnnamedFile:
      return "unnamed-file";
    case FindingKind::UnusedFile:
      return "unused-file";
    case FindingKind::UnresolvedId:
      return "unresolved-id";
    case FindingKind::ShortFile:
      return "short-file";
    case FindingKind::Unreadable:
      return "unreadable";
    case FindingKind::AbsentFile:
      return "absent-file";
    case FindingKind::DamagedFile:
      return "damaged-file";
  }
  return {};
}

void Findings::add(Finding finding) {
  if (++counts_[static_cast<size_t>(finding.kind)] <= kKept) kept_.push_back(std::move(finding));
}

uint64_t Findings::total() const { return std::accumulate(counts_.begin(), counts_.end(), uint64_t{0}); }

}  // namespace player
