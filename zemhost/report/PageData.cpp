#include "zemhost/report/PageData.h"

#include <utility>
#include <vector>

#include "zemhost/library/Facts.h"
#include "zemhost/library/Recordings.h"
#include "zemhost/report/PageJson.h"
#include "zemhost/report/PageLists.h"
#include "zemhost/report/PageSongs.h"

namespace zemhost {

namespace {

using Places = std::vector<size_t>;  // of songs in a selection

std::vector<Places> repeatedIn(const MusicLibrary &library, const SongSelection &selection) {
  std::vector<Places> groups;
  for (const Recording &recording : repeatedRecordings(library, {}).repeated) {
    Places group;
    for (const int32_t song : recording.group.songs) {
      if (const auto place = selection.placeOf(song)) group.push_back(*place);
    }
    if (group.size() > 1) groups.push_back(std::move(group));
  }
  return groups;
}

class PageMaker {
 public:
  PageMaker(const CheckedLibrary &checked, const PageOptions &options)
      : library_(checked.opened.library),
        report_(checked.report),
        options_(options),
        facts_(libraryFacts(library_)),
        name_(playerName(library_, facts_.device)),
        selection_(library_, options.playlist),
        repeated_(repeatedIn(library_, selection_)) {
    if (options.privacy) privacy_ = Privacy(library_.location(), facts_.device, name_);
  }

  PageData make() const {
    const PageSongs songs = pageSongs(library_, selection_, marks(), privacy_, options_.covers);
    PageData page{title(), {}, songs.unreadable};
    const std::vector<std::string> members = {
        member("program", pageJson(options_.program)),
        member("made", pageJson(options_.made)),
        member("title", pageJson(page.title)),
        member("facts", factsJson()),
        member("totals", totalsJson(songs.totals)),
        songs.members,
        member("playlists", pagePlaylists(library_, selection_, options_.playlist, privacy_)),
        member("podcasts", pagePodcasts(library_, selection_, privacy_)),
        member("health", healthJson())};
    page.json = joined(members, "{}");
    return page;
  }

 private:
  std::vector<uint32_t> marks() const {
    std::vector<uint32_t> marks(selection_.songs().size());
    for (const int32_t song : report_.library.missing) {
      if (const auto place = selection_.placeOf(song)) marks[*place] |= kMissingMark;
    }
    for (const DamagedSong &damaged : report_.library.damaged) {
      if (const auto place = selection_.placeOf(damaged.song)) marks[*place] |= kDamagedMark;
    }
    for (const Places &group : repeated_) {
      for (const size_t place : group) marks[place] |= kRepeatedMark;
    }
    return marks;
  }

  std::string title() const {
    if (!options_.title.empty()) return options_.title;
    if (options_.playlist >= 0) return pagePlaylistName(library_, options_.playlist, privacy_);
    if (options_.privacy) return facts_.device.model ? facts_.device.model->text() : "Music library";
    return name_.empty() ? library_.location().file.filename().string() : name_;
  }

  std::string factsJson() const {
    Json facts = Json::array();
    for (const Fact &fact : facts_.facts) {
      if (!options_.privacy || !fact.isPersonal)
        facts.push_back(Json::array({fact.label, privacy_.line(fact.text)}));
    }
    return pageJson(facts);
  }

  std::string totalsJson(const Totals &totals) const {
    const bool isSizeKnown = totals.size != 0 || totals.songs == 0;
    return pageJson({{"songs", totals.songs},
                     {"duration", totals.duration},
                     {"size", isSizeKnown ? Json(totals.size) : Json()},
                     {"playlists", options_.playlist < 0 ? library_.playlistCount() : 1}});
  }

  // What is wrong with the whole database; of one playlist only what is wrong with its songs.
  std::string healthJson() const {
    const LibraryAccount &files = report_.library;
    Json health = {{"checked", files.filesLeftOut.empty()},
                   {"findings", Json::array()},
                   {"remarks", Json::array()},
                   {"missing", Json::array()},
                   {"damaged", Json::array()},
                   {"duplicates", Json::array()}};
    if (!files.filesLeftOut.empty())
      health["remarks"].push_back("The files of the songs were not looked at: " + files.filesLeftOut + ".");
    if (options_.playlist < 0) {
      addLines(health["findings"],
               findingLines(report_.findings, kWhereMore,
                            {player::FindingKind::MissingFile, player::FindingKind::ShortFile}));
      addLines(health["remarks"], remarkLines(files, kWhereMore));
    } else {
      health["remarks"].push_back("Only what is wrong with the songs of this playlist is shown.");
    }
    for (const int32_t song : files.missing) {
      if (const auto place = selection_.placeOf(song)) health["missing"].push_back(*place);
    }
    for (const DamagedSong &damaged : files.damaged) {
      if (const auto place = selection_.placeOf(damaged.song))
        health["damaged"].push_back(Json::array({*place, damaged.fault}));
    }
    for (const Places &group : repeated_) health["duplicates"].push_back(group);
    return pageJson(health);
  }

  void addLines(Json &list, const std::vector<std::string> &lines) const {
    for (const std::string &line : lines) list.push_back(privacy_.line(line));
  }

  static constexpr const char *kWhereMore = "zemhost check --json lists them";

  const MusicLibrary &library_;
  const CheckReport &report_;
  const PageOptions &options_;
  LibraryFacts facts_;
  std::string name_;
  SongSelection selection_;
  std::vector<Places> repeated_;  // recordings that are there more than once
  Privacy privacy_;
};

}  // namespace

PageData pageData(const CheckedLibrary &checked, const PageOptions &options) {
  return PageMaker(checked, options).make();
}

}  // namespace zemhost
