#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Folders.h"

namespace plugin_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What a command prints, line by line.
std::vector<std::string> Lines(const std::string &command) {
  struct Close {
    void operator()(FILE *pipe) const { EXPECT_EQ(pclose(pipe), 0); }
  };
  const std::unique_ptr<FILE, Close> pipe(popen(command.c_str(), "r"));
  std::vector<std::string> lines;
  char *line = nullptr;
  size_t room = 0;
  while (getline(&line, &room, pipe.get()) > 0) {
    lines.emplace_back(line);
    if (lines.back().ends_with('\n')) lines.back().pop_back();
  }
  std::free(line);
  return lines;
}

// The dynamic symbols of the plug-in that `option` asks for, with their versions.
std::vector<std::string> Symbols(const std::string &option) {
  std::vector<std::string> names;
  for (const std::string &line :
       Lines(std::string(ZEM_NM) + " -D " + option + " '" + support::PluginFile().string() + "'")) {
    std::istringstream words(line);
    std::string name;
    while (words >> name) continue;
    names.push_back(name);
  }
  return names;
}

// The shared libraries that the plug-in asks for, without their versions.
std::vector<std::string> NeededLibraries() {
  std::vector<std::string> names;
  for (const std::string &line :
       Lines(std::string(ZEM_READELF) + " -d '" + support::PluginFile().string() + "'")) {
    if (line.find("(NEEDED)") == std::string::npos) continue;
    const size_t open = line.find('[');
    names.push_back(line.substr(open + 1, line.find(".so") - open - 1));
  }
  return names;
}

TEST(Symbols, EntryPointIsTheOnlyOneDefined) {
  EXPECT_THAT(Symbols("--defined-only"), ElementsAre("REALPluginMain"));
}

TEST(Symbols, LibrariesNeededAreThoseOfTheLanguageAndCarbonFiles) {
  std::vector<std::string> others;
  for (const std::string &name : NeededLibraries()) {
    if (name != "libCarbonFiles" && name != "libstdc++" && name != "libgcc_s" && name != "libc" &&
        name != "libm" && name != "ld-linux-x86-64" && name != "ld-linux" && name != "ld") {
      others.push_back(name);
    }
  }
  EXPECT_THAT(others, IsEmpty());
  EXPECT_THAT(NeededLibraries(), testing::Contains("libCarbonFiles"));
}

TEST(Symbols, EveryUndefinedOneIsOfTheLanguageOrCarbonFiles) {
  const std::vector<std::string> carbon = {"FSMakeFSSpec",
                                           "FSpMakeFSRef",
                                           "FSRefMakePath",
                                           "NewPtr",
                                           "CFStringCreateWithBytes",
                                           "CFStringGetLength",
                                           "CFStringGetMaximumSizeForEncoding",
                                           "CFStringGetCString",
                                           "CFRelease"};
  // The C and C++ libraries version their symbols; the compiler's own may stay undefined, and the sanitizers'
  // are in the program.
  std::vector<std::string> others;
  for (const std::string &symbol : Symbols("--undefined-only")) {
    const size_t at = symbol.find('@');
    const std::string version = at == std::string::npos ? "" : symbol.substr(at + 1);
    const bool ofTheLanguage = version.starts_with("GLIBC") || version.starts_with("CXXABI_") ||
                               version.starts_with("GCC_") || symbol.starts_with("_ITM_") ||
                               symbol == "__gmon_start__" || symbol.starts_with("__asan_") ||
                               symbol.starts_with("__ubsan_") || symbol.starts_with("__sanitizer_");
    if (!ofTheLanguage) others.push_back(symbol);
  }
  EXPECT_THAT(others, testing::IsSubsetOf(carbon));
}

// The host's one thread calls, and nothing is shared or written down: not even the lock that a static of a
// function takes.
TEST(Symbols, NoneStartsAThreadTakesALockOrWritesALine) {
  const std::vector<std::string> beginnings = {"pthread_",      "thrd_",
                                               "mtx_",          "cnd_",
                                               "sem_",          "clone",
                                               "syscall",       "fork",
                                               "posix_spawn",   "__cxa_guard",
                                               "__gthr",        "_ZNSt6thread",
                                               "_ZNSt5mutex",   "_ZNSt18condition_variable",
                                               "printf",        "fprintf",
                                               "vprintf",       "vfprintf",
                                               "dprintf",       "__printf_chk",
                                               "__fprintf_chk", "puts",
                                               "fputs",         "putc",
                                               "fputc",         "putchar",
                                               "fwrite",        "write",
                                               "perror",        "syslog",
                                               "__syslog_chk",  "vsyslog",
                                               "openlog",       "stdout",
                                               "stderr",        "_ZSt4cout",
                                               "_ZSt4cerr",     "_ZSt4clog",
                                               "_ZSt7getline",  "_ZNSo"};
  std::vector<std::string> found;
  for (const std::string &symbol : Symbols("--undefined-only")) {
    for (const std::string &beginning : beginnings) {
      if (symbol.starts_with(beginning)) found.push_back(symbol);
    }
  }
  EXPECT_THAT(found, IsEmpty());
}

}  // namespace
}  // namespace plugin_test
