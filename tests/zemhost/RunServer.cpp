// Preloaded, it lets one start of a program serve many runs of it: most of what a short run costs under the
// sanitizers is loading. Before its main function the program waits for requests on the socket that
// RUN_SERVER_SOCKET names. A request is the words of a command, each ended by a zero byte, with the
// descriptor that the run writes to. It is answered by the number of the process that runs the command, and
// by how that ended. Each run is a process of its own.
#include <array>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Main = int (*)(int, char **, char **);

Main theMain = nullptr;
std::array<char, 1 << 16> request;
std::array<char *, 64> words;

// The length of the next request, whose descriptor is stored; 0 when there are no more.
size_t receive(int socket, int *output) {
  iovec content = {request.data(), request.size()};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  msghdr message{};
  message.msg_iov = &content;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  const ssize_t length = recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
  const cmsghdr *header = CMSG_FIRSTHDR(&message);
  if (length <= 0 || header == nullptr || (message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) != 0) return 0;
  std::memcpy(output, CMSG_DATA(header), sizeof *output);
  return static_cast<size_t>(length);
}

void answer(int socket, int number) {
  if (send(socket, &number, sizeof number, MSG_NOSIGNAL) != sizeof number) _exit(1);
}

// The program's own words, then those of the request; their number. More than there is room for end the run.
int takeWords(int count, char **arguments, size_t length) {
  size_t used = 0;
  for (; used < static_cast<size_t>(count); ++used) words.at(used) = arguments[used];
  for (size_t at = 0; at < length; at += std::strlen(&request[at]) + 1) words.at(used++) = &request[at];
  words.at(used) = nullptr;
  return static_cast<int>(used);
}

// Instead of the main function: returns in the process of a run alone.
int serve(int count, char **arguments, char **environment) {
  const int socket = std::atoi(std::getenv("RUN_SERVER_SOCKET"));
  // A run sees what it would see without this library.
  unsetenv("RUN_SERVER_SOCKET");
  unsetenv("LD_PRELOAD");
  int output = -1;
  while (const size_t length = receive(socket, &output)) {
    const pid_t run = fork();
    if (run == 0) {
      close(socket);
      setsid();
      dup2(output, STDOUT_FILENO);
      dup2(output, STDERR_FILENO);
      close(output);
      return theMain(takeWords(count, arguments, length), words.data(), environment);
    }
    close(output);
    answer(socket, run);
    int status = 0;
    waitpid(run, &status, 0);
    answer(socket, status);
  }
  _exit(0);
}

}  // namespace

// What every program's beginning calls to come to its main function.
using Call = void (*)();
extern "C" __attribute__((visibility("default"))) int startProgram(Main main, int count, char **arguments,
                                                                   Call first, Call last, Call loader,
                                                                   void *stack) asm("__libc_start_main");

int startProgram(Main main, int count, char **arguments, Call first, Call last, Call loader, void *stack) {
  theMain = main;
  const auto start = reinterpret_cast<decltype(&startProgram)>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(std::getenv("RUN_SERVER_SOCKET") != nullptr ? serve : main, count, arguments, first, last,
               loader, stack);
}
