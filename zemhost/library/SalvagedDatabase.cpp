#include "zemhost/library/SalvagedDatabase.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "player/CompressedDatabase.h"
#include "player/Error.h"
#include "player/FileBytes.h"
#include "player/FileProbe.h"
#include "player/MendedDatabase.h"
#include "player/Salvage.h"
#include "zemhost/library/PrivateCopy.h"
#include "zemhost/library/Reconciliation.h"

namespace zemhost {

namespace {

constexpr size_t kPiece = size_t{1} << 20;  // written at a time

// A database that may be damaged, as far as it can be read.
struct Source {
  bool compressed = false;
  std::string bytes;
  player::FileAccount account;
};

void read(int file, const player::DatabaseLocation &location, Source &source) {
  try {
    source.bytes = player::readWhatCanBeRead(file);
    source.account = player::walkChunks(file);
  } catch (const std::system_error &) {
    // Parts of the file cannot be read: what is there of it is looked at without an account.
    if (source.bytes.empty()) throw HostError(location.name, EIO);
    source.account.size = source.bytes.size();
  }
}

Source readSource(const player::DatabaseLocation &location, bool compressed) {
  Source source{compressed, {}, {}};
  if (compressed) {
    PrivateCopy copy(location);
    try {
      inflateInto(copy, location);
    } catch (const player::InflatesTooFar &) {
      throw;  // no database, damaged or not
    } catch (const player::PlayerError &) {
      // What was inflated until the stream broke off is there.
    }
    read(copy.content(), location, source);
  } else {
    const carbon::Descriptor file(open(location.file.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) throw HostError(location.name, errno);
    read(file.number(), location, source);
  }
  return source;
}

void write(const player::MendedDatabase &mended, PrivateCopy &copy) {
  std::string waiting;
  const auto flush = [&] {
    try {
      player::writeAll(copy.content(), waiting);
    } catch (const std::system_error &error) {
      throw HostError(copy.file().string(), error.code().value());
    }
    waiting.clear();
  };
  mended.write([&](std::string_view piece) {
    waiting.append(piece);
    if (waiting.size() >= kPiece) flush();
  });
  flush();
}

bool mayBeDamaged(const OpenDatabase &database) {
  return database.account.findings.count(player::FindingKind::UnexplainedBytes) > 0 ||
         !reconcile(database.account, database.object).agrees();
}

// Whether salvage gives more than the class answers; or as much, where the class takes the texts of a song
// whose header is gone for those of the one before.
bool isWorthMore(const player::MendedDatabase &mended, const OpenDatabase &database) {
  const Reconciliation counts = reconcile(database.account, database.object);
  const uint64_t songs = counts.counts[0].answered;
  if (mended.songs() != songs) return mended.songs() > songs;
  const uint64_t rest = counts.counts[1].answered + counts.counts[2].answered;
  const uint64_t found = mended.lists() + mended.entries();
  return found > rest || (found == rest && mended.salvaged().isBroken);
}

// Why a file is refused, without its name.
std::string reasonOf(const std::string &what, const std::string &name) {
  return what.starts_with(name + ": ") ? what.substr(name.size() + 2) : what;
}

// What a try to load gave: a database, or why there is none.
struct Attempt {
  std::optional<OpenDatabase> loaded;
  std::exception_ptr error;
  std::string refusal;
};

Attempt tryToLoad(const Host &host, const std::filesystem::path &path, const std::string &name) {
  Attempt attempt;
  try {
    attempt.loaded.emplace(loadDatabase(host, path));
  } catch (const HostError &error) {
    attempt.error = std::current_exception();
    attempt.refusal = reasonOf(error.what(), name);
  } catch (const player::PlayerError &error) {
    attempt.error = std::current_exception();
    attempt.refusal = reasonOf(error.what(), name);
  }
  return attempt;
}

// A mended copy of the file, where that is worth more than what was loaded; what was loaded goes then.
std::unique_ptr<PrivateCopy> mend(const player::DatabaseLocation &location, bool compressed, Attempt &attempt,
                                  SalvageReport &report) {
  const Source source = readSource(location, compressed);
  const player::MendedDatabase mended(source.bytes, player::salvage(source.bytes));
  if (mended.songs() == 0) return nullptr;
  if (attempt.loaded && !isWorthMore(mended, *attempt.loaded)) return nullptr;
  attempt.loaded.reset();
  report = {mended.songs(), mended.announcedSongs(), mended.lists(), attempt.refusal, source.account};
  auto copy = std::make_unique<PrivateCopy>(location);
  write(mended, *copy);
  return copy;
}

}  // namespace

OpenDatabase loadOrSalvage(const Host &host, const std::filesystem::path &path) {
  const player::DatabaseLocation location = player::locateDatabase(path);
  Attempt attempt = tryToLoad(host, path, location.name);
  if (attempt.loaded && !mayBeDamaged(*attempt.loaded)) return std::move(*attempt.loaded);
  const player::FileContent content =
      location.isSqlite() ? player::FileContent::Unusable : player::probeFile(location.file).content;
  if (content != player::FileContent::Unusable) {
    const bool compressed = content == player::FileContent::Compressed;
    auto report = std::make_shared<SalvageReport>();
    std::unique_ptr<PrivateCopy> copy;
    try {
      copy = mend(location, compressed, attempt, *report);
    } catch (const std::bad_alloc &) {
      if (!attempt.loaded) throw;  // else there is something to go on with
    }
    if (copy != nullptr) {
      OpenDatabase database{host, location, host.make("ZemiTunesDB"), {}, compressed, 0, {}, {}, {}, report};
      loadCopy(database, *copy);
      return database;
    }
  }
  if (attempt.error) std::rethrow_exception(attempt.error);
  return std::move(*attempt.loaded);
}

}  // namespace zemhost
