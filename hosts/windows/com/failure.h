// The one place where Windows's errors become Failure, and a Failure becomes a caller's HRESULT.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "core/platform/failure.h"

namespace quillfile::windows {

// Throws the Failure of `result`: the called object's own description when it gave one, else the system's
// text.
[[noreturn]] void raise(HRESULT result);
// The same for a late-bound call; empties `info`, whose strings it owns.
[[noreturn]] void raise(HRESULT result, EXCEPINFO& info);
// Throws the Failure of a Win32 error code.
[[noreturn]] void raiseSystem(DWORD code);

inline void check(HRESULT result) {
  if (FAILED(result)) raise(result);
}

// Inside a catch: leaves the description for the caller (SetErrorInfo) and gives the HRESULT to return.
HRESULT returnFailure() noexcept;

}  // namespace quillfile::windows
