// LetterCase: the platform owns the tables that say which letters are the same but for their case.
#pragma once

#include "core/text/text.h"

namespace quillfile {

class LetterCase {
 public:
  virtual ~LetterCase() = default;
  // `text` in lower case, unit for unit: the result has the length of `text`, so that positions in the one
  // are positions in the other. A letter whose lower case needs another number of units stays as it is. By
  // Unicode's tables ASCII becomes ASCII, A to Z alone change in it, and what lies beyond becomes ASCII in
  // two letters only: "i" (of U+0130) and "k" (of U+212A).
  virtual Text lower(TextView text) = 0;
};

// find() ignoring case.
Position findIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position start = 1);
// findLast() ignoring case.
Position findLastIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position before = 0);
// replaceAll() ignoring case.
Text replaceAllIgnoringCase(LetterCase& letters, TextView text, TextView wanted, TextView replacement);

}  // namespace quillfile
