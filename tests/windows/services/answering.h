// Answering: a second thread that waits for a window and answers it, as a user would.
#pragma once

#include <windows.h>

#include <functional>
#include <thread>

#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

class Answering {
 public:
  // Calls `answer` with the window titled `title` once it is there; gives up after ten seconds.
  Answering(const Text& title, std::function<void(HWND)> answer)
      : thread_([title, answer = std::move(answer), this] {
          for (int tries = 0; tries < 1000; ++tries, Sleep(10)) {
            const HWND window = FindWindowW(nullptr, wide(title));
            if (window == nullptr || !IsWindowVisible(window)) continue;
            SendMessageW(window, WM_NULL, 0, 0);  // answered once its thread waits for the user
            Sleep(30);
            found_ = true;
            answer(window);
            return;
          }
        }) {}
  ~Answering() {
    if (thread_.joinable()) thread_.join();
  }
  bool found() {
    thread_.join();
    return found_;
  }

  static Text textOf(HWND window, int control) {
    Text text(2048, u'\0');
    text.resize(GetDlgItemTextW(window, control, wide(text), static_cast<int>(text.size())));
    return text;
  }
  static void press(HWND window, int control) {
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(control), 0);
  }

 private:
  bool found_ = false;
  std::thread thread_;
};

}  // namespace quillfile::windows
