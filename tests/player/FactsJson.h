#pragma once

// What the reader of a player knows of a song as JSON, for a reader of another making to compare.

#include <nlohmann/json.hpp>
#include <optional>

#include "player/SongFacts.h"

namespace player {

using Json = nlohmann::ordered_json;

template <typename Number>
Json jsonOf(const std::optional<Number> &fact) {
  return fact ? Json(*fact) : Json();
}

inline Json jsonOf(const SongFacts &facts) {
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
          {"persistent_id", jsonOf(facts.persistentId)},
          {"image", jsonOf(facts.image)},
          {"picture", jsonOf(facts.picture)}};
}

}  // namespace player
