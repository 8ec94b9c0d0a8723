#include "zemhost/check/DatabaseCheck.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "player/Device.h"
#include "zemhost/files/OutOfMemory.h"
#include "zemhost/library/OpenDatabase.h"
#include "zemhost/library/SalvagedDatabase.h"
#include "zemhost/library/SqliteSource.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

void addDifferences(const Reconciliation &reconciliation, const MusicLibrary &library,
                    const player::FileAccount &file, player::Findings &findings) {
  for (const RecordCount &count : reconciliation.counts) {
    if (count.found == count.answered) continue;
    findings.add(player::FindingKind::ClassDiffers, "the file holds " + std::to_string(count.found) + " " +
                                                        count.what + ", and the class answers " +
                                                        std::to_string(count.answered));
  }
  for (const int32_t list : reconciliation.differingLists) {
    const auto place = static_cast<size_t>(list);
    const uint32_t held = place < file.entriesOf.size() ? file.entriesOf[place] : 0;
    findings.add(player::FindingKind::ClassDiffers,
                 "playlist " + std::to_string(list) + " holds " + std::to_string(held) +
                     " entries, and the class answers " + std::to_string(library.entryCount(list)));
  }
}

void checkCovers(const MusicLibrary &library, player::Findings &findings) {
  if (library.covers().areKnown() && !library.covers().warning().empty())
    findings.add(player::FindingKind::UnusedFile, library.covers().warning());
}

void addSalvage(const SalvageReport &salvage, player::Findings &findings) {
  if (!salvage.refusal.empty()) findings.add(player::FindingKind::DamagedFile, salvage.refusal);
  findings.add(player::FindingKind::DamagedFile, "the file is damaged: " + salvage.text());
}

CheckedLibrary checkLoaded(OpenDatabase database, std::vector<std::string> warnings, bool readFiles) {
  CheckReport report{database.location, {}, database.compressed, database.account, {}, {}, {}, {}, {}, {}};
  report.salvage = database.salvage;
  if (report.salvage) report.file = report.salvage->original;
  report.findings = report.file.findings;
  if (report.salvage) addSalvage(*report.salvage, report.findings);
  if (database.bytesAfterStream > 0) {
    report.findings.add(
        player::FindingKind::UnexplainedBytes,
        std::to_string(database.bytesAfterStream) + " bytes stand after the compressed stream");
  }
  if (!database.songs->warning().empty())
    report.findings.add(player::FindingKind::UnusedFile, database.songs->warning());
  for (const std::string &warning : database.lists->warnings())
    report.findings.add(player::FindingKind::UnusedFile, warning);
  MusicLibrary library(std::move(database));
  report.form = library.form();
  report.reconciliation = reconcile(report.file, *library.object());
  if (!report.salvage) addDifferences(report.reconciliation, library, report.file, report.findings);
  report.library = checkLibrary(library, readFiles, report.findings);
  report.shuffle = checkShuffle(library, report.findings);
  checkCovers(library, report.findings);
  return {{std::move(library), std::move(warnings)}, std::move(report)};
}

uint64_t rowsOf(const player::SqliteLibrary &library, std::string_view table) {
  const auto &tables = library.tables();
  const auto found = std::find_if(tables.begin(), tables.end(), [&](const player::SqliteTableCount &count) {
    return count.table == table;
  });
  return found == tables.end() ? 0 : found->rows;
}

CheckedLibrary checkSqlite(const Host &host, const player::DatabaseLocation &location, bool readFiles) {
  const auto files = readSqliteLibrary(location);
  MusicLibrary library(host, std::make_shared<const SqliteSource>(location, files));
  CheckReport report{location, LibraryForm::Sqlite, false, {}, files->tables(), {}, {}, {},
                     {},       files->findings()};
  report.file.version = files->version();
  report.file.size = files->bytes();
  uint64_t entries = 0;
  for (const player::SqliteList &list : files->lists()) entries += list.entries.size();
  report.reconciliation.counts = {
      {"songs", 0, rowsOf(*files, "item"), files->songs().size()},
      {"playlists", 0, rowsOf(*files, "container") - files->categories(), files->lists().size()},
      {"entries", 0, rowsOf(*files, "item_to_container"), entries}};
  report.library = checkLibrary(library, readFiles, report.findings);
  checkCovers(library, report.findings);
  return {{std::move(library), files->warnings()}, std::move(report)};
}

// The files in which the player says what it is.
void checkDevice(const std::filesystem::path &root, player::Findings &findings) {
  if (root.empty()) return;
  for (const std::string &warning : player::readDevice(root).warnings)
    findings.add(player::FindingKind::UnusedFile, warning);
}

}  // namespace

CheckedLibrary openAndCheck(const Host &host, const std::filesystem::path &path, bool readFiles) {
  setMemorySubject(safeText(path.string()));
  const player::DatabaseLocation location = player::locateDatabase(path);
  const auto checked = [&] {
    if (location.isSqlite()) return checkSqlite(host, location, readFiles);
    OpenDatabase database = loadOrSalvage(host, path);
    std::vector<std::string> warnings = warningsOf(database, path);
    return checkLoaded(std::move(database), std::move(warnings), readFiles);
  };
  CheckedLibrary result = checked();
  checkDevice(location.volumeRoot, result.report.findings);
  return result;
}

}  // namespace zemhost
