#pragma once

// How the program ends when a signal asks it to.

#include <csignal>

namespace zemhost {

// From here on Ctrl-C, SIGTERM and SIGHUP remove what every TemporaryPath owns, write one line to standard
// error and end the program as the signal would have done: a shell sees status 130, 143 or 129. SIGPIPE does
// the same without a line. A signal that the program was started to ignore stays ignored.
// Writing past a limit on the size of files becomes an error like a full disk.
void handleSignals();

// What stands after "interrupted" in that line, a text that outlives all signals, or null for nothing; and
// whether a line without an end stands on the terminal, which must be ended first.
void setInterruptionAdvice(const char *text);
void setLineOpen(bool open);

// While one lives, no signal reaches the thread that made it.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsHeld(const SignalsHeld &) = delete;
  SignalsHeld &operator=(const SignalsHeld &) = delete;
  ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace zemhost
