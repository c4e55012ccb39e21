#include "hosts/windows/services/own_module.h"

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

HMODULE ownModule() {
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          reinterpret_cast<const wchar_t*>(&ownModule), &module)) {
    raiseSystem(GetLastError());
  }
  return module;
}

Text ownPath() {
  Text path(32768, u'\0');
  const DWORD length = GetModuleFileNameW(ownModule(), wide(path), static_cast<DWORD>(path.size()));
  if (length == 0) raiseSystem(GetLastError());
  path.resize(length);
  return path;
}

Text ownFolder() {
  const Text path = ownPath();
  return Text{left(path, findLast(path, u"\\") - 1)};
}

}  // namespace quillfile::windows
