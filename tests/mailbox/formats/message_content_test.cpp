// Mail as the formats know it, and every message of the corpus in each format and back.
#include "hosts/mailbox/outlook/message_content.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/outlook/message.h"
#include "tests/mailbox/formats/corpus.h"
#include "tests/mailbox/formats/sample_messages.h"

namespace quillfile::formats {
namespace {

MessageContent contentOf(const std::string& mail) {
  return mailbox::messageContent(std::make_shared<const mailbox::Message>(mail));
}

TEST(MailAsContent, HasWhatTheMailHas) {
  const std::string mail =
      "Received: by here; Sun, 13 Sep 2020 12:27:40 +0000\n"
      "From: The Office <office@example.org>\n"
      "Sender: Ada <ada@example.org>\n"
      "To: Bob <bob@example.org>, carol@example.org\n"
      "Cc: Dan <d@example.org>\n"
      "Subject: =?utf-8?Q?Gr=C3=BC=C3=9Fe?=\n"
      "Date: Sun, 13 Sep 2020 14:26:40 +0200\n"
      "Message-ID: <2@example.org>\n"
      "In-Reply-To: <1@example.org>\n"
      "References: <0@example.org>\n <1@example.org>\n"
      "X-Priority: 1 (Highest)\n"
      "MIME-Version: 1.0\n"
      "Content-Type: multipart/mixed; boundary=m\n"
      "\n"
      "--m\n"
      "Content-Type: multipart/alternative; boundary=a\n"
      "\n"
      "--a\n"
      "Content-Type: text/plain\n"
      "\n"
      "plain\n"
      "--a\n"
      "Content-Type: text/html; charset=iso-8859-1\n"
      "\n"
      "<img src=\"cid:p@x\">caf\xE9\n"
      "--a--\n"
      "--m\n"
      "Content-Type: image/png; name=p.png\n"
      "Content-ID: <p@x>\n"
      "Content-Transfer-Encoding: base64\n"
      "\n"
      "cG5n\n"
      "--m\n"
      "Content-Type: message/rfc822\n"
      "\n"
      "Subject: Within\n"
      "Content-Disposition: attachment; filename=a.txt\n"
      "\n"
      "file\n"
      "--m\n"
      "Content-Type: message/external-body; access-type=URL; url=\"https://example.org/f\"; name=f.pdf\n"
      "\n"
      "Content-Type: application/pdf\n"
      "\n"
      "\n"
      "--m--\n";
  const MessageContent content = contentOf(mail);
  EXPECT_EQ(content.messageClass, u"IPM.Note");
  EXPECT_EQ(content.subject, u"Gr\u00fc\u00dfe");
  EXPECT_EQ(content.sender, (Mailbox{u"Ada", u"ada@example.org"}));
  EXPECT_EQ(content.representing, (Mailbox{u"The Office", u"office@example.org"}));
  EXPECT_EQ(content.recipients, (std::vector<Recipient>{{RecipientKind::to, {u"Bob", u"bob@example.org"}},
                                                        {RecipientKind::to, {u"", u"carol@example.org"}},
                                                        {RecipientKind::cc, {u"Dan", u"d@example.org"}}}));
  EXPECT_EQ(content.sent, at(1'600'000'000));
  EXPECT_EQ(content.received, at(1'600'000'060));
  EXPECT_EQ(content.messageId, u"<2@example.org>");
  EXPECT_EQ(content.inReplyTo, u"<1@example.org>");
  EXPECT_EQ(content.references, u"<0@example.org> <1@example.org>");
  EXPECT_TRUE(
      startsWith(content.transportHeaders, u"Received: by here; Sun, 13 Sep 2020 12:27:40 +0000\r\nFrom:"));
  EXPECT_EQ(content.importance, Importance::high);
  EXPECT_EQ(content.textBody, u"plain");
  EXPECT_EQ(content.html, (HtmlBody{"<img src=\"cid:p@x\">caf\xE9", 28591}));
  ASSERT_EQ(content.attachments.size(), 3u);
  EXPECT_EQ(content.attachments[0].fileName, u"p.png");
  EXPECT_TRUE(content.attachments[0].shownInline);
  EXPECT_EQ(gathered(content.attachments[0].data), "png");
  ASSERT_TRUE(content.attachments[1].message);
  EXPECT_EQ(content.attachments[1].message->subject, u"Within");
  ASSERT_EQ(content.attachments[1].message->attachments.size(), 1u);
  EXPECT_EQ(gathered(content.attachments[1].message->attachments[0].data), "file");
  EXPECT_EQ(content.attachments[2].method, AttachMethod::by_reference);
  EXPECT_EQ(content.attachments[2].reference, u"https://example.org/f");
}

// Equal messages give equal files: the clock has no part in them.
TEST(MailAsContent, KnowsNoTimeOfAMessageInAMessageThatSaysNone) {
  const auto content = contentOf(
      "Date: Wed, 04 Mar 2009 14:05:00 +0000\nContent-Type: message/rfc822\n\nSubject: inner\n\ntext\n");
  EXPECT_TRUE(content.received.has_value());
  ASSERT_EQ(content.attachments.size(), 1u);
  ASSERT_NE(content.attachments[0].message, nullptr);
  EXPECT_FALSE(content.attachments[0].message->received.has_value());
}

TEST(MailAsContent, HasTheClassOfTheItem) {
  EXPECT_EQ(contentOf("Newsgroups: a.b\n\nx\n").messageClass, u"IPM.Post");
  EXPECT_EQ(contentOf("Content-Type: text/calendar; method=cancel\n\nx\n").messageClass,
            u"IPM.Schedule.Meeting.Canceled");
  EXPECT_EQ(contentOf("Content-Type: multipart/report; boundary=b\n\n--b--\n").messageClass,
            u"REPORT.IPM.Note.NDR");
}

// What a reader of one of the formats gives for a message that was read from mail: texts may lose what no
// format has, the zero character, and a name that only repeats the address.
void expectSame(const MessageContent& read, const MessageContent& given) {
  const auto held = [](Text text) {
    while (!text.empty() && text.back() == u'\0') text.pop_back();
    return toUtf8(text);
  };
  EXPECT_EQ(toUtf8(read.subject), held(given.subject));
  EXPECT_EQ(toUtf8(read.textBody), held(given.textBody));
  EXPECT_EQ(read.html, given.html);
  EXPECT_EQ(read.rtfBody, given.rtfBody);
  EXPECT_EQ(read.recipients.size(), given.recipients.size());
  EXPECT_EQ(read.sent, given.sent);
  ASSERT_EQ(read.attachments.size(), given.attachments.size());
  for (std::size_t i = 0; i < read.attachments.size(); ++i) {
    const AttachmentContent &one = read.attachments[i], &other = given.attachments[i];
    EXPECT_EQ(toUtf8(one.fileName), toUtf8(other.fileName));
    EXPECT_EQ(gathered(one.data), gathered(other.data));
    ASSERT_EQ(one.message != nullptr, other.message != nullptr);
    if (one.message) expectSame(*one.message, *other.message);
  }
}

TEST(MailAsContent, KeepsEveryMessageOfTheCorpusInBothFormats) {
  std::size_t messages = 0, attachments = 0;
  for (const char* name : {"mimekit/messages", "mimekit/partial", "mimekit/smime", "mimekit/tnef",
                           "james-mime4j/testmsgs", "james-mime4j/mimetools-testmsgs"}) {
    const std::filesystem::path folder = corpusFolder(name);
    if (folder.empty()) GTEST_SKIP() << "the corpus is not here";
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      const auto extension = entry.path().extension();
      if (extension != ".eml" && extension != ".msg") continue;
      SCOPED_TRACE(entry.path().filename().string());
      const MessageContent content = contentOf(contentsOf(entry.path()));
      const std::string file = written([&](const ByteSink& sink) { writeMessageFile(content, sink); });
      const std::string stream = written([&](const ByteSink& sink) { writeTnef(content, sink); });
      const auto fromFile = readMessageFile(file), fromStream = readTnef(stream);
      ASSERT_TRUE(fromFile && fromStream);
      EXPECT_TRUE(fromFile->doubts.empty() && fromStream->doubts.empty());
      expectSame(fromFile->content, content);
      expectSame(fromStream->content, content);
      ++messages;
      attachments += content.attachments.size();
    }
  }
  EXPECT_GE(messages, 95u);
  std::cout << messages << " messages, " << attachments << " attachments\n";
}

}  // namespace
}  // namespace quillfile::formats
