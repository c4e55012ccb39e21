#include "core/settings/number.h"

#include <limits>

#include "core/platform/failure.h"

namespace quillfile {

std::int32_t toNumber(TextView text) {
  text = trim(text);
  const bool negative = startsWith(text, u"-");
  if (negative || startsWith(text, u"+")) text.remove_prefix(1);
  const std::int64_t most = std::int64_t{std::numeric_limits<std::int32_t>::max()} + (negative ? 1 : 0);
  if (text.empty()) throw Failure::typeMismatch();
  std::int64_t value = 0;
  for (const char16_t unit : text) {
    if (unit < u'0' || unit > u'9') throw Failure::typeMismatch();
    value = value * 10 + (unit - u'0');
    if (value > most) throw Failure::typeMismatch();
  }
  return static_cast<std::int32_t>(negative ? -value : value);
}

}  // namespace quillfile
