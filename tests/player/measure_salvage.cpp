// Damages a database in many ways, one at a time, and measures what the salvage finds of it: of the records
// whose bytes are intact, and of others that never were. Where records stand in the sound file is given by a
// reader of another making.
//
//   measure_salvage DATABASE RECORDS CUTS ZEROES RANDOMS SEED
//
// RECORDS is a file with a line for each record, "KIND SET BEGIN END"; CUTS and so on are numbers of damages:
// the file cut off somewhere, 512 bytes wiped or filled with random ones. Prints one object of JSON.

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/FileBytes.h"
#include "player/MendedDatabase.h"
#include "player/Salvage.h"

namespace {

constexpr uint64_t kDamage = 512;

struct Record {
  uint64_t begin = 0, end = 0;
};

struct List : Record {
  std::vector<Record> entries;
};

struct Model {
  std::vector<Record> songs;
  std::vector<List> lists;
};

// Bytes that are not as they were, or not there.
using Damage = Record;

bool isIntact(const Record &record, const Damage &damage) {
  return record.end <= damage.begin || record.begin >= damage.end;
}

struct Tally {
  uint64_t damages = 0, intactSongs = 0, foundSongs = 0, partialSongs = 0, inventedSongs = 0;
  uint64_t intactEntries = 0, foundEntries = 0, inventedEntries = 0, inventedLists = 0, unsoundFiles = 0;
  std::string firstFault;

  void fault(const std::string &what, const Damage &damage) {
    if (firstFault.empty())
      firstFault = what + ", damage " + std::to_string(damage.begin) + " to " + std::to_string(damage.end);
  }
};

Model readModel(const char *path) {
  Model model;
  std::ifstream in(path);
  char kind = 0;
  uint64_t set = 0;
  for (Record record; in >> kind >> set >> record.begin >> record.end;) {
    if (kind == 'S') model.songs.push_back(record);
    if (kind == 'L') model.lists.push_back({record, {}});
    if (kind == 'E') model.lists.at(model.lists.size() - 1).entries.push_back(record);
  }
  return model;
}

class Measurement {
 public:
  Measurement(std::string bytes, const Model &model) : bytes_(std::move(bytes)), model_(model) {
    for (const Record &song : model_.songs) songEnds_.emplace(song.begin, song.end);
    for (const List &list : model_.lists) {
      std::set<uint64_t> &entries = entriesOf_[list.begin];
      for (const Record &entry : list.entries) entries.insert(entry.begin);
    }
  }

  Tally run(char how, int times, uint64_t seed) {
    Tally tally;
    std::mt19937_64 random(seed + static_cast<unsigned char>(how));
    for (int i = 0; i < times; ++i) {
      Damage damage{random() % bytes_.size(), bytes_.size()};
      if (how == 'c') {
        measure(std::string_view(bytes_).substr(0, static_cast<size_t>(damage.begin)), damage, tally);
        continue;
      }
      damage.end = std::min<uint64_t>(damage.begin + kDamage, bytes_.size());
      const auto begin = bytes_.begin() + static_cast<ptrdiff_t>(damage.begin);
      const auto end = bytes_.begin() + static_cast<ptrdiff_t>(damage.end);
      const std::string before(begin, end);
      std::generate(begin, end, [&] { return how == 'z' ? '\0' : static_cast<char>(random()); });
      measure(bytes_, damage, tally);
      std::copy(before.begin(), before.end(), begin);
    }
    return tally;
  }

 private:
  void measure(std::string_view damaged, const Damage &damage, Tally &tally) const {
    const player::Salvage found = player::salvage(damaged);
    ++tally.damages;
    std::map<uint64_t, const player::SalvagedRecord *> songs;
    for (const player::SalvagedRecord &song : found.songs) {
      songs.emplace(song.at, &song);
      countSong(found, song, damage, tally);
    }
    for (const Record &song : model_.songs) {
      if (!isIntact(song, damage)) continue;
      ++tally.intactSongs;
      const auto same = songs.find(song.begin);
      if (same != songs.end() && same->second->size == song.end - song.begin) {
        ++tally.foundSongs;
      } else {
        tally.fault("the song at " + std::to_string(song.begin) + " is lost", damage);
      }
    }
    countEntries(found, damage, tally);
    checkMended(damaged, found, damage, tally);
  }

