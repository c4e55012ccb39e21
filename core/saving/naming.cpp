#include "core/saving/naming.h"

namespace quillfile {

Text StripInvalidCharacters(const PathRules& paths, TextView name, TextView replacement) {
  const bool hasDrive = paths.drives && middle(name, 2, 1) == u":";
  Text result{name};
  for (const auto& invalid : paths.invalidInPath)
    result = replaceAll(result, TextView{&invalid, 1}, replacement);
  if (hasDrive) result = Text{left(result, 1)}.append(u":").append(from(result, 3));
  return result;
}

Text cleanedName(const PathRules& paths, TextView name) {
  Text result{name};
  for (const TextView unwanted :
       {TextView{u"#"}, TextView{u"?"}, TextView{u"&"}, paths.separator, paths.otherSeparator})
    result = replaceAll(result, unwanted, u"-");
  return result;
}

Text attachmentName(const PathRules& paths, TextView fileName, const std::function<Text()>& displayName) {
  auto name = cleanedName(paths, fileName);
  return trim(name).empty() ? cleanedName(paths, displayName()).append(u".txt") : name;
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
