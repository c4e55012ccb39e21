// Attachments inside a winmail.dat are the message's own attachments.
#include "hosts/mailbox/outlook/container.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/encode.h"
#include "tests/mailbox/formats/corpus.h"
#include "tests/mailbox/formats/sample_messages.h"

namespace quillfile::mailbox {
namespace {

using formats::AttachMethod;

std::string mailWith(const std::string& type, const std::string& bytes) {
  return "Subject: rich\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nplain\n--b\n"
         "Content-Type: " +
         type + "\nContent-Transfer-Encoding: base64\n\n" + mime::toBase64(bytes, "\n") +
         "\n--b\nContent-Type: image/png; name=own.png\n\nown\n--b--\n";
}

std::string tnefStream() {
  auto inner = std::make_shared<formats::MessageContent>();
  inner->subject = u"Within/it";
  inner->textBody = u"hello";
  formats::MessageContent message;
  message.attachments = {
      formats::fileAttachment(u"..\\evil\\..\\a.doc", "word"),
      {.method = AttachMethod::embedded_message, .fileName = u"Untitled Attachment", .message = inner},
      formats::fileAttachment(u"", "nameless")};
  return formats::gathered([&](const Sink& sink) { formats::writeTnef(message, sink); });
}

// "type name size: bytes" of each.
std::vector<std::string> listed(const std::string& mail) {
  std::vector<std::string> result;
  for (const auto& source : attachmentsOf(std::make_shared<const Message>(mail))) {
    const auto bytes = formats::gathered(source->content());
    EXPECT_EQ(source->size(), static_cast<std::int64_t>(bytes.size()));
    result.push_back(std::to_string(static_cast<int>(source->type())) + " " + toUtf8(source->fileName()) +
                     " " + toUtf8(source->displayName()) + ": " + bytes);
  }
  return result;
}

TEST(Container, GivesWhatIsInsideInItsPlaceUnderCleanNames) {
  for (const std::string type : {"application/ms-tnef", "application/vnd.ms-tnef; name=x",
                                 "application/octet-stream; "
                                 "name=WINMAIL.DAT"}) {
    const auto found = listed(mailWith(type, tnefStream()));
    ASSERT_EQ(found.size(), 4u) << type;
    EXPECT_EQ(found[0], "1 a.doc a.doc: word");
    EXPECT_TRUE(found[1].starts_with("5 ")) << found[1];
    EXPECT_NE(found[1].find(".eml"), std::string::npos) << found[1];
    EXPECT_NE(found[1].find("hello"), std::string::npos) << found[1];
    EXPECT_EQ(found[2], "1  ATT00003: nameless");
    EXPECT_EQ(found[3], "1 own.png own.png: own");
  }
}

TEST(Container, StaysAnAttachmentWhereNothingCanBeFoundInIt) {
  const std::vector<std::string> closed = {"1 winmail.dat winmail.dat: no stream", "1 own.png own.png: own"};
  EXPECT_EQ(listed(mailWith("application/ms-tnef; name=winmail.dat", "no stream")), closed);
  const auto empty = formats::gathered([](const Sink& sink) { formats::writeTnef({}, sink); });
  EXPECT_EQ(listed(mailWith("application/ms-tnef; name=winmail.dat", empty)).size(), 2u);
}

TEST(Container, DoubtsWhatIsDamaged) {
  auto bytes = tnefStream();
  bytes.resize(bytes.size() - 30);
  for (const auto& source :
       attachmentsOf(std::make_shared<const Message>(mailWith("application/ms-tnef", bytes)))) {
    const bool inside = !source->part().has_value();
    EXPECT_EQ(source->doubt(), inside ? u"The TNEF stream is cut off" : u"");
  }
}

TEST(Container, OpensThoseOfTheCorpus) {
  const auto folder = formats::corpusFolder("mimekit/tnef");
  if (folder.empty()) GTEST_SKIP() << "the corpus is not here";
  std::vector<std::string> names;
  for (const char* mail : {"rich-text.eml", "ukr.eml"}) {
    const auto message = std::make_shared<const Message>(formats::contentsOf(folder / mail));
    for (const auto& source : attachmentsOf(message)) {
      EXPECT_EQ(source->doubt(), u"");
      names.push_back(toUtf8(source->fileName()) + " " + std::to_string(source->size()));
    }
  }
  // The second has an HTML body inside and no attachment: it stays what it is.
  EXPECT_EQ(names, (std::vector<std::string>{"kitten-playing-with-a-christmas-tree.jpg 375081",
                                             "Build a train table.eml 14211",
                                             "Christmas Celebration!.eml 507899", "winmail.dat 9566"}));
}

}  // namespace
}  // namespace quillfile::mailbox
