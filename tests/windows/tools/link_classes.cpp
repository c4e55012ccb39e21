// Makes the user's classes a link to the machine's, in the test prefix: Wine 8 looks classes up in the
// machine's part of the registry only, and the component registers itself for the user.
#include <windows.h>

#include <cstdio>

int main() {
  const wchar_t* classes = L"Software\\Classes";
  const wchar_t target[] = L"\\Registry\\Machine\\Software\\Classes";
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, classes, REG_OPTION_OPEN_LINK, KEY_QUERY_VALUE, &key) ==
      ERROR_SUCCESS) {
    DWORD type = 0;
    const bool linked =
        RegQueryValueExW(key, L"SymbolicLinkValue", nullptr, &type, nullptr, nullptr) == ERROR_SUCCESS;
    RegCloseKey(key);
    if (linked) return 0;
    RegDeleteTreeW(HKEY_CURRENT_USER, classes);
    RegDeleteKeyW(HKEY_CURRENT_USER, classes);
  }
  LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, classes, 0, nullptr, REG_OPTION_CREATE_LINK,
                                   KEY_ALL_ACCESS | KEY_CREATE_LINK, nullptr, &key, nullptr);
  if (status == ERROR_SUCCESS) {
    status = RegSetValueExW(key, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(target),
                            sizeof target - sizeof target[0]);
    RegCloseKey(key);
  }
  if (status != ERROR_SUCCESS) std::printf("the classes could not be linked: error %ld\n", status);
  return status == ERROR_SUCCESS ? 0 : 1;
}
