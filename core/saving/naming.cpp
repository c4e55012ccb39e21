#include "core/saving/naming.h"

namespace quillfile {
namespace {

Text replacedEach(TextView name, TextView unwanted, TextView replacement) {
  Text result{name};
  for (const auto& unit : unwanted) {
    const TextView one{&unit, 1};
    if (find(result, one) > 0) result = replaceAll(result, one, replacement);  // most names hold none
  }
  return result;
}

}  // namespace

Text StripInvalidCharacters(const PathRules& paths, TextView name, TextView replacement) {
  const bool hasDrive = paths.drives && middle(name, 2, 1) == u":";
  auto result = replacedEach(name, paths.invalidInPath, replacement);
  if (hasDrive) result = Text{left(result, 1)}.append(u":").append(from(result, 3));
  return result;
}

Text cleanedName(const PathRules& paths, TextView name) {
  return replacedEach(name, fill(u"#?&{}{}", paths.separator, paths.otherSeparator), u"-");
}

Text componentOf(const PathRules& paths, TextView name) {
  return replacedEach(name, paths.invalidInPath, u"-");
}

Text shortenedForPrompt(TextView name) {
  constexpr Position longest = 128, kept = 40;
  if (static_cast<Position>(name.size()) <= longest) return Text{name};
  return Text{cutLeft(name, kept)}.append(partsOf(name).extension);
}

NameParts partsOf(TextView name) {
  const auto point = findLast(name, u".");
  if (point == 0) return {name, {}};
  return {left(name, point - 1), from(name, point)};
}

}  // namespace quillfile