  void countSong(const player::Salvage &found, const player::SalvagedRecord &song, const Damage &damage,
                 Tally &tally) const {
    const auto known = songEnds_.find(song.at);
    bool isOwn = known != songEnds_.end();
    for (size_t i = song.firstSpan; isOwn && i < song.firstSpan + song.spans; ++i)
      isOwn = found.spans[i].at >= song.at && found.spans[i].at + found.spans[i].size <= known->second;
    if (!isOwn) {
      ++tally.inventedSongs;
      tally.fault("the song at " + std::to_string(song.at) + " is invented", damage);
    } else if (!isIntact({song.at, known->second}, damage)) {
      ++tally.partialSongs;
    }
  }

  void countEntries(const player::Salvage &found, const Damage &damage, Tally &tally) const {
    std::map<uint64_t, std::set<uint64_t>> entriesFound;
    for (const player::SalvagedList &list : found.lists) {
      const auto known = entriesOf_.find(list.at);
      if (known == entriesOf_.end()) {
        ++tally.inventedLists;
        tally.fault("the list at " + std::to_string(list.at) + " is invented", damage);
        continue;
      }
      for (size_t i = list.firstEntry; i < list.firstEntry + list.entries; ++i) {
        const uint64_t at = found.entries[i].at;
        if (known->second.contains(at)) {
          entriesFound[list.at].insert(at);
        } else {
          ++tally.inventedEntries;
          tally.fault("the entry at " + std::to_string(at) + " is another list's", damage);
        }
      }
    }
    for (const List &list : model_.lists) {
      if (!isIntact(list, damage)) continue;
      for (const Record &entry : list.entries) {
        if (!isIntact(entry, damage)) continue;
        ++tally.intactEntries;
        if (entriesFound[list.begin].contains(entry.begin)) {
          ++tally.foundEntries;
        } else {
          tally.fault("the entry at " + std::to_string(entry.begin) + " is lost", damage);
        }
      }
    }
  }

  // What is written of the salvage is a sound file with the same songs, those that are intact byte for byte.
  void checkMended(std::string_view damaged, const player::Salvage &found, const Damage &damage,
                   Tally &tally) const {
    std::string mended;
    player::MendedDatabase(damaged, found).write([&mended](std::string_view piece) { mended += piece; });
    const carbon::Descriptor file(memfd_create("mended", MFD_CLOEXEC));
    player::writeAll(file.number(), mended);
    const player::FileAccount account = player::walkChunks(file.number());
    bool isSound = account.findings.total() == 0 && account.tracks == found.songs.size();
    for (size_t i = 0; isSound && i < found.songs.size(); ++i) {
      const player::SalvagedRecord &song = found.songs[i];
      const auto known = songEnds_.find(song.at);
      if (known == songEnds_.end() || !isIntact({song.at, known->second}, damage)) continue;
      const auto size = static_cast<size_t>(song.size);
      isSound = std::string_view(mended).substr(static_cast<size_t>(account.tracksAt[i]), size) ==
                damaged.substr(static_cast<size_t>(song.at), size);
    }
    if (isSound) return;
    ++tally.unsoundFiles;
    tally.fault("what was mended is not sound: " + (account.findings.kept().empty()
                                                        ? std::string("other songs")
                                                        : account.findings.kept().front().text),
                damage);
  }

  std::string bytes_;
  const Model &model_;
  std::map<uint64_t, uint64_t> songEnds_;
  std::map<uint64_t, std::set<uint64_t>> entriesOf_;
};

nlohmann::ordered_json jsonOf(const Tally &tally) {
  return {{"damages", tally.damages},
          {"intact_songs", tally.intactSongs},
          {"found_songs", tally.foundSongs},
          {"partial_songs", tally.partialSongs},
          {"invented_songs", tally.inventedSongs},
          {"intact_entries", tally.intactEntries},
          {"found_entries", tally.foundEntries},
          {"invented_entries", tally.inventedEntries},
          {"invented_lists", tally.inventedLists},
          {"unsound_files", tally.unsoundFiles},
          {"first_fault", tally.firstFault}};
}

}  // namespace

int main(int argc, char **argv) {
  try {
    if (argc != 7) throw std::runtime_error("measure_salvage DATABASE RECORDS CUTS ZEROES RANDOMS SEED");
    std::ifstream in(argv[1], std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    const Model model = readModel(argv[2]);
    const uint64_t seed = std::strtoull(argv[6], nullptr, 10);
    Measurement measurement(std::move(bytes), model);
    nlohmann::ordered_json json;
    json["cut"] = jsonOf(measurement.run('c', std::atoi(argv[3]), seed));
    json["zeroed"] = jsonOf(measurement.run('z', std::atoi(argv[4]), seed));
    json["random"] = jsonOf(measurement.run('r', std::atoi(argv[5]), seed));
    std::cout << json.dump() << '\n';
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
