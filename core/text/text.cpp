#include "core/text/text.h"

#include <stdexcept>

namespace quillfile {
namespace {

std::size_t indexOf(Position position) { return static_cast<std::size_t>(position - 1); }
Position positionOf(std::size_t index) { return static_cast<Position>(index) + 1; }
Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

}  // namespace

Position find(TextView text, TextView wanted, Position start) {
  if (start < 1) throw std::out_of_range("find: a position starts at 1");
  if (start > lengthOf(text)) return 0;
  const auto index = text.find(wanted, indexOf(start));
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
  for (auto hit = text.find(wanted); hit != TextView::npos; hit = text.find(wanted, done)) {
    result.append(text, done, hit - done).append(replacement);
    done = hit + wanted.size();
  }
  return result.append(text, done);
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
