// Finding a link note in a body.
#include "core/links/link_note.h"
#include "core/links/quillfile_extended.h"

namespace quillfile {
namespace {

constexpr TextView name = u"CheckForLink";

// The text between the marker at `marker` and `end`; nothing where the two meet or cross.
TextView linkBetween(TextView body, Position marker, Position end) {
  const auto start = marker + static_cast<Position>(link_note::marker.size());
  return end > start ? middle(body, start, end - start) : TextView{};
}

}  // namespace

bool QuillfileExtended::CheckForLink(TextView body, Position& position, TextView format, Text& fileName,
                                     bool fieldStyle) {
  constexpr Wording wording{u"Error in CheckForLink on Line Number: {}.  Reason: {}", true};
  return procedure(ports_.services, {.name = u".CheckForLink", .wording = wording}, [&](Step& at) -> bool {
    at(1);
    trace_(name, u"Checking For Link...Pos: {}; Param: {}", position, format);
    fileName.clear();
    bool found = false;
    if (format == u"HTML") {
      at(2);
      found = checkHtml(body, position, fileName);
    } else if (format == u"TEXT" || format == u"RTF") {
      at(3);
      found = checkText(body, position, format, fileName);
    } else {
      at(4);
      checkField(body, position, fileName, fieldStyle);
    }
    at(5);
    if (!fileName.empty()) {
      trace_(name, u"URL Found: {}", fileName);
    } else {
      trace_(u"CheckForlink", u"File Not Found");  // sic
    }
    trace_(name, u"Done Checking For Link.");
    return found;
  });
}

// The phrase alone makes a link: what it points to may be missing.
bool QuillfileExtended::checkHtml(TextView body, Position& position, Text& path) {
  position = findPhrase(body, position);
  if (position < 1) return false;
  const auto marker = position = find(body, link_note::marker, position, CompareMode::ignoring_case);
  if (marker < 1) return true;
  const auto end = find(body, u">", marker, CompareMode::exact);
  if (end < 1) return true;
  path =
      ports_.paths.pathAfterMarker(linkBetween(body, marker, end - 1));  // without the closing quotation mark
  position = end;
  return true;
}

bool QuillfileExtended::checkText(TextView body, Position& position, TextView format, Text& path) {
  position = findPhrase(body, position);
  if (position < 1) return false;
  const auto marker = position = find(body, link_note::marker, position, CompareMode::ignoring_case);
  if (marker < 1) {
    trace_(name, u"Failed to find file indicator in body");
    return false;
  }
  trace_(name, u"Found file indicator at pos: {}", marker);
  const auto end = find(body, u">", marker, CompareMode::exact);
  if (end < 1) {
    trace_(name, u"Failed to find ending file indicator");
    return false;
  }
  const auto link = linkBetween(body, marker, end);
  path = ports_.paths.pathAfterMarker(format == u"RTF" ? replaceAll(link, u"\\\\", u"\\") : Text{link});
  position = end;
  trace_(name, u"Found ending file indicator at pos2: {} (file name): {}", end, path);
  return true;
}

// A body of no known format: the path is cut out, and the answer stays False.
void QuillfileExtended::checkField(TextView body, Position& position, Text& path, bool fieldStyle) {
  const auto marker = position = find(body, link_note::marker, position, CompareMode::ignoring_case);
  if (marker < 1) return;
  if (!fieldStyle) {
    const auto end = find(body, u">", marker, CompareMode::exact);
    if (end < 1) return;
    path = ports_.paths.pathAfterMarker(replaceAll(linkBetween(body, marker, end), u"\\\\", u"\\"));
    position = end + 1;
    return;
  }
  auto end = find(body, u"\"}", marker, CompareMode::ignoring_case);
  if (end < 1) end = find(body, u"\"", marker, CompareMode::ignoring_case);
  if (end < 1) return;
  path = ports_.paths.pathAfterMarker(replaceAll(linkBetween(body, marker, end), u"\\\\\\\\", u"\\"));
  position = find(body, u">", end, CompareMode::exact);
}

}  // namespace quillfile
