#include "hosts/mailbox/formats/import/mbox.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/mime/range.h"

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
std::size_t searchedEnd(std::string_view bytes, std::size_t body, mime::Progress& progress) {
  std::size_t blank = std::string_view::npos;
  for (std::size_t at = body; at < bytes.size();) {
    const std::string_view line = lineAt(bytes, at);
    const bool afterBlank = blank != std::string_view::npos;
    if (isFromLine(bytes, at, afterBlank)) return afterBlank ? blank : at;
    blank = isBlank(line) ? at : std::string_view::npos;
    at += line.size();
    progress.reached(at);
  }
  return blank == std::string_view::npos ? bytes.size() : blank;
}

// Whether a line of the body begins "From ": then the writer does not quote (mboxcl2).
bool hasFromLine(std::string_view body, const Forget& forget) {
  constexpr std::string_view kLine = "\nFrom ";
  constexpr std::size_t kStep = std::size_t{1} << 20;
  if (body.starts_with(kFrom)) return true;
  const mime::Behind behind = mime::behindOf(body, forget);
  mime::Progress progress(behind);
  for (std::size_t at = 0; at < body.size(); progress.reached(at += kStep))
    if (body.substr(at, kStep + kLine.size() - 1).find(kLine) != std::string_view::npos) return true;
  return false;
}

std::size_t nextFromLine(std::string_view bytes, std::size_t at, mime::Progress& progress) {
  for (bool afterBlank = true; at < bytes.size() && !isFromLine(bytes, at, afterBlank);) {
    const std::string_view line = lineAt(bytes, at);
    afterBlank = isBlank(line);
    at += line.size();
    progress.reached(at);
  }
  return at;
}

// Whether the line is a "From " line with one ">" or more in front.
bool isQuotedFromLine(std::string_view line) {
  const std::size_t marks = std::min(line.find_first_not_of('>'), line.size());
  return marks > 0 && line.substr(marks).starts_with(kFrom);
}

}  // namespace

bool isMbox(std::string_view bytes) { return isFromLine(bytes, startOf(bytes), true); }

std::vector<MboxMessage> splitMbox(std::string_view bytes, const Forget& forget) {
  std::vector<MboxMessage> result;
  const mime::Behind behind = mime::behindOf(bytes, forget);
  mime::Progress progress(behind);
  std::size_t at = nextFromLine(bytes, startOf(bytes), progress);
  while (at < bytes.size()) {
    const std::size_t start = at + lineAt(bytes, at).size(), body = bodyOf(bytes, start);
    const auto announced = announcedEnd(bytes, start, body);
    const std::size_t end = announced ? *announced : searchedEnd(bytes, body, progress);
    const bool quoted = !announced || !hasFromLine(bytes.substr(body, end - body), forget);
    result.push_back({bytes.substr(start, end - start), quoted});
    at = nextFromLine(bytes, end, progress);
  }
  return result;
}

void writeMboxMessage(const MboxMessage& message, const ByteSink& sink, const Forget& forget) {
  if (!message.quoted) return viewSource(message.bytes, forget)(sink);
  constexpr std::size_t kStep = std::size_t{256} << 10;
  const mime::Behind behind = mime::behindOf(message.bytes, forget);
  mime::Progress progress(behind);
  std::size_t given = 0;
  const auto giveUpTo = [&](std::size_t end) {
    if (end > given) sink(message.bytes.substr(given, end - given));
    progress.reached(given = end);
  };
  for (std::size_t at = 0; at < message.bytes.size();) {
    const std::string_view line = lineAt(message.bytes, at);
    const bool quoted = isQuotedFromLine(line);
    if (quoted || at - given >= kStep) giveUpTo(at);
    if (quoted) ++given;
    at += line.size();
  }
  giveUpTo(message.bytes.size());
  progress.ended(message.bytes.size());
}

}  // namespace quillfile::formats
