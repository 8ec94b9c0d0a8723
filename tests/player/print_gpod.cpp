// Prints what libgpod reads of players: for each mount point one line of JSON, the database's songs with the
// play counts that the player left, and its playlists. A field that libgpod does not hold is 0 there, not
// null.

#include <cstdio>
#include <gpod/itdb.h>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using Json = nlohmann::ordered_json;

Json textOf(const char *text) { return text == nullptr ? Json() : Json(text); }

Json songOf(const Itdb_Track &track) {
  return {{"id", track.id},
          {"title", textOf(track.title)},
          {"path", textOf(track.ipod_path)},
          {"album", textOf(track.album)},
          {"artist", textOf(track.artist)},
          {"genre", textOf(track.genre)},
          {"file_type", textOf(track.filetype)},
          {"comment", textOf(track.comment)},
          {"composer", textOf(track.composer)},
          {"grouping", textOf(track.grouping)},
          {"album_artist", textOf(track.albumartist)},
          {"size", track.size},
          {"duration", track.tracklen},
          {"track", track.track_nr},
          {"track_total", track.tracks},
          {"disc", track.cd_nr},
          {"discs", track.cds},
          {"year", track.year},
          {"bit_rate", track.bitrate},
          {"volume", track.volume},
          {"sound_check", track.soundcheck},
          {"added", track.time_added},
          {"modified", track.time_modified},
          {"released", track.time_released},
          {"last_played", track.time_played},
          {"last_skipped", track.last_skipped},
          {"rating", track.rating},
          {"plays", track.playcount},
          {"skips", track.skipcount},
          {"bookmark", track.bookmark_time},
          {"bpm", track.BPM},
          {"start", track.starttime},
          {"stop", track.stoptime},
          {"compilation", track.compilation},
          {"checked", track.checked},
          {"explicit", track.explicit_flag},
          {"lyrics", track.lyrics_flag},
          {"media_type", track.mediatype},
          {"season", track.season_nr},
          {"episode", track.episode_nr},
          {"persistent_id", track.dbid}};
}

Json playlistOf(const Itdb_Playlist &list) {
  Json songs = Json::array();
  for (const GList *at = list.members; at != nullptr; at = at->next)
    songs.push_back(static_cast<const Itdb_Track *>(at->data)->id);
  return {{"name", textOf(list.name)}, {"smart", list.is_spl != 0}, {"songs", songs}};
}

Json libraryOf(const char *mountPoint) {
  GError *error = nullptr;
  Itdb_iTunesDB *library = itdb_parse(mountPoint, &error);
  if (library == nullptr) {
    Json failed = {{"error", error == nullptr ? "" : error->message}};
    g_clear_error(&error);
    return failed;
  }
  Json songs = Json::array();
  for (const GList *at = library->tracks; at != nullptr; at = at->next)
    songs.push_back(songOf(*static_cast<const Itdb_Track *>(at->data)));
  Json playlists = Json::array();
  for (const GList *at = library->playlists; at != nullptr; at = at->next)
    playlists.push_back(playlistOf(*static_cast<const Itdb_Playlist *>(at->data)));
  itdb_free(library);
  return {{"songs", songs}, {"playlists", playlists}};
}

}  // namespace

int main(int argc, char **argv) {
  for (int i = 1; i < argc; ++i)
    std::puts(libraryOf(argv[i]).dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
  return 0;
}
