#include "hosts/mailbox/formats/import/mime_entity.h"

#include "hosts/mailbox/formats/failures.h"
#include "hosts/mailbox/formats/import/header_block.h"
#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/mime/header_value.h"

namespace quillfile::formats {
namespace {

// type "/" subtype, and nothing that would need other rules than a plain file.
std::string fileType(const std::string& type) {
  const std::size_t slash = type.find('/');
  bool good = slash != std::string::npos && slash > 0 && slash + 1 < type.size();
  for (std::size_t i = 0; i < type.size(); ++i) {
    const char byte = type[i];
    const bool letter =
        (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
    good = good && (letter || i == slash || std::string_view("+-._").find(byte) != std::string_view::npos);
  }
  const std::string lower = mime::lowerCase(type);
  if (lower.starts_with("multipart/") || lower.starts_with("message/")) good = false;
  return good ? type : "application/octet-stream";
}

bool isShown(const AttachmentContent& one, const MessageContent& message) {
  return one.shownInline && !one.contentId.empty() && !message.html.bytes.empty();
}

}  // namespace

Entity EntityWriter::message(const MessageContent& message, int depth) {
  if (depth > kMaxDepth) throw failures::tooDeep();
  Entity inside = contents(message, depth);
  return {headerBlock(message, end_) + "MIME-Version: 1.0" + end_ + inside.fields, inside.body};
}

Entity EntityWriter::text(std::string_view type, std::string_view charset, std::string_view bytes) {
  return {"Content-Type: " + std::string(type) + "; charset=\"" + std::string(charset) + "\"" + end_ +
              "Content-Transfer-Encoding: quoted-printable" + end_,
          [bytes = std::string(bytes), end = end_](const ByteSink& sink) {
            sink(mime::toQuotedPrintable(bytes, end));
          }};
}

std::vector<Entity> EntityWriter::bodies(const MessageContent& message) {
  std::vector<Entity> result;
  const bool others = !message.html.bytes.empty() || !message.rtfBody.empty();
  if (!message.textBody.empty() || !others)
    result.push_back(text("text/plain", "utf-8", toUtf8(message.textBody)));
  if (!message.rtfBody.empty()) {
    result.push_back({"Content-Type: text/rtf" + end_ + "Content-Transfer-Encoding: base64" + end_,
                      encoded(viewSource(message.rtfBody))});
  }
  constexpr std::uint32_t kUtf16 = 1200;
  if (message.html.codePage == kUtf16) {
    result.push_back(text("text/html", "utf-8", toUtf8(mapi::fromCodePage(message.html.bytes, kUtf16))));
  } else if (!message.html.bytes.empty()) {
    result.push_back(text("text/html", mapi::charsetOf(message.html.codePage), message.html.bytes));
  }
  return result;
}

Entity EntityWriter::body(const MessageContent& message, int depth) {
  std::vector<Entity> shown = {group("alternative", bodies(message))};
  for (const AttachmentContent& one : message.attachments)
    if (isShown(one, message)) shown.push_back(attachment(one, depth));
  return group("related", std::move(shown));
}

std::vector<Entity> EntityWriter::others(const MessageContent& message, int depth) {
  std::vector<Entity> result;
  for (const AttachmentContent& one : message.attachments)
    if (!isShown(one, message)) result.push_back(attachment(one, depth));
  return result;
}

Entity EntityWriter::contents(const MessageContent& message, int depth) {
  std::vector<Entity> all = {body(message, depth)};
  for (Entity& one : others(message, depth)) all.push_back(std::move(one));
  return group("mixed", std::move(all));
}

Entity EntityWriter::group(std::string_view subtype, std::vector<Entity> parts) {
  if (parts.size() == 1) return std::move(parts[0]);
  const std::string boundary = nextBoundary();
  return {"Content-Type: multipart/" + std::string(subtype) + "; boundary=\"" + boundary + "\"" + end_,
          [boundary, end = end_, kept = std::move(parts)](const ByteSink& sink) {
            for (const Entity& part : kept) {
              sink(end + "--" + boundary + end + part.fields + end);
              part.body(sink);
            }
            sink(end + "--" + boundary + "--" + end);
          }};
}

ByteSource EntityWriter::encoded(ByteSource source) {
  return [source = std::move(source), end = end_](const ByteSink& sink) {
    mime::Base64Encoder encoder(end, sink);
    if (source) source([&](std::string_view bytes) { encoder.write(bytes); });
    encoder.finish();
    sink(end);
  };
}

std::string EntityWriter::nameFields(const AttachmentContent& one, std::string_view type) {
  const Text name = fromUtf8(plainField(toUtf8(one.fileName)));
  const std::string word = one.shownInline ? "inline" : "attachment";
  std::string result = "Content-Type: " + std::string(type);
  if (!name.empty()) result += mime::encodedParameter("name", name, end_);
  result += end_ + "Content-Disposition: " + word;
  if (!name.empty()) result += mime::encodedParameter("filename", name, end_);
  result += end_;
  if (!one.contentId.empty()) result += "Content-ID: <" + plainField(one.contentId) + ">" + end_;
  if (!one.displayName.empty()) {
    const Text shown = fromUtf8(plainField(toUtf8(one.displayName)));
    result += "Content-Description: " + mime::encodedText(shown, end_) + end_;
  }
  return result;
}

Entity EntityWriter::attachment(const AttachmentContent& one, int depth) {
  if (one.message) {
    return {nameFields(one, "message/rfc822"),
            [inner = message(*one.message, depth + 1), end = end_](const ByteSink& sink) {
              sink(inner.fields + end);
              inner.body(sink);
            }};
  }
  if (one.method == AttachMethod::by_reference) return reference(one);
  return {nameFields(one, fileType(one.mimeType)) + "Content-Transfer-Encoding: base64" + end_,
          encoded(one.data)};
}

// A file that is somewhere else (RFC 2017): the part is only the fields of what would be there.
Entity EntityWriter::reference(const AttachmentContent& one) {
  const Text url = fromUtf8(plainField(toUtf8(one.reference)));
  const std::string type =
      "message/external-body; access-type=URL" + mime::encodedParameter("url", url, end_);
  return {nameFields(one, type), ownedSource("Content-Type: " + fileType(one.mimeType) + end_ + end_)};
}

}  // namespace quillfile::formats
