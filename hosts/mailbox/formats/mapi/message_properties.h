// A message, a recipient and an attachment as properties, and back: what .msg and TNEF have in common.
#pragma once

#include "hosts/mailbox/formats/mapi/property.h"
#include "hosts/mailbox/formats/message_content.h"
#include "hosts/mailbox/formats/text_room.h"

namespace quillfile::formats::mapi {

// Everything but the recipients, the attachments and their data, which each format keeps in its own way.
Properties messageProperties(const MessageContent& message);
// `index` counts the recipients, and the attachments, of one message from 0.
Properties recipientProperties(const Recipient& recipient, std::size_t index);
Properties attachmentProperties(const AttachmentContent& attachment, std::size_t index);

// The opposite. What the properties do not say stays in `message` as it is. Doubts are added. A rich-text
// body that expands takes its room.
void takeMessage(const Properties& properties, ReadMessage& message, TextRoom& room);
Recipient takeRecipient(const Properties& properties, std::uint32_t codePage);
AttachmentContent takeAttachment(const Properties& properties, std::uint32_t codePage);

// The code page of the texts that are not Unicode.
std::uint32_t codePage(const Properties& properties, std::uint32_t otherwise);

}  // namespace quillfile::formats::mapi
