// Prints what the reader of a player knows of the songs of databases, for a reader of another making to
// compare: for each file one line of JSON.

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/PlayerSongs.h"

namespace {

using Json = nlohmann::ordered_json;

template <typename Number>
Json jsonOf(const std::optional<Number> &fact) {
  return fact ? Json(*fact) : Json();
}

Json jsonOf(const player::SongFacts &facts) {
  return {{"id", facts.id},
          {"size", jsonOf(facts.size)},
          {"duration", jsonOf(facts.duration)},
          {"track", jsonOf(facts.track)},
          {"track_total", jsonOf(facts.trackTotal)},
          {"year", jsonOf(facts.year)},
          {"bit_rate", jsonOf(facts.bitRate)},
          {"rate_word", jsonOf(facts.rateWord)},
          {"modified", jsonOf(facts.modified)},
          {"added", jsonOf(facts.added)},
          {"released", jsonOf(facts.released)},
          {"purchased", jsonOf(facts.purchased)},
          {"plays", jsonOf(facts.plays)},
          {"last_played", jsonOf(facts.lastPlayed)},
          {"skips", jsonOf(facts.skips)},
          {"last_skipped", jsonOf(facts.lastSkipped)},
          {"rating", jsonOf(facts.rating)},
          {"bookmark", jsonOf(facts.bookmark)},
          {"heard", jsonOf(facts.heard)},
          {"disc", jsonOf(facts.disc)},
          {"discs", jsonOf(facts.discs)},
          {"season", jsonOf(facts.season)},
          {"episode", jsonOf(facts.episode)},
          {"bpm", jsonOf(facts.bpm)},
          {"media_type", jsonOf(facts.mediaType)},
          {"compilation", jsonOf(facts.compilation)},
          {"movie", jsonOf(facts.movie)},
          {"explicit", jsonOf(facts.explicitContent)},
          {"lyrics", jsonOf(facts.lyrics)},
          {"checked", jsonOf(facts.checked)},
          {"protected", jsonOf(facts.isProtected)},
          {"bought", jsonOf(facts.bought)},
          {"skipped_in_shuffle", jsonOf(facts.skippedInShuffle)},
          {"remembers_position", jsonOf(facts.remembersPosition)},
          {"volume", jsonOf(facts.volume)},
          {"start", jsonOf(facts.start)},
          {"stop", jsonOf(facts.stop)},
          {"sound_check", jsonOf(facts.soundCheck)},
          {"channels", jsonOf(facts.channels)},
          {"gapless", jsonOf(facts.gapless)},
          {"delay", jsonOf(facts.delay)},
          {"padding", jsonOf(facts.padding)},
          {"samples", jsonOf(facts.samples)},
          {"gapless_album", jsonOf(facts.gaplessAlbum)},
          {"persistent_id", jsonOf(facts.persistentId)}};
}

Json songsOf(const std::string &path) {
  const carbon::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  const player::FileAccount account = player::walkChunks(file.number());
  const player::PlayerSongs songs(file.number(), account, player::locateDatabase(path));
  Json list = Json::array();
  for (size_t i = 0; i < songs.count(); ++i) {
    Json song = jsonOf(songs.facts(i));
    song["at"] = account.tracksAt[i];
    song["texts"] = Json::array();
    for (const player::SongText &text : songs.texts(i)) song["texts"].push_back({text.type, text.text});
    list.push_back(std::move(song));
  }
  return {{"has_counts", songs.hasCounts()}, {"is_warned", !songs.warning().empty()}, {"songs", list}};
}

}  // namespace

int main(int argc, char **argv) {
  try {
    for (int i = 1; i < argc; ++i) std::puts(songsOf(argv[i]).dump().c_str());
  } catch (const std::exception &error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
