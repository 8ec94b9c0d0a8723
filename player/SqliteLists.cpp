#include "player/SqliteLists.h"

#include <algorithm>
#include <map>
#include <span>
#include <tuple>
#include <utility>

namespace player {

namespace {

using L = SqliteList;
using V = const SqliteValue;

constexpr SqliteColumn<SqliteList> kListColumns[] = {
    {"name", [](L &l, V &v) { l.name = v.text(&l.lost); }},
    {"name_order", [](L &l, V &v) { l.nameOrder = v.integer(); }},
    {"date_created", [](L &l, V &v) { l.created = sqliteDate(v); }},
    {"date_modified", [](L &l, V &v) { l.modified = sqliteDate(v); }},
    {"parent_pid",
     [](L &l, V &v) {
       if (v.flag().value_or(false)) l.parent = v.integer();
     }},
    {"distinguished_kind", [](L &l, V &v) { l.category = v.numberUnlessZero(); }},
    {"is_hidden", [](L &l, V &v) { l.isCategory = v.flag().value_or(false) && l.category; }},
    {"smart_criteria", [](L &l, V &v) { l.criteria = v.bytes(); }},
    {"smart_is_folder",
     [](L &l, V &v) {
       if (!l.criteria.empty()) l.kind = SqliteListKind::Smart;
       if (v.flag().value_or(false)) l.kind = SqliteListKind::Folder;
     }},
    {"smart_is_dynamic", [](L &l, V &v) { l.isLive = v.flag(); }},
    {"smart_is_filtered", [](L &l, V &v) { l.usesRules = v.flag(); }},
    {"smart_is_limited", [](L &l, V &v) { l.isLimited = v.flag(); }},
    {"smart_enabled_only", [](L &l, V &v) { l.onlyChecked = v.flag(); }},
    {"smart_reverse_limit_order", [](L &l, V &v) { l.reverse = v.flag(); }},
    {"smart_limit_kind", [](L &l, V &v) { l.limitKind = v.number(); }},
    {"smart_limit_order", [](L &l, V &v) { l.limitOrder = v.number(); }},
    {"smart_limit_value", [](L &l, V &v) { l.limit = v.number(); }}};

struct PlacedEntry {
  std::optional<int64_t> place;
  size_t read = 0;  // how many came before it in the file
  SqliteList::Entry entry;
};

class ListReader {
 public:
  ListReader(SqliteFile &file, const SongFinder &find, const TableReport &report, Findings &findings)
      : file_(file), find_(find), report_(report), findings_(findings) {}

  std::vector<SqliteList> read(size_t songs) {
    readLists();
    readEntries();
    markLibrary(songs);
    std::stable_sort(lists_.begin(), lists_.end(), [](const SqliteList &one, const SqliteList &other) {
      const auto key = [](const SqliteList &list) {
        return std::tuple(list.kind != SqliteListKind::Library, !list.nameOrder, list.nameOrder.value_or(0),
                          list.pid);
      };
      return key(one) < key(other);
    });
    return std::move(lists_);
  }

 private:
  void readLists() {
    const auto find = [this](int64_t pid) -> SqliteList * {
      if (!places_.emplace(pid, lists_.size()).second) {
        findings_.add(FindingKind::WrongCount,
                      "two playlists have the ID " + hexId(pid) + "; one is left out");
        return nullptr;
      }
      lists_.emplace_back();
      lists_.back().pid = pid;
      return &lists_.back();
    };
    const std::span<const SqliteColumn<SqliteList>> columns = kListColumns;
    report_(file_, "container", readTable<SqliteList>(file_, "container", "pid", columns, find));
  }

  void readEntries() {
    std::vector<std::vector<PlacedEntry>> entries(lists_.size());
    const std::vector<std::string> columns = {"container_pid", "item_pid", "physical_order"};
    const TableState state = file_.each("item_to_container", columns, [&](const SqliteRow &row) {
      const auto list = row[0].integer();
      const auto item = row[1].integer();
      if (!list || !item) return;
      const auto place = places_.find(*list);
      if (place == places_.end()) {
        findings_.add(FindingKind::UnresolvedId,
                      "an entry belongs to the playlist " + hexId(*list) + ", which is not there");
        return;
      }
      std::vector<PlacedEntry> &of = entries[place->second];
      of.push_back({row[2].integer(), of.size(), {*item, find_(*item)}});
    });
    report_(file_, "item_to_container", state);
    for (size_t i = 0; i < lists_.size(); ++i) {
      std::sort(entries[i].begin(), entries[i].end(), [](const PlacedEntry &one, const PlacedEntry &other) {
        const auto key = [](const PlacedEntry &entry) {
          return std::tuple(!entry.place, entry.place.value_or(0), entry.read);
        };
        return key(one) < key(other);
      });
      for (const PlacedEntry &entry : entries[i]) lists_[i].entries.push_back(entry.entry);
    }
  }

  void markLibrary(size_t songs) {
    std::optional<int64_t> primary;
    const TableState state = file_.each("db_info", {"primary_container_pid"}, [&](const SqliteRow &row) {
      if (!primary) primary = row[0].integer();
    });
    report_(file_, "db_info", state);
    const auto place = primary ? places_.find(*primary) : places_.end();
    if (place == places_.end()) {
      findings_.add(FindingKind::WrongCount, "no playlist is the list of all songs");
      return;
    }
    SqliteList &library = lists_[place->second];
    library.kind = SqliteListKind::Library;
    library.isCategory = false;
    if (library.entries.size() != songs) {
      findings_.add(FindingKind::WrongCount,
                    "the list of all songs has " + std::to_string(library.entries.size()) +
                        " entries, and there are " + std::to_string(songs) + " songs");
      return;
    }
    for (size_t i = 0; i < songs; ++i) {
      if (library.entries[i].song == i) continue;
      findings_.add(FindingKind::WrongCount, "the list of all songs has another order than the songs");
      return;
    }
  }

  SqliteFile &file_;
  const SongFinder &find_;
  const TableReport &report_;
  Findings &findings_;
  std::vector<SqliteList> lists_;
  std::map<int64_t, size_t> places_;
};

}  // namespace

std::vector<SqliteList> readSqliteLists(SqliteFile &file, const SongFinder &find, size_t songs,
                                        const TableReport &report, Findings &findings) {
  return ListReader(file, find, report, findings).read(songs);
}

}  // namespace player
