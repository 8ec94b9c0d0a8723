#include <iostream>
#include <string>

#include "zemhost/ExitStatus.h"
#include "zemhost/check/CheckReport.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/library/OpenDatabase.h"

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

}  // namespace

int checkDatabase(const CheckArguments &arguments) {
  OpenDatabase database = loadDatabase(Host::load(), arguments.path);
  CheckReport report{database.location, database.compressed, database.account, {}, {}, {}, {}};
  report.findings = report.file.findings;
  if (database.bytesAfterStream > 0) {
    report.findings.add(
        player::FindingKind::UnexplainedBytes,
        std::to_string(database.bytesAfterStream) + " bytes stand after the compressed stream");
  }
  if (!database.songs->warning().empty())
    report.findings.add(player::FindingKind::UnusedFile, database.songs->warning());
  const MusicLibrary library(std::move(database));
  report.reconciliation = reconcile(report.file, library.object());
  addDifferences(report.reconciliation, library, report.file, report.findings);
  report.library = checkLibrary(library, report.findings);
  report.shuffle = checkShuffle(library, report.findings);
  if (library.covers().areKnown() && !library.covers().warning().empty())
    report.findings.add(player::FindingKind::UnusedFile, library.covers().warning());
  if (arguments.json) {
    writeJson(report, std::cout);
  } else {
    writeText(report, std::cout);
  }
  return report.findings.total() == 0 ? kSuccess : kIncomplete;
}

}  // namespace zemhost
