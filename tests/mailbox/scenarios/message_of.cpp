#include <stdexcept>

#include "hosts/mailbox/mime/encode.h"
#include "tests/mailbox/scenarios/mailbox_stage.h"

namespace quillfile::mailbox {

namespace {

// RFC 2231.
std::string extended(const std::string& bytes) {
  std::string text = "UTF-8''";
  for (const char byte : bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    if (std::isalnum(value) || byte == '.')
      text += byte;
    else
      text += {'%', digits[value / 16], digits[value % 16]};
  }
  return text;
}

std::string part(const std::string& type, TextView text) {
  return "--b\nContent-Type: " + type + "; charset=utf-8\n\n" + toUtf8(replaceAll(text, u"\r\n", u"\n")) +
         "\n";
}

std::string attached(const AttachmentData& data) {
  if (data.type == AttachmentType::embedded_item) {
    return "--b\nContent-Type: message/rfc822\nContent-Description: " + toUtf8(data.displayName) +
           "\n\nSubject: " + toUtf8(data.displayName) + "\n\n" + data.content + "\n";
  }
  return "--b\nContent-Type: application/octet-stream\nContent-Disposition: attachment; filename*=" +
         extended(toUtf8(data.fileName)) + "\nContent-Description: " + toUtf8(data.displayName) +
         "\nContent-Transfer-Encoding: base64\n\n" + mime::toBase64(data.content, "\n") + "\n";
}

}  // namespace

std::string messageOf(const ItemData& item, const std::vector<AttachmentData>& attachments) {
  if (item.type != u"MailItem" && item.type != u"PostItem") throw Unplayable{"an item of that type"};
  if (!item.saved) throw Unplayable{"an item that was never saved"};
  if (item.senderType != u"SMTP") throw Unplayable{"a sender of that type"};
  std::string message =
      "Received: from a by b; Wed, 4 Mar 2009 14:05:00 +0000\n"
      "From: " +
      toUtf8(item.senderName) + " <" + toUtf8(item.senderAddress) + ">\n" +
      (item.type == u"PostItem" ? "Newsgroups: example.test\n" : "To: me@example.net\n") +
      "Subject: " + toUtf8(item.subject) +
      "\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=\"b\"\n\n";
  if (item.format == u"HTML") message += part("text/html", item.htmlBody);
  if (item.format == u"RTF") message += part("text/rtf", item.rtfBody);
  if (item.format == u"TEXT") message += part("text/plain", item.body);
  for (const auto& attachment : attachments) {
    if (attachment.type == AttachmentType::ole) throw Unplayable{"an OLE object"};
    message += attached(attachment);
  }
  return message + "--b--\n";
}

}  // namespace quillfile::mailbox
