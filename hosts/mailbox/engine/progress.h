// Progress: the busy cursor of this host, one line on a terminal while a command works, gone without a trace
// after.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "hosts/mailbox/engine/terminal.h"

namespace quillfile::mailbox {

class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  // Draws nothing where `wanted` is false or there is no terminal.
  Progress(Terminal& terminal, bool wanted) : terminal_(terminal), drawing_(wanted && terminal.present()) {}
  ~Progress() { stop(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void start(std::int64_t items);
  void nextItem();                                         // one more item begins; those before it are done
  void file(const std::string& name, std::int64_t bytes);  // one more file, of so many bytes
  void pause();                                            // clears the line, so that a question can be asked
  void stop();                                             // clears the line, and draws no more

 private:
  void draw();

  Terminal& terminal_;
  bool drawing_;
  bool running_ = false;
  bool drawn_ = false;
  std::int64_t items_ = 0, begun_ = 0, done_ = 0, bytes_ = 0;
  std::string current_;
  Clock::time_point started_, lastDrawn_;
};

// The line itself: "12 of 300 items, 4.5 MB, 2.1 MB/s, 1 min left, report.pdf".
std::string progressLine(std::int64_t done, std::int64_t items, std::int64_t bytes, double seconds,
                         const std::string& current);

// A size for people: "812 bytes", "4.5 KB", "1.2 GB" (powers of 1,000).
std::string sizeText(std::int64_t bytes);

}  // namespace quillfile::mailbox
