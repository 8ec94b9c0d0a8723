#include "zemhost/rescue/PlayerAnswer.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

Answer answerOf(const std::filesystem::path &file) {
  constexpr int kAttempts = 3;
  constexpr std::chrono::milliseconds kPause(1000);
  for (int tries = 0; tries < kAttempts; ++tries) {
    if (tries > 0) std::this_thread::sleep_for(kPause);
    const carbon::Descriptor open(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!open) continue;
    // What the system keeps in memory would be read from a player that is gone, too.
    [[maybe_unused]] const int advised = posix_fadvise(open.number(), 0, 0, POSIX_FADV_DONTNEED);
    char byte = 0;
    if (pread(open.number(), &byte, 1, 0) >= 0 || errno == EISDIR)
      return tries == 0 ? Answer::AtOnce : Answer::AfterAMoment;
  }
  return Answer::None;
}

}  // namespace zemhost
