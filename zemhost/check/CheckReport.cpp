#include "zemhost/check/CheckReport.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "zemhost/library/Phrases.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Paragraph.h"
#include "zemhost/output/Table.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

constexpr uint64_t kShownOfEachKind = 20;

void line(std::ostream &out, const std::string &label, const std::string &text) {
  writeParagraph(out, label + safeText(text), label.size());
}

std::string bytesText(const CheckReport &report) {
  const player::FileAccount &file = report.file;
  std::string text = countText(file.size, "byte", "bytes");
  if (report.form == LibraryForm::Sqlite) return text;
  if (file.rawBytes > 0)
    text += ", " + std::to_string(file.rawBytes) + " of them raw in data sets of types that hold no records";
  if (file.unexplainedBytes == 0) return text + ", all accounted for";
  return text + ", " + std::to_string(file.unexplainedBytes) + " of them in no chunk";
}

std::string filesText(const LibraryAccount &library) {
  if (!library.filesLeftOut.empty()) return "not looked at: " + library.filesLeftOut;
  return std::to_string(library.filesThere) + " of " +
         countText(library.filesThere + library.filesMissing, "song has its file", "songs have theirs") +
         ", " + countText(library.filesUnnamed, "file is", "files are") + " named by no song" +
         (library.filesRead ? "; all were read to their ends" : "; --read reads them to their ends");
}

std::string shuffleText(const ShuffleAccount &shuffle) {
  std::string text = countText(shuffle.songs, "song", "songs") + " in iTunesSD";
  if (shuffle.plays) {
    text += ", " + countText(*shuffle.plays, "play", "plays") + " and " +
            countText(*shuffle.skips, "skip", "skips") + " in iTunesStats";
  }
  return text;
}

void writeChunks(const player::FileAccount &file, std::ostream &out) {
  using enum Column::Align;
  Table table({{"Chunk", Left, 0, 0}, {"Kind", Left, 0, 0}, {"Number", Right, 0, 0}, {"Bytes", Right, 0, 0}});
  for (const player::ChunkCount &count : file.chunks) {
    table.addRow({count.tag, count.meaning, std::to_string(count.chunks), std::to_string(count.bytes)});
  }
  table.show(out);
}

void writeTables(const CheckReport &report, std::ostream &out) {
  using enum Column::Align;
  Table tables({{"File", Left, 0, 0}, {"Table", Left, 0, 0}, {"Rows", Right, 0, 0}});
  for (const player::SqliteTableCount &count : report.tables)
    tables.addRow({count.file, count.table, std::to_string(count.rows)});
  tables.show(out);
  out << '\n';
  Table counts({{"Count", Left, 0, 0}, {"Found", Right, 0, 0}, {"Read", Right, 0, 0}});
  for (const RecordCount &count : report.reconciliation.counts)
    counts.addRow({count.what, std::to_string(count.found), std::to_string(count.answered)});
  counts.show(out);
}

void writeCounts(const CheckReport &report, std::ostream &out) {
  using enum Column::Align;
  Table table(
      {{"Count", Left, 0, 0}, {"Announced", Right, 0, 0}, {"Found", Right, 0, 0}, {"Read", Right, 0, 0}});
  table.addRow({"data sets", std::to_string(report.file.declaredDataSets),
                std::to_string(report.file.dataSets), std::string()});
  for (const RecordCount &count : report.reconciliation.counts) {
    table.addRow({count.what, std::to_string(count.declared), std::to_string(count.found),
                  std::to_string(count.answered)});
  }
  table.show(out);
}

void writeFindings(const player::Findings &findings, std::ostream &out) {
  if (findings.total() == 0) {
    out << "Nothing is wrong\n";
    return;
  }
  out << countText(findings.total(), "finding", "findings") << '\n';
  for (const std::string &text : findingLines(findings, kMoreInJson)) line(out, "- ", text);
}

// What is no fault and yet not as it is stated.
void writeRemarks(const LibraryAccount &library, std::ostream &out) {
  if (library.filesLong == 0) return;
  out << countText(library.filesLong, "remark: a file is longer", "remarks: files are longer")
      << " than the database states\n";
  for (const std::string &text : remarkLines(library, kMoreInJson)) line(out, "- ", text);
}

nlohmann::ordered_json countJson(uint64_t declared, uint64_t found) {
  return {{"announced", declared}, {"found", found}};
}

nlohmann::ordered_json findingJson(const player::Finding &finding) {
  nlohmann::ordered_json json = {{"kind", player::kindName(finding.kind)}, {"text", finding.text}};
  if (finding.offset) json["offset"] = *finding.offset;
  if (finding.size) json["size"] = *finding.size;
  return json;
}

