// Text: UTF-16, as the mail client counts it. Lengths, cuts and positions are in code units; positions
// start at 1 and 0 means "not found". This room holds the only code that touches an index.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace quillfile {

using Text = std::u16string;
using TextView = std::u16string_view;

// A 1-based position in a text, 0 for "not found". Signed, because a position may be computed from a length.
using Position = std::int64_t;

// Where `wanted` starts in `text` at or after `start`; 0 when it does not occur or `start` lies past the end.
// An empty `wanted` is found at `start`. A start below 1 is a caller's mistake: throws std::out_of_range.
//   find(u"a-b-c", u"-") == 2      find(u"a-b-c", u"-", 3) == 4
Position find(TextView text, TextView wanted, Position start = 1);

// Where the last `wanted` starts, at or before `before` (0: anywhere). 0 when there is none.
//   findLast(u"a.b.pdf", u".") == 4
Position findLast(TextView text, TextView wanted, Position before = 0);

// The `length` units from position `start` on; fewer, or none, where the text ends earlier.
TextView middle(TextView text, Position start, Position length);
// Everything from position `start` on.
TextView from(TextView text, Position start);
// The first `length` units, as they stand: the exact cut, which may end between the halves of a pair.
TextView left(TextView text, Position length);

// The first `length` units, one fewer where the cut would leave half a surrogate pair at the end.
//   cutLeft(u"ab\U0001F600", 3) == u"ab"
TextView cutLeft(TextView text, Position length);

// Every occurrence of `wanted`, left to right and never overlapping, replaced. An empty `wanted` changes
// nothing.
Text replaceAll(TextView text, TextView wanted, TextView replacement);

// The pieces between the separators, empty ones too.  split(u"a;;b", u';') == {a, "", b}
std::vector<Text> split(TextView text, char16_t separator);

// Without blanks (U+0020) at either end.
TextView trim(TextView text);

bool startsWith(TextView text, TextView beginning);
bool endsWith(TextView text, TextView ending);

Text decimal(std::int64_t number);

// The only ways from and to UTF-8, for the edges. A byte that is no UTF-8 becomes U+FFFD, and half a
// surrogate pair does too; neither ever throws.
Text fromUtf8(std::string_view bytes);
std::string toUtf8(TextView text);

namespace detail {
inline void append(Text& to, TextView value) { to += value; }
inline void append(Text& to, const Text& value) { to += value; }
inline void append(Text& to, const char16_t* value) { to += value; }
template <class Number>
requires std::is_integral_v<Number>
void append(Text& to, Number number) {
  static_assert(!std::is_same_v<Number, bool>, "say which word a Boolean is to have");
  static_assert(!std::is_same_v<Number, char16_t>, "pass a text");
  to += decimal(static_cast<std::int64_t>(number));
}
inline void fillFrom(Text& result, TextView pattern) { result += pattern; }
template <class First, class... Rest>
void fillFrom(Text& result, TextView pattern, const First& first, const Rest&... rest) {
  const auto hole = pattern.find(u"{}");
  if (hole == TextView::npos) {
    result += pattern;
    return;
  }
  result += pattern.substr(0, hole);
  append(result, first);
  fillFrom(result, pattern.substr(hole + 2), rest...);
}
}  // namespace detail

// `pattern` with each "{}" replaced, in order, by the next value; a "{}" inside a value stays as it is.
//   fill(u"Error occurred at line {}.  Reason: {}", 3, u"no {}") == u"Error occurred at line 3.  Reason: no
//   {}"
template <class... Values>
Text fill(TextView pattern, const Values&... values) {
  Text result;
  detail::fillFrom(result, pattern, values...);
  return result;
}

}  // namespace quillfile
