// Between the core's texts and Windows's: the same UTF-16 code units under two type names.
#pragma once

#include <windows.h>

#include "core/text/text.h"

namespace quillfile::windows {

inline const wchar_t* wide(const Text& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }
inline wchar_t* wide(Text& text) { return reinterpret_cast<wchar_t*>(text.data()); }
inline const wchar_t* wide(TextView text) = delete;  // a view may have no NUL at its end: make it a Text

inline TextView view(const wchar_t* units, std::size_t length) {
  return {reinterpret_cast<const char16_t*>(units), length};
}
inline TextView view(const wchar_t* text) {
  return text == nullptr ? TextView{} : TextView{reinterpret_cast<const char16_t*>(text)};
}

}  // namespace quillfile::windows
