// Desktop: the user in front of the module's windows, on a thread of its own. Each window is noted in the
// transcript in the words of the core's own fakes, and answered from the script; without one, the careful
// answer is given.
#pragma once

#include <windows.h>

#include <atomic>
#include <thread>

#include "tests/fakes/recorder.h"
#include "tests/scenarios/scenario.h"

namespace quillfile::windows {

class Desktop {
 public:
  // Chosen file names are in `saveFolder`, which ends in a separator.
  explicit Desktop(quillfile::Recorder& record, Text saveFolder = {}, Answers answers = {});
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

 private:
  void watch();
  void handle(HWND window);

  quillfile::Recorder& record_;
  Text saveFolder_;
  Answers answers_;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace quillfile::windows
