#include <string>
#include <vector>

#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/commands/OpenAndWarn.h"
#include "zemhost/commands/SongTable.h"
#include "zemhost/files/OutOfMemory.h"
#include "zemhost/library/MemoryLimit.h"
#include "zemhost/library/SongGroups.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/JsonText.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

Sameness samenessNamed(const std::string &name) {
  if (name == "artist") return Sameness::Artist;
  if (name == "album") return Sameness::Album;
  if (name == "genre") return Sameness::Genre;
  return name == "composer" ? Sameness::Composer : Sameness::Song;
}

std::string headingOf(std::string_view name) {
  std::string heading(name);
  heading.front() = static_cast<char>(heading.front() - 'a' + 'A');
  return heading;
}

// A list of groups: how many songs of either library share the texts of each row.
class GroupTable {
 public:
  GroupTable(Sameness by, EncodedOutput &out) : out_(out), table_(columnsFor(by), out.fitCells()) {}

  void add(const std::vector<std::string> &texts, size_t inA, size_t inB) {
    std::vector<std::string> cells = texts;
    cells.push_back(std::to_string(inA));
    cells.push_back(std::to_string(inB));
    table_.addRow(std::move(cells));
    ++rows_;
  }

  void write(const std::string &title) {
    if (rows_ == 0) return;
    out_.write("\n" + title + "\n\n");
    out_.write(table_);
  }

 private:
  static std::vector<Column> columnsFor(Sameness by) {
    std::vector<Column> columns;
    for (const std::string_view name : textNames(by))
      columns.push_back({headingOf(name), Column::Align::Left, 16, 0});
    columns.push_back({"In A", Column::Align::Right, 0, 0});
    columns.push_back({"In B", Column::Align::Right, 0, 0});
    return columns;
  }

  EncodedOutput &out_;
  Table table_;
  size_t rows_ = 0;
};

void writeText(const Comparison &comparison, const MusicLibrary &a, const MusicLibrary &b,
               const CompareArguments &arguments, Sameness by) {
  EncodedOutput out(arguments.encoding, a.host());
  const auto counted = [&](size_t count) {
    return countText(count, "different " + arguments.by, "different " + arguments.by + "s");
  };
  const auto library = [&](const char *label, const std::string &path, const MusicLibrary &which,
                           size_t groups) {
    out.writeLine(label + path + ": " + countText(static_cast<uint64_t>(which.songCount()), "song", "songs") +
                  ", " + counted(groups));
  };
  library("A  ", arguments.a, a, comparison.onlyA.size() + comparison.both.size());
  library("B  ", arguments.b, b, comparison.onlyB.size() + comparison.both.size());
  out.write("\nOnly in A  " + std::to_string(comparison.onlyA.size()) + "\nOnly in B  " +
            std::to_string(comparison.onlyB.size()) + "\nIn both    " +
            std::to_string(comparison.both.size()) + "\n");
  GroupTable onlyA(by, out);
  for (const SongGroup &group : comparison.onlyA) onlyA.add(group.texts, group.songs.size(), 0);
  onlyA.write("Only in A");
  GroupTable onlyB(by, out);
  for (const SongGroup &group : comparison.onlyB) onlyB.add(group.texts, 0, group.songs.size());
  onlyB.write("Only in B");
  GroupTable both(by, out);
  for (const auto &pair : comparison.both) both.add(pair.a.texts, pair.a.songs.size(), pair.b.songs.size());
  both.write("In both");
  out.finish();
}

// The texts, and the songs of each library by their index.
Json groupJson(Sameness by, const SongGroup &group) {
  Json json = Json::object();
  const std::vector<std::string_view> &names = textNames(by);
  for (size_t i = 0; i < names.size(); ++i) json[std::string(names[i])] = group.texts[i];
  return json;
}

void writeJson(const Comparison &comparison, const MusicLibrary &a, const MusicLibrary &b,
               const CompareArguments &arguments, Sameness by) {
  const auto library = [](const std::string &path, const MusicLibrary &which) {
    return Json{{"path", path}, {"songs", which.songCount()}};
  };
  Json json = {{"by", arguments.by}, {"a", library(arguments.a, a)}, {"b", library(arguments.b, b)}};
  const auto list = [&](const char *name, const char *songs, const std::vector<SongGroup> &groups) {
    json[name] = Json::array();
    for (const SongGroup &group : groups) {
      json[name].push_back(groupJson(by, group));
      json[name].back()[songs] = group.songs;
    }
  };
  list("only_a", "songs_a", comparison.onlyA);
  list("only_b", "songs_b", comparison.onlyB);
  json["both"] = Json::array();
  for (const auto &pair : comparison.both) {
    json["both"].push_back(groupJson(by, pair.a));
    json["both"].back()["songs_a"] = pair.a.songs;
    json["both"].back()["songs_b"] = pair.b.songs;
  }
  EncodedOutput out(arguments.encoding, a.host());
  out.write(jsonText(json, 1) + "\n");
  out.finish();
}

}  // namespace

int compare(const CompareArguments &arguments) {
  const Host host = Host::load();
  const MusicLibrary a = openAndWarn(host, arguments.a);
  liftMemoryLimit();  // of one library, which is no measure of both
  const MusicLibrary b = openAndWarn(host, arguments.b);
  liftMemoryLimit();
  setMemorySubject(safeText(arguments.a + " and " + arguments.b));
  const Sameness by = samenessNamed(arguments.by);
  const Comparison comparison = compareLibraries(a, b, by);
  if (arguments.json) {
    writeJson(comparison, a, b, arguments, by);
  } else {
    writeText(comparison, a, b, arguments, by);
  }
  return kSuccess;
}

}  // namespace zemhost
