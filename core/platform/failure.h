// Failure: the one exception that adapters throw. Each host makes it in exactly one file, from errno or from
// an HRESULT. What is no failure (not found, cancelled, declined) is a value, never a Failure.
#pragma once

#include <cstdint>

#include "core/text/text.h"

namespace quillfile {

struct Failure {
  std::int32_t number = 0;  // the platform's error number
  Text description;         // one sentence for a person, without a full stop

  // A settings value, a date or a number that is not of its type ("Type mismatch", error 13 by convention).
  static Failure typeMismatch() { return {13, u"Type mismatch"}; }
  // Arithmetic that leaves 32 bits (error 6 by convention).
  static Failure overflow() { return {6, u"Overflow"}; }
};

}  // namespace quillfile