Json chunksJson(const CheckReport &report) {
  const player::FileAccount &file = report.file;
  Json json = {
      {"variant", file.bigEndian ? "big-endian" : "little-endian"},
      {"version", file.version},
      {"bytes", {{"total", file.size}, {"raw", file.rawBytes}, {"unexplained", file.unexplainedBytes}}}};
  for (const player::ChunkCount &count : file.chunks) {
    json["chunks"].push_back(
        {{"tag", count.tag}, {"kind", count.meaning}, {"number", count.chunks}, {"bytes", count.bytes}});
  }
  json["counts"]["data_sets"] = countJson(file.declaredDataSets, file.dataSets);
  for (const RecordCount &count : report.reconciliation.counts) {
    json["counts"][count.what] = countJson(count.declared, count.found);
    json["counts"][count.what]["read"] = count.answered;
  }
  return json;
}

Json tablesJson(const CheckReport &report) {
  Json json = {{"variant", "sqlite"},
               {"version", report.file.version},
               {"bytes", {{"total", report.file.size}}},
               {"tables", Json::array()}};
  for (const player::SqliteTableCount &count : report.tables)
    json["tables"].push_back({{"file", count.file}, {"table", count.table}, {"rows", count.rows}});
  for (const RecordCount &count : report.reconciliation.counts)
    json["counts"][count.what] = {{"found", count.found}, {"read", count.answered}};
  return json;
}

}  // namespace

std::vector<std::string> findingLines(const player::Findings &findings, const std::string &whereMore,
                                      const std::set<player::FindingKind> &leftOut) {
  std::vector<std::string> lines;
  std::array<uint64_t, player::kFindingKinds> shown{};
  for (const player::Finding &finding : findings.kept()) {
    if (leftOut.contains(finding.kind)) continue;
    if (++shown[static_cast<size_t>(finding.kind)] <= kShownOfEachKind) lines.push_back(finding.text);
  }
  for (size_t i = 0; i < player::kFindingKinds; ++i) {
    const auto kind = static_cast<player::FindingKind>(i);
    if (leftOut.contains(kind) || findings.count(kind) <= kShownOfEachKind) continue;
    lines.push_back("and " + std::to_string(findings.count(kind) - kShownOfEachKind) + " more of the kind " +
                    std::string(player::kindName(kind)) + " (" + whereMore + ")");
  }
  return lines;
}

std::vector<std::string> remarkLines(const LibraryAccount &library, const std::string &whereMore) {
  const size_t shown = std::min(library.remarks.size(), static_cast<size_t>(kShownOfEachKind));
  std::vector<std::string> lines(library.remarks.begin(),
                                 library.remarks.begin() + static_cast<std::ptrdiff_t>(shown));
  if (library.filesLong > shown)
    lines.push_back("and " + std::to_string(library.filesLong - shown) + " more (" + whereMore + ")");
  return lines;
}

void writeText(const CheckReport &report, std::ostream &out) {
  line(out, "Database  ", report.location.file.string() + (report.compressed ? " (compressed)" : ""));
  line(out, "Variant   ", variantText(report.form));
  line(out, "Version   ", report.file.version.empty() ? "not stated" : report.file.version);
  line(out, "Content   ", bytesText(report));
  if (report.salvage) line(out, "Salvage   ", report.salvage->text());
  line(out, "Files     ", filesText(report.library));
  if (report.shuffle) line(out, "Shuffle   ", shuffleText(*report.shuffle));
  out << '\n';
  if (report.form == LibraryForm::Sqlite) {
    writeTables(report, out);
  } else {
    writeChunks(report.file, out);
    out << '\n';
    writeCounts(report, out);
  }
  out << '\n';
  writeFindings(report.findings, out);
  writeRemarks(report.library, out);
}

void writeJson(const CheckReport &report, std::ostream &out) {
  Json json = {{"database", report.location.file.string()}, {"compressed", report.compressed}};
  json.update(report.form == LibraryForm::Sqlite ? tablesJson(report) : chunksJson(report));
  if (report.salvage) {
    json["salvage"] = {{"songs", report.salvage->songs},
                       {"announced", report.salvage->announced},
                       {"playlists", report.salvage->playlists}};
  }
  const LibraryAccount &library = report.library;
  const bool looked = library.filesLeftOut.empty();
  json["files"] = {{"checked", looked}};
  if (looked) {
    json["files"]["present"] = library.filesThere;
    json["files"]["missing"] = library.filesMissing;
    json["files"]["unnamed"] = library.filesUnnamed;
    json["files"]["longer"] = library.filesLong;
    json["files"]["read"] = library.filesRead;
  } else {
    json["files"]["reason"] = library.filesLeftOut;
  }
  if (report.shuffle) {
    json["shuffle"] = {{"songs", report.shuffle->songs}};
    if (report.shuffle->plays) {
      json["shuffle"]["plays"] = *report.shuffle->plays;
      json["shuffle"]["skips"] = *report.shuffle->skips;
    }
  }
  for (size_t i = 0; i < player::kFindingKinds; ++i) {
    const auto kind = static_cast<player::FindingKind>(i);
    json["finding_counts"][std::string(player::kindName(kind))] = report.findings.count(kind);
  }
  json["findings"] = Json::array();
  for (const player::Finding &finding : report.findings.kept())
    json["findings"].push_back(findingJson(finding));
  json["remarks"] = library.remarks;
  // A name on a disk need not be valid text.
  out << jsonText(json, 2) << '\n';
}

}  // namespace zemhost
