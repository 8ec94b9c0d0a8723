#include "tests/zemhost/Program.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/capability.h>
#include <poll.h>
#include <pty.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

namespace {

int checked(int result, const char *what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

struct Channel {
  carbon::Descriptor ours;
  carbon::Descriptor theirs;
};

Channel makePipe() {
  std::array<int, 2> ends{};
  checked(pipe2(ends.data(), O_CLOEXEC), "pipe");
  return {carbon::Descriptor(ends[0]), carbon::Descriptor(ends[1])};
}

Channel makeTerminal(unsigned short width) {
  winsize size{};
  size.ws_row = 24;
  size.ws_col = width;
  int ours = -1;
  int theirs = -1;
  checked(openpty(&ours, &theirs, nullptr, nullptr, &size), "openpty");
  termios modes{};
  checked(tcgetattr(theirs, &modes), "tcgetattr");
  modes.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // line ends as they were written
  checked(tcsetattr(theirs, TCSANOW, &modes), "tcsetattr");
  fcntl(ours, F_SETFD, FD_CLOEXEC);
  return {carbon::Descriptor(ours), carbon::Descriptor(theirs)};
}

Channel outputChannel(const RunOptions &options) {
  if (options.terminalWidth) return makeTerminal(*options.terminalWidth);
  if (options.output.empty()) return makePipe();
  return {carbon::Descriptor(),
          carbon::Descriptor(checked(open(options.output.c_str(), O_WRONLY | O_CLOEXEC), "open"))};
}

// Leaves the superuser what its owner may do with a file, and so nothing more to a program that is started.
bool onlyOwnerMay() {
  return geteuid() != 0 ||
         (prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) == 0 && prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH) == 0);
}

[[noreturn]] void runChild(const std::vector<std::string> &arguments, int out, int err,
                           const RunOptions &options) {
  std::vector<char *> words = {const_cast<char *>(ZEMHOST_PROGRAM)};
  for (const std::string &argument : arguments) words.push_back(const_cast<char *>(argument.c_str()));
  words.push_back(nullptr);
  unsetenv("COLUMNS");
  unsetenv("NO_COLOR");
  setenv("TERM", "dumb", 1);  // shows no styles
  // The path string that Load asks for stays with the host by contract, so a sanitizer's search for leaks
  // would fail every run; the host's own accounts are what finds leaks of strings. To note where each piece
  // of memory was asked for takes half of a short run.
  setenv("ASAN_OPTIONS", "detect_leaks=0:malloc_context_size=1", 1);
  for (const auto &[name, value] : options.environment) setenv(name.c_str(), value.c_str(), 1);
  const bool ready =
      dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 && (!options.asOwner || onlyOwnerMay());
  if (ready) execv(ZEMHOST_PROGRAM, words.data());
  _exit(127);
}

// Reads what is there and appends it; false at the end.
bool readInto(std::string &text, const carbon::Descriptor &from) {
  std::array<char, 65536> buffer{};
  const ssize_t got = read(from.number(), buffer.data(), buffer.size());
  if (got > 0) text.append(buffer.data(), static_cast<size_t>(got));
  return got > 0 || (got < 0 && errno == EINTR);  // a terminal ends with an error
}

void collect(Outcome &outcome, carbon::Descriptor &out, carbon::Descriptor &err,
             const std::optional<size_t> &readAtMost) {
  while (out.number() >= 0 || err.number() >= 0) {
    std::array<pollfd, 2> waits = {pollfd{out.number(), POLLIN, 0}, pollfd{err.number(), POLLIN, 0}};
    if (poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) checked(-1, "poll");
    if (waits[0].revents != 0 && !readInto(outcome.out, out)) out = carbon::Descriptor();
    if (waits[1].revents != 0 && !readInto(outcome.err, err)) err = carbon::Descriptor();
    if (readAtMost && outcome.out.size() >= *readAtMost) out = carbon::Descriptor();
  }
}

}  // namespace

Outcome runZemhost(const std::vector<std::string> &arguments, const RunOptions &options) {
  Channel out = outputChannel(options);
  constexpr unsigned short kWide = 1000;
  Channel err = options.errorsToTerminal ? makeTerminal(kWide) : makePipe();
  const pid_t child = checked(fork(), "fork");
  if (child == 0) runChild(arguments, out.theirs.number(), err.theirs.number(), options);
  out.theirs = carbon::Descriptor();
  err.theirs = carbon::Descriptor();
  Outcome outcome;
  collect(outcome, out.ours, err.ours, options.readAtMost);
  int status = 0;
  checked(waitpid(child, &status, 0), "waitpid");
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return outcome;
}

std::vector<std::string> linesOf(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace zemhost
