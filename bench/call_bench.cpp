// One call each: the search for a track ID, and the registered functions of the class in a host whose own
// services do nothing.

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/BareHost.h"
#include "bench/Libraries.h"
#include "db/CiTunesDB.h"
#include "samples/GeneratedLibrary.h"

namespace {

using bench::Texts;

constexpr uint32_t kSongs = 100000;
constexpr uint32_t kFewSongs = 1000;
constexpr int32_t kFirstID = 52;

void Open(CiTunesDB &db) {
  FILE *file = std::fopen(bench::LibraryFile(kSongs, Texts::kUsual).c_str(), "rb");
  if (db.LoadiTunesDB(file) != 1) std::abort();
  std::fclose(file);
}

// IDs in an order that no cache foresees: those of the library's songs, or the odd numbers between them.
std::vector<int32_t> IDs(bool known) {
  std::vector<int32_t> ids(4096);
  samples::Random random(5);
  for (int32_t &id : ids) id = kFirstID + 2 * static_cast<int32_t>(random.Below(kSongs)) + (known ? 0 : 1);
  return ids;
}

void FindRefIdx(benchmark::State &state, bool known, bool changed) {
  CiTunesDB db;
  Open(db);
  if (changed) {
    for (int32_t i = 0; i < 1000; ++i) db.SetSongsProp(i * 97, -1, static_cast<uint32_t>(kFirstID + 2 * i));
  }
  const std::vector<int32_t> ids = IDs(known);
  for (auto _ : state) {
    for (const int32_t id : ids) benchmark::DoNotOptimize(db.FindRefIdx(id));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(ids.size()));
}

// A loaded library small enough to stay in the cache.
void Load(bench::Instance &instance) {
  if (!instance.Load(bench::Item(bench::LibraryFile(kFewSongs, Texts::kUsual)))) std::abort();
}

template <typename Result, typename... Before>
void Call(benchmark::State &state, const char *declaration, int32_t resultEncode, bool useSJIS, int32_t first,
          int32_t step, Before... before) {
  bench::Instance instance;
  Load(instance);
  instance.Set("ResultEncode", resultEncode);
  instance.Set("UseSJIS", useSJIS ? 1 : 0);
  const auto method = bench::Method<Result, Before..., int32_t>(declaration);
  for (auto _ : state) {
    for (int32_t i = 0; i < static_cast<int32_t>(kFewSongs); ++i) {
      benchmark::DoNotOptimize(method(instance.get(), before..., first + step * i));
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kFewSongs));
}

constexpr int32_t kUTF8 = 0x08000100;
constexpr int32_t kUTF16 = 0x0100;

BENCHMARK_CAPTURE(FindRefIdx, known, true, false);
BENCHMARK_CAPTURE(FindRefIdx, unknown, false, false);
BENCHMARK_CAPTURE(FindRefIdx, known_after_changes, true, true);
BENCHMARK_CAPTURE(FindRefIdx, unknown_after_changes, false, true);

void Integer(benchmark::State &state) {
  Call<int32_t>(state, "GetDuration(index As Integer) As Integer", kUTF8, false, 0, 1);
}
void IntegerOfEntry(benchmark::State &state) {
  Call<int32_t, int32_t>(state, "GetDuration(playlist As Integer, index As Integer) As Integer", kUTF8, false,
                         0, 1, 0);
}
void IntegerOfTrackID(benchmark::State &state) {
  Call<int32_t>(state, "GetReferDuration(trackID As Integer) As Integer", kUTF8, false, kFirstID, 2);
}
void Title(benchmark::State &state) {
  Call<REALstring>(state, "GetTitle(index As Integer) As String", kUTF8, false, 0, 1);
}
void TitleUnconverted(benchmark::State &state) {
  Call<REALstring>(state, "GetTitle(index As Integer) As String", kUTF16, false, 0, 1);
}
void TitleInShiftJIS(benchmark::State &state) {
  Call<REALstring>(state, "GetTitle(index As Integer) As String", kUTF8, true, 0, 1);
}
void Path(benchmark::State &state) {
  Call<REALstring>(state, "GetPath(index As Integer) As String", kUTF8, false, 0, 1);
}
void AbsolutePath(benchmark::State &state) {
  Call<REALstring>(state, "GetAbsolutePath(index As Integer) As String", kUTF8, false, 0, 1);
}

BENCHMARK(Integer);
BENCHMARK(IntegerOfEntry);
BENCHMARK(IntegerOfTrackID);
BENCHMARK(Title);
BENCHMARK(TitleUnconverted);
BENCHMARK(TitleInShiftJIS);
BENCHMARK(Path);
BENCHMARK(AbsolutePath);

}  // namespace
