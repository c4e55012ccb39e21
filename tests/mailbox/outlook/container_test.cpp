// A message with a winmail.dat is one whose attachments and body are what is inside.
#include "hosts/mailbox/outlook/container.h"

#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/attachment_source.h"
#include "hosts/mailbox/outlook/body_part.h"
#include "hosts/mailbox/outlook/link_notes.h"
#include "tests/mailbox/formats/corpus.h"
#include "tests/mailbox/formats/sample_messages.h"
#include "tests/mailbox/outlook/module_links.h"

namespace quillfile::mailbox {
namespace {

using formats::AttachMethod;

std::string streamOf(const formats::MessageContent& message) {
  return formats::gathered([&](const Sink& sink) { formats::writeTnef(message, sink); });
}

std::string encoded(const std::string& bytes) {
  return "Content-Transfer-Encoding: base64\n\n" + mime::toBase64(bytes, "\n") + "\n";
}

// A text, a container and a picture.
std::string mailWith(const std::string& type, const std::string& stream) {
  return "Subject: rich\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nplain\n--b\n"
         "Content-Type: " +
         type + "\n" + encoded(stream) + "\n--b\nContent-Type: image/png; name=own.png\n\nown\n--b--\n";
}

std::string mailOf(const formats::MessageContent& inside) {
  return mailWith("application/ms-tnef; name=winmail.dat", streamOf(inside));
}

// The container is the whole message.
std::string bareMail(const std::string& stream) {
  return "Subject: rich\nContent-Type: application/ms-tnef; name=winmail.dat\nX-Last: 1\n" + encoded(stream);
}

formats::MessageContent withFiles() {
  auto inner = std::make_shared<formats::MessageContent>();
  inner->subject = u"Within/it";
  inner->textBody = u"hello";
  formats::MessageContent message;
  message.attachments = {
      formats::fileAttachment(u"..\\evil\\..\\a.doc", "word"),
      {.method = AttachMethod::embedded_message, .fileName = u"Untitled Attachment", .message = inner},
      formats::fileAttachment(u"", "nameless")};
  return message;
}

std::shared_ptr<const Message> opened(const std::string& mail) {
  return withContainersOpened(std::make_shared<const Message>(mail));
}

// "type name display name: bytes" of each.
std::vector<std::string> listed(const std::string& mail) {
  std::vector<std::string> result;
  for (const auto& source : attachmentsOf(opened(mail))) {
    const auto bytes = formats::gathered(source->content());
    EXPECT_EQ(source->size(), static_cast<std::int64_t>(bytes.size()));
    result.push_back(std::to_string(static_cast<int>(source->type())) + " " + toUtf8(source->fileName()) +
                     " " + toUtf8(source->displayName()) + ": " + bytes);
  }
  return result;
}

// Everything but what random or long content would make unreadable: the lines of the header fields of parts.
std::string shape(const std::string& mail) {
  std::string result;
  const auto message = opened(mail);
  const auto& tree = message->tree();
  for (mime::PartIndex part = 0; part < tree.size(); ++part) {
    if (tree.insideEmbedded(part)) continue;
    const auto type = tree.type(part);
    result += std::string(2 * tree[part].depth, ' ') + type.type + "/" + type.subtype + "\n";
  }
  return result;
}

TEST(Container, GivesWhatIsInsideInItsPlaceUnderCleanNames) {
  for (const std::string type : {"application/ms-tnef", "application/vnd.ms-tnef; name=x",
                                 "application/octet-stream; "
                                 "name=WINMAIL.DAT"}) {
    const auto found = listed(mailWith(type, streamOf(withFiles())));
    ASSERT_EQ(found.size(), 4u) << type;
    EXPECT_EQ(found[0], "1 a.doc a.doc: word");
    EXPECT_TRUE(found[1].starts_with("5 Within-it.eml Within-it.eml: ")) << found[1];
    EXPECT_NE(found[1].find("hello"), std::string::npos) << found[1];
    EXPECT_EQ(found[2], "1  ATT00003: nameless");
    EXPECT_EQ(found[3], "1 own.png own.png: own");
  }
}

TEST(Container, StaysAnAttachmentWhereNothingCanBeFoundInIt) {
  const std::vector<std::string> closed = {"1 winmail.dat winmail.dat: no stream", "1 own.png own.png: own"};
  EXPECT_EQ(listed(mailWith("application/ms-tnef; name=winmail.dat", "no stream")), closed);
  EXPECT_EQ(listed(mailOf({})).size(), 2u);
}

TEST(Container, PutsItsBodyBesideThePlainText) {
  auto inside = withFiles();
  inside.rtfBody = "{\\rtf1\\ansi\\b plain\\b0}";
  EXPECT_EQ(shape(mailOf(inside)),
            "multipart/mixed\n  multipart/alternative\n    text/plain\n    text/rtf\n"
            "  application/octet-stream\n  message/rfc822\n  application/octet-stream\n  image/png\n");
  EXPECT_EQ(shape(mailOf({.rtfBody = "{\\rtf1 x}"})),
            "multipart/mixed\n  multipart/alternative\n    text/plain\n    text/rtf\n  image/png\n");
}

TEST(Container, PutsAPageWithItsPictures) {
  formats::MessageContent inside{.html = {"<p><img src=\"cid:p@x\"></p>", 65001}};
  inside.attachments = {formats::fileAttachment(u"p.png", "png"), formats::fileAttachment(u"a.doc", "word")};
  inside.attachments[0].contentId = "p@x";
  EXPECT_EQ(shape(mailOf(inside)),
            "multipart/mixed\n  multipart/alternative\n    text/plain\n    multipart/related\n"
            "      text/html\n      application/octet-stream\n  application/octet-stream\n  image/png\n");
}

TEST(Container, TakesThePlaceOfTheWholeMessage) {
  auto inside = withFiles();
  inside.rtfBody = "{\\rtf1\\ansi rich}";
  const auto mail = bareMail(streamOf(inside));
  EXPECT_EQ(shape(mail),
            "multipart/mixed\n  multipart/alternative\n    text/plain\n    text/rtf\n"
            "  application/octet-stream\n  message/rfc822\n  application/octet-stream\n");
  const auto message = opened(mail);
  EXPECT_EQ(message->header().block(),
            std::string("Subject: rich\nX-Last: 1\nMIME-Version: 1.0\nContent-Type: multipart/mixed; ") +
                "boundary=\"=_quillfile_0_2\"\n");
  EXPECT_EQ(message->tree().body(message->layout().plain), "rich");
}

TEST(Container, OfAlternativesIsAnAlternative) {
  formats::MessageContent inside{.textBody = u"other", .html = {"<b>rich</b>", 65001}};
  inside.attachments = {formats::fileAttachment(u"a.doc", "word")};
  EXPECT_EQ(shape("Content-Type: multipart/alternative; boundary=b\n\n--b\n\nplain\n--b\n"
                  "Content-Type: application/ms-tnef\n" +
                  encoded(streamOf(inside)) + "--b--\n"),
            "multipart/alternative\n  text/plain\n  multipart/mixed\n    text/html\n"
            "    application/octet-stream\n");
}

TEST(Container, BesideAnotherContainerShowsBothBodies) {
  const auto part = "--b\nContent-Type: application/ms-tnef\n" + encoded(streamOf({.rtfBody = "{\\rtf1 r}"}));
  EXPECT_EQ(shape("Content-Type: multipart/mixed; boundary=b\n\n--b\n\nplain\n" + part + part + "--b--\n"),
            "multipart/mixed\n  multipart/alternative\n    text/plain\n    text/rtf\n  text/rtf\n");
}

// Half a container's text is its page's, and a plain text that differs is not thrown away.
TEST(Container, LosesNoText) {
  EXPECT_EQ(shape(mailOf({.textBody = u" plain\r\n"})), "multipart/mixed\n  text/plain\n  image/png\n");
  EXPECT_EQ(shape(mailOf({.textBody = u"another"})),
            "multipart/mixed\n  text/plain\n  text/plain\n  image/png\n");
}

TEST(Container, MakesThePageThatItsRichTextWasMadeFrom) {
  const auto message = opened(bareMail(streamOf(
      {.rtfBody =
           "{\\rtf1\\ansi\\ansicpg1252\\fromhtml1{\\*\\htmltag96 <p>}\\htmlrtf \\par\\htmlrtf0 caf\\'e9"
           "{\\*\\htmltag84 &lt;}\\htmlrtf <\\htmlrtf0{\\*\\htmltag104 </p>}}"})));
  EXPECT_EQ(message->layout().rtf, mime::noPart);
  ASSERT_NE(message->layout().html, mime::noPart);
  EXPECT_EQ(toUtf8(bodyText(message->tree(), message->layout().html).text), "<p>caf\xC3\xA9&lt;</p>");
}

// The one that attacks writes our boundary into the message, and into a message in the container.
TEST(Container, IsNotBrokenOpenByItsOwnBoundaries) {
  auto inside = withFiles();
  auto within = std::make_shared<formats::MessageContent>(*inside.attachments[1].message);
  within->transportHeaders = u"X: y\r\n--=_quillfile_1_1\r\n--=_quillfile_1_1: z\r\n";
  within->textBody = u"x\r\n--=_quillfile_1_1\r\n--=_quillfile_1_2\r\n";
  inside.attachments[1].message = within;
  inside.html = {"a\n--=_quillfile_1_1\n", 65001};
  auto mail = mailOf(inside);
  mail.insert(mail.find("plain\n"), "=_quillfile_0_ \n");
  EXPECT_EQ(shape(mail),
            "multipart/mixed\n  multipart/alternative\n    text/plain\n    text/html\n"
            "  application/octet-stream\n  message/rfc822\n  application/octet-stream\n  image/png\n");
}

// Texts are held in memory. Of one that is too long nothing is shown, and so the container stays where it is.
TEST(Container, WithMoreTextThanThereIsRoomForGivesItsAttachmentsAndStays) {
  formats::MessageContent inside{.html = {std::string(std::size_t{40} << 20, 'x'), 65001}};
  inside.attachments = {formats::fileAttachment(u"a.doc", "word")};
  const auto message = opened(mailOf(inside));
  EXPECT_EQ(attachmentsOf(message)[0]->fileName(), u"a.doc");
  EXPECT_EQ(message->layout().html, mime::noPart);
  EXPECT_NE(message->whyNothingMayGo(), u"");
}

TEST(Container, SharesThatRoomWithTheOthersOfItsMessage) {
  const auto part = "--b\nContent-Type: application/ms-tnef\n" +
                    encoded(streamOf({.html = {std::string(std::size_t{20} << 20, 'x'), 65001}}));
  const auto message =
      opened("Content-Type: multipart/mixed; boundary=b\n\n--b\n\nplain\n" + part + part + "--b--\n");
  EXPECT_LT(message->bytes().size(), std::size_t{52} << 20);
}

// Much of it goes through the disk, and what is read there is the same.
TEST(Container, OfAnySizeGivesWhatIsInside) {
  std::string large;
  for (int i = 0; large.size() < (std::size_t{3} << 20); ++i) large += std::to_string(i) + "\r\n";
  auto inside = withFiles();
  inside.attachments.push_back(formats::fileAttachment(u"b.txt", large));
  const auto found = listed(mailOf(inside));
  ASSERT_EQ(found.size(), 5u);
  EXPECT_EQ(found[0], "1 a.doc a.doc: word");
  EXPECT_EQ(found[3], "1 b.txt b.txt: " + large);
  EXPECT_TRUE(opensTheSameAgain(*opened(mailOf(inside))));
}

class ContainerRemoval : public OutlookLinks {
 protected:
  static std::vector<std::string> list(const std::shared_ptr<MailboxItem>& item) {
    std::vector<std::string> result;
    for (const auto& source : item->sources())
      result.push_back(toUtf8(source->fileName()) + ": " + formats::gathered(source->content()));
    return result;
  }
  static std::vector<Text> bodiesOf(const std::shared_ptr<MailboxItem>& item) {
    return {item->bodyFormat(), item->body(BodyKind::plain), item->body(BodyKind::html),
            item->body(BodyKind::rtf)};
  }
  // What the module does: the last attachment first, a note for each that went. How many went.
  int saveAll(const std::shared_ptr<MailboxItem>& item) {
    int removed = 0;
    for (auto i = item->attachments()->count(); i >= 1; --i) {
      const auto attachment = item->attachments()->item(i);
      const auto path =
          fromUtf8((root / "saved").string()) + fill(u"/{}-{}", ++files, attachment->fileName());
      attachment->saveAsFile(path);
      if (attachment->remove() == Removal::declined) continue;
      note(*item, u"file://" + path, true);
      ++removed;
    }
    finish();
    return removed;
  }
  void expectUntouched(const std::string& mail, const std::string& why) {
    const auto item = deliver(mail);
    const auto count = item->attachments()->count();
    EXPECT_EQ(saveAll(item), 0);
    EXPECT_EQ(bytesOf(item), mail);
    EXPECT_EQ(item->attachments()->count(), count);
    EXPECT_EQ(told.failed, std::vector<std::string>{});
    if (count == 0) return;
    ASSERT_EQ(told.declined.size(), 1u) << why;
    EXPECT_NE(told.declined[0].find(why), std::string::npos) << told.declined[0];
  }
  // Out and back: the container is gone for good, everything in it is there as before.
  void expectThereAndBack(const std::string& mail) {
    const auto item = deliver(mail);
    const auto before = list(item);
    const auto bodies = bodiesOf(item);
    ASSERT_EQ(saveAll(item), static_cast<int>(before.size()));
    ASSERT_EQ(told.failed, std::vector<std::string>{});
    EXPECT_EQ(item->attachments()->count(), 0);
    const auto stripped = bytesOf(item);
    if (before.empty()) {
      EXPECT_EQ(stripped, mail);
      return;
    }
    EXPECT_EQ(mime::lowerCase(stripped).find("ms-tnef"), std::string::npos);
    const auto notes = bodiesOf(item)[0] == u"HTML" ? linksInHtml(item->body(BodyKind::html))
                                                    : linksInPlainText(item->body(BodyKind::plain));
    EXPECT_EQ(notes.size(), before.size()) << stripped;
    EXPECT_TRUE(restore(item));
    finish();
    EXPECT_EQ(told.failed, std::vector<std::string>{});
    EXPECT_EQ(engine.errors, std::vector<std::string>{});
    EXPECT_EQ(list(item), before);
    const auto after = bodiesOf(item);
    ASSERT_EQ(after.size(), bodies.size());
    for (std::size_t i = 0; i < after.size(); ++i) EXPECT_EQ(folded(after[i]), folded(bodies[i]));
  }
  // The module writes the body's tags in letters of its own.
  static std::string folded(const Text& body) { return mime::lowerCase(toUtf8(body)); }

