// Which property holds which field: the tables that writing and reading share.
#pragma once

#include <array>

#include "hosts/mailbox/formats/mapi/property.h"
#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats::mapi {

struct TextField {
  Id id;
  Text MessageContent::*field;
};
inline constexpr std::array kTexts = {
    TextField{Id::message_class, &MessageContent::messageClass},
    TextField{Id::internet_message_id, &MessageContent::messageId},
    TextField{Id::in_reply_to_id, &MessageContent::inReplyTo},
    TextField{Id::internet_references, &MessageContent::references},
    TextField{Id::transport_message_headers, &MessageContent::transportHeaders},
    TextField{Id::body, &MessageContent::textBody},
};

struct MailboxField {
  Id name, addressType, address, smtpAddress;
  Mailbox MessageContent::*field;
};
inline constexpr std::array kMailboxes = {
    MailboxField{Id::sender_name, Id::sender_address_type, Id::sender_email_address, Id::sender_smtp_address,
                 &MessageContent::sender},
    MailboxField{Id::sent_representing_name, Id::sent_representing_address_type,
                 Id::sent_representing_email_address, Id::sent_representing_smtp_address,
                 &MessageContent::representing},
};

struct TimeField {
  Id id;
  std::optional<Time> MessageContent::*field;
};
inline constexpr std::array kTimes = {
    TimeField{Id::client_submit_time, &MessageContent::sent},
    TimeField{Id::message_delivery_time, &MessageContent::received},
};

// PidTagMessageFlags
inline constexpr std::int64_t kRead = 0x01, kUnsent = 0x08, kHasAttachments = 0x10;
// PidTagAttachFlags: shown within the HTML body
inline constexpr std::int64_t kShownInHtml = 0x04;

// PidTagNativeBody
inline constexpr std::int64_t kPlain = 1, kRtf = 2, kHtml = 3;

}  // namespace quillfile::formats::mapi
