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

Position QuillfileExtended::findUnbrokenPhrase(TextView body, Position start) {
  return find(body, link_note::phrase, start, CompareMode::ignoring_case);
}

Position QuillfileExtended::InStrIgnoreLfCr(Position start, TextView text, TextView keyword, TextView phrase,
                                            CompareMode compare, bool returnEnd) {
  constexpr TextView name = u"InStrIgnoreLfCr";
  const auto whole = find(text, phrase, start, compare);
  if (whole > 0) return returnEnd ? whole + lengthOf(phrase) : whole;
  for (auto at = find(text, keyword, start, compare); at > 0; at = find(text, keyword, at + 1, compare)) {
    const Text slice = replaceAll(middle(text, at, lengthOf(phrase) + lengthOf(keyword)), lineBreak, u" ");
    trace_(name, u"Slice: {}", slice);
    if (find(slice, phrase, 1, compare) > 0) return returnEnd ? at + lengthOf(phrase) + 1 : at;
    trace_(name, u"Phrase '{}' not found in {}", phrase, slice);
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
