// What every method should answer, derived from the records that were written into the file and the path
// rules of each family, without the plug-in's code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/support/HostStrings.h"

namespace plugin_test {

enum class Family { Library, Playlist, Refer };

// How a method was asked: an index (or a track ID), and a playlist for the playlist family.
struct Pick {
  Family family = Family::Library;
  int32_t index = 0;
  int32_t playlist = 0;
};

class Model {
 public:
  Model(samples::Variant variant, std::vector<samples::Track> tracks,
        std::vector<samples::Playlist> playlists)
      : variant_(variant), tracks_(std::move(tracks)), playlists_(std::move(playlists)) {}

  // Songs and playlists of every kind: all fields, none, shared and extreme track IDs, repeated and other
  // objects, raw and concatenated texts; entries of known, unknown and repeated IDs, and no entries.
  static Model Varied(samples::Variant variant);
  // The header alone, as a library of no songs.
  static Model Empty(samples::Variant variant) { return {variant, {}, {}}; }

  int32_t zeroBase = 0;
  uint32_t resultEncode = support::kUtf8;
  std::string volume = "iPod";

  [[nodiscard]] std::string File() const;
  [[nodiscard]] int32_t Songs() const { return static_cast<int32_t>(tracks_.size()); }
  [[nodiscard]] int32_t Playlists() const { return static_cast<int32_t>(playlists_.size()); }
  // Indexes, positions, playlist numbers and track IDs in and out of range.
  [[nodiscard]] std::vector<int32_t> Indexes() const;
  [[nodiscard]] std::vector<int32_t> PlaylistNumbers() const;
  [[nodiscard]] std::vector<int32_t> Positions() const;
  [[nodiscard]] std::vector<int32_t> TrackIDs() const;
  // All arguments of a family.
  [[nodiscard]] std::vector<Pick> Picks(Family family) const;

  // The integer fields of a song; a pick that names none gives 0.
  [[nodiscard]] int32_t Field(const Pick &pick, uint32_t samples::Track::*field) const;
  [[nodiscard]] int32_t Rate(const Pick &pick, uint32_t samples::Track::*field) const;
  [[nodiscard]] int32_t ID(int32_t index) const;
  [[nodiscard]] int32_t Prop(int32_t index, int32_t num) const;
  [[nodiscard]] int32_t UnknownCount(int32_t index) const;
  [[nodiscard]] int32_t DateAdded(const Pick &pick) const { return Prop(LibraryIndex(pick), 3); }
  [[nodiscard]] int32_t Compilation(const Pick &pick) const;
  [[nodiscard]] int32_t MovieFileFlag(const Pick &pick) const;

  // A song's library index as the GetIndex methods give it.
  [[nodiscard]] int32_t LibraryIndex(const Pick &pick) const;
  [[nodiscard]] int32_t RefNum(int32_t playlist, int32_t position) const;
  [[nodiscard]] int32_t EntriesOf(int32_t playlist) const;
  [[nodiscard]] int32_t TypeI(int32_t playlist) const;
  [[nodiscard]] int32_t TypeII(int32_t playlist) const;
  [[nodiscard]] int32_t Plays(int32_t playlist, int32_t position) const;

  // Texts as host code gets them, and their codes.
  [[nodiscard]] support::HostText TextOf(const Pick &pick, int32_t object) const;
  [[nodiscard]] int32_t CodeOf(const Pick &pick, int32_t object) const;
  [[nodiscard]] support::HostText Unknown(const Pick &pick, int32_t object) const;
  [[nodiscard]] support::HostText PlaylistName(int32_t playlist) const;
  [[nodiscard]] int32_t PlaylistCode(int32_t playlist) const;
  [[nodiscard]] support::HostText AbsolutePath(const Pick &pick) const;
  [[nodiscard]] support::HostText WithVolume(const support::HostText &path) const;

  // Whether two songs have the same text; a playlist of -1 means library indexes.
  [[nodiscard]] int32_t Same(int32_t object, int32_t playlist, int32_t a, int32_t b) const;

 private:
  struct Stored {
    std::string bytes{};
    uint32_t code = 0;
  };

  [[nodiscard]] bool Little() const { return variant_ == samples::Variant::LittleEndian; }
  [[nodiscard]] const samples::Playlist *List(int32_t playlist) const;
  [[nodiscard]] const samples::Entry *At(int32_t playlist, int32_t position) const;
  [[nodiscard]] int32_t IndexOfID(uint32_t id) const;
  [[nodiscard]] const samples::Track *Song(int32_t index) const;
  // The song of an integer method, which stops at an invalid entry, and of a text, which takes song 0.
  [[nodiscard]] const samples::Track *StrictSong(const Pick &pick) const;
  [[nodiscard]] const samples::Track *LooseSong(const Pick &pick) const;
  [[nodiscard]] Stored Kept(const samples::DataObject &object) const;
  [[nodiscard]] Stored Named(const samples::Track &song, int32_t object) const;
  [[nodiscard]] support::HostText HandedOut(const Stored &stored, int32_t object) const;

  samples::Variant variant_;
  std::vector<samples::Track> tracks_;
  std::vector<samples::Playlist> playlists_;
};

}  // namespace plugin_test
