#pragma once

// A database that the plug-in's class has loaded, asked through the class's own methods, and beside its
// answers what only the player's own files say.

#include <array>
#include <memory>

#include "zemhost/library/LibrarySource.h"
#include "zemhost/library/OpenDatabase.h"

namespace zemhost {

class ClassSource final : public LibrarySource {
 public:
  // Sets the object's ResultEncode, which must stay as it is while this is used.
  explicit ClassSource(OpenDatabase database);

  const player::DatabaseLocation &location() const override { return database_.location; }
  LibraryForm form() const override { return libType_ == 0 ? LibraryForm::Desktop : LibraryForm::Player; }
  // The class cuts it out of the path of the database, where it knows one spelling of the player's folder
  // alone; here it is the volume's own. Of a desktop library, and of a file on no player, what the class
  // says.
  std::string volumeName() const override;
  const Object *object() const override { return &database_.object; }

  int32_t songCount() const override { return songCount_; }
  // With the path as the file has it: the class drops from it what lies above U+00FF.
  Song song(int32_t index) const override;
  std::string answeredPath(int32_t index) const override;
  std::string text(SongTextField field, int32_t index) const override;
  uint32_t duration(int32_t index) const override;
  uint32_t size(int32_t index) const override;
  std::optional<std::string> numberedText(int32_t index, int32_t number) const override;
  int32_t numberedTextCount(int32_t index) const override { return numberedTextCount_(index).integer(); }
  std::vector<player::SongText> textsInFile(int32_t index) const override;
  std::string storedText(SongTextField field, int32_t index) const override;
  bool isSame(SongTextField by, int32_t one, int32_t other) const override;
  bool hasCounts() const override { return database_.songs->hasCounts(); }

  std::vector<player::Chapter> chapters(int32_t index) const override;
  player::SongFacts storedFacts(int32_t index) const override;

  // Those of the database, and behind them those that were made on the player since.
  int32_t playlistCount() const override;
  std::string playlistName(int32_t playlist, size_t *lost) const override;
  player::PlaylistFacts playlistFacts(int32_t playlist) const override;
  bool isAnsweredByClass(int32_t playlist) const override { return onTheGo(playlist) == nullptr; }
  int32_t entryCount(int32_t playlist) const override;
  // The class reads song 0 for an entry whose track ID no song carries; here such an entry names no song.
  PlaylistEntry entry(int32_t playlist, int32_t position) const override;
  std::optional<int32_t> trackID(int32_t playlist, int32_t position) const override;
  std::optional<std::vector<uint32_t>> idsInFile(int32_t playlist) const override;
  std::vector<player::PodcastGroup> podcastGroups(int32_t playlist) const override;
  std::optional<int32_t> syncZone() const override;

 private:
  // A text method and its Encode method.
  struct TextMethods {
    TextMethods(const Object &object, const std::string &name);
    std::string read(int32_t index, int32_t libType, size_t *lost = nullptr) const;

    Method text;
    Method encode;
  };

  const TextMethods &methodsOf(SongTextField field) const;
  template <typename Step>
  auto read(const Step &step) const;
  void addFacts(int32_t index, Song &song) const;
  // The list with this number that was made on the player; nullptr for all others.
  const player::OnTheGoList *onTheGo(int32_t playlist) const;
  // Where a playlist stands among those of the file; none where the class answers with other ones.
  std::optional<size_t> placeInFile(int32_t playlist) const;
  Method numberMethod(const std::string &name) const;
  Method compareMethod(const std::string &name) const;

  OpenDatabase database_;
  int32_t libType_ = database_.object.get("LibType").integer();

  // Every method looked up once.
  TextMethods title_{database_.object, "Title"};
  TextMethods artist_{database_.object, "Artist"};
  TextMethods album_{database_.object, "Album"};
  TextMethods genre_{database_.object, "Genre"};
  TextMethods composer_{database_.object, "Composer"};
  TextMethods fileType_{database_.object, "FileType"};
  Method numberedText_ = database_.object.method("GetUnknown(index As Integer, num As Integer) As String");
  Method numberedTextCount_ = numberMethod("CountSongUnknown");
  int32_t songCount_ = database_.object.call("CountSongs").integer();
  Method path_ = database_.object.method("GetPath(index As Integer) As String");
  Method id_ = numberMethod("GetID");
  Method track_ = numberMethod("GetNumOfTrack");
  Method trackTotal_ = numberMethod("GetTotalTrack");
  Method duration_ = numberMethod("GetDuration");
  Method size_ = numberMethod("GetFileSize");
  Method year_ = numberMethod("GetYear");
  Method bitRate_ = numberMethod("GetBitrate");
  Method sampleRate_ = numberMethod("GetSamplerate");
  Method modified_ = numberMethod("GetDataAdded");
  Method sameArtist_ = compareMethod("Artist");
  Method sameAlbum_ = compareMethod("Album");
  Method sameGenre_ = compareMethod("Genre");
  Method sameComposer_ = compareMethod("Composer");

  int32_t storedLists_ = database_.object.call("CountPlayLists").integer();
  Method playlistName_ = database_.object.method("GetPlayListName(playlist As Integer) As String");
  Method playlistEncode_ = database_.object.method("GetPlayListEncode(playlist As Integer) As Integer");
  Method entryCount_ = database_.object.method("CountSongsInPlayList(playlist As Integer) As Integer");
  Method entrySong_ = database_.object.method("GetIndex(playlist As Integer, Index As Integer) As Integer");
  Method entryTrackID_ =
      database_.object.method("GetRefNum(playlist As Integer, Index As Integer) As Integer");
};

}  // namespace zemhost
