#pragma once

// The playlists and podcasts of a page.

#include <string>

#include "zemhost/report/PageSongs.h"

namespace zemhost {

// What a playlist is called on the page. The list of all songs is called as the player is, often by its
// owner's name, which a page with privacy leaves out.
std::string pagePlaylistName(const MusicLibrary &library, int32_t playlist, const Privacy &privacy);

// The library's playlists, or the chosen one alone, as a JSON array. Songs are their places in the selection;
// -1 for an entry whose song is not there. A folder holds the songs that the library stores for it, which
// often are none; chosen alone, those of the lists in it.
std::string pagePlaylists(const MusicLibrary &library, const SongSelection &selection, int32_t chosen,
                          const Privacy &privacy);

// The podcasts that have episodes in the selection, by name, as a JSON array: those of the lists of podcasts,
// then songs that are marked as episodes, by album.
std::string pagePodcasts(const MusicLibrary &library, const SongSelection &selection, const Privacy &privacy);

}  // namespace zemhost
