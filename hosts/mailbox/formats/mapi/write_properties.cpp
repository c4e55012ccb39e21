#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/formats/mapi/fields.h"
#include "hosts/mailbox/formats/mapi/file_time.h"
#include "hosts/mailbox/formats/mapi/message_properties.h"
#include "hosts/mailbox/formats/rtf/compressed_rtf.h"

namespace quillfile::formats::mapi {
namespace {

constexpr TextView kSmtp = u"SMTP";
constexpr std::int64_t kMailUser = 6;            // PidTagObjectType
constexpr std::int64_t kUnicodeStore = 0x40E79;  // PidTagStoreSupportMask, with STORE_UNICODE_OK

// The names of one kind of recipient, as the mail client shows them.
Text displayed(const MessageContent& message, RecipientKind kind) {
  Text result;
  for (const Recipient& recipient : message.recipients) {
    if (recipient.kind != kind) continue;
    if (!result.empty()) result += u"; ";
    result += recipient.mailbox.name.empty() ? recipient.mailbox.address : recipient.mailbox.name;
  }
  return result;
}

// "RE: ", "AW: " and the like: one to three letters, a colon and a blank ([MS-OXCMSG] 2.2.1.10).
TextView prefixOf(TextView subject) {
  const std::size_t colon = subject.substr(0, 5).find(u": ");
  if (colon == TextView::npos || colon == 0 || colon > 3) return {};
  for (const char16_t unit : subject.substr(0, colon)) {
    if (unit <= u' ' || (unit >= u'0' && unit <= u'9')) return {};
  }
  return subject.substr(0, colon + 2);
}

void addMailbox(Properties& to, const MailboxField& ids, const Mailbox& mailbox) {
  if (mailbox == Mailbox{}) return;
  to.addText(ids.name, mailbox.name.empty() ? mailbox.address : mailbox.name);
  to.addText(ids.addressType, kSmtp);
  to.addText(ids.address, mailbox.address);
  to.addText(ids.smtpAddress, mailbox.address);
}

void addBodies(Properties& to, const MessageContent& message) {
  if (!message.html.bytes.empty()) to.add(Id::html, Type::binary, message.html.bytes);
  if (!message.rtfBody.empty()) {
    to.add(Id::rtf_compressed, Type::binary, compressRtf(message.rtfBody));
    to.addFlag(Id::rtf_in_sync, true);
  }
  to.addNumber(Id::native_body, !message.html.bytes.empty() ? kHtml
                                : !message.rtfBody.empty()  ? kRtf
                                                            : kPlain);
  to.addNumber(Id::internet_code_page, message.html.codePage);
}

// An entry that says by itself who it is ([MS-OXCDATA] 2.2.5.1).
std::string oneOffEntryId(const Mailbox& mailbox) {
  static constexpr std::string_view kProvider(
      "\x81\x2B\x1F\xA4\xBE\xA3\x10\x19\x9D\x6E\x00\xDD\x01\x0F\x54\x02", 16);
  std::string result;
  put32(result, 0);
  result += kProvider;
  put16(result, 0);
  put16(result, 0x9001);  // Unicode; no rich text promised
  for (const TextView text : {TextView(mailbox.name), kSmtp, TextView(mailbox.address)}) {
    result += utf16Bytes(text);
    put16(result, 0);
  }
  return result;
}

Text extensionOf(TextView name) {
  const std::size_t dot = name.rfind(u'.');
  return dot == TextView::npos || dot == 0 ? Text() : Text(name.substr(dot));
}

// A name of eight letters and three, as PidTagAttachFilename wants it. What is no plain letter or digit goes.
Text shortName(TextView name, std::size_t index) {
  const auto plain = [](TextView text, std::size_t most) {
    Text result;
    for (const char16_t unit : text) {
      const bool letter = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
      if ((letter || (unit >= u'0' && unit <= u'9')) && result.size() < most) result += unit;
    }
    return result;
  };
  const Text extension = extensionOf(name);
  const TextView stem = name.substr(0, name.size() - extension.size());
  Text base = plain(stem, 9);
  if (base.size() > 8) base = base.substr(0, 6) + u"~1";
  if (base.empty()) base = u"ATT" + decimal(static_cast<std::int64_t>(index) + 1);
  const Text ending = plain(extension, 3);
  return ending.empty() ? base : base + u"." + ending;
}

}  // namespace

Properties messageProperties(const MessageContent& message) {
  Properties result;
  result.addNumber(Id::store_support_mask, kUnicodeStore);
  result.addText(Id::subject, message.subject);
  const TextView prefix = prefixOf(message.subject);
  const TextView rest = TextView(message.subject).substr(prefix.size());
  result.addText(Id::subject_prefix, prefix);
  result.addText(Id::normalized_subject, rest);
  result.addText(Id::conversation_topic, rest);
  for (const TextField& field : kTexts) result.addText(field.id, message.*field.field);
  for (const MailboxField& field : kMailboxes) {
    const Mailbox& own = message.*field.field;
    addMailbox(result, field, own == Mailbox{} ? message.sender : own);
  }
  for (const TimeField& field : kTimes) {
    if (const auto& time = message.*field.field) result.add(field.id, Type::time, toFileTime(*time));
  }
  result.addText(Id::display_to, displayed(message, RecipientKind::to));
  result.addText(Id::display_cc, displayed(message, RecipientKind::cc));
  result.addText(Id::display_bcc, displayed(message, RecipientKind::bcc));
  const auto importance = static_cast<std::int64_t>(message.importance);
  result.addNumber(Id::importance, importance);
  result.addNumber(Id::priority, importance - 1);
  result.addNumber(Id::message_flags, (message.unread ? 0 : kRead) | (message.draft ? kUnsent : 0) |
                                          (message.attachments.empty() ? 0 : kHasAttachments));
  result.addFlag(Id::has_attachments, !message.attachments.empty());
  result.addNumber(Id::message_code_page, kWestern);
  addBodies(result, message);
  return result;
}

Properties recipientProperties(const Recipient& recipient, std::size_t index) {
  const Mailbox& mailbox = recipient.mailbox;
  Properties result;
  result.addNumber(Id::row_id, static_cast<std::int64_t>(index));
  result.addNumber(Id::recipient_type, static_cast<std::int64_t>(recipient.kind));
  result.addNumber(Id::object_type, kMailUser);
  result.addNumber(Id::display_type, 0);
  result.addText(Id::display_name, mailbox.name.empty() ? mailbox.address : mailbox.name);
  result.addText(Id::address_type, kSmtp);
  result.addText(Id::email_address, mailbox.address);
  result.addText(Id::smtp_address, mailbox.address);
  result.add(Id::entry_id, Type::binary, oneOffEntryId(mailbox));
  return result;
}

Properties attachmentProperties(const AttachmentContent& attachment, std::size_t index) {
  Properties result;
  result.addNumber(Id::attach_number, static_cast<std::int64_t>(index));
  result.addNumber(Id::attach_method, static_cast<std::int64_t>(attachment.method));
  result.addNumber(Id::attach_size, static_cast<std::int64_t>(attachment.size));
  result.addNumber(Id::rendering_position, -1);
  result.addText(Id::display_name,
                 attachment.displayName.empty() ? attachment.fileName : attachment.displayName);
  if (!attachment.fileName.empty()) {
    result.addText(Id::attach_filename, shortName(attachment.fileName, index));
    result.addText(Id::attach_long_filename, attachment.fileName);
    result.addText(Id::attach_extension, extensionOf(attachment.fileName));
  }
  result.addText(Id::attach_long_pathname, attachment.reference);
  result.addText(Id::attach_mime_tag, fromUtf8(attachment.mimeType));
  result.addText(Id::attach_content_id, fromUtf8(attachment.contentId));
  result.addNumber(Id::attach_flags, attachment.shownInline ? kShownInHtml : 0);
  result.addFlag(Id::attachment_hidden, attachment.shownInline);
  return result;
}

}  // namespace quillfile::formats::mapi
