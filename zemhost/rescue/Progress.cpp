#include "zemhost/rescue/Progress.h"

#include <algorithm>
#include <iostream>

#include "zemhost/files/Signals.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Terminal.h"
#include "zemhost/output/Units.h"

namespace zemhost {

std::string progressLine(uint64_t songsDone, uint64_t songs, uint64_t bytesDone, uint64_t bytes,
                         double seconds, size_t width) {
  constexpr size_t kBar = 20;
  const double part =
      bytes == 0 ? 1.0 : std::min(1.0, static_cast<double>(bytesDone) / static_cast<double>(bytes));
  const auto full = static_cast<size_t>(part * static_cast<double>(kBar));
  std::string line = std::string("[").append(full, '#').append(kBar - full, '.').append("] ");
  line += std::to_string(static_cast<int>(part * 100)) + " %  " + std::to_string(songsDone) + " of " +
          std::to_string(songs) + " songs";
  constexpr double kSoonest = 0.5;  // before that a rate says nothing
  if (seconds >= kSoonest && bytesDone > 0) {
    const double rate = static_cast<double>(bytesDone) / seconds;
    const double left = static_cast<double>(bytes - std::min(bytes, bytesDone)) / rate;
    line.append("  ").append(totalSizeText(static_cast<uint64_t>(rate))).append("/s  ");
    line.append(totalTimeText(static_cast<uint64_t>(left * 1000))).append(" left");
  }
  return cutToWidth(line, width);
}

Progress::Progress(uint64_t songs, uint64_t bytes) : width_(terminalWidth()), songs_(songs), bytes_(bytes) {}

void Progress::addBytes(uint64_t bytes) {
  bytesDone_ += bytes;
  draw();
}

void Progress::addSong(const std::string &name) {
  ++songsDone_;
  if (width_) {
    draw();
  } else {
    std::cout << safeText(name) << '\n';
  }
}

void Progress::draw() {
  if (!width_ || *width_ < 2) return;
  constexpr std::chrono::milliseconds kBetween(100);
  const Clock::time_point now = Clock::now();
  if (now - drawn_ < kBetween && songsDone_ < songs_) return;
  drawn_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  // The last cell stays free: a terminal would begin a new line after it.
  const std::string line = progressLine(songsDone_, songs_, bytesDone_, bytes_, seconds, *width_ - 1);
  const size_t cells = displayWidth(line);
  std::cout << '\r' << line << std::string(shown_ - std::min(shown_, cells), ' ') << std::flush;
  shown_ = cells;
  setLineOpen(true);
}

void Progress::clear() {
  if (shown_ == 0) return;
  std::cout << '\r' << std::string(shown_, ' ') << '\r' << std::flush;
  shown_ = 0;
  setLineOpen(false);
}

}  // namespace zemhost
