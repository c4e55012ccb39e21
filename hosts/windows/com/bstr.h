// Bstr: an owned automation string.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <new>
#include <utility>

#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

// The text of a string that somebody else owns; a null one is the empty text.
inline TextView textOf(BSTR text) { return text == nullptr ? TextView{} : view(text, SysStringLen(text)); }

class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(TextView text)
      : text_(SysAllocStringLen(reinterpret_cast<const wchar_t*>(text.data()),
                                static_cast<UINT>(text.size()))) {
    if (text_ == nullptr) throw std::bad_alloc{};
  }
  Bstr(Bstr&& other) noexcept : text_(other.detach()) {}
  Bstr& operator=(Bstr&& other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  ~Bstr() { SysFreeString(text_); }

  BSTR get() const { return text_; }
  BSTR* out() {
    SysFreeString(detach());
    return &text_;
  }
  BSTR detach() { return std::exchange(text_, nullptr); }
  Text text() const { return Text{textOf(text_)}; }

 private:
  BSTR text_ = nullptr;
};

}  // namespace quillfile::windows
