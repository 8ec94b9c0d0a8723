#include "zemhost/files/OutOfMemory.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "zemhost/ExitStatus.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

namespace {

std::string subject;      // "NAME: "
std::string explanation;  // "; REASON"

// As much as standard error takes; nobody could be shown a failure.
void say(std::string_view text) noexcept {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

std::terminate_handler usual = nullptr;

// Where a function that must not throw finds no memory, the library ends the program without handing the
// exception on: std::filesystem's iterators do so. Nothing else here ends it without one.
[[noreturn]] void endAtOnce() {
  try {
    if (std::current_exception() == nullptr) throw std::bad_alloc();
    throw;
  } catch (const std::bad_alloc &) {
    removeTemporaryPaths();
    sayOutOfMemory();
    _exit(kFailure);
  } catch (...) {  // the usual end says what it is
  }
  usual();
  std::abort();
}

}  // namespace

void setMemorySubject(std::string name, std::string reason) {
  subject = std::move(name) + ": ";
  explanation = reason.empty() ? std::string() : "; " + std::move(reason);
}

void sayOutOfMemory() noexcept {
  for (const std::string_view part :
       {std::string_view("zemhost: "), std::string_view(subject), std::string_view("out of memory"),
        std::string_view(explanation), std::string_view("\n")}) {
    say(part);
  }
}

void handleOutOfMemory() { usual = std::set_terminate(endAtOnce); }

}  // namespace zemhost
