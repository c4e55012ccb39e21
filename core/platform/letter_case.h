// LetterCase: the platform owns the tables that say which letters are the same but for their case.
#pragma once

#include "core/text/text.h"

namespace quillfile {

class LetterCase {
 public:
  virtual ~LetterCase() = default;
  // `text` in lower case, unit for unit: the result has the length of `text`, so that positions in the one
  // are positions in the other. A letter whose lower case needs another number of units stays as it is.
  virtual Text lower(TextView text) = 0;
};

// find() ignoring case.
Position findIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position start = 1);
// findLast() ignoring case.
Position findLastIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position before = 0);
// replaceAll() ignoring case.
Text replaceAllIgnoringCase(LetterCase& letters, TextView text, TextView wanted, TextView replacement);

}  // namespace quillfile
