#include "core/links/quillfile_extended.h"

#include "core/links/link_note.h"

namespace quillfile {
namespace {

constexpr TextView lineBreak = u"\r\n";

Position lengthOf(TextView text) { return static_cast<Position>(text.size()); }

// What follows the last `separator`; the whole text when there is none.
TextView afterLast(TextView text, TextView separator) { return from(text, findLast(text, separator) + 1); }

}  // namespace

Position QuillfileExtended::find(TextView text, TextView wanted, Position start, CompareMode compare) {
  return compare == CompareMode::exact ? quillfile::find(text, wanted, start)
                                       : findIgnoringCase(ports_.letters, text, wanted, start);
}

Position QuillfileExtended::findPhrase(TextView body, Position start) {
  return InStrIgnoreLfCr(start, body, link_note::keyword, link_note::phrase, CompareMode::ignoring_case,
                         false);
}

Text QuillfileExtended::folded(TextView text, CompareMode compare) {
  return compare == CompareMode::exact ? Text{text} : ports_.letters.lower(text);
}

Position QuillfileExtended::InStrIgnoreLfCr(Position start, TextView text, TextView keyword, TextView phrase,
                                            CompareMode compare, bool returnEnd) {
  constexpr TextView name = u"InStrIgnoreLfCr";
  const auto whole = find(text, phrase, start, compare);
  if (whole > 0) return returnEnd ? whole + lengthOf(phrase) : whole;
  // Folded once: a body may be nothing but keywords.
  const Text body = folded(text, compare), word = folded(keyword, compare), wanted = folded(phrase, compare);
  const auto slice = [&](TextView of, Position at) {
    return replaceAll(middle(of, at, lengthOf(phrase) + lengthOf(keyword)), lineBreak, u" ");
  };
  for (auto at = quillfile::find(body, word, start); at > 0; at = quillfile::find(body, word, at + 1)) {
    const auto shown = [&] { return slice(text, at); };
    trace_(name, u"Slice: {}", shown);
    if (quillfile::find(slice(body, at), wanted) > 0) return returnEnd ? at + lengthOf(phrase) + 1 : at;
    trace_(name, u"Phrase '{}' not found in {}", phrase, shown);
  }
  trace_(name, u"keyword not found in {}", text);
  return 0;
}

Text QuillfileExtended::linkedPath(const Ref<SafeItem>& item, TextView fileName) {
  Text path = replaceAll(fileName, u"%20", u" ");
  const bool literal = ports_.paths.percentInNames && path != fileName && FileExists(item, fileName);
  return literal ? Text{fileName} : path;
}

bool QuillfileExtended::TestAttachmentLink(const Ref<SafeItem>& item, TextView fileName) {
  constexpr Procedure about{.name = u".TestAttachmentLink", .wording = wording::reason};
  return procedure(ports_.services, about, [&](Step&) -> bool {
    constexpr TextView name = u"TestAttachmentLink";
    const Text path = linkedPath(item, fileName);
    if (!FileExists(item, path)) {
      trace_(name, u"Did not find {}", path);
      return false;
    }
    item->attachments()->add({.source = path,
                              .type = AttachmentType::by_value,
                              .position = std::nullopt,
                              .displayName = Text{afterLast(path, ports_.paths.separator)}});
    trace_(name, u"Found and added {}", path);
    return true;
  });
}

bool QuillfileExtended::FileExists(const Ref<SafeItem>& item, TextView path) {
  bool exists = false;
  ignoringErrors([&] { exists = ports_.linkedFiles.exists(item, path); });
  return exists;
}

Text QuillfileExtended::FileNameFromPath(TextView path) {
  return Text{afterLast(path, findLast(path, u"/") > 0 ? u"/" : u"\\")};
}

}  // namespace quillfile
