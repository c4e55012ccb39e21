// Numbers as settings hold them.
#pragma once

#include <cstdint>

#include "core/text/text.h"

namespace quillfile {

// Optional blanks at either end, an optional sign, decimal digits, a value within 32 bits.
// Throws Failure::typeMismatch() for anything else.
//   toNumber(u" -12 ") == -12      toNumber(u"2147483648") throws
std::int32_t toNumber(TextView text);

}  // namespace quillfile
