#include "core/platform/letter_case.h"

namespace quillfile {

Position findIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position start) {
  return find(letters.lower(text), letters.lower(wanted), start);
}

Position findLastIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position before) {
  return findLast(letters.lower(text), letters.lower(wanted), before);
}

Text replaceAllIgnoringCase(LetterCase& letters, TextView text, TextView wanted, TextView replacement) {
  if (wanted.empty()) return Text{text};
  const Text lowered = letters.lower(text);
  const Text sought = letters.lower(wanted);
  Text result;
  Position done = 1;
  for (auto hit = find(lowered, sought); hit > 0; hit = find(lowered, sought, done)) {
    result.append(middle(text, done, hit - done)).append(replacement);
    done = hit + static_cast<Position>(wanted.size());
  }
  return result.append(from(text, done));
}

}  // namespace quillfile
