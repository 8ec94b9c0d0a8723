#include <algorithm>
#include <climits>
#include <functional>
#include <set>

#include "tests/plugin/Declarations.h"
#include "tests/plugin/PluginTest.h"
#include "tests/plugin/VariedLibrary.h"
#include "tests/support/ModelAnswer.h"

namespace plugin_test {
namespace {

using Numbers = std::array<int32_t, 3>;

// Asks every method with arguments in and out of range, and holds the answers against the model's.
class EveryMethod : public PluginTestOfEachVariant {
 protected:
  // An object of the plug-in and one of the model, with the same file loaded.
  struct Pair {
    REALobject plugin = nullptr;
    std::unique_ptr<model::Object> model{};
  };

  Pair LoadedInBoth(const std::string &file) {
    Pair pair{Loaded(file), std::make_unique<model::Object>(process_, modelHost_)};
    pair.model->Construct();
    EXPECT_TRUE(pair.model->LoadFile(model::HostFile{
        .specificationName = "iTunesDB", .path = "iPod:iPod_Control:iTunes:iTunesDB", .bytes = file}));
    return pair;
  }

  void SetZerobasePlayerlist(const Pair &pair, int32_t value) {
    Host().Set<int32_t>(pair.plugin, "ZerobasePlayerlist", value);
    pair.model->SetZerobasePlayerlist(value);
  }

  // The names of the arguments, as the declaration has them.
  static std::vector<std::string_view> ArgumentsOf(std::string_view declaration) {
    std::vector<std::string_view> names;
    for (size_t at = declaration.find_first_of("(,"); at != std::string_view::npos;
         at = declaration.find(',', at + 1)) {
      const size_t name = declaration.find_first_not_of("(, ", at);
      names.push_back(declaration.substr(name, declaration.find(' ', name) - name));
    }
    return names;
  }

  // The numbers around both ends of 0 to `count` - 1, and the far ones.
  static std::vector<int32_t> Edges(size_t count) {
    std::vector<int32_t> numbers{INT_MAX, INT_MAX - 1, INT_MIN, INT_MIN + 1};
    for (int32_t i = -2; i <= static_cast<int32_t>(count) + 1; ++i) numbers.push_back(i);
    return numbers;
  }

  // The values for an argument of this name that is a number.
  static std::vector<int32_t> ValuesOf(std::string_view name, bool inPlaylist, const model::Database &held) {
    if (name == "playlist") return Edges(held.plays.size());
    if (name == "index" || name == "Index" || name == "IndexA" || name == "IndexB") {
      size_t longest = 0;
      for (const model::Playlist &list : held.plays) longest = std::max(longest, list.entries.size());
      return Edges(inPlaylist ? longest : held.songs.size());
    }
    if (name == "trackID") {
      std::vector<int32_t> ids = Edges(held.songs.size());
      for (const model::Song &song : held.songs) ids.push_back(song.id);
      ids.push_back(777);
      return ids;
    }
    if (name == "num") {
      std::vector<int32_t> numbers{-100, -7, 50, 100, INT_MAX};
      for (int32_t i = -4; i <= 15; ++i) numbers.push_back(i);
      return numbers;
    }
    return {0, 1, 2, -1, INT_MIN};
  }

  // Calls `ask` with every combination of values for the numbers that the method takes.
  static void ForEachArguments(std::string_view declaration, const model::Database &held,
                               const std::function<void(const Numbers &)> &ask) {
    const std::string shape = support::ShapeOf(declaration);
    const std::vector<std::string_view> names = ArgumentsOf(declaration);
    std::vector<Numbers> all{{}};
    for (size_t i = 0; shape[i] == 'i'; ++i) {
      std::vector<Numbers> longer;
      for (const int32_t value : ValuesOf(names.at(i), names[0] == "playlist", held)) {
        for (Numbers numbers : all) {
          numbers.at(i) = value;
          longer.push_back(numbers);
        }
      }
      all = std::move(longer);
    }
    for (const Numbers &numbers : all) ask(numbers);
  }

  // Setters do nothing out of range: the model is not asked, and answers as before.
  void SetOutOfRange(const Pair &pair, std::string_view declaration) {
    const REALstring text = Host().MakeString("changed");
    const bool inPlaylist = ArgumentsOf(declaration)[0] == "playlist";
    ForEachArguments(declaration, *pair.model->Contents(), [&](const Numbers &numbers) {
      const int32_t index = numbers.at(inPlaylist ? 1 : 0);
      const int32_t count =
          inPlaylist ? pair.model->CountSongsInPlayList(numbers[0]) : pair.model->CountSongs();
      if (index >= 0 && index < count) return;
      (void)CallAny(Host(), pair.plugin, declaration, {.numbers = numbers, .text = text});
    });
    Host().Release(text);
  }

