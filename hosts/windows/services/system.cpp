#include "hosts/windows/services/system.h"

#include <windows.h>

#include "hosts/windows/com/failure.h"
#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

std::int64_t SystemClock::seconds() {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  constexpr std::uint64_t unitsPerSecond = 10'000'000;
  return static_cast<std::int64_t>(
      (static_cast<std::uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime) / unitsPerSecond);
}

void SystemPrograms::start(TextView commandLine, TextView) {
  Text line{commandLine};  // CreateProcessW may write into it
  STARTUPINFOW window{};
  window.cb = sizeof window;
  window.dwFlags = STARTF_USESHOWWINDOW;
  window.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(nullptr, wide(line), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &window, &started)) {
    raiseSystem(GetLastError());
  }
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
}

Text SystemPrograms::machineName() {
  Text name(MAX_COMPUTERNAME_LENGTH + 1, u'\0');
  auto length = static_cast<DWORD>(name.size());
  if (!GetComputerNameW(wide(name), &length)) raiseSystem(GetLastError());
  name.resize(length);
  return name;
}

}  // namespace quillfile::windows