  int files = 0;
};

TEST_F(ContainerRemoval, TakesOutWhatIsInsideAndPutsItBackAsAttachments) {
  auto inside = withFiles();
  expectThereAndBack(mailOf(inside));
  expectThereAndBack(bareMail(streamOf(inside)));
  inside.rtfBody = "{\\rtf1\\ansi\\b plain\\b0\\par\r\n}\r\n\0";
  expectThereAndBack(mailOf(inside));
  expectThereAndBack(bareMail(streamOf(inside)));
  inside.html = {"<html><body>plain</body></html>", 65001};
  expectThereAndBack(mailOf(inside));
  expectThereAndBack(bareMail(streamOf(inside)));
}

TEST_F(ContainerRemoval, LeavesWhatWasNotTakenAsAnAttachment) {
  const auto item = deliver(mailOf(withFiles()));
  const auto before = list(item);
  ASSERT_EQ(strip(item, 1), Removal::removed);
  finish();
  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(list(item), (std::vector<std::string>{before.begin() + 1, before.end()}));
  EXPECT_EQ(item->body(BodyKind::plain),
            fromUtf8("plain\r\n\r\nAttachment saved to <file://" + (root / "saved/a.doc").string() + ">"));
}

TEST_F(ContainerRemoval, OfADamagedContainerTakesNothing) {
  auto bytes = streamOf(withFiles());
  bytes.resize(bytes.size() - 30);
  expectUntouched(mailWith("application/ms-tnef", bytes), "The TNEF stream is cut off");
}

TEST_F(ContainerRemoval, TakesNothingWhereSomethingInsideWouldBeLost) {
  auto inside = withFiles();
  inside.messageClass = u"IPM.Schedule.Meeting.Request";
  expectUntouched(mailOf(inside), "\"IPM.Schedule.Meeting.Request\"");
  told.declined.clear();
  inside = withFiles();
  auto task = std::make_shared<formats::MessageContent>(*inside.attachments[1].message);
  task->messageClass = u"IPM.Task";
  inside.attachments[1].message = task;
  expectUntouched(mailOf(inside), "\"IPM.Task\"");
}

TEST_F(ContainerRemoval, OfASignedMessageTakesNothing) {
  const auto inside = mailOf(withFiles());
  expectUntouched(
      "Content-Type: multipart/signed; protocol=\"application/pgp-signature\"; boundary=s\n\n--s\n" +
          inside.substr(inside.find("Content-Type")) +
          "\n--s\nContent-Type: application/pgp-signature\n\nx\n--s--\n",
      "signed");
}

TEST_F(ContainerRemoval, SavesTheMessageItselfAsItIs) {
  const auto mail = mailOf(withFiles());
  const auto item = deliver(mail);
  EXPECT_EQ(item->size(), static_cast<std::int64_t>(mail.size()));
  const auto path = (root / "saved/whole.eml").string();
  client->helper().wrap(item)->saveAs(fromUtf8(path), SaveAsType::rfc822);
  finish();
  EXPECT_EQ(contentOf(path), mail);
}

TEST_F(ContainerRemoval, OfEveryStreamOfTheCorpusIsThereAndBack) {
  const auto folder = formats::corpusFolder("mimekit/tnef");
  if (folder.empty()) GTEST_SKIP() << "the corpus is not here";
  int taken = 0, kept = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".tnef") continue;
    SCOPED_TRACE(entry.path().stem().string());
    const auto stream = formats::contentsOf(entry.path());
    for (const auto& mail : {mailWith("application/ms-tnef", stream), bareMail(stream)}) {
      told.declined.clear();
      const auto message = opened(mail);
      if (message->whyNothingMayGo().empty()) {
        expectThereAndBack(mail);
        ++taken;
      } else {
        expectUntouched(mail, toUtf8(message->whyNothingMayGo()));
        ++kept;
      }
    }
  }
  EXPECT_EQ(taken + kept, 38);
  std::cout << taken << " there and back, " << kept << " left whole\n";
}

TEST(Container, OpensThoseInTheMailOfTheCorpus) {
  const auto folder = formats::corpusFolder("mimekit/tnef");
  if (folder.empty()) GTEST_SKIP() << "the corpus is not here";
  std::vector<std::string> names;
  for (const char* mail : {"rich-text.eml", "ukr.eml"}) {
    const auto message = opened(formats::contentsOf(folder / mail));
    EXPECT_NE(&message->stored(), message.get());
    for (const auto& source : attachmentsOf(message)) {
      EXPECT_EQ(source->doubt(), u"");
      names.push_back(toUtf8(source->fileName()) + " " + std::to_string(source->size()));
    }
    const bool html = message->layout().html != mime::noPart, rtf = message->layout().rtf != mime::noPart;
    names.push_back(std::string(mail) + (html ? " html" : "") + (rtf ? " rtf" : ""));
  }
  EXPECT_EQ(names, (std::vector<std::string>{
                       "kitten-playing-with-a-christmas-tree.jpg 375081", "Build a train table.eml 14219",
                       "Christmas Celebration!.eml 507915", "rich-text.eml rtf", "ukr.eml html"}));
}

}  // namespace
}  // namespace quillfile::mailbox
