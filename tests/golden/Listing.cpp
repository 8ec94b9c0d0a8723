#include "tests/golden/Listing.h"

#include <algorithm>
#include <set>
#include <sstream>

#include "tests/golden/Talk.h"
#include "tests/model/Methods.h"

namespace golden {
namespace {

using support::Answer;

std::string NameOf(const std::string &declaration) {
  return declaration.substr(0, declaration.find_first_of("( "));
}

// The getters of one family, by what stands in their parentheses.
std::vector<std::string> Getters(const std::vector<std::string> &arguments) {
  std::vector<std::string> found;
  for (const model::Method &method : model::Methods()) {
    const std::string &declaration = method.declaration;
    for (const std::string &text : arguments) {
      if (declaration.find('(' + text + ") As ") != std::string::npos) found.push_back(declaration);
    }
  }
  return found;
}

class Writer {
 public:
  explicit Writer(const Sample &sample) : talk_(sample) { out_ << sample.about << "\n\n"; }

  Listing Write() {
    Properties();
    Songs();
    Encodings();
    Playlists();
    TrackIDs();
    Comparisons();
    OutOfRange();
    ZeroBased();
    Setters();
    return {out_.str(), talk_.Steps()};
  }

 private:
  int32_t Number(const std::string &declaration, const Numbers &numbers = {}) {
    return talk_.Call(declaration, numbers).number;
  }
  int32_t CountSongs() { return Number("CountSongs As Integer"); }
  int32_t CountPlayLists() { return Number("CountPlayLists As Integer"); }
  int32_t CountEntries(int32_t playlist) {
    return Number("CountSongsInPlayList(playlist As Integer) As Integer", {playlist});
  }

  void Section(const std::string &title) {
    out_ << '\n' << title << '\n' << std::string(title.size(), '-') << '\n';
  }

  // A line for each method that has something to say, and one line for all the others together.
  void Answers(const std::vector<std::string> &declarations, const Numbers &numbers) {
    std::string none;
    for (const std::string &declaration : declarations) {
      const Answer answer = talk_.Call(declaration, numbers);
      if (answer.IsNoValue()) {
        none += ' ' + NameOf(declaration);
      } else {
        out_ << "  " << NameOf(declaration) << ' ' << Show(declaration, answer) << '\n';
      }
    }
    if (!none.empty()) out_ << "  no value:" << none << '\n';
  }

  void Properties() {
    Section("Properties and counts");
    for (const char *name : {"Error", "LibType", "UseSJIS", "ResultEncode", "ZerobasePlayerlist"}) {
      out_ << name << ' ' << talk_.Get(name).number << '\n';
    }
    out_ << "VolumeName " << ShowText(talk_.Get("VolumeName").text) << '\n';
    out_ << "CountSongs " << CountSongs() << '\n';
    out_ << "CountPlayLists " << CountPlayLists() << '\n';
    for (const char *path : {":A:B.mp3", "", "iPod:A"}) {
      out_ << "GetAbsolutePath(\"" << path << "\") " << ShowText(talk_.AbsolutePath(path).text) << '\n';
    }
  }

  void Songs() {
    Section("Songs");
    for (int32_t song = 0; song < CountSongs(); ++song) {
      out_ << "song " << song << '\n';
      Answers(Getters({"index As Integer"}), {song});
      out_ << "  GetProp -3 to 10:";
      for (int32_t num = -3; num <= 10; ++num) {
        out_ << ' ' << Number("GetProp(index As Integer, num As Integer) As Integer", {song, num});
      }
      out_ << '\n';
      const std::string unknown = "GetUnknown(index As Integer, num As Integer) As String";
      for (int32_t num = -1; num <= 120; ++num) {
        const Answer answer = talk_.Call(unknown, {song, num});
        if (!answer.IsNoValue()) out_ << "  GetUnknown(" << num << ") " << Show(unknown, answer) << '\n';
      }
    }
  }

  // The songs' texts by the table of Shift_JIS, and as they are stored.
  void Encodings() {
    std::vector<std::string> texts = Getters({"index As Integer"});
    std::erase_if(texts, [](const std::string &declaration) {
      return !declaration.ends_with(" As String") || declaration.find("Path") != std::string::npos;
    });
    const auto list = [&](const std::string &title) {
      Section(title);
      for (int32_t song = 0; song < CountSongs(); ++song) {
        out_ << "song " << song << '\n';
        Answers(texts, {song});
      }
    };
    talk_.Set("ResultEncode", static_cast<int32_t>(support::kUtf16));
    list("Texts of the songs with ResultEncode 0x0100");
    talk_.Set("UseSJIS", 1);
    talk_.Set("ResultEncode", static_cast<int32_t>(support::kShiftJIS));
    list("Texts of the songs with UseSJIS and ResultEncode 0x0A01");
    talk_.Set("UseSJIS", 0);
    talk_.Set("ResultEncode", static_cast<int32_t>(support::kUtf8));
  }

