#include "hosts/mailbox/outlook/message_content.h"

#include "hosts/mailbox/formats/mapi/code_page.h"
#include "hosts/mailbox/mime/address.h"
#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/date.h"
#include "hosts/mailbox/outlook/attachment_source.h"
#include "hosts/mailbox/outlook/body_part.h"
#include "hosts/mailbox/outlook/container.h"
#include "hosts/mailbox/outlook/item_type.h"
#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/outlook/received_time.h"

namespace quillfile::mailbox {
namespace {

using formats::MessageContent;

formats::Time timeOf(std::int64_t seconds) { return formats::Time(std::chrono::seconds(seconds)); }

formats::Mailbox mailboxOf(const mime::Header& header, std::string_view field) {
  const auto found = mime::parseAddresses(header.value(field), 1);
  return found.empty() ? formats::Mailbox{} : formats::Mailbox{found.front().name, found.front().address};
}

struct RecipientField {
  std::string_view name;
  formats::RecipientKind kind;
};
constexpr RecipientField kRecipients[] = {{"To", formats::RecipientKind::to},
                                          {"Cc", formats::RecipientKind::cc},
                                          {"Bcc", formats::RecipientKind::bcc}};

struct ImportanceField {
  std::string_view name, value;  // the value's beginning, in lower case
  formats::Importance importance;
};
constexpr ImportanceField kImportance[] = {
    {"Importance", "high", formats::Importance::high}, {"Importance", "low", formats::Importance::low},
    {"X-Priority", "1", formats::Importance::high},    {"X-Priority", "2", formats::Importance::high},
    {"X-Priority", "4", formats::Importance::low},     {"X-Priority", "5", formats::Importance::low}};

formats::Importance importanceOf(const mime::Header& header) {
  for (const auto& row : kImportance)
    if (mime::lowerCase(header.value(row.name)).starts_with(row.value)) return row.importance;
  return formats::Importance::normal;
}

// The header block as a text, each line ended by CR LF.
Text transportHeaders(const mime::Header& header) {
  return replaceAll(replaceAll(mime::guess(header.block()), u"\r\n", u"\n"), u"\n", u"\r\n");
}

std::string calendarMethod(const mime::PartTree& tree) {
  for (mime::PartIndex part = 0; part < tree.size(); ++part) {
    auto method = tree.type(part).parameters.bytes("method").value_or("");
    if (!tree.type(part).is("text/calendar") || method.empty()) continue;
    for (char& letter : method)
      if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    return method;
  }
  return {};
}

// The body's own bytes, so that what it says of its charset stays true; in UTF-8 where its charset has no
// number.
formats::HtmlBody htmlBody(const mime::PartTree& tree, mime::PartIndex part) {
  constexpr std::uint32_t unknown = 0;
  auto bytes = mime::decoded(tree[part].encoding, tree.body(part));
  const auto charset = tree.type(part).parameters.bytes("charset").value_or("");
  const auto unsaid = charset.empty() || mime::equalWords(charset, "us-ascii");
  const auto page = unsaid ? (mime::isUtf8(bytes) ? formats::mapi::kUtf8 : formats::mapi::kWestern)
                           : formats::mapi::codePageOf(charset, unknown);
  if (page == unknown) return {toUtf8(mime::fromCharset(bytes, charset)), formats::mapi::kUtf8};
  return {std::move(bytes), page};
}

void addHeader(const Message& message, MessageContent& to) {
  const auto header = message.header();
  to.messageClass = formats::messageClassOf(itemType(message), calendarMethod(message.tree()));
  to.subject = header.text("Subject");
  to.sender = mailboxOf(header, "From");
  if (const auto sender = mailboxOf(header, "Sender"); sender != formats::Mailbox{} && sender != to.sender) {
    to.representing = std::exchange(to.sender, sender);
  }
  for (const auto& field : kRecipients)
    for (const auto& one : mime::parseAddresses(header.value(field.name)))
      to.recipients.push_back({field.kind, {one.name, one.address}});
  if (const auto date = mime::parseDate(header.value("Date"))) to.sent = timeOf(*date);
  if (const auto received = knownReceivedSeconds(message)) to.received = timeOf(*received);
  to.messageId = header.text("Message-ID");
  to.inReplyTo = header.text("In-Reply-To");
  to.references = header.text("References");
  to.transportHeaders = transportHeaders(message.stored().header());
  to.importance = importanceOf(header);
}

void addBodies(const Message& message, MessageContent& to) {
  const auto& layout = message.layout();
  const auto& tree = message.tree();
  if (layout.html != mime::noPart) to.html = htmlBody(tree, layout.html);
  if (layout.rtf != mime::noPart)
    to.rtfBody = mime::decoded(tree[layout.rtf].encoding, tree.body(layout.rtf));
  if (layout.plain != mime::noPart) {
    to.textBody = bodyText(tree, layout.plain).text;
  } else if (layout.html != mime::noPart) {
    to.textBody = htmlToText(bodyText(tree, layout.html).text);
  } else if (layout.rtf != mime::noPart) {
    to.textBody = rtfToText(bodyText(tree, layout.rtf).text);
  }
}

// The message that a part is; null where it is encoded and so cannot be looked into.
std::shared_ptr<const Message> embeddedMessage(const std::shared_ptr<const Message>& message,
                                               mime::PartIndex part) {
  const auto& at = message->tree()[part];
  if (at.kind != mime::PartKind::message || at.encoding != mime::Encoding::identity) return nullptr;
  return withContainersOpened(std::make_shared<const Message>(message, at.body));
}

MessageContent contentOf(const std::shared_ptr<const Message>& message, int depth);

formats::AttachmentContent attachmentOf(const std::shared_ptr<const Message>& message,
                                        const AttachmentSource& source, TextView html, int depth) {
  formats::AttachmentContent result{.method = static_cast<formats::AttachMethod>(source.type()),
                                    .fileName = source.fileName(),
                                    .displayName = source.displayName(),
                                    .mimeType = source.mediaType(),
                                    .contentId = source.contentId()};
  if (result.displayName == result.fileName) result.displayName.clear();
  result.shownInline = !result.contentId.empty() && find(html, u"cid:" + fromUtf8(result.contentId)) != 0;
  const auto part = source.part();
  if (source.type() == AttachmentType::by_reference && part) {
    const auto parameters = message->tree().type(*part).parameters;
    for (const std::string_view name : {"url", "name"})
      if (result.reference.empty()) result.reference = parameters.text(name).value_or(Text{});
    return result;
  }
  const auto embedded = part && depth < formats::kMaxDepth ? embeddedMessage(message, *part) : nullptr;
  if (embedded) {
    result.message = std::make_shared<const MessageContent>(contentOf(embedded, depth + 1));
    return result;
  }
  result.method = formats::AttachMethod::by_value;
  result.size = static_cast<std::uint64_t>(source.size());
  result.data = source.content();
  return result;
}

MessageContent contentOf(const std::shared_ptr<const Message>& message, int depth) {
  MessageContent result;
  addHeader(*message, result);
  addBodies(*message, result);
  const Text html = formats::mapi::fromCodePage(result.html.bytes, result.html.codePage);
  for (const auto& source : attachmentsOf(message))
    result.attachments.push_back(attachmentOf(message, *source, html, depth));
  return result;
}

}  // namespace

MessageContent messageContent(const std::shared_ptr<const Message>& message) { return contentOf(message, 1); }

}  // namespace quillfile::mailbox
