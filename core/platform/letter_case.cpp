#include "core/platform/letter_case.h"

#include <algorithm>

namespace quillfile {
namespace {

// A search lowers the text in windows that grow: its cost follows the way to the hit, not the length of the
// text.
constexpr Position firstWindow = 64;
constexpr Position largestWindow = 1 << 20;

Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }
Position larger(Position window) { return std::min(window * 2, largestWindow); }

}  // namespace

Position findIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position start) {
  const Text sought = letters.lower(wanted);
  if (start < 1 || sought.empty()) return find(text, sought, start);
  const Position overlap = lengthOf(sought) - 1;
  for (Position at = start, window = firstWindow; at <= lengthOf(text);
       at += window, window = larger(window)) {
    const auto hit = find(letters.lower(middle(text, at, window + overlap)), sought);
    if (hit > 0) return at + hit - 1;
  }
  return 0;
}

Position findLastIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position before) {
  const Text sought = letters.lower(wanted);
  if (sought.empty()) return findLast(text, sought, before);
  Position last = before > 0 ? std::min(before, lengthOf(text)) : lengthOf(text);
  for (Position window = firstWindow; last > 0; last -= window, window = larger(window)) {
    const Position first = std::max<Position>(1, last - window + 1);
    const auto hit = findLast(letters.lower(middle(text, first, last - first + lengthOf(sought))), sought);
    if (hit > 0) return first + hit - 1;
  }
  return 0;
}

Text replaceAllIgnoringCase(LetterCase& letters, TextView text, TextView wanted, TextView replacement) {
  if (wanted.empty()) return Text{text};
  Text result;
  Position done = 1;
  const auto next = [&] { return findIgnoringCase(letters, text, wanted, done); };
  for (auto hit = next(); hit > 0; hit = next()) {
    result.append(middle(text, done, hit - done)).append(replacement);
    done = hit + lengthOf(wanted);
  }
  return result.append(from(text, done));
}

}  // namespace quillfile