  void Playlists() {
    Section("Playlists");
    const int32_t count = CountPlayLists();
    for (int32_t playlist = -1; playlist <= count; ++playlist) {
      out_ << "playlist " << playlist << '\n';
      PlaylistAnswers(playlist);
      for (int32_t entry = 0; entry < CountEntries(playlist); ++entry) Entry(playlist, entry);
    }
  }

  void PlaylistAnswers(int32_t playlist) {
    Answers(Getters({"playlist As Integer"}), {playlist});
    out_ << "  GetPlayListType -1 to 2:";
    for (int32_t type = -1; type <= 2; ++type) {
      out_ << ' '
           << Number("GetPlayListType(playlist As Integer, reqType As Integer) As Integer", {playlist, type});
    }
    out_ << '\n';
  }

  void Entry(int32_t playlist, int32_t entry) {
    const int32_t song =
        Number("GetIndex(playlist As Integer, Index As Integer) As Integer", {playlist, entry});
    out_ << "  entry " << entry << ": ID "
         << Number("GetRefNum(playlist As Integer, Index As Integer) As Integer", {playlist, entry})
         << ", GetPlaySong "
         << Number("GetPlaySong(playlist As Integer, index As Integer) As Boolean", {playlist, entry})
         << ", GetFlags "
         << Number("GetFlags(playlist As Integer, index As Integer) As Integer", {playlist, entry})
         << ", otherwise";
    const std::string unknown = "GetUnknown(playlist As Integer, index As Integer, num As Integer) As String";
    AsSong("playlist As Integer, index As Integer", unknown, {playlist, entry}, song);
  }

  void TrackIDs() {
    Section("Track IDs");
    std::set<int32_t> ids = {0, -1, 1, 999999};
    for (int32_t song = 0; song < CountSongs(); ++song) {
      ids.insert(Number("GetID(index As Integer) As Integer", {song}));
    }
    for (const int32_t id : ids) {
      // The movie flag takes any index for a track ID.
      const std::string movie = "GetMovieFileFlag(index As Integer) As Boolean";
      out_ << "ID " << id << ": GetMovieFileFlag(" << id << ") " << Show(movie, talk_.Call(movie, {id}))
           << ", otherwise";
      const int32_t song = Number("GetIndex(trackID As Integer) As Integer", {id});
      AsSong("trackID As Integer", "GetReferUnknown(trackID As Integer, num As Integer) As String", {id},
             song);
    }
  }

  // Says which song's answers a family's answers are, and every answer that is another.
  void AsSong(const std::string &arguments, const std::string &unknown, Numbers numbers, int32_t song) {
    out_ << " as song " << song << '\n';
    for (const std::string &declaration : Getters({arguments})) {
      const std::string ofLibrary = OfLibrary(declaration);
      if (ofLibrary.empty()) continue;
      const std::string answer = Show(declaration, talk_.Call(declaration, numbers));
      if (answer != Show(ofLibrary, talk_.Call(ofLibrary, {song}))) {
        out_ << "    but " << NameOf(declaration) << ' ' << answer << '\n';
      }
    }
    const size_t last = arguments.find(',') == std::string::npos ? 1 : 2;
    for (const int32_t num : {-1, 0, 1, 7, 8, 13, 14, 15, 16, 100}) {
      numbers.at(last) = num;
      const std::string answer = Show(unknown, talk_.Call(unknown, numbers));
      const std::string same = "GetUnknown(index As Integer, num As Integer) As String";
      if (answer != Show(same, talk_.Call(same, {song, num}))) {
        out_ << "    but " << NameOf(unknown) << '(' << num << ") " << answer << '\n';
      }
    }
  }

  // The declaration of the library family that asks the same of a song's index; none for what belongs to an
  // entry.
  static std::string OfLibrary(const std::string &declaration) {
    std::string name = NameOf(declaration);
    if (name.starts_with("GetRefer")) name.replace(0, 8, "Get");
    if (name == "GetDateAdded") name = "GetDataAdded";
    for (const std::string &library : Getters({"index As Integer"})) {
      if (NameOf(library) == name) return library;
    }
    return "";
  }

  // A square of one line a song: which others it is the same as. The last line and column are out of range.
  void Comparisons() {
    const int32_t songs = CountSongs();
    for (const char *object : {"Artist", "Album", "Genre", "Composer"}) {
      Section("Compare" + std::string(object));
      const std::string library =
          "Compare" + std::string(object) + "(IndexA As Integer, IndexB As Integer) As Boolean";
      Square(songs, [&](int32_t a, int32_t b) { return Number(library, {a, b}); });
      const std::string inPlaylist = "ComparePlaylist" + std::string(object) +
                                     "(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean";
      for (int32_t playlist = 0; playlist <= CountPlayLists(); ++playlist) {
        out_ << "playlist " << playlist << '\n';
        Square(CountEntries(playlist), [&](int32_t a, int32_t b) {
          return Number(inPlaylist, {playlist, a, b});
        });
      }
    }
  }

