// The guard at every entry that COM calls: outputs are checked, exceptions never cross.
#pragma once

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"

namespace quillfile::windows {

// Runs `body` and stores what it returns in `*result`, which is empty when it fails.
template <class Result, class Body>
HRESULT entry(Result* result, Body&& body) noexcept {
  if (result == nullptr) return E_POINTER;
  *result = {};
  try {
    *result = body();
    return S_OK;
  } catch (...) {
    return returnFailure();
  }
}

// The same for a text.
template <class Body>
HRESULT textEntry(BSTR* result, Body&& body) noexcept {
  return entry(result, [&] { return Bstr{body()}.detach(); });
}

// The same for a Boolean.
template <class Body>
HRESULT booleanEntry(VARIANT_BOOL* result, Body&& body) noexcept {
  return entry(result, [&]() -> VARIANT_BOOL { return body() ? VARIANT_TRUE : VARIANT_FALSE; });
}

// The same without a result.
template <class Body>
HRESULT entry(Body&& body) noexcept {
  try {
    body();
    return S_OK;
  } catch (...) {
    return returnFailure();
  }
}

}  // namespace quillfile::windows
