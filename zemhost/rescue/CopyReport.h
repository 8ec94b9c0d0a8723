#pragma once

// What rescues brought to a folder: rescue-report.ndjson beside the music, one JSON object a line. It is not
// hidden, since a person may read it, and may delete it: the next rescue then compares contents.
//
//   {"format":"zemhost rescue report","version":1}
//   {"file":"A/B/01 T.mp3","size":8,"modified":[1000000000,0],"sha256":"...","song":{"path":"IPOD:...",...}}
//
// A line is added for each copy as soon as it is there, so that nothing is lost with a run that is killed,
// nor between two runs at once. Readers leave out members and lines that they do not know. What a run says at
// its end (RescueReport.h, Checksums.h) is made from this.

#include <cstdint>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/DestinationFolder.h"

namespace zemhost {

// What sets one song of one player apart from all others: JSON text of its path with the volume's name, its
// track ID, title, artist and album.
std::string songIdentity(const Song &song, const SongFile &file);

struct CopyRecord {
  std::string file;         // below the destination
  std::string song;         // its identity
  uint64_t size = 0;        // of the song's file
  timespec modified{};      // of the song's file when it was copied, exactly
  std::string sha256{};     // of the copy; empty in reports of older programs
  std::vector<Gap> gaps{};  // of a damaged copy: what could not be read
  uint64_t taggedSize = 0;  // of the copy, where tags were written into it; else it has the file's size

  uint64_t copySize() const { return taggedSize != 0 ? taggedSize : size; }
};

class CopyReport {
 public:
  // Reads what is there; a file of the name that is no report counts as none.
  explicit CopyReport(const DestinationFolder &destination);

  // The record of a file below the destination; null when there is none.
  const CopyRecord *ofFile(const std::string &file) const;
  // The last copy of a song; null when there is none.
  const CopyRecord *ofSong(const std::string &song) const;

  // Every record, by the names of the files.
  const std::map<std::string, CopyRecord> &records() const { return byFile_; }

  // Adds a record, to the file too, which is made with the first one. Does nothing for one that is there
  // already. Throws HostError, naming the file, when it cannot be written.
  void add(CopyRecord record);

 private:
  bool isReport() const;
  void read();
  void make();
  void remember(CopyRecord record);

  std::string path() const { return (destination_.path() / name_).string(); }

  const DestinationFolder &destination_;
  std::string name_;  // a number is added where a file that is no report has the name
  bool exists_ = false;
  bool endsInALine_ = true;  // else a killed run left the last line without its end
  carbon::Descriptor file_;  // for adding
  std::map<std::string, CopyRecord> byFile_;
  std::map<std::string, std::string> fileOfSong_;
};

}  // namespace zemhost
