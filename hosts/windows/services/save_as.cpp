#include <windows.h>

#include <commdlg.h>

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"
#include "hosts/windows/services/dialogs.h"

namespace quillfile::windows {

namespace {

constexpr std::size_t longestPath = 32767;

// "All Files (*.*)|*.*" as the dialog takes it: each piece ended by a NUL, all of it by another.
Text filterPairs(TextView filter) {
  Text pairs = replaceAll(filter, u"|", TextView{u"\0", 1});
  return pairs.append(2, u'\0');
}

const wchar_t* orNone(const Text& text) { return text.empty() ? nullptr : wide(text); }

}  // namespace

std::optional<Text> DesktopDialogs::show(const SaveAsRequest& request) {
  Text path = request.fileName;
  path.resize(longestPath + 1);
  const Text filter = filterPairs(request.filter);
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = GetActiveWindow();
  dialog.lpstrFilter = wide(filter);
  dialog.lpstrFile = wide(path);
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.lpstrInitialDir = orNone(request.initialFolder);
  dialog.lpstrTitle = orNone(request.title);
  dialog.lpstrDefExt = orNone(request.defaultExtension);
  // The client's own folder must not change under it.
  dialog.Flags = static_cast<DWORD>(request.flags) | OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_HIDEREADONLY;
  if (!GetSaveFileNameW(&dialog)) {
    if (const DWORD error = CommDlgExtendedError()) raiseSystem(error);
    return std::nullopt;  // the user cancelled
  }
  path.resize(path.find(u'\0'));
  return path;
}

}  // namespace quillfile::windows
