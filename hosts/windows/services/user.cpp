#include "hosts/windows/services/user.h"

#include <windows.h>

#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

Answer DesktopUser::messageBox(TextView text, TextView title, Buttons buttons) {
  const UINT style = buttons == Buttons::ok ? MB_OK : MB_YESNOCANCEL;
  switch (MessageBoxW(GetActiveWindow(), wide(Text{text}), wide(Text{title}),
                      style | MB_TASKMODAL | MB_SETFOREGROUND)) {
    case IDYES:
      return Answer::yes;
    case IDNO:
      return Answer::no;
    case IDOK:
      return Answer::ok;
    default:
      return Answer::cancel;
  }
}

void DesktopUser::setPointer(Pointer pointer) {
  SetCursor(LoadCursorW(
      nullptr, MAKEINTRESOURCEW(pointer == Pointer::hourglass ? 32514 : 32512)));  // IDC_WAIT, IDC_ARROW
}

void DesktopUser::processPendingEvents() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {  // the client's own loop has to see it
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace quillfile::windows
