#include "tests/property/Shrinker.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace property {
namespace {

constexpr unsigned kSecondsForACase = 20;

void WriteAll(int file, const std::string &text) {
  for (size_t at = 0; at < text.size();) {
    const ssize_t written = write(file, text.data() + at, text.size() - at);
    if (written <= 0) return;
    at += static_cast<size_t>(written);
  }
}

std::string ReadAll(int file) {
  std::string text;
  char buffer[4096];
  for (;;) {
    const ssize_t count = read(file, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(buffer, static_cast<size_t>(count));
  }
}

class Shrinker {
 public:
  Shrinker(Case what, const std::function<bool(const Case &)> &fails)
      : best_(std::move(what)), fails_(fails) {}

  Case Run() {
    for (size_t before = 0; before != Measure() && triesLeft_ > 0;) {
      before = Measure();
      RemoveParts([](Case & what) -> auto & { return what.steps; });
      for (size_t i = 0; i < best_.files.size(); ++i) {
        RemoveParts([i](Case & what) -> auto & { return what.files[i].pieces; });
        for (size_t k = 0; k < best_.files[i].pieces.size(); ++k) {
          RemoveParts([ i, k ](Case & what) -> auto & { return what.files[i].pieces[k]; });
          Shorten(i, k);
          ZeroBytes(i, k);
        }
      }
      SimplifySteps();
    }
    return best_;
  }

 private:
  // Falls with every simplification.
  [[nodiscard]] size_t Measure() const {
    size_t measure = 0;
    for (const Step &step : best_.steps) {
      measure += 1000;
      for (const int32_t number : step.numbers) measure += number == 0 ? 0 : number == 1 ? 1 : 2;
      if (step.text) measure += 1 + step.text->bytes.size();
    }
    for (const DatabaseFile &file : best_.files) {
      for (const std::string &piece : file.pieces) {
        measure += 2 * piece.size() + 1;
        measure -= static_cast<size_t>(std::count(piece.begin(), piece.end(), '\0'));
      }
    }
    return measure;
  }

  bool Try(const Case &candidate) {
    if (triesLeft_ == 0) return false;
    --triesLeft_;
    if (!fails_(candidate)) return false;
    best_ = candidate;
    return true;
  }

  // Leaves out ever smaller runs of the elements of a list.
  template <typename List>
  void RemoveParts(const List &list) {
    for (size_t length = std::max<size_t>(list(best_).size() / 2, 1);; length /= 2) {
      for (size_t at = 0; at < list(best_).size();) {
        Case candidate = best_;
        auto &elements = list(candidate);
        const auto from = elements.begin() + static_cast<std::ptrdiff_t>(at);
        const auto count = std::min(length, elements.size() - at);
        elements.erase(from, from + static_cast<std::ptrdiff_t>(count));
        if (!Try(candidate)) at += length;
      }
      if (length <= 1) return;
    }
  }

  // A header loses its tail together with the length it states.
  void Shorten(size_t file, size_t piece) {
    const size_t size = best_.files[file].pieces[piece].size();
    for (size_t length = 16; length < size; length += std::max<size_t>((size - length) / 2, 1)) {
      const char byte = static_cast<char>(length);
      for (const std::string &word : {std::string{byte, 0, 0, 0}, std::string{0, 0, 0, byte}}) {
        Case candidate = best_;
        std::string &bytes = candidate.files[file].pieces[piece];
        bytes.resize(length);
        bytes.replace(4, 4, word);
        if (length < 256 && Try(candidate)) return;
      }
    }
  }

  void ZeroBytes(size_t file, size_t piece) {
    for (size_t at = 0; at < best_.files[file].pieces[piece].size(); ++at) {
      if (best_.files[file].pieces[piece][at] == '\0') continue;
      Case candidate = best_;
      candidate.files[file].pieces[piece][at] = '\0';
      Try(candidate);
    }
  }

  void SimplifySteps() {
    for (size_t i = 0; i < best_.steps.size(); ++i) {
      for (size_t k = 0; k < best_.steps[i].numbers.size(); ++k) {
        for (const int32_t simple : {0, 1}) {
          if (best_.steps[i].numbers[k] == simple) break;
          Case candidate = best_;
          candidate.steps[i].numbers[k] = simple;
          if (Try(candidate)) break;
        }
      }
      if (best_.steps[i].text) RemoveParts([i](Case & what) -> auto & { return what.steps[i].text->bytes; });
    }
  }

  Case best_;
  const std::function<bool(const Case &)> &fails_;
  size_t triesLeft_ = 6000;
};

}  // namespace

std::optional<std::string> FindDifferenceApart(const Case &what, const Distortion &distort) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error(std::strerror(errno));
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error(std::strerror(errno));
  if (child == 0) {
    close(ends[0]);
    alarm(kSecondsForACase);
    const std::optional<std::string> difference = FindDifference(what, distort);
    if (difference) WriteAll(ends[1], *difference);
    _exit(difference ? 1 : 0);
  }
  close(ends[1]);
  const std::string difference = ReadAll(ends[0]);
  close(ends[0]);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return signal == SIGALRM ? "takes more than " + std::to_string(kSecondsForACase) + " seconds"
                             : "ends with signal " + std::to_string(signal);
  }
  if (WEXITSTATUS(status) == 0) return std::nullopt;
  return difference.empty() ? "ends with status " + std::to_string(WEXITSTATUS(status)) : difference;
}

Case Shrink(Case what, const std::function<bool(const Case &)> &fails) {
  return Shrinker(std::move(what), fails).Run();
}

}  // namespace property
