#include "zemhost/rescue/Apart.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <exception>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/Error.h"
#include "zemhost/library/MemoryLimit.h"

namespace zemhost {

namespace {

constexpr unsigned kSeconds = 60;  // a disk that fails takes long
constexpr rlim_t kProcessorSeconds = 5;
constexpr uint64_t kMemory = uint64_t{128} << 20;
constexpr int kThrew = 255;

[[noreturn]] void workAndExit(const std::function<int()> &work) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGXCPU}) signal(number, SIG_DFL);
  const rlimit noCore{0, 0};
  const rlimit time{kProcessorSeconds, kProcessorSeconds};
  setrlimit(RLIMIT_CORE, &noCore);
  setrlimit(RLIMIT_CPU, &time);
  alarm(kSeconds);
  limitMemoryTo(kMemory);
  try {
    _exit(work());
  } catch (const std::exception &) {
    _exit(kThrew);
  }
}

}  // namespace

int runApart(const std::function<int()> &work, const std::function<void()> &meanwhile) {
  const pid_t child = fork();
  if (child < 0) throw HostError("tags: no process can be made", errno);
  if (child == 0) workAndExit(work);
  if (meanwhile) meanwhile();
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) != kThrew ? WEXITSTATUS(status) : -1;
}

}  // namespace zemhost
