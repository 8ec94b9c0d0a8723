#pragma once

// How far the copying is: one line that changes on a terminal, one line for each song elsewhere.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace zemhost {

class Progress {
 public:
  // What there is to do.
  Progress(uint64_t songs, uint64_t bytes);
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;
  // Takes the changing line away.
  ~Progress() { clear(); }

  void addBytes(uint64_t bytes);
  // A song came through; `name` is what a line shows of it.
  void addSong(const std::string &name);

 private:
  using Clock = std::chrono::steady_clock;

  void draw();
  void clear();

  std::optional<size_t> width_;  // of the terminal
  uint64_t songs_;
  uint64_t bytes_;
  uint64_t songsDone_ = 0;
  uint64_t bytesDone_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point drawn_{};
  size_t shown_ = 0;  // cells of the line that stands there
};

// The changing line: a bar, the songs, the rate, and the time that the rest takes at this rate; at most
// `width` cells.
std::string progressLine(uint64_t songsDone, uint64_t songs, uint64_t bytesDone, uint64_t bytes,
                         double seconds, size_t width);

}  // namespace zemhost
