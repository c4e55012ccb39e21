#include "hosts/mailbox/outlook/draft_text.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/mime/header_value.h"
#include "hosts/mailbox/outlook/received_time.h"
#include "hosts/mailbox/store/maildir_name.h"

namespace quillfile::mailbox {
namespace {

constexpr std::string_view lineEnd = "\n";

// Without anything that could end a header line.
Text oneLine(TextView text) {
  Text result{text};
  std::replace_if(
      result.begin(), result.end(), [](char16_t unit) { return unit < u' ' || unit == 0x7F; }, u' ');
  return result;
}

std::string mailbox(const mime::Address& address) {
  return mime::encodedAddress({oneLine(address.name), oneLine(address.address)}, lineEnd);
}

void appendField(std::string& header, std::string_view name, std::string_view value) {
  if (!value.empty()) header.append(name).append(": ").append(value).append(lineEnd);
}

std::string listOf(const std::vector<mime::Address>& addresses) {
  std::string list;
  for (const auto& address : addresses) list.append(list.empty() ? "" : ",\n ").append(mailbox(address));
  return list;
}

// The ids of an unfolded References field, one to a line, the new one last.
std::string references(std::string_view before, std::string_view id) {
  std::string list;
  const auto add = [&](std::string_view one) { list.append(list.empty() ? "" : "\n ").append(one); };
  while (!before.empty()) {
    const auto begin = before.find('<');
    const auto end = begin == std::string_view::npos ? begin : before.find('>', begin);
    if (end == std::string_view::npos) break;
    const auto one = before.substr(begin, end - begin + 1);
    if (one != id && one.size() < 900) add(one);
    before.remove_prefix(end + 1);
  }
  if (!id.empty()) add(id);
  return list;
}

// Whether a body can stand as it is: ASCII in short lines, and nothing that a mailer might take for its own.
bool plainEnough(std::string_view text) {
  if (!mime::isAscii(text)) return false;
  for (std::size_t at = 0; at < text.size();) {
    const auto end = std::min(text.find('\n', at), text.size());
    const auto line = text.substr(at, end - at);
    if (line.size() > 78 || line.starts_with("From ") || line.starts_with("--=_") || line.ends_with(' '))
      return false;
    if (line.find('\r') != line.npos || line.find('\0') != line.npos) return false;
    at = end + 1;
  }
  return true;
}

// Gives the pieces on as UTF-8, one after the other, in stretches of whole lines that end in LF. A line of
// more than `step` units comes in several, all of which but the last are unfinished.
template <class Use>
void inStretches(const std::vector<TextView>& pieces, Use&& use) {
  constexpr std::size_t step = std::size_t{64} << 10;
  Text stretch;
  const auto give = [&](TextView part, bool unfinished) {
    use(toUtf8(replaceAll(part, u"\r\n", u"\n")), unfinished);
    stretch.erase(0, part.size());
  };
  for (auto piece : pieces) {
    for (; !piece.empty(); piece.remove_prefix(std::min(step, piece.size()))) {
      stretch += piece.substr(0, step);
      const auto lines = stretch.rfind(u'\n') + 1;  // 0 where none ends
      if (lines > 0) give(TextView{stretch}.substr(0, lines), false);
      if (stretch.size() <= step) continue;
      const auto part = cutLeft(stretch, static_cast<Position>(step));
      give(part.ends_with(u'\r') ? part.substr(0, part.size() - 1) : part, true);
    }
  }
  give(stretch, false);
}

}  // namespace

std::string replacedLineEnds(std::string lines) {
  std::erase(lines, '\r');
  if (!lines.empty() && lines.back() != '\n') lines += '\n';
  return lines;
}

std::size_t bodyStart(TextView html) {
  for (std::size_t at = html.find(u'<'); at != TextView::npos; at = html.find(u'<', at + 1)) {
    if (!mime::equalWords(toUtf8(html.substr(at + 1, 4)), "body")) continue;
    const auto end = html.find(u'>', at);
    return end == TextView::npos ? 0 : end + 1;
  }
  return 0;
}

DraftWriter::DraftWriter(const DraftHeader& header, const Sink& sink) : sink_(sink) {
  std::string fields;
  if (!header.from.address.empty()) appendField(fields, "From", mailbox(header.from));
  appendField(fields, "To", listOf(header.to));
  appendField(fields, "Cc", listOf(header.cc));
  appendField(fields, "Subject", mime::encodedText(oneLine(header.subject), lineEnd));
  appendField(fields, "Date", mailTime(header.date));
  appendField(fields, "In-Reply-To", header.inReplyTo);
  appendField(fields, "References", references(header.references, header.inReplyTo));
  appendField(fields, "MIME-Version", "1.0");
  sink_(fields);
}

// The boundary, with its "=_", cannot occur in quoted-printable.
void DraftWriter::open(std::string_view subtype) {
  boundaries_.push_back("=_" + freshUniqueName().substr(0, 40) + "_" + std::string{subtype.substr(0, 3)});
  std::string field;
  appendField(field, "Content-Type",
              "multipart/" + std::string{subtype} + ";\n boundary=\"" + boundaries_.back() + "\"");
  sink_(field);
  next();
}

void DraftWriter::next() { sink_("\n--" + boundaries_.back() + "\n"); }

void DraftWriter::body(std::string_view type, const std::vector<TextView>& pieces) {
  bool plain = true;
  inStretches(pieces, [&](std::string_view lines, bool unfinished) {
    plain = plain && !unfinished && plainEnough(lines);
  });
  std::string fields;
  appendField(fields, "Content-Type", std::string{type} + "; charset=utf-8");
  appendField(fields, "Content-Transfer-Encoding", plain ? "7bit" : "quoted-printable");
  sink_(fields.append(lineEnd));
  inStretches(pieces, [&](const std::string& lines, bool unfinished) {
    sink_(plain ? lines : mime::toQuotedPrintable(lines, lineEnd, unfinished));
  });
}

void DraftWriter::close() {
  for (; !boundaries_.empty(); boundaries_.pop_back()) sink_("\n--" + boundaries_.back() + "--\n");
}

}  // namespace quillfile::mailbox
