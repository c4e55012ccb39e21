// Items of a mail store: what they tell, and what saving, removing and noting make of a message.
#include "tests/mailbox/outlook/mailbox.h"

namespace quillfile::mailbox {
namespace {

const std::string withAttachment =
    "Received: from a by b; Wed, 4 Mar 2009 14:05:00 +0000\n"
    "From: =?utf-8?Q?Ren=C3=A9e?= <renee@example.org>\n"
    "To: me@example.net\n"
    "Subject: =?utf-8?Q?The_n=C3=BAmbers?=\n"
    "MIME-Version: 1.0\n"
    "Content-Type: multipart/mixed; boundary=\"b\"\n"
    "\n"
    "--b\n"
    "Content-Type: text/plain\n"
    "\n"
    "Here they are.\n"
    "--b\n"
    "Content-Type: application/pdf; name=\"a.pdf\"\n"
    "Content-Disposition: attachment; filename=\"a.pdf\"\n"
    "Content-Transfer-Encoding: base64\n"
    "\n"
    "aGVsbG8gd29ybGQ=\n"
    "--b--\n";

std::string withPart(const std::string& part) {
  return "Subject: x\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\n" + part + "\n--b--\n";
}

TEST_F(OutlookItems, AnEmbeddedMessageInATransferEncodingIsAnAttachmentToo) {
  const auto item =
      deliver(withPart("Content-Type: message/rfc822\nContent-Transfer-Encoding: base64\n\n"
                       "U3ViamVjdDogSW5uZXIvb25lCgpoZWxsbwo="));
  ASSERT_EQ(item->attachments()->count(), 1);
  EXPECT_EQ(item->attachments()->item(1)->type(), static_cast<std::int32_t>(AttachmentType::embedded_item));
  EXPECT_EQ(item->attachments()->item(1)->fileName(), u"Inner-one.eml");
  EXPECT_EQ(strip(item, 1), Removal::removed);
  finish();
  EXPECT_EQ(contentOf(root / "saved/Inner-one.eml"), "Subject: Inner/one\n\nhello\n");
  EXPECT_EQ(told.failed, std::vector<std::string>{});
}

TEST_F(OutlookItems, WhatIsToldOfARemovedPartStandsInTheHeaderOfAMessageWithoutABlankLineToo) {
  const std::string alone = "Subject: x\nContent-Disposition: attachment; filename=a.txt";
  const std::string divided =
      "Subject: x\nContent-Type: multipart/mixed; boundary=b\n--b\n\ntext\n--b\n"
      "Content-Disposition: attachment; filename=b.txt\n\nb\n--b--\n";
  for (const auto& message : {alone, alone + "\n", alone.substr(11), divided}) {
    SCOPED_TRACE(message);
    const auto item = deliver(message);
    ASSERT_EQ(strip(item, 1), Removal::removed);
    finish();
    const auto after = bytesOf(item);
    const auto blank = after.find("\n\n");
    EXPECT_LT(after.find("X-Quillfile-Attachment: "), blank) << after;
    EXPECT_LT(blank, after.find("Attachment saved to <")) << after;
  }
}

TEST_F(OutlookItems, AnAttachmentWithANameInAnUnknownCharsetStays) {
  const auto message = withPart(
      "Content-Type: application/pdf\nContent-Disposition: attachment; filename*=x-nobody''%E4.pdf\n\nx");
  const auto item = deliver(message);
  EXPECT_EQ(strip(item, 1), Removal::declined);
  finish();
  EXPECT_EQ(contentOf(root / "saved/\xC3\xA4.pdf"), "x");
  EXPECT_EQ(bytesOf(item), message);
  ASSERT_EQ(told.declined.size(), 1u);
  EXPECT_NE(told.declined[0].find("its name is in an unknown character set"), std::string::npos)
      << told.declined[0];
}

TEST_F(OutlookItems, AnItemTellsWhatAListShows) {
  const auto item = deliver(withAttachment);
  EXPECT_EQ(item->typeName(), u"MailItem");
  EXPECT_EQ(item->subject(), u"The n\u00FAmbers");
  EXPECT_EQ(item->sender(), (mime::Address{u"Ren\u00E9e", u"renee@example.org"}));
  EXPECT_EQ(item->bodyFormat(), u"TEXT");
  EXPECT_EQ(item->body(BodyKind::plain), u"Here they are.");
  EXPECT_TRUE(item->unRead());
  ASSERT_EQ(item->attachments()->count(), 1);
  const auto attachment = item->attachments()->item(1);
  EXPECT_EQ(attachment->fileName(), u"a.pdf");
  EXPECT_EQ(attachment->displayName(), u"a.pdf");
  EXPECT_EQ(attachment->type(), 1);
  EXPECT_EQ(attachment->size(), 11);
}

TEST_F(OutlookItems, ASavedAttachmentIsTakenOutAndANoteStandsInTheBody) {
  const auto item = deliver(withAttachment);
  const auto before = toUtf8(item->entryId());

  ASSERT_EQ(strip(item, 1), Removal::removed);
  EXPECT_EQ(item->attachments()->count(), 0);
  finish();

  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(told.changes, 1);
  EXPECT_NE(toUtf8(item->entryId()), before);
  EXPECT_EQ(contentOf(root / "saved" / "a.pdf"), "hello world");
  const auto after = tidied(bytesOf(item));
  const auto record = after.find("X-Quillfile-Attachment: at=1;");
  ASSERT_NE(record, std::string::npos) << after;
  EXPECT_EQ(after.substr(0, record), withAttachment.substr(0, withAttachment.find("\n\n") + 1));
  EXPECT_EQ(after.substr(after.find("\n\n")),
            "\n\n--b\nContent-Type: text/plain\n\nHere they are.\n\n"
            "Attachment saved to <file://SAVED/a.pdf>\n--b--\n");
  EXPECT_EQ(item->attachments()->count(), 0);
}

TEST_F(OutlookItems, ARestoredMessageIsWhatItWasByteForByte) {
  const auto item = deliver(withAttachment);
  const auto path = fromUtf8((root / "saved").string()) + u"/a.pdf";
  strip(item, 1);
  finish();

  item->attachments()->add(
      {.source = path, .type = AttachmentType::by_value, .position = {}, .displayName = u"a.pdf"});
  item->setBody(BodyKind::plain,
                replaceAll(item->body(BodyKind::plain), fill(u"Attachment saved to <file://{}>", path), u""));
  item->finishRestore();
  item->saveQuietly();
  finish();

  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(bytesOf(item), withAttachment);
}

TEST_F(OutlookItems, SettingTheSameReadStateIsNoChange) {
  const auto item = deliver(withAttachment, "S");
  item->setUnRead(false);
  finish();
  EXPECT_EQ(told.changes, 0);
  item->setUnRead(true);
  finish();
  EXPECT_EQ(told.changes, 1);
  EXPECT_TRUE(item->unRead());
  EXPECT_EQ(bytesOf(item), withAttachment);
}

TEST_F(OutlookItems, ASignedMessageKeepsItsAttachmentsAndSaysWhyOnce) {
  auto text = withAttachment;
  text.replace(text.find("multipart/mixed"), 15, "multipart/signed");
  const auto item = deliver(text);
  EXPECT_EQ(strip(item, 1), Removal::declined);
  EXPECT_EQ(strip(item, 1), Removal::declined);
  finish();
  EXPECT_EQ(told.declined,
            std::vector<std::string>{"the message is signed, and a change would break its signature"});
  EXPECT_EQ(contentOf(root / "saved" / "a.pdf"), "hello world");
  EXPECT_EQ(bytesOf(item), text);
}

TEST_F(OutlookItems, ASignedOrCutOffMessageGetsNoNoteEitherAndSaysWhyOnce) {
  auto text = withAttachment;
  text.replace(text.find("multipart/mixed"), 15, "multipart/signed");
  const auto cutOff = withAttachment.substr(0, withAttachment.size() - 6);
  for (const auto& message : {text, cutOff}) {
    told.failed.clear();
    const auto item = deliver(message);
    note(*item, u"file:///a", true);
    note(*item, u"file:///b", true);
    finish();
    EXPECT_EQ(bytesOf(item), message);
    EXPECT_EQ(told.failed.size(), 1u);
    EXPECT_EQ(told.changes, 0);
  }
}

TEST_F(OutlookItems, ADoubtedAttachmentStaysAndACleanOneGoes) {
  auto text = withAttachment;
  const std::string doubted =
      "--b\nContent-Type: application/pdf; name=\"d.pdf\"\nContent-Transfer-Encoding: "
      "base64\n\naGVsbG8*gd29ybGQ=\n";
  text.insert(text.find("--b--"), doubted);
  const auto item = deliver(text);
  EXPECT_EQ(strip(item, 2), Removal::declined);
  EXPECT_EQ(strip(item, 1), Removal::removed);
  finish();
  EXPECT_EQ(told.declined.size(), 1u);
  ASSERT_EQ(item->attachments()->count(), 1);
  EXPECT_EQ(item->attachments()->item(1)->fileName(), u"d.pdf");
  EXPECT_NE(bytesOf(item).find(doubted), std::string::npos);
}

TEST_F(OutlookItems, ADeletedItemMovesToDeletedItemsAndASecondTimeGoes) {
  const auto item = deliver(withAttachment);
  item->remove();
  finish();
  ASSERT_EQ(item->folder()->role(), FolderRole::deleted);
  EXPECT_EQ(bytesOf(item), withAttachment);
  item->remove();
  finish();
  EXPECT_EQ(item->folder()->list().size(), 0u);
}

TEST_F(OutlookItems, ThePaperclipMakesAMixedMessageOfAPlainOne) {
  std::ofstream{root / "Paperclip.ico"} << "icon";
  const auto item = deliver("From: a@b.c\nSubject: x\nContent-Type: text/plain; charset=utf-8\n\nBody\n");
  item->attachments()->add({.source = fromUtf8((root / "Paperclip.ico").string()),
                            .type = {},
                            .position = -1,
                            .displayName = u"Paperclip retained by Quillfile"});
  item->saveQuietly();
  finish();
  EXPECT_EQ(told.failed, std::vector<std::string>{});
  ASSERT_EQ(item->attachments()->count(), 1);
  EXPECT_EQ(item->attachments()->item(1)->displayName(), u"Paperclip retained by Quillfile");
  EXPECT_EQ(item->attachments()->item(1)->fileName(), u"Paperclip.ico");
  EXPECT_EQ(item->attachments()->item(1)->size(), 4);
  EXPECT_EQ(item->body(BodyKind::plain), u"Body\r\n");
}

TEST_F(OutlookItems, AMessageThatIsAllOneAttachmentBecomesItsNote) {
  const auto item = deliver(
      "From: a@b.c\nSubject: x\nMIME-Version: 1.0\nContent-Type: application/pdf; name=\"a.pdf\"\n"
      "Content-Transfer-Encoding: base64\n\naGVsbG8gd29ybGQ=\n");
  ASSERT_EQ(item->attachments()->count(), 1);
  EXPECT_EQ(item->bodyFormat(), u"TEXT");
  EXPECT_EQ(strip(item, 1), Removal::removed);
  finish();
  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(item->attachments()->count(), 0);
  EXPECT_EQ(tidied(toUtf8(item->body(BodyKind::plain))), "\r\n\r\nAttachment saved to <file://SAVED/a.pdf>");
}

// Another program breaks the rule that a message is never written to.
class CutShort : public OutlookItems {
 protected:
  CutShort() {
    auto large = withAttachment;
    std::string encoded;
    for (int i = 0; i < 10'000; ++i)
      encoded += "QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVo0NTY3ODkwQUJDREVGR0hJSktM\n";
    large.replace(large.find("aGVsbG8gd29ybGQ="), 16, encoded);
    item = deliver(large);
    path = item->folder()->filePath(*item->folder()->find(item->unique()));
    size = static_cast<std::uintmax_t>(item->size());
  }
  void cut() { std::filesystem::resize_file(path, size / 2); }
  void expectAsItWasCut() {
    EXPECT_EQ(std::filesystem::file_size(path), size / 2);
    EXPECT_EQ(told.changes, 0);
    EXPECT_TRUE(std::filesystem::is_empty(root / "saved"));
    EXPECT_FALSE(told.failed.empty());
  }

  std::shared_ptr<MailboxItem> item;
  std::filesystem::path path;  // of its file
  std::uintmax_t size = 0;
};

TEST_F(CutShort, BeforeAnAttachmentIsSavedNothingIs) {
  const auto attachment = item->attachments()->item(1);
  cut();
  EXPECT_THROW(attachment->saveAsFile(fromUtf8((root / "saved" / "a.pdf").string())), Failure);
  EXPECT_THROW(item->body(BodyKind::plain), Failure);
  finish();
  EXPECT_TRUE(std::filesystem::is_empty(root / "saved"));
  EXPECT_EQ(std::filesystem::file_size(path), size / 2);
}

TEST_F(CutShort, BeforeTheEventEndsNothingIsNamedAndNothingChanged) {
  ASSERT_EQ(strip(item, 1), Removal::removed);
  cut();
  finish();
  expectAsItWasCut();
}

TEST_F(CutShort, WithNothingButANewNoteTheMessageStaysAsItIs) {
  note(*item, u"file:///a", true);
  cut();
  finish();
  expectAsItWasCut();
}

}  // namespace
}  // namespace quillfile::mailbox