  template <typename Same>
  void Square(int32_t count, const Same &same) {
    for (int32_t a = 0; a <= count; ++a) {
      out_ << "  ";
      for (int32_t b = 0; b <= count; ++b) out_ << (same(a, b) != 0 ? '=' : '.');
      out_ << '\n';
    }
  }

  void OutOfRange() {
    Section("Out of range");
    for (const int32_t song : {-1, CountSongs()}) {
      out_ << "song " << song << '\n';
      Answers(Getters({"index As Integer"}), {song});
    }
    const auto ofEntries =
        Getters({"playlist As Integer, index As Integer", "playlist As Integer, Index As Integer"});
    for (const Numbers &entry : {Numbers{-1, 0}, Numbers{0, -1}, Numbers{0, CountEntries(0)}}) {
      out_ << "playlist " << entry[0] << ", entry " << entry[1] << '\n';
      Answers(ofEntries, entry);
    }
  }

  void ZeroBased() {
    Section("Playlists with ZerobasePlayerlist");
    talk_.Set("ZerobasePlayerlist", 1);
    out_ << "CountPlayLists " << CountPlayLists() << '\n';
    for (int32_t playlist = -2; playlist <= CountPlayLists(); ++playlist) {
      out_ << "playlist " << playlist << '\n';
      PlaylistAnswers(playlist);
      out_ << "  IDs:";
      for (int32_t entry = 0; entry < CountEntries(playlist); ++entry) {
        out_ << ' '
             << Number("GetRefNum(playlist As Integer, Index As Integer) As Integer", {playlist, entry});
      }
      out_ << '\n';
    }
    talk_.Set("ZerobasePlayerlist", 0);
  }

  void Setters() {
    const std::vector<std::string> ofSong = {
        "GetTitle(index As Integer) As String",          "GetTitleEncode(index As Integer) As Integer",
        "GetAlbum(index As Integer) As String",          "GetAlbumEncode(index As Integer) As Integer",
        "GetArtist(index As Integer) As String",         "GetArtistEncode(index As Integer) As Integer",
        "GetGenre(index As Integer) As String",          "GetGenreEncode(index As Integer) As Integer",
        "GetComposer(index As Integer) As String",       "GetComposerEncode(index As Integer) As Integer",
        "GetNumOfTrack(index As Integer) As Integer",    "GetTotalTrack(index As Integer) As Integer",
        "GetFileSize(index As Integer) As Integer",      "GetYear(index As Integer) As Integer",
        "GetMediaType(index As Integer) As Integer",     "GetCompilation(index As Integer) As Boolean",
        "GetTrackTotalInfo(index As Integer) As String", "GetDuration(index As Integer) As Integer"};
    const std::vector<std::string> ofEntry = {"GetPlaySong(playlist As Integer, index As Integer) As Boolean",
                                              "GetFlags(playlist As Integer, index As Integer) As Integer"};
    Section("Setters, one after the other, on song and entry 0");
    int32_t number = 1000;
    for (const model::Method &method : model::Methods()) {
      const std::string &declaration = method.declaration;
      if (!declaration.starts_with("Set")) continue;
      const std::vector<std::string> &seen =
          declaration.find("(playlist") == std::string::npos ? ofSong : ofEntry;
      if (declaration.ends_with("As String)")) {
        const std::string text = "\xC3\x9C " + NameOf(declaration);
        Change(seen, NameOf(declaration) + " \"" + text + '"', [&] { talk_.SetText(declaration, 0, text); });
        continue;
      }
      const bool boolean = declaration.ends_with("As Boolean)");
      for (const int32_t value : boolean ? std::vector<int32_t>{1, 0} : std::vector<int32_t>{++number}) {
        Change(seen, NameOf(declaration) + ' ' + std::to_string(value), [&] {
          talk_.Call(declaration, &seen == &ofEntry ? Numbers{0, 0, value} : Numbers{0, value});
        });
      }
    }
  }

  // Does something, and says what is no longer answered as before.
  template <typename Doing>
  void Change(const std::vector<std::string> &seen, const std::string &what, const Doing &doing) {
    const std::vector<std::string> before = Seen(seen);
    doing();
    const std::vector<std::string> after = Seen(seen);
    out_ << what << '\n';
    for (size_t i = 0; i < seen.size(); ++i) {
      if (after[i] != before[i])
        out_ << "  " << NameOf(seen[i]) << ' ' << before[i] << " -> " << after[i] << '\n';
    }
  }

  std::vector<std::string> Seen(const std::vector<std::string> &declarations) {
    std::vector<std::string> seen;
    seen.reserve(declarations.size());
    for (const std::string &declaration : declarations)
      seen.push_back(Show(declaration, talk_.Call(declaration)));
    return seen;
  }

  Talk talk_;
  std::ostringstream out_;
};

}  // namespace

Listing List(const Sample &sample) { return Writer(sample).Write(); }

}  // namespace golden
