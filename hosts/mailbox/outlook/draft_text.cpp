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

std::string textPart(std::string_view type, TextView text) {
  const auto bytes = toUtf8(replaceAll(text, u"\r\n", u"\n"));
  std::string part;
  appendField(part, "Content-Type", std::string{type} + "; charset=utf-8");
  appendField(part, "Content-Transfer-Encoding", plainEnough(bytes) ? "7bit" : "quoted-printable");
  part += lineEnd;
  return part += plainEnough(bytes) ? bytes : mime::toQuotedPrintable(bytes, lineEnd);
}

// Parts inside a multipart, whose boundary, with its "=_", cannot occur in quoted-printable.
std::string multipart(std::string_view subtype, const std::vector<std::string>& parts) {
  const auto boundary = "=_" + freshUniqueName().substr(0, 40) + "_" + std::string{subtype}.substr(0, 3);
  std::string result;
  appendField(result, "Content-Type",
              "multipart/" + std::string{subtype} + ";\n boundary=\"" + boundary + "\"");
  for (const auto& part : parts) result.append("\n--").append(boundary).append("\n").append(part);
  return result.append("\n--").append(boundary).append("--\n");
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

std::string draftText(const DraftHeader& header, const DraftBodies& bodies, const DraftStructure& structure) {
  std::string message;
  if (!header.from.address.empty()) appendField(message, "From", mailbox(header.from));
  appendField(message, "To", listOf(header.to));
  appendField(message, "Cc", listOf(header.cc));
  appendField(message, "Subject", mime::encodedText(oneLine(header.subject), lineEnd));
  appendField(message, "Date", mailTime(header.date));
  appendField(message, "In-Reply-To", header.inReplyTo);
  appendField(message, "References", references(header.references, header.inReplyTo));
  appendField(message, "MIME-Version", "1.0");

  auto body = textPart("text/plain", bodies.plain);
  if (!bodies.html.empty()) body = multipart("alternative", {body, textPart("text/html", bodies.html)});
  if (!bodies.rtf.empty()) body = multipart("alternative", {body, textPart("text/rtf", bodies.rtf)});
  if (structure.related) body = multipart("related", {body});
  if (structure.mixed) body = multipart("mixed", {body});
  return message + body;
}

}  // namespace quillfile::mailbox
