#include "hosts/mailbox/formats/import/mbox.h"

#include <charconv>
#include <optional>

#include "hosts/mailbox/mime/header.h"

namespace quillfile::formats {
namespace {

constexpr std::string_view kFrom = "From ";

std::string_view lineAt(std::string_view bytes, std::size_t at) {
  const std::size_t end = bytes.find('\n', at);
  return bytes.substr(at, end == std::string_view::npos ? end : end + 1 - at);
}

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool isBlank(std::string_view line) { return line == "\n" || line == "\r\n"; }

// Whether a line begins with the name of a header field and a colon.
bool isField(std::string_view line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos || colon == 0) return false;
  for (const char byte : line.substr(0, colon)) {
    if (byte <= ' ' || byte >= 0x7F) return false;
  }
  return true;
}

bool hasTime(std::string_view line) {
  for (std::size_t i = 1; i + 2 < line.size(); ++i) {
    if (line[i] == ':' && isDigit(line[i - 1]) && isDigit(line[i + 1]) && isDigit(line[i + 2])) return true;
  }
  return false;
}

// "From ada@example.org Sun Sep 13 12:26:40 2020", after a blank line or before a field; or "From -" and the
// like, one word, before a field. A sentence that begins "From " has more words and no time of day.
bool isFromLine(std::string_view bytes, std::size_t at, bool afterBlank) {
  const std::string_view line = lineAt(bytes, at);
  if (!line.starts_with(kFrom)) return false;
  const std::string_view rest = mime::trimmed(line.substr(kFrom.size()));
  const bool beforeField = isField(lineAt(bytes, at + line.size()));
  if (hasTime(rest)) return afterBlank || beforeField;
  return beforeField && !rest.empty() && rest.find(' ') == std::string_view::npos;
}

std::size_t startOf(std::string_view bytes) { return bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0; }

// Where the body begins: behind the first blank line.
std::size_t bodyOf(std::string_view bytes, std::size_t start) {
  for (std::size_t at = start; at < bytes.size();) {
    const std::string_view line = lineAt(bytes, at);
    if (at > start && isFromLine(bytes, at, false)) return at;
    at += line.size();
    if (isBlank(line)) return at;
  }
  return bytes.size();
}

// The end that Content-Length gives, if something can end there.
std::optional<std::size_t> announcedEnd(std::string_view bytes, std::size_t start, std::size_t body) {
  const std::string value = mime::Header(bytes.substr(start, body - start)).value("Content-Length");
  std::size_t length = 0;
  const auto read = std::from_chars(value.data(), value.data() + value.size(), length);
  if (value.empty() || read.ec != std::errc() || read.ptr != value.data() + value.size()) return std::nullopt;
  if (length > bytes.size() - body) return std::nullopt;
  const std::size_t end = body + length;
  if (end > body && bytes[end - 1] != '\n' && end < bytes.size() && !isBlank(lineAt(bytes, end)))
    return std::nullopt;
  std::size_t next = end;
  while (next < bytes.size() && isBlank(lineAt(bytes, next))) next += lineAt(bytes, next).size();
  if (next < bytes.size() && !isFromLine(bytes, next, true)) return std::nullopt;
  return end;
}

// The start of the next "From " line, or of the blank line before it; else the end of the file without its
// last blank line.
std::size_t searchedEnd(std::string_view bytes, std::size_t body) {
  std::size_t blank = std::string_view::npos;
  for (std::size_t at = body; at < bytes.size();) {
    const std::string_view line = lineAt(bytes, at);
    const bool afterBlank = blank != std::string_view::npos;
    if (isFromLine(bytes, at, afterBlank)) return afterBlank ? blank : at;
    blank = isBlank(line) ? at : std::string_view::npos;
    at += line.size();
  }
  return blank == std::string_view::npos ? bytes.size() : blank;
}

// Whether a line of the body begins "From ": then the writer does not quote (mboxcl2).
bool hasFromLine(std::string_view body) {
  if (body.starts_with(kFrom)) return true;
  return body.find("\nFrom ") != std::string_view::npos;
}

std::size_t nextFromLine(std::string_view bytes, std::size_t at) {
  for (bool afterBlank = true; at < bytes.size() && !isFromLine(bytes, at, afterBlank);) {
    const std::string_view line = lineAt(bytes, at);
    afterBlank = isBlank(line);
    at += line.size();
  }
  return at;
}

}  // namespace

bool isMbox(std::string_view bytes) { return isFromLine(bytes, startOf(bytes), true); }

std::vector<MboxMessage> splitMbox(std::string_view bytes) {
  std::vector<MboxMessage> result;
  std::size_t at = nextFromLine(bytes, startOf(bytes));
  while (at < bytes.size()) {
    const std::size_t start = at + lineAt(bytes, at).size(), body = bodyOf(bytes, start);
    const auto announced = announcedEnd(bytes, start, body);
    const std::size_t end = announced ? *announced : searchedEnd(bytes, body);
    const bool quoted = !announced || !hasFromLine(bytes.substr(body, end - body));
    result.push_back({bytes.substr(start, end - start), quoted});
    at = nextFromLine(bytes, end);
  }
  return result;
}

void writeMboxMessage(const MboxMessage& message, const ByteSink& sink) {
  std::string_view left = message.bytes;
  std::size_t searched = 0;  // `left` from here on has not been looked at
  while (message.quoted) {
    const std::size_t found = left.find(">From ", searched);
    if (found == std::string_view::npos) break;
    std::size_t line = found;
    while (line > 0 && left[line - 1] == '>') --line;
    searched = found + 1;
    if (line > 0 && left[line - 1] != '\n') continue;
    sink(left.substr(0, line));
    left.remove_prefix(line + 1);
    searched = found - line;
  }
  sink(left);
}

}  // namespace quillfile::formats
