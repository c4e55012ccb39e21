#include "core/platform/letter_case.h"

#include <algorithm>
#include <array>

namespace quillfile {
namespace {

constexpr char16_t asciiEnd = 0x80;

// Whether a unit beyond ASCII may become this one, see LetterCase.
bool comesFromBeyond(char16_t lowered) { return lowered >= asciiEnd || lowered == u'i' || lowered == u'k'; }
char16_t asciiLower(char16_t unit) {
  return static_cast<char16_t>(unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit);
}

// A search without a lowered copy of the text (Horspool 1980): the unit under the end of what is sought says
// how far to go on. One beyond ASCII counts as the nearest of those that it may become.
class Sought {
 public:
  Sought(LetterCase& letters, TextView wanted) : letters_(letters), sought_(letters.lower(wanted)) {
    const std::size_t size = sought_.size();
    step_.fill(size);
    for (std::size_t i = 0; i + 1 < size; ++i) {
      const char16_t unit = sought_[i];
      if (unit < asciiEnd) step_[unit] = size - 1 - i;
      if (comesFromBeyond(unit)) step_[asciiEnd] = size - 1 - i;
    }
    for (char16_t unit = u'A'; unit <= u'Z'; ++unit) step_[unit] = step_[asciiLower(unit)];
  }

  // The index at or after `start`; npos.
  std::size_t in(TextView text, std::size_t start) {
    const std::size_t size = sought_.size();
    for (std::size_t at = start; at + size <= text.size();) {
      const char16_t last = text[at + size - 1];
      if (matches(text.substr(at, size))) return at;
      at += step_[std::min(last, asciiEnd)];
    }
    return TextView::npos;
  }

 private:
  bool matches(TextView text) {
    std::size_t i = text.size();
    while (i > 0 && text[i - 1] < asciiEnd && asciiLower(text[i - 1]) == sought_[i - 1]) --i;
    if (i == 0) return true;
    return text[i - 1] >= asciiEnd && comesFromBeyond(sought_[i - 1]) && letters_.lower(text) == sought_;
  }

  LetterCase& letters_;
  Text sought_;
  std::array<std::size_t, asciiEnd + 1> step_;  // by unit; the last is for all beyond ASCII
};

// A search backwards lowers the text in windows that grow: its cost follows the way to the hit, not the
// length of the text.
constexpr Position firstWindow = 64;
constexpr Position largestWindow = 1 << 20;

Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }
Position larger(Position window) { return std::min(window * 2, largestWindow); }

}  // namespace

Position findIgnoringCase(LetterCase& letters, TextView text, TextView wanted, Position start) {
  if (start < 1 || wanted.empty()) return find(text, wanted, start);
  if (start > lengthOf(text)) return 0;
  const auto hit = Sought{letters, wanted}.in(text, static_cast<std::size_t>(start - 1));
  return hit == TextView::npos ? 0 : static_cast<Position>(hit) + 1;
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
  result.append(from(text, done));
  return result;
}

}  // namespace quillfile
