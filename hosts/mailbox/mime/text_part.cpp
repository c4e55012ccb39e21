#include "hosts/mailbox/mime/text_part.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/encode.h"

namespace quillfile::mime {
namespace {

constexpr std::size_t longestLine = 998;  // RFC 5322 2.1.1, without the line end

std::string withLineEnds(std::string_view text, std::string_view lineEnd) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' && text[i] != '\n') {
      out += text[i];
      continue;
    }
    out += lineEnd;
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
  }
  return out;
}

bool hasLongLine(std::string_view text) {
  for (std::size_t begin = 0; begin < text.size();) {
    const auto end = std::min(text.find('\n', begin), text.size());
    if (end - begin > longestLine) return true;
    begin = end + 1;
  }
  return false;
}

// Whether a line of the text would be taken for a boundary line of a multipart that the part is in.
bool looksLikeBoundary(const PartTree& tree, PartIndex part, std::string_view text) {
  for (auto at = tree[part].parent; at != noPart; at = tree[at].parent) {
    const auto boundary = tree.type(at).parameters.bytes("boundary");
    if (boundary && text.find("--" + *boundary) != text.npos) return true;
  }
  return false;
}

bool fitsAsItIs(std::string_view bytes) { return bytes.find('\0') == bytes.npos && !hasLongLine(bytes); }

std::string typeField(const ContentType& type, std::string_view charset, std::string_view lineEnd) {
  auto field = "Content-Type: " + type.type + "/" + type.subtype + "; charset=" + std::string{charset};
  for (const auto& [name, value] : type.parameters.all()) {
    if (name == "charset") continue;
    const bool token =
        !value.empty() && isAscii(value) && value.find_first_of(" \t()<>@,;:\\\"/[]?=") == value.npos;
    field.append(";").append(lineEnd).append(" ").append(name).append("=");
    if (token || name.ends_with('*')) {
      field += value;
      continue;
    }
    field += '"';
    for (const char c : value) field.append(c == '"' || c == '\\' ? "\\" : "").append(1, c);
    field += '"';
  }
  return field.append(lineEnd);
}

std::string encodingField(std::string_view encoding, std::string_view lineEnd) {
  return "Content-Transfer-Encoding: " + std::string{encoding} + std::string{lineEnd};
}

// Quoted-printable for what a person could read in it, base64 for the rest.
TextPart encodedPart(std::string typeOfIt, std::string_view bytes, std::string_view lineEnd) {
  const auto odd = static_cast<std::size_t>(std::count_if(
      bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80 || c == 0; }));
  const bool quoted = odd <= bytes.size() / 4;
  return {
      .fields = std::move(typeOfIt) + encodingField(quoted ? "quoted-printable" : "base64", lineEnd),
      .body = quoted ? toQuotedPrintable(bytes, lineEnd) : toBase64(withLineEnds(bytes, "\r\n"), lineEnd)};
}

}  // namespace

TextPart newTextPart(std::string_view subtype, TextView text, std::string_view lineEnd) {
  const ContentType type{.type = "text", .subtype = std::string{subtype}, .parameters = {}};
  const auto bytes = withLineEnds(toUtf8(text), lineEnd);
  if (!isAscii(bytes) || !fitsAsItIs(bytes))
    return encodedPart(typeField(type, "utf-8", lineEnd), bytes, lineEnd);
  return {.fields = typeField(type, "us-ascii", lineEnd) + encodingField("7bit", lineEnd), .body = bytes};
}

TextPart rewrittenTextPart(const PartTree& tree, PartIndex part, TextView text) {
  const auto lineEnd = tree.lineEnd();
  const auto type = tree.type(part);
  const auto encoding = tree[part].encoding;
  const auto charset = type.parameters.bytes("charset").value_or("");
  const auto own = toCharset(text, charset);
  if (!own) return encodedPart(typeField(type, "utf-8", lineEnd), toUtf8(text), lineEnd);
  if (encoding == Encoding::quoted_printable && own->find('\0') == own->npos) {
    return {.fields = {}, .body = toQuotedPrintable(*own, lineEnd)};
  }
  if (encoding == Encoding::base64) return {.fields = {}, .body = toBase64(*own, lineEnd)};
  const auto bytes = withLineEnds(*own, lineEnd);
  const bool stays = encoding == Encoding::identity && fitsAsItIs(bytes) &&
                     !looksLikeBoundary(tree, part, bytes) && (isAscii(bytes) || !isAscii(tree.body(part)));
  if (stays) return {.fields = {}, .body = bytes};
  const bool wide =
      own->find('\0') != own->npos;  // UTF-16 and the like have no line ends that mail could see
  if (wide) return encodedPart(typeField(type, "utf-8", lineEnd), toUtf8(text), lineEnd);
  return encodedPart(typeField(type, charset.empty() ? "us-ascii" : charset, lineEnd), *own, lineEnd);
}

}  // namespace quillfile::mime
