#pragma once

// The names of a player's own folders and files. A player's disk may spell them in other cases.

namespace player {

constexpr const char *kControlFolder = "iPod_Control";         // in the root of its disk
constexpr const char *kOtherControlFolder = "iTunes_Control";  // the same on other players
constexpr const char *kDatabaseFolder = "iTunes";              // in the control folder
constexpr const char *kMusicFolder = "Music";                  // likewise
constexpr const char *kDatabaseFile = "iTunesDB";              // in the database folder
constexpr const char *kCompressedFile = "iTunesCDB";           // likewise
constexpr const char *kShuffleFile = "iTunesSD";               // likewise; the songs of a shuffle
constexpr const char *kSqliteFolder = "iTunes Library.itlp";   // likewise, on the newest nanos
constexpr const char *kSqliteFile = "Library.itdb";            // in that folder

}  // namespace player
