// Desktop: the user in front of the module's windows, on a thread of its own. Each window is noted in the
// transcript in the words of the core's own fakes, and answered from the script; without one, the careful
// answer is given.
#pragma once

#include <windows.h>

#include <atomic>
#include <deque>
#include <optional>
#include <thread>

#include "core/platform/user_interface.h"
#include "tests/fakes/recorder.h"

namespace quillfile::windows {

class Desktop {
 public:
  explicit Desktop(quillfile::Recorder& record);
  ~Desktop();
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  // Filled in before the module is called.
  std::deque<Answer> answers;
  std::deque<std::int32_t> promptAnswers;
  std::deque<std::optional<Text>> chosenPaths;

 private:
  void watch();
  void handle(HWND window);

  quillfile::Recorder& record_;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

}  // namespace quillfile::windows
