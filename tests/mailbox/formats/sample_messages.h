// Messages for the tests of the formats, and a comparison that names the field that differs.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "hosts/mailbox/formats/message_content.h"

namespace quillfile::formats {

inline std::string written(const std::function<void(const ByteSink&)>& write) { return gathered(write); }

inline AttachmentContent fileAttachment(Text name, std::string bytes) {
  return {.fileName = std::move(name),
          .mimeType = "application/octet-stream",
          .size = bytes.size(),
          .data = ownedSource(bytes)};
}

inline Time at(std::int64_t seconds) { return Time(std::chrono::seconds(seconds)); }

// Every field filled, attachments of every kind, and a message in a message.
inline MessageContent fullMessage() {
  auto inner = std::make_shared<MessageContent>();
  inner->messageClass = u"IPM.Post";
  inner->subject = u"Within";
  inner->textBody = u"inner text";
  inner->attachments = {fileAttachment(u"inner.bin", std::string(5000, 'i'))};
  return {.messageClass = u"IPM.Note",
          .subject = u"RE: Gr\u00fc\u00dfe \U0001F600",
          .sender = {u"Ada Lovelace", u"ada@example.org"},
          .representing = {u"The Office", u"office@example.org"},
          .recipients = {{RecipientKind::to, {u"Bob", u"bob@example.org"}},
                         {RecipientKind::cc, {u"", u"carol@example.org"}},
                         {RecipientKind::bcc, {u"D\u00e9n\u00e8s", u"d@example.org"}}},
          .sent = at(1'600'000'000),
          .received = at(1'600'000'060),
          .messageId = u"<1@example.org>",
          .inReplyTo = u"<0@example.org>",
          .references = u"<a@example.org> <0@example.org>",
          .transportHeaders = u"Subject: x\r\nX-Other: y\r\n",
          .importance = Importance::high,
          .unread = true,
          .draft = true,
          .textBody = u"one\r\ntwo \u4f60\r\n",
          .html = {"<p>caf\xE9</p>", 1252},
          .rtfBody = "{\\rtf1\\ansi one\\par two}",
          .attachments = {
              fileAttachment(u"small.txt", "hello"),
              fileAttachment(u"empty", ""),
              fileAttachment(u"a long name \u00e4.tar.gz", std::string(100'000, 'z')),
              {.fileName = u"picture.png",
               .displayName = u"A picture",
               .mimeType = "image/png",
               .contentId = "p1@example.org",
               .shownInline = true,
               .size = 3,
               .data = ownedSource("png")},
              {.method = AttachMethod::by_reference,
               .fileName = u"far.pdf",
               .reference = u"https://example.org/far.pdf"},
              {.method = AttachMethod::embedded_message, .displayName = u"Within", .message = inner}}};
}

inline void expectEqual(const MessageContent& read, const MessageContent& expected);

inline void expectEqual(const AttachmentContent& read, const AttachmentContent& expected) {
  SCOPED_TRACE(toUtf8(expected.fileName));
  EXPECT_EQ(read.method, expected.method);
  EXPECT_EQ(toUtf8(read.fileName), toUtf8(expected.fileName));
  EXPECT_EQ(toUtf8(read.displayName), toUtf8(expected.displayName));
  EXPECT_EQ(toUtf8(read.reference), toUtf8(expected.reference));
  EXPECT_EQ(read.mimeType, expected.mimeType);
  EXPECT_EQ(read.contentId, expected.contentId);
  EXPECT_EQ(read.shownInline, expected.shownInline);
  EXPECT_EQ(read.size, expected.size);
  EXPECT_EQ(gathered(read.data), gathered(expected.data));
  ASSERT_EQ(read.message != nullptr, expected.message != nullptr);
  if (read.message) expectEqual(*read.message, *expected.message);
}

inline void expectEqual(const MessageContent& read, const MessageContent& expected) {
  SCOPED_TRACE(toUtf8(expected.subject));
  EXPECT_EQ(toUtf8(read.messageClass), toUtf8(expected.messageClass));
  EXPECT_EQ(toUtf8(read.subject), toUtf8(expected.subject));
  EXPECT_EQ(read.sender, expected.sender);
  EXPECT_EQ(read.representing, expected.representing);
  EXPECT_EQ(read.recipients, expected.recipients);
  EXPECT_EQ(read.sent, expected.sent);
  EXPECT_EQ(read.received, expected.received);
  EXPECT_EQ(toUtf8(read.messageId), toUtf8(expected.messageId));
  EXPECT_EQ(toUtf8(read.inReplyTo), toUtf8(expected.inReplyTo));
  EXPECT_EQ(toUtf8(read.references), toUtf8(expected.references));
  EXPECT_EQ(toUtf8(read.transportHeaders), toUtf8(expected.transportHeaders));
  EXPECT_EQ(read.importance, expected.importance);
  EXPECT_EQ(read.unread, expected.unread);
  EXPECT_EQ(read.draft, expected.draft);
  EXPECT_EQ(toUtf8(read.textBody), toUtf8(expected.textBody));
  EXPECT_EQ(read.html, expected.html);
  EXPECT_EQ(read.rtfBody, expected.rtfBody);
  ASSERT_EQ(read.attachments.size(), expected.attachments.size());
  for (std::size_t i = 0; i < read.attachments.size(); ++i)
    expectEqual(read.attachments[i], expected.attachments[i]);
}

}  // namespace quillfile::formats
