#include "hosts/mailbox/formats/import/rfc5322.h"

#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/scan.h"
#include "tests/mailbox/formats/sample_messages.h"

namespace quillfile::formats {
namespace {

std::string mailOf(const MessageContent& message, std::string_view lineEnd = "\n") {
  return written([&](const ByteSink& sink) { writeRfc5322(message, sink, lineEnd); });
}

TEST(Rfc5322, WritesAPlainMessageAsOnePart) {
  const MessageContent message{
      .subject = u"Hello",
      .sender = {u"Ada \"the first\"", u"ada@example.org"},
      .recipients = {{RecipientKind::to, {u"", u"bob@example.org"}}, {RecipientKind::cc, {u"Nobody", u""}}},
      .sent = at(1'600'000'000),
      .messageId = u"<1@example.org>",
      .importance = Importance::low,
      .textBody = u"Hi\r\nBob\r\n"};
  EXPECT_EQ(mailOf(message),
            "From: \"Ada \\\"the first\\\"\" <ada@example.org>\n"
            "To: bob@example.org\n"
            "Cc: Nobody <>\n"
            "Subject: Hello\n"
            "Date: Sun, 13 Sep 2020 12:26:40 +0000\n"
            "Message-ID: <1@example.org>\n"
            "Importance: low\n"
            "MIME-Version: 1.0\n"
            "Content-Type: text/plain; charset=\"utf-8\"\n"
            "Content-Transfer-Encoding: quoted-printable\n"
            "\n"
            "Hi\nBob\n");
}

TEST(Rfc5322, KeepsTransportHeadersButThoseOfTheBody) {
  const MessageContent message{.subject = u"another",
                               .sender = {u"Ada", u"ada@example.org"},
                               .messageId = u"<1@example.org>",
                               .transportHeaders =
                                   u"Received: by here;\r\n\tnow\r\nSubject: as sent\r\n"
                                   u"Content-Type: multipart/mixed;\r\n boundary=x\r\nMIME-Version: 1.0\r\n"
                                   u"From: a@example.org"};
  EXPECT_EQ(mailOf(message),
            "Received: by here;\n\tnow\nSubject: as sent\nFrom: a@example.org\n"
            "Message-ID: <1@example.org>\n"
            "MIME-Version: 1.0\n"
            "Content-Type: text/plain; charset=\"utf-8\"\n"
            "Content-Transfer-Encoding: quoted-printable\n"
            "\n");
}

// A text cannot begin a field of its own.
TEST(Rfc5322, LetsNoTextBreakOutOfItsField) {
  const MessageContent message{
      .subject = u"x\r\nBcc: evil@example.org",
      .sender = {u"a\nX: y", u"b@c\r\n\r\nbody"},
      .messageId = u"<1>\nX: y",
      .attachments = {
          {.fileName = u"a\r\nX: y.txt", .mimeType = "text/plain\r\nX: y", .contentId = "c\r\nX: y"}}};
  const std::string mail = mailOf(message);
  for (const std::string_view field : {"\nX:", "\nBcc:", "\nbody"}) {
    EXPECT_EQ(mail.find(field), std::string::npos) << mail;
  }
}

// Every part of the full message, as the reader of mail sees it.
TEST(Rfc5322, GivesTheReaderOfMailEveryPart) {
  for (const std::string_view lineEnd : {"\n", "\r\n"}) {
    const std::string mail = mailOf(fullMessage(), lineEnd);
    const mime::PartTree tree = mime::scan(mail);
    EXPECT_TRUE(tree.doubt().empty()) << toUtf8(tree.doubt());
    std::vector<std::string> seen;
    for (const mime::Part& part : tree.parts()) {
      EXPECT_TRUE(part.doubt.empty()) << toUtf8(part.doubt);
      const mime::Header header(part.header.of(mail));
      const mime::ContentType type = mime::contentType(header);
      std::string line(part.depth * 2, ' ');
      line += type.type + "/" + type.subtype + " " + toUtf8(mime::givenName(header));
      if (part.kind == mime::PartKind::leaf) {
        line += " " + std::to_string(mime::decoded(part.encoding, part.body.of(mail)).size());
      }
      seen.push_back(line);
    }
    const std::vector<std::string> expected = {
        "multipart/mixed ",
        "  multipart/related ",
        "    multipart/alternative ",
        lineEnd == "\n" ? "      text/plain  12" : "      text/plain  14",
        "      text/rtf  24",
        "      text/html  11",
        "    image/png picture.png 3",
        "  application/octet-stream small.txt 5",
        "  application/octet-stream empty 0",
        "  application/octet-stream a long name \u00e4.tar.gz 100000",
        lineEnd == "\n" ? "  message/external-body far.pdf 40" : "  message/external-body far.pdf 42",
        "  message/rfc822 ",
        "    multipart/mixed ",
        "      text/plain  10",
        "      application/octet-stream inner.bin 5000",
    };
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(mailOf(fullMessage(), lineEnd), mail);
  }
}

TEST(Rfc5322, RefusesMessagesNestedTooDeeply) {
  auto message = std::make_shared<MessageContent>();
  for (int depth = 1; depth <= kMaxDepth; ++depth) {
    auto outer = std::make_shared<MessageContent>();
    outer->attachments.push_back({.method = AttachMethod::embedded_message, .message = message});
    message = outer;
  }
  EXPECT_THROW(mailOf(*message), Failure);
}

TEST(Rfc5322, SaysWhatIsLeftBehind) {
  EXPECT_TRUE(leftBehind({.content = {}}).empty());
  EXPECT_TRUE(leftBehind({.content = {.messageClass = u"REPORT.IPM.Note.NDR"}}).empty());
  EXPECT_EQ(
      leftBehind({.content = {.messageClass = u"IPM.Task"}, .doubts = {u"One doubt"}}),
      (std::vector<Text>{
          u"One doubt",
          u"Of an item of the class \"IPM.Task\" only the texts and the attachments are carried over"}));
}

}  // namespace
}  // namespace quillfile::formats
