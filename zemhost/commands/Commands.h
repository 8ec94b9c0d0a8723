#pragma once

// The commands of the program: what each takes, and the function that does it. Each lives in the file of its
// name. It writes to standard output, or to the file that was asked for, and returns the exit status
// (ExitStatus.h). Bad input throws HostError or PlayerError.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "zemhost/files/OutputFile.h"
#include "zemhost/rescue/NamePattern.h"

namespace zemhost {

// `path` is a mounted player, its iPod_Control folder, or a database file throughout; `encoding` names the
// encoding to write text in.

struct ListingArguments {
  std::string path;
  std::string encoding = "UTF-8";
};
int showInfo(const ListingArguments &arguments);
int listPlaylists(const ListingArguments &arguments);

struct SongsArguments {
  std::string path;
  std::vector<std::string> columns;  // "all"; none: those that fit
  std::string encoding = "UTF-8";
};
int listSongs(const SongsArguments &arguments);

struct PlaysArguments {
  std::string path;
  std::string by = "song";  // or artist, album
  size_t top = 10;          // lines of each list
  std::string encoding = "UTF-8";
};
int showPlays(const PlaysArguments &arguments);

struct PlaylistArguments {
  std::string path;
  std::string playlist;              // its number, its name, or the beginning of its name
  std::vector<std::string> columns;  // none: those that fit
  bool evaluate = false;             // compare a smart list with what its rules choose
  std::string day;                   // on which they are looked at, "2006-07-22"; empty: today
  std::string encoding = "UTF-8";
};
int listPlaylist(const PlaylistArguments &arguments);

struct CheckArguments {
  std::string path;
  bool read = false;  // every music file to its end
  bool json = false;
};
int checkDatabase(const CheckArguments &arguments);

struct ExportArguments {
  std::string path;
  std::string format;               // one of exportFormats()
  bool excel = false;               // csv for spreadsheets
  std::string output;               // a file, or what namesStandardOutput()
  std::string playlist;             // empty: the whole library
  bool sinceSync = false;           // only the songs played or skipped since the last synchronisation
  std::vector<std::string> fields;  // of a song; "all"; none: those that are usual in the format
  std::string paths = "host";       // of a list: host, relative or device
  std::string listFolder;           // for every playlist as a file of its own; empty: one output
  std::string encoding = "UTF-8";

  bool writesStandardOutput() const { return namesStandardOutput(output); }
};
int exportLibrary(const ExportArguments &arguments);

struct RescueArguments {
  std::string path;
  std::string destination;
  std::string pattern{kUsualPattern};
  std::vector<std::string> playlists;  // none: the whole library
  std::string lists = "m3u8";          // beside the music: none, m3u8 or xspf
  std::string tags;                    // written into the copies: missing or replace; empty: none
  bool dryRun = false;
  bool covers = false;       // beside the music
  bool verify = false;       // read every copy back
  bool skipDamaged = false;  // leave out songs of which a part cannot be read
};
int rescueMusic(const RescueArguments &arguments);

struct VerifyArguments {
  std::string destination;  // of rescues
};
int verifyCopies(const VerifyArguments &arguments);

struct PictureArguments {
  std::string path;
  std::string destination;
};
int exportCovers(const PictureArguments &arguments);
int exportPhotos(const PictureArguments &arguments);

struct CompareArguments {
  std::string a;
  std::string b;
  std::string by = "song";  // or artist, album, genre, composer
  bool json = false;
  std::string encoding = "UTF-8";
};
int compare(const CompareArguments &arguments);

struct DuplicatesArguments {
  std::string path;
  bool sameAlbum = false;  // songs on different albums are not the same
  bool loosely = false;    // however the texts are written
  double length = 2;       // seconds by which lengths may differ
  bool json = false;
  std::string encoding = "UTF-8";
};
int listDuplicates(const DuplicatesArguments &arguments);

struct ReportArguments {
  std::string path;
  std::string output;    // a file, or what namesStandardOutput()
  std::string title;     // empty: what the player is called
  std::string playlist;  // empty: the whole library
  bool noCovers = false;
  bool privacy = false;  // leave out what is personal
};
int writeReport(const ReportArguments &arguments);

struct StatsArguments {
  std::string path;
  std::string by;                 // one of groupingNames(); empty: an overview
  std::string measure = "songs";  // one of measureNames()
  std::optional<size_t> top;      // lines of each table
  bool json = false;
  std::string encoding = "UTF-8";
};
int showStats(const StatsArguments &arguments);

struct CallArguments {
  std::string path;
  std::vector<std::string> lines;  // of host code
};
int callObject(const CallArguments &arguments);

struct ClassArguments {};
int showClass(const ClassArguments &arguments);

}  // namespace zemhost
