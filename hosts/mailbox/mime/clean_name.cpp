#include "hosts/mailbox/mime/clean_name.h"

#include <algorithm>
#include <string>

namespace quillfile::mime {
namespace {

// What no name needs and what misleads the reader of one: controls, bidirectional marks, characters without a
// shape. Ascending. The joiners U+200C and U+200D are letters' companions in many languages, and stay.
struct Span {
  char32_t first, last;
};
constexpr Span unwanted[] = {
    {0x0000, 0x001F}, {0x007F, 0x009F}, {0x00AD, 0x00AD}, {0x061C, 0x061C},   {0x180E, 0x180E},
    {0x200B, 0x200B}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2060, 0x206F},   {0xD800, 0xDFFF},
    {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xFFFE, 0xFFFF}, {0xE0000, 0xE007F},
};

constexpr TextView reserved[] = {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$", u"CLOCK$"};
constexpr TextView numbered[] = {u"COM", u"LPT"};  // with one digit after it, superscript ones too
constexpr TextView digits = u"0123456789\u00B9\u00B2\u00B3";

bool isWanted(char32_t c) {
  return std::none_of(std::begin(unwanted), std::end(unwanted),
                      [&](const Span& span) { return c >= span.first && c <= span.last; });
}

bool isHigh(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLow(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

TextView lastComponent(TextView name) {
  constexpr TextView separators = u"/\\";
  const auto end = name.find_last_not_of(separators);
  if (end == name.npos) return {};
  name = name.substr(0, end + 1);
  return name.substr(name.find_last_of(separators) + 1);
}

Text withoutUnwanted(TextView name) {
  Text result;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char16_t unit = name[i];
    if (unit == u'\t' || unit == u'\r' || unit == u'\n') {
      result += u' ';
    } else if (isHigh(unit) && i + 1 < name.size() && isLow(name[i + 1])) {
      const char32_t c = 0x10000 + ((unit - 0xD800u) << 10) + (name[++i] - 0xDC00u);
      if (isWanted(c)) result.append({unit, name[i]});
    } else if (isWanted(unit)) {
      result += unit;
    }
  }
  return result;
}

TextView withoutEnds(TextView name) {
  const auto begin = name.find_first_not_of(u' ');
  const auto end = name.find_last_not_of(u" .");
  return end == name.npos ? TextView{} : name.substr(begin, end - begin + 1);
}

bool isReserved(TextView name) {
  Text stem{trim(name.substr(0, name.find(u'.')))};
  for (auto& c : stem) c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  const auto isStem = [&](TextView word) { return stem == word; };
  const auto isNumbered = [&](TextView word) {
    return stem.size() == word.size() + 1 && stem.starts_with(word) &&
           digits.find(stem.back()) != digits.npos;
  };
  return std::any_of(std::begin(reserved), std::end(reserved), isStem) ||
         std::any_of(std::begin(numbered), std::end(numbered), isNumbered);
}

// The longest beginning of `text` that takes no more than `bytes` in UTF-8.
TextView cutToBytes(TextView text, std::size_t bytes) {
  std::size_t used = 0, units = 0;
  while (units < text.size()) {
    const bool pair = isHigh(text[units]);
    used += pair ? 4 : text[units] < 0x80 ? 1 : text[units] < 0x800 ? 2 : 3;
    if (used > bytes) break;
    units += pair ? 2 : 1;
  }
  return text.substr(0, units);
}

// An extension of more than this is no extension but a part of the sentence that the name is.
constexpr std::size_t longestExtension = 32;

Text shortened(TextView name) {
  constexpr auto room = longestName - numberRoom;
  if (toUtf8(name).size() <= room) return Text{name};
  const auto dot = name.rfind(u'.');
  const auto ending = dot == name.npos || dot == 0 ? TextView{} : name.substr(dot);
  const auto extension = toUtf8(ending).size() <= longestExtension ? ending : TextView{};
  const auto stem = name.substr(0, name.size() - extension.size());
  return Text{withoutEnds(cutToBytes(stem, room - toUtf8(extension).size()))}.append(extension);
}

}  // namespace

Text cleanName(TextView name) {
  const auto visible = withoutUnwanted(lastComponent(name));
  const Text clean{withoutEnds(visible)};
  return shortened(isReserved(clean) ? u"_" + clean : clean);
}

}  // namespace quillfile::mime
