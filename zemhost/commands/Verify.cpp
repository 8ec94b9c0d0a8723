#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <sys/stat.h>
#include <vector>

#include "host/Error.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/FilesSummary.h"
#include "zemhost/output/Units.h"
#include "zemhost/rescue/Checksums.h"

namespace zemhost {

namespace {

struct Verified {
  uint64_t same = 0;
  std::vector<std::string> changed;
  std::vector<std::string> missing;
  std::vector<std::string> unreadable;
};

void verifyFile(const DestinationFolder &folder, const std::string &file, const std::string &sum,
                Verified &verified) {
  try {
    const auto status = folder.statusOf(file);
    if (!status || !S_ISREG(status->st_mode)) {
      verified.missing.push_back(file);
    } else if (sha256OnDisk(folder.open(file)) != sum) {
      verified.changed.push_back(file);
    } else {
      ++verified.same;
    }
  } catch (const CopyFailure &failure) {
    verified.unreadable.push_back(file + ": " + failure.what());
  }
}

Checksums sumsOf(const DestinationFolder &folder) {
  const std::string name = (folder.path() / kChecksumFile).string();
  try {
    if (!folder.statusOf(kChecksumFile)) throw HostError(name, ENOENT);
    const auto sums = checksumsIn(folder, kChecksumFile);
    if (!sums) throw HostError(name + ": it holds no SHA-256 sums of files");
    return *sums;
  } catch (const CopyFailure &failure) {
    throw HostError(name + ": " + failure.what());
  }
}

}  // namespace

int verifyCopies(const VerifyArguments &arguments) {
  if (std::error_code error; !std::filesystem::is_directory(arguments.destination, error))
    throw HostError(arguments.destination, error ? error.value() : ENOTDIR);
  const DestinationFolder folder(arguments.destination, {});
  const Checksums sums = sumsOf(folder);
  Verified verified;
  for (const auto &[file, sum] : sums.sums()) verifyFile(folder, file, sum, verified);
  std::cout << countText(verified.same, "file is", "files are") << " as copied\n";
  writeList(countText(verified.changed.size(), "file has changed", "files have changed"), verified.changed);
  writeList(countText(verified.missing.size(), "file is missing", "files are missing"), verified.missing);
  writeList(countText(verified.unreadable.size(), "file cannot be read", "files cannot be read"),
            verified.unreadable);
  const bool isSame = verified.changed.empty() && verified.missing.empty() && verified.unreadable.empty();
  return isSame ? kSuccess : kIncomplete;
}

}  // namespace zemhost
