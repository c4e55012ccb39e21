// Cutting a link note, and the paragraph around it, out of a body.
#include "core/links/link_note.h"
#include "core/links/quillfile_extended.h"

namespace quillfile {
namespace {

constexpr TextView name = u"EraseString";

}  // namespace

std::optional<Stretch> QuillfileExtended::noteToErase(TextView body, TextView format, Position start) {
  constexpr Wording wording{u"Error occurred: {}", false};
  return procedure(ports_.services, {.name = u".EraseString", .wording = wording},
                   [&](Step&) -> std::optional<Stretch> {
                     if (format != u"HTML" && format != u"RTF") return std::nullopt;
                     const auto unbroken = findUnbrokenPhrase(body, start);
                     const auto phrase = unbroken > 0 ? unbroken : findPhrase(body, 1);
                     if (phrase < 1) return std::nullopt;
                     const auto note = format == u"HTML" ? noteInHtml(body, phrase) : noteInRtf(body, phrase);
                     if (!note) return note;
                     trace_(name, u"FirstPart: {}", left(body, note->begin - 1));
                     trace_(name, u"LastPart: {}", from(body, note->end));
                     return note;
                   });
}

Text QuillfileExtended::EraseString(TextView body, TextView format) {
  const auto note = noteToErase(body, format);
  return note ? Text{left(body, note->begin - 1)}.append(from(body, note->end)) : Text{};
}

// From the "<P" before the phrase at `found` to the "</P>" after the anchor.
std::optional<Stretch> QuillfileExtended::noteInHtml(TextView body, Position found) {
  constexpr TextView closing = u"</P>";
  const auto start = findLastIgnoringCase(ports_.letters, body, u"<P", found);
  if (start < 1) return std::nullopt;
  const auto anchor = find(body, u"</A>", start, CompareMode::ignoring_case);
  if (anchor < 1) return std::nullopt;
  const auto end = find(body, closing, anchor, CompareMode::ignoring_case);
  if (end < 1) return std::nullopt;
  return Stretch{start, end + static_cast<Position>(closing.size())};
}

// From the phrase at `start` to the end of its line.
std::optional<Stretch> QuillfileExtended::noteInRtf(TextView body, Position start) {
  const auto end = endOfRtfNote(body, start);
  if (end < 1) {
    trace_(name, u"Failed to find ending file marker");
    return std::nullopt;
  }
  return Stretch{start, end};
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

}  // namespace quillfile
