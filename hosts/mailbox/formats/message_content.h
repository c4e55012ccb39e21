// MessageContent: one e-mail as the file formats know it, between a message store and the files. The writers
// of .msg, .tnef and RFC 5322 take one, the readers of .msg and TNEF give one.
//
// Texts are as the sender wrote them: file names are not made safe for a disk here, and may hold anything.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/formats/bytes.h"

namespace quillfile::formats {

// Messages in messages are written and read down to this depth; the outermost has depth 1.
inline constexpr int kMaxDepth = 64;

using Time = std::chrono::sys_seconds;  // UTC

// A person: the name shown, and the SMTP address. Either may be empty.
struct Mailbox {
  Text name = {};
  Text address = {};
  bool operator==(const Mailbox&) const = default;
};

enum class RecipientKind : std::int32_t { to = 1, cc = 2, bcc = 3 };

struct Recipient {
  RecipientKind kind = RecipientKind::to;
  Mailbox mailbox = {};
  bool operator==(const Recipient&) const = default;
};

enum class Importance : std::int32_t { low = 0, normal = 1, high = 2 };

struct HtmlBody {
  std::string bytes = {};          // empty: there is none
  std::uint32_t codePage = 65001;  // of `bytes`, as Windows numbers them
  bool operator==(const HtmlBody&) const = default;
};

struct MessageContent;

// How an attachment is kept; the numbers are those of PidTagAttachMethod.
enum class AttachMethod : std::int32_t { by_value = 1, by_reference = 4, embedded_message = 5, ole = 6 };

struct AttachmentContent {
  AttachMethod method = AttachMethod::by_value;
  Text fileName = {};     // raw
  Text displayName = {};  // empty: the file name
  Text reference = {};    // where a by-reference attachment is; empty for the others
  std::string mimeType = {};
  std::string contentId = {};  // without angle brackets
  bool shownInline = false;
  std::uint64_t size = 0;  // bytes that `data` gives, exactly
  ByteSource data = {};    // empty where there are none
  // Of a reader whose input holds the data in one piece: that piece, within the bytes given to it.
  std::optional<std::string_view> range = {};
  std::shared_ptr<const MessageContent> message = {};  // of an embedded message, and only there
};

struct MessageContent {
  Text messageClass = u"IPM.Note";
  Text subject = {};
  Mailbox sender = {};        // who sent it
  Mailbox representing = {};  // in whose name; empty: the sender's
  std::vector<Recipient> recipients = {};
  std::optional<Time> sent = {};
  std::optional<Time> received = {};
  Text messageId = {};  // with angle brackets, as in the header
  Text inReplyTo = {};
  Text references = {};
  Text transportHeaders = {};  // the header block whole, lines ended by CR LF
  Importance importance = Importance::normal;
  bool unread = false;
  bool draft = false;
  Text textBody = {};
  HtmlBody html = {};
  std::string rtfBody = {};  // not compressed
  std::vector<AttachmentContent> attachments = {};
};

// The message class for an item: "MailItem", "PostItem", "MeetingItem", "ReportItem"; any other is a mail.
// `method` is the METHOD of a calendar part, where it is known: "REQUEST", "CANCEL", "REPLY".
Text messageClassOf(TextView itemType, std::string_view method = {});

// What a reader gives: the message, and in a sentence each what could not be read.
struct ReadMessage {
  MessageContent content = {};
  std::vector<Text> doubts = {};
};

}  // namespace quillfile::formats
