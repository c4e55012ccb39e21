#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/formats/mapi/fields.h"
#include "hosts/mailbox/formats/mapi/file_time.h"
#include "hosts/mailbox/formats/mapi/message_properties.h"
#include "hosts/mailbox/formats/rtf/compressed_rtf.h"

namespace quillfile::formats::mapi {
namespace {

// The SMTP address where it is given; else the address if it can be one (an Exchange address is a path).
Text smtpOf(const Properties& properties, Id smtpAddress, Id address, std::uint32_t page) {
  Text given = properties.text(smtpAddress, page);
  if (!given.empty()) return given;
  Text other = properties.text(address, page);
  if (other.find(u'@') == Text::npos) other.clear();
  return other;
}

Mailbox takeMailbox(const Properties& properties, const MailboxField& ids, std::uint32_t page) {
  Mailbox result{properties.text(ids.name, page), smtpOf(properties, ids.smtpAddress, ids.address, page)};
  if (result.name == result.address) result.name.clear();
  return result;
}

// A subject may begin with a mark: the character 1 and the length of its prefix ([MS-OXOMSG]).
Text takeSubject(const Properties& properties, std::uint32_t page) {
  Text subject = properties.text(Id::subject, page);
  if (subject.size() >= 2 && subject[0] == u'\x01') subject.erase(0, 2);
  if (!properties.has(Id::subject)) {
    subject = properties.text(Id::subject_prefix, page) + properties.text(Id::normalized_subject, page);
  }
  return subject;
}

void takeBodies(const Properties& properties, std::uint32_t page, ReadMessage& to, TextRoom& room) {
  if (const Property* html = properties.find(Id::html)) {
    if (const auto* text = std::get_if<Text>(&html->value)) {
      to.content.html = {toUtf8(*text), kUtf8};
    } else {
      const std::int64_t declared = properties.number(Id::internet_code_page, page);
      to.content.html = {properties.bytes(Id::html), static_cast<std::uint32_t>(declared)};
    }
  }
  if (properties.has(Id::rtf_compressed)) {
    DecompressedRtf rtf = decompressRtf(properties.bytes(Id::rtf_compressed), room.left());
    room.take(rtf.rtf.size());
    if (!rtf.intact) to.doubts.push_back(u"The rich-text body is damaged");
    to.content.rtfBody = std::move(rtf.rtf);
  }
}

}  // namespace

std::uint32_t codePage(const Properties& properties, std::uint32_t otherwise) {
  for (const Id id : {Id::message_code_page, Id::internet_code_page}) {
    const std::int64_t page = properties.number(id);
    if (page > 0) return static_cast<std::uint32_t>(page);
  }
  return otherwise;
}

void takeMessage(const Properties& properties, ReadMessage& to, TextRoom& room) {
  MessageContent& message = to.content;
  const std::uint32_t page = codePage(properties, kWestern);
  for (const TextField& field : kTexts) {
    if (properties.has(field.id)) message.*field.field = properties.text(field.id, page);
  }
  if (properties.has(Id::subject) || properties.has(Id::normalized_subject)) {
    message.subject = takeSubject(properties, page);
  }
  for (const MailboxField& field : kMailboxes) {
    const Mailbox mailbox = takeMailbox(properties, field, page);
    if (mailbox != Mailbox{}) message.*field.field = mailbox;
  }
  if (message.representing == message.sender) message.representing = {};
  if (message.sender == Mailbox{}) std::swap(message.sender, message.representing);
  for (const TimeField& field : kTimes) {
    if (properties.has(field.id)) message.*field.field = fromFileTime(properties.number(field.id));
  }
  const std::int64_t importance =
      properties.number(Id::importance, static_cast<std::int64_t>(message.importance));
  if (importance >= 0 && importance <= 2) message.importance = static_cast<Importance>(importance);
  if (properties.has(Id::message_flags)) {
    const std::int64_t flags = properties.number(Id::message_flags);
    message.unread = (flags & kRead) == 0;
    message.draft = (flags & kUnsent) != 0;
  }
  takeBodies(properties, page, to, room);
}

Recipient takeRecipient(const Properties& properties, std::uint32_t page) {
  Recipient result;
  const std::int64_t kind = properties.number(Id::recipient_type, 1) & 0xF;  // upper bits say how it went
  if (kind >= 1 && kind <= 3) result.kind = static_cast<RecipientKind>(kind);
  result.mailbox = {properties.text(Id::display_name, page),
                    smtpOf(properties, Id::smtp_address, Id::email_address, page)};
  if (result.mailbox.name == result.mailbox.address) result.mailbox.name.clear();
  return result;
}

AttachmentContent takeAttachment(const Properties& properties, std::uint32_t page) {
  AttachmentContent result;
  const std::int64_t method = properties.number(Id::attach_method, 1);
  for (const AttachMethod known :
       {AttachMethod::by_reference, AttachMethod::embedded_message, AttachMethod::ole}) {
    if (method == static_cast<std::int64_t>(known)) result.method = known;
  }
  for (const Id id : {Id::attach_long_filename, Id::attach_filename}) {
    if (result.fileName.empty()) result.fileName = properties.text(id, page);
  }
  result.displayName = properties.text(Id::display_name, page);
  if (result.displayName == result.fileName) result.displayName.clear();
  result.reference = properties.text(Id::attach_long_pathname, page);
  result.mimeType = toUtf8(properties.text(Id::attach_mime_tag, page));
  result.contentId = toUtf8(properties.text(Id::attach_content_id, page));
  result.shownInline = (properties.number(Id::attach_flags) & kShownInHtml) != 0 ||
                       properties.number(Id::attachment_hidden) != 0;
  return result;
}

}  // namespace quillfile::formats::mapi
