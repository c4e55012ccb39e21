#include "hosts/mailbox/engine/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "hosts/mailbox/engine/printable.h"

namespace quillfile::mailbox {
namespace {

constexpr auto redrawEvery = std::chrono::milliseconds(100);

std::size_t columns() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::string timeLeft(double seconds) {
  if (seconds < 60) return std::to_string(static_cast<int>(seconds) + 1) + " s left";
  if (seconds < 3600) return std::to_string(static_cast<int>(seconds / 60) + 1) + " min left";
  return std::to_string(static_cast<int>(seconds / 3600) + 1) + " h left";
}

}  // namespace

std::string sizeText(std::int64_t bytes) {
  if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  constexpr std::array<const char*, 4> units = {"KB", "MB", "GB", "TB"};
  double amount = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  while (amount >= 999.95 && unit + 1 < units.size()) amount /= 1000, ++unit;
  char text[40];
  std::snprintf(text, sizeof text, amount < 99.95 ? "%.1f %s" : "%.0f %s", amount, units.at(unit));
  return text;
}

std::string progressLine(std::int64_t done, std::int64_t items, std::int64_t bytes, double seconds,
                         const std::string& current) {
  std::string line = std::to_string(done) + " of " + std::to_string(items) + " items, " + sizeText(bytes);
  if (seconds >= 1) {
    line += ", " + sizeText(static_cast<std::int64_t>(static_cast<double>(bytes) / seconds)) + "/s";
    if (done > 0 && done < items)
      line += ", " + timeLeft(seconds / static_cast<double>(done) * static_cast<double>(items - done));
  }
  return current.empty() ? line : line + ", " + current;
}

void Progress::start(std::int64_t items) {
  items_ = items;
  begun_ = done_ = bytes_ = 0;
  current_.clear();
  running_ = true;
  started_ = lastDrawn_ = Clock::now();
}

void Progress::nextItem() {
  done_ = begun_++;
  draw();
}

void Progress::file(const std::string& name, std::int64_t bytes) {
  current_ = name;
  bytes_ += bytes;
  draw();
}

void Progress::draw() {
  if (!drawing_ || !running_) return;
  const auto now = Clock::now();
  if (now - lastDrawn_ < redrawEvery) return;
  lastDrawn_ = now;
  drawn_ = true;
  const double seconds = std::chrono::duration<double>(now - started_).count();
  // Cut by characters, not bytes, so that the line never wraps.
  const Text line = fromUtf8(progressLine(done_, items_, bytes_, seconds, current_));
  terminal_.show("\r\x1b[K" + printable(cutLeft(line, static_cast<Position>(columns()) - 1)));
}

void Progress::pause() {
  if (drawn_) terminal_.show("\r\x1b[K");
  drawn_ = false;
}

void Progress::stop() {
  pause();
  running_ = false;
}

}  // namespace quillfile::mailbox
