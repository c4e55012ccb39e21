#include <windows.h>

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"
#include "hosts/windows/services/delete_prompt_ids.h"
#include "hosts/windows/services/dialogs.h"
#include "hosts/windows/services/own_module.h"

namespace quillfile::windows {

namespace {

void fillIn(HWND window, const DeletePrompt& prompt) {
  SetWindowTextW(window, wide(prompt.caption));
  SetDlgItemTextW(window, LBL_WINDOW_MESSAGE, wide(prompt.message));
  SetDlgItemTextW(window, CMD_YES, wide(prompt.yes));
  SetDlgItemTextW(window, CMD_YES_TO_ALL, wide(prompt.yesToAll));
  SetDlgItemTextW(window, CMD_NO, wide(prompt.no));
  SetDlgItemTextW(window, CMD_NO_TO_ALL, wide(prompt.noToAll));
  SetForegroundWindow(window);
}

INT_PTR CALLBACK handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    fillIn(window, *reinterpret_cast<const DeletePrompt*>(lParam));
    SetFocus(GetDlgItem(window, CMD_NO));  // the return key must not delete
    return FALSE;
  }
  if (message != WM_COMMAND) return FALSE;
  const WORD control = LOWORD(wParam);
  if (control >= CMD_NO && control <= CMD_YES_TO_ALL) {
    EndDialog(window, control - CMD_NO + 1);
    return TRUE;
  }
  if (control == IDCANCEL) {  // the Escape key, or the window's own close button
    EndDialog(window, 0);
    return TRUE;
  }
  return FALSE;
}

}  // namespace

std::int32_t DesktopDialogs::show(const DeletePrompt& prompt) {
  const INT_PTR answer = DialogBoxParamW(ownModule(), MAKEINTRESOURCEW(DELETE_PROMPT), GetActiveWindow(),
                                         handle, reinterpret_cast<LPARAM>(&prompt));
  if (answer == -1) raiseSystem(GetLastError());
  return static_cast<std::int32_t>(answer);
}

}  // namespace quillfile::windows
