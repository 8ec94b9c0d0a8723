#include "zemhost/files/Signals.h"

#include <atomic>
#include <cstring>
#include <unistd.h>

#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

namespace {

std::atomic<const char *> advice{nullptr};
std::atomic<bool> lineOpen{false};

// As much of a line as standard error takes; nobody could be shown a failure.
void say(const char *text) noexcept {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
}

extern "C" void endBySignal(int number) {
  removeTemporaryPaths();
  if (number != SIGPIPE) {
    if (lineOpen) say("\n");
    say(number == SIGINT ? "zemhost: interrupted" : "zemhost: terminated");
    if (const char *const text = advice; text != nullptr) {
      say("; ");
      say(text);
    }
    say("\n");
  }
  // Ending by the signal itself shows a shell, and a loop in it, why.
  std::signal(number, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, number);
  std::raise(number);
  sigprocmask(SIG_UNBLOCK, &only, nullptr);
}

}  // namespace

void handleSignals() {
  struct sigaction action {};
  action.sa_handler = endBySignal;
  sigfillset(&action.sa_mask);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
  std::signal(SIGXFSZ, SIG_IGN);  // so that writing fails, which is reported
}

void setInterruptionAdvice(const char *text) { advice = text; }

void setLineOpen(bool open) { lineOpen = open; }

}  // namespace zemhost
