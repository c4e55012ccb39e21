// Cutting a link note, and the paragraph around it, out of a body.
#include "core/links/link_note.h"
#include "core/links/quillfile_extended.h"

namespace quillfile {
namespace {

constexpr TextView name = u"EraseString";

}  // namespace

Text QuillfileExtended::EraseString(TextView body, TextView format) {
  constexpr Wording wording{u"Error occurred: {}", false};
  return procedure(ports_.services, {.name = u".EraseString", .wording = wording}, [&](Step&) -> Text {
    if (format == u"HTML") return eraseHtml(body);
    if (format == u"RTF") return eraseRtf(body);
    return {};
  });
}

// From the "<P" before the phrase to the "</P>" after the anchor.
Text QuillfileExtended::eraseHtml(TextView body) {
  constexpr TextView closing = u"</P>";
  const auto found = findPhrase(body, 1);
  if (found < 1) return {};
  const auto start = findLastIgnoringCase(ports_.letters, body, u"<P", found);
  if (start < 1) return {};
  const auto anchor = find(body, u"</A>", start, CompareMode::ignoring_case);
  if (anchor < 1) return {};
  const auto end = find(body, closing, anchor, CompareMode::ignoring_case);
  if (end < 1) return {};
  return without(body, start, end + static_cast<Position>(closing.size()));
}

// From the phrase to the end of its line.
Text QuillfileExtended::eraseRtf(TextView body) {
  const auto start = findPhrase(body, 1);
  if (start < 1) return {};
  const auto end = endOfRtfNote(body, start);
  if (end < 1) {
    trace_(name, u"Failed to find ending file marker");
    return {};
  }
  return without(body, start, end);
}

// The position behind the note: behind its ">" and the "\par" that ends its line, or before a "}" that does.
Position QuillfileExtended::endOfRtfNote(TextView body, Position start) {
  for (const TextView ending : {u">\\par", u"> \\par"}) {
    const auto end = InStrIgnoreLfCr(start, body, u">", ending, CompareMode::ignoring_case, true);
    if (end > 0) return end;
  }
  const auto group = find(body, u">}", start, CompareMode::ignoring_case);
  return group < 1 ? 0 : group + 1;
}

// `body` without what stands from `start` up to `end`.
Text QuillfileExtended::without(TextView body, Position start, Position end) {
  const auto first = left(body, start - 1);
  const auto last = from(body, end);
  trace_(name, u"FirstPart: {}", first);
  trace_(name, u"LastPart: {}", last);
  return Text{first}.append(last);
}

}  // namespace quillfile
