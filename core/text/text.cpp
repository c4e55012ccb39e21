#include "core/text/text.h"

#include <array>
#include <stdexcept>

namespace quillfile {
namespace {

std::size_t indexOf(Position position) { return static_cast<std::size_t>(position - 1); }
Position positionOf(std::size_t index) { return static_cast<Position>(index) + 1; }
Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// TextView::find for long texts: where the last unit of a window does not occur in what is wanted, the whole
// window is passed over (Horspool 1980). Units count by their low byte, so that the table stays small.
std::size_t search(TextView text, TextView wanted, std::size_t start) {
  constexpr std::size_t worthIt = 4;
  const std::size_t size = wanted.size();
  if (size < worthIt || text.size() < size) return text.find(wanted, start);
  std::array<std::size_t, 256> step;
  step.fill(size);
  for (std::size_t i = 0; i + 1 < size; ++i) step[wanted[i] & 0xFF] = size - 1 - i;
  const char16_t last = wanted.back();
  for (std::size_t at = start; at <= text.size() - size;) {
    const char16_t unit = text[at + size - 1];
    if (unit == last && text.compare(at, size, wanted) == 0) return at;
    at += step[unit & 0xFF];
  }
  return TextView::npos;
}

}  // namespace

Position find(TextView text, TextView wanted, Position start) {
  if (start < 1) throw std::out_of_range("find: a position starts at 1");
  if (start > lengthOf(text)) return 0;
  const auto index = search(text, wanted, indexOf(start));
  return index == TextView::npos ? 0 : positionOf(index);
}

Position findLast(TextView text, TextView wanted, Position before) {
  const auto index = before > 0 ? text.rfind(wanted, indexOf(before)) : text.rfind(wanted);
  return index == TextView::npos ? 0 : positionOf(index);
}

TextView middle(TextView text, Position start, Position length) {
  if (start < 1) throw std::out_of_range("middle: a position starts at 1");
  if (length < 0) throw std::out_of_range("middle: a length is never negative");
  if (start > lengthOf(text)) return {};
  return text.substr(indexOf(start), static_cast<std::size_t>(length));
}

TextView from(TextView text, Position start) { return middle(text, start, lengthOf(text)); }

TextView left(TextView text, Position length) { return middle(text, 1, length); }

TextView cutLeft(TextView text, Position length) {
  const auto cut = left(text, length);
  const bool splitsPair = !cut.empty() && cut.size() < text.size() && isHighSurrogate(cut.back()) &&
                          isLowSurrogate(text[cut.size()]);
  return splitsPair ? cut.substr(0, cut.size() - 1) : cut;
}

Text replaceAll(TextView text, TextView wanted, TextView replacement) {
  Text result;
  if (wanted.empty()) return Text{text};
  std::size_t done = 0;
  for (auto hit = search(text, wanted, 0); hit != TextView::npos; hit = search(text, wanted, done)) {
    result.append(text, done, hit - done).append(replacement);
    done = hit + wanted.size();
  }
  result.append(text, done);
  return result;
}

std::vector<Text> split(TextView text, char16_t separator) {
  std::vector<Text> pieces;
  for (;;) {
    const auto end = text.find(separator);
    pieces.emplace_back(text.substr(0, end));
    if (end == TextView::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

TextView trim(TextView text) {
  const auto first = text.find_first_not_of(u' ');
  if (first == TextView::npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

bool startsWith(TextView text, TextView beginning) { return text.substr(0, beginning.size()) == beginning; }

bool endsWith(TextView text, TextView ending) {
  return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

Text decimal(std::int64_t number) {
  const auto digits = std::to_string(number);
  return Text(digits.begin(), digits.end());
}

}  // namespace quillfile