  void ExpectTheModelsAnswers(const Pair &pair, std::string_view declaration) {
    std::vector<std::string> texts{":iPod_Control:Music:F00:A.mp3"};
    if (support::ShapeOf(declaration).starts_with('s')) texts.insert(texts.end(), {"", "x"});
    for (const std::string &bytes : texts) {
      const REALstring text = Host().MakeString(bytes);
      ForEachArguments(declaration, *pair.model->Contents(), [&](const Numbers &numbers) {
        EXPECT_EQ(CallAny(Host(), pair.plugin, declaration, {.numbers = numbers, .text = text}),
                  support::AskModel(*pair.model, declaration,
                                    {.numbers = numbers, .text = model::HostText{bytes, kUtf8}}))
            << declaration << " of " << numbers[0] << ", " << numbers[1] << ", " << numbers[2];
      });
      Host().Release(text);
    }
  }

  void ExpectEverything(const Pair &pair) {
    const auto returnsNothing = [](std::string_view declaration) {
      return support::ShapeOf(declaration).ends_with('v');
    };
    for (const std::string_view declaration : kDeclarations) {
      if (declaration != "Constructor" && returnsNothing(declaration)) SetOutOfRange(pair, declaration);
    }
    for (const std::string_view declaration : kDeclarations) {
      if (declaration.starts_with("Load(") || returnsNothing(declaration)) continue;
      ExpectTheModelsAnswers(pair, declaration);
      ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(Host().Get<int32_t>(pair.plugin, "Error"), pair.model->Error());
  }

  void ExpectEveryDeclarationWasCalled() {
    const std::set<std::string, std::less<>> all(kDeclarations.begin(), kDeclarations.end());
    EXPECT_EQ(Host().Called(), all);
  }

 private:
  support::ModelHost modelHost_;
  model::Process process_;
};

INSTANTIATE_TEST_SUITE_P(Plugin, EveryMethod, BothVariants(), VariantName);

TEST_P(EveryMethod, AnswersForTheSongsAndPlaylistsOfTheFile) {
  (void)folder_.write("iPod_Control/Music/F00/A.mp3");
  const Pair pair = LoadedInBoth(VariedLibrary(GetParam()));
  ASSERT_EQ(pair.model->CountSongs(), kVariedSongs);
  ASSERT_EQ(pair.model->CountPlayLists(), kVariedPlaylists);
  for (const int32_t zeroBase : {0, 1}) {
    SetZerobasePlayerlist(pair, zeroBase);
    ExpectEverything(pair);
  }
  ExpectEveryDeclarationWasCalled();
}

TEST_P(EveryMethod, AnswersInTheEncodingAskedFor) {
  const Pair pair = LoadedInBoth(VariedLibrary(GetParam()));
  for (const uint32_t encoding : {kUtf16, kAscii, 0U, 0x12345U, 0xffffffffU}) {
    Host().Set<int32_t>(pair.plugin, "ResultEncode", static_cast<int32_t>(encoding));
    pair.model->SetResultEncode(static_cast<int32_t>(encoding));
    for (const std::string_view declaration : kDeclarations) {
      const char result = support::ShapeOf(declaration).back();
      const bool isCode = declaration.find("Encode") != std::string_view::npos;
      if (isCode || result == 's' || result == 'f') ExpectTheModelsAnswers(pair, declaration);
    }
  }
}

TEST_P(EveryMethod, AnswersForALibraryOfNoSongs) {
  const Pair pair = LoadedInBoth(Bytes({}));
  for (const int32_t zeroBase : {0, 1}) {
    SetZerobasePlayerlist(pair, zeroBase);
    ExpectEverything(pair);
  }
  ExpectEveryDeclarationWasCalled();
}

TEST_P(EveryMethod, AnswersForAnotherFileInAnotherObject) {
  const Pair first = LoadedInBoth(VariedLibrary(GetParam()));
  const Pair other =
      LoadedInBoth(Bytes({{.id = 9, .objects = {samples::TextObject(4, u"X")}}}, {{.name = u"One"}}));
  ExpectEverything(other);
  ExpectEverything(first);
}

}  // namespace
}  // namespace plugin_test
