// What a load costs, beside the floor: reading the whole file into a buffer that is there already and copying
// the text of every data object into one block that is there already. Both find the file in the page cache.

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <memory>
#include <string>
#include <vector>

#include "bench/BareHost.h"
#include "bench/Libraries.h"
#include "db/CiTunesDB.h"

namespace {

using bench::Texts;

uint32_t Songs(const benchmark::State &state) { return static_cast<uint32_t>(state.range(0)); }

// The processor time this process has taken, in seconds: what is measured here shares the machine with
// whatever else runs, and waits for nothing.
double ProcessorSeconds() {
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Runs the work once for each iteration, timing it alone.
template <typename Prepare, typename Work>
void Measure(benchmark::State &state, Prepare prepare, Work work) {
  for (auto _ : state) {
    auto prepared = prepare();
    const double start = ProcessorSeconds();
    work(prepared);
    state.SetIterationTime(ProcessorSeconds() - start);
  }
}

// Walks the chunks of a well-formed file and copies every data object's text. Returns the bytes copied.
template <bool BigEndian>
size_t CopyTexts(const std::vector<unsigned char> &file, std::vector<unsigned char> &texts) {
  const auto word = [&](size_t at) {
    const uint32_t a = file[at], b = file[at + 1], c = file[at + 2], d = file[at + 3];
    return size_t{BigEndian ? a << 24 | b << 16 | c << 8 | d : d << 24 | c << 16 | b << 8 | a};
  };
  const unsigned char object[] = {BigEndian ? 'h' : 'o', BigEndian ? 'm' : 'd'};
  size_t used = 0;
  for (size_t at = word(4); at + 16 <= file.size();) {
    if (std::memcmp(&file[at + 2], object, 2) != 0) {
      at += word(at + 4);
      continue;
    }
    const size_t length = word(at + 8);
    if (length > 40) {
      std::memcpy(&texts[used], &file[at + 40], length - 40);
      used += length - 40;
    }
    at += length;
  }
  return used;
}

void FloorOf(benchmark::State &state, const std::string &path, bool bigEndian) {
  FILE *file = std::fopen(path.c_str(), "rb");
  const auto copyTexts = bigEndian ? CopyTexts<true> : CopyTexts<false>;
  std::fseek(file, 0, SEEK_END);
  std::vector<unsigned char> image(static_cast<size_t>(std::ftell(file)));
  std::vector<unsigned char> block(image.size());
  Measure(
      state,
      [&] {
        std::rewind(file);
        return 0;
      },
      [&](int) {
        if (std::fread(image.data(), 1, image.size(), file) != image.size()) std::abort();
        benchmark::DoNotOptimize(copyTexts(image, block));
        benchmark::ClobberMemory();
      });
  std::fclose(file);
}

void Floor(benchmark::State &state, Texts texts) {
  FloorOf(state, bench::LibraryFile(Songs(state), texts), texts == Texts::kBigEndian);
}

// Load through the plug-in's registered function, in a new object each time.
void LoadOf(benchmark::State &state, const std::string &path) {
  const bench::Item item(path);
  Measure(
      state, [] { return std::make_unique<bench::Instance>(); },
      [&](const std::unique_ptr<bench::Instance> &instance) {
        if (!instance->Load(item)) std::abort();
      });
}

void Load(benchmark::State &state, Texts texts) { LoadOf(state, bench::LibraryFile(Songs(state), texts)); }

// What Debian's libgpod takes to read the same file, where it is installed.
class OtherReader {
 public:
  OtherReader() {
    void *library = dlopen("libgpod.so.4", RTLD_NOW);
    if (library == nullptr) return;
    parse_ = reinterpret_cast<Parse>(dlsym(library, "itdb_parse_file"));
    free_ = reinterpret_cast<Free>(dlsym(library, "itdb_free"));
  }
  bool IsThere() const { return parse_ != nullptr && free_ != nullptr; }

  void Run(benchmark::State &state, const std::string &path) const {
    void *database = nullptr;
    Measure(
        state,
        [&] {
          if (database != nullptr) free_(database);
          return 0;
        },
        [&](int) {
          database = parse_(path.c_str(), nullptr);
          if (database == nullptr) std::abort();
        });
    free_(database);
  }

 private:
  using Parse = void *(*)(const char *, void **);
  using Free = void (*)(void *);
  Parse parse_ = nullptr;
  Free free_ = nullptr;
};

// The grouping of a freshly loaded library, by itself. Its cells are set back to unnumbered each time.
void Group(benchmark::State &state, Texts texts) {
  CiTunesDB db;
  FILE *file = std::fopen(bench::LibraryFile(Songs(state), texts).c_str(), "rb");
  if (db.LoadiTunesDB(file) != 1) std::abort();
  std::fclose(file);
  Measure(
      state,
      [&] {
        for (CSongList &song : db.songs) {
          for (songInfo *cell : {&song.artist, &song.album, &song.genre, &song.composer}) cell->idx = -1;
        }
        return 0;
      },
      [&](int) { db.SetSongsObjectIndex(); });
}

// A little-endian load leaves only songs without a text to number, so that is what is grouped there.
BENCHMARK_CAPTURE(Floor, usual, Texts::kUsual)
    ->Arg(10000)
    ->Arg(40000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, usual, Texts::kUsual)
    ->Arg(10000)
    ->Arg(40000)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Floor, ten_objects, Texts::kTenObjects)
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Load, ten_objects, Texts::kTenObjects)
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Floor, big_endian, Texts::kBigEndian)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, big_endian, Texts::kBigEndian)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Floor, hostile, Texts::kHostile)
    ->Arg(10000)
    ->Arg(20000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, hostile, Texts::kHostile)
    ->Arg(10000)
    ->Arg(20000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, missing, Texts::kMissing)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Group, missing, Texts::kMissing)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, distinct, Texts::kDistinct)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Group, distinct, Texts::kDistinct)
    ->Arg(100000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, equal, Texts::kEqual)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Group, equal, Texts::kEqual)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, million, Texts::kUsual)
    ->Arg(1000000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace

// Beside the generated libraries, the real little-endian one that ZEM_BENCH_REAL names, if it does.
int main(int argc, char **argv) {
  const OtherReader other;
  const auto add = [](const char *name, auto work) {
    benchmark::RegisterBenchmark(name, work)->UseManualTime()->Unit(benchmark::kMicrosecond);
  };
  if (const char *real = std::getenv("ZEM_BENCH_REAL")) {
    const std::string path = real;
    add("Floor/real", [path](benchmark::State &state) { FloorOf(state, path, false); });
    add("Load/real", [path](benchmark::State &state) { LoadOf(state, path); });
    if (other.IsThere()) add("Other/real", [&, path](benchmark::State &state) { other.Run(state, path); });
  }
  if (other.IsThere()) {
    add("Other/ten_objects/2000",
        [&](benchmark::State &state) { other.Run(state, bench::LibraryFile(2000, Texts::kTenObjects)); });
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
