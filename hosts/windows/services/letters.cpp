#include "hosts/windows/services/letters.h"

#include "hosts/windows/com/wide.h"

namespace quillfile::windows {

Text SystemLetters::lower(TextView text) {
  const Text whole{text};
  Text result = whole;
  if (text.empty()) return result;
  // Without linguistic rules the mapping is unit for unit and the same in every locale.
  const auto length = static_cast<int>(whole.size());
  const int mapped = LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, wide(whole), length, wide(result),
                                   length, nullptr, nullptr, 0);
  return mapped == length ? result : whole;
}

}  // namespace quillfile::windows
