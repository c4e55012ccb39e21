#include "tests/windows/fakes/desktop.h"

#include "hosts/windows/com/wide.h"
#include "hosts/windows/services/delete_prompt_ids.h"

namespace quillfile::windows {

namespace {

constexpr int messageText = 0xFFFF;  // of a message box
constexpr int nameField = 0x47C;     // of the Save-As dialog

Text textOf(HWND window, int control) {
  Text text(4096, u'\0');
  text.resize(GetDlgItemTextW(window, control, wide(text), static_cast<int>(text.size())));
  return text;
}

void press(HWND window, int control) { PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(control), 0); }

template <class T>
T next(std::deque<T>& script, T otherwise) {
  if (script.empty()) return otherwise;
  T answer = std::move(script.front());
  script.pop_front();
  return answer;
}

int buttonOf(Answer answer) {
  switch (answer) {
    case Answer::yes:
      return IDYES;
    case Answer::no:
      return IDNO;
    case Answer::ok:
      return IDOK;
    default:
      return IDCANCEL;
  }
}

BOOL CALLBACK ofThisProcess(HWND window, LPARAM result) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  wchar_t kind[16];
  GetClassNameW(window, kind, 16);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || lstrcmpW(kind, L"#32770") != 0)
    return TRUE;
  *reinterpret_cast<HWND*>(result) = window;
  return FALSE;
}

}  // namespace

Desktop::Desktop(quillfile::Recorder& record, Text saveFolder, Answers answers)
    : record_(record),
      saveFolder_(std::move(saveFolder)),
      answers_(std::move(answers)),
      thread_([this] { watch(); }) {}

Desktop::~Desktop() {
  stop_ = true;
  thread_.join();
}

void Desktop::watch() {
  for (; !stop_; Sleep(5)) {
    HWND window = nullptr;
    EnumWindows(ofThisProcess, reinterpret_cast<LPARAM>(&window));
    if (window == nullptr) continue;
    SendMessageW(window, WM_NULL, 0, 0);              // answered once its thread waits for the user
    if (GetWindowTextLengthW(window) == 0) continue;  // every window of the module's has a title
    Sleep(20);
    handle(window);
    while (!stop_ && IsWindow(window) && IsWindowVisible(window)) Sleep(5);
  }
}

void Desktop::handle(HWND window) {
  if (GetDlgItem(window, LBL_WINDOW_MESSAGE) != nullptr) {
    record_.did(fill(u"prompt {}", textOf(window, LBL_WINDOW_MESSAGE)));
    const auto answer = next(answers_.prompts, 0);
    press(window, answer == 0 ? IDCANCEL : CMD_NO + answer - 1);
  } else if (GetDlgItem(window, nameField) != nullptr) {
    record_.did(u"save-as dialog");
    const auto name = next(answers_.fileNames, std::optional<Text>{});
    const Text path = saveFolder_ + name.value_or(u"");
    if (name) SendDlgItemMessageW(window, nameField, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wide(path)));
    press(window, name ? IDOK : IDCANCEL);
  } else {
    const bool asks = GetDlgItem(window, IDNO) != nullptr;
    wchar_t title[64];
    GetWindowTextW(window, title, 64);
    record_.did(
        fill(asks ? u"question {}: {}" : u"message box {}: {}", view(title), textOf(window, messageText)));
    press(window, asks ? buttonOf(next(answers_.boxes, Answer::cancel)) : IDOK);
  }
}

}  // namespace quillfile::windows
