// Forwards and replies: what they say, whom they go to, and what they carry.
#include "tests/mailbox/outlook/module_links.h"

namespace quillfile::mailbox {
namespace {

class OutlookResponses : public OutlookLinks {
 protected:
  std::shared_ptr<MailboxItem> respond(const std::shared_ptr<MailboxItem>& item, Response response) {
    auto made = std::dynamic_pointer_cast<MailboxItem>(item->respond(response));
    made->display();
    finish();
    return made;
  }
  std::string field(const std::shared_ptr<MailboxItem>& item, std::string_view name) {
    return item->message()->header().value(name);
  }
};

const std::string html =
    "Delivered-To: me@example.net\n"
    "Message-ID: <2@x>\nReferences: <1@x>\nDate: Wed, 4 Mar 2009 14:05:00 +0000\n"
    "From: =?utf-8?Q?Ren=C3=A9e?= <renee@example.org>\n"
    "To: me@example.net, \"Doe, Jo\" <jo@example.org>\nCc: al@example.org, ME@example.net\n"
    "Subject: Numbers\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n\n"
    "--m\nContent-Type: multipart/related; boundary=r\n\n"
    "--r\nContent-Type: text/html; charset=utf-8\n\n<html><body><img src=\"cid:p@x\">Hello</body></html>\n"
    "--r\nContent-Type: image/png\nContent-ID: <p@x>\nContent-Transfer-Encoding: base64\n\ncG5n\n--r--\n"
    "--m\nContent-Type: application/pdf; name=a.pdf\nContent-Transfer-Encoding: "
    "base64\n\naGVsbG8gd29ybGQ=\n--m--\n";

TEST_F(OutlookResponses, AReplyToAllGoesToEverybodyButTheUser) {
  const auto reply = respond(deliver(html), Response::reply_all);
  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(reply->folder()->role(), FolderRole::drafts);
  EXPECT_EQ(told.displayed, std::vector<std::string>{toUtf8(reply->entryId())});
  EXPECT_TRUE(reply->folder()->find(reply->unique())->fileName.ends_with(":2,D"));
  EXPECT_EQ(reply->subject(), u"RE: Numbers");
  EXPECT_EQ(
      mime::parseAddresses(field(reply, "To")),
      (std::vector<mime::Address>{{u"Ren\u00E9e", u"renee@example.org"}, {u"Doe, Jo", u"jo@example.org"}}));
  EXPECT_EQ(field(reply, "Cc"), "al@example.org");
  EXPECT_EQ(field(reply, "From"), "me@example.net");
  EXPECT_EQ(field(reply, "In-Reply-To"), "<2@x>");
  EXPECT_EQ(field(reply, "References"), "<1@x> <2@x>");
  EXPECT_EQ(reply->bodyFormat(), u"HTML");
  EXPECT_NE(reply->body(BodyKind::html).find(u"<b>Subject:</b> Numbers<br>"), Text::npos);
  EXPECT_NE(reply->body(BodyKind::plain).find(u"-----Original Message-----\r\nFrom: Ren\u00E9e"), Text::npos);
  ASSERT_EQ(reply->attachments()->count(), 1);  // the picture that the page shows
  EXPECT_EQ(reply->sources()[0]->contentId(), "p@x");
}

// The draft is written in stretches. A line may be longer than these, and a letter or a line end may stand
// where one ends.
TEST_F(OutlookResponses, ABodyOfAnySizeStandsInADraftAsItIs) {
  for (const std::size_t before : {60, 65'400, 65'473, 65'474, 65'475, 65'536}) {
    for (const std::string_view letter : {"x", "\xC3\xA9", "\xF0\x9F\x98\x80"}) {
      std::string text(before, 'a');
      for (int i = 0; i < 100; ++i) text += letter;
      text += std::string(140'000, 'a');
      text += "\n-- \n" + text + "\nFrom here\n" + std::string(200'000, 'b') + " \nend\n";
      const auto original = deliver(
          "From: ada@example.org\nSubject: Large\nMIME-Version: 1.0\n"
          "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit\n\n" +
          text);
      const auto reply = respond(original, Response::reply);
      EXPECT_EQ(told.failed, std::vector<std::string>{});
      const auto quoted = replaceAll(reply->body(BodyKind::plain), u"\r\n", u"\n");
      EXPECT_TRUE(quoted.ends_with(u"Subject: Large\n\n" + fromUtf8(text)));
      const auto bytes = reply->message()->bytes();
      for (std::size_t at = 0; at < bytes.size();) {
        const auto end = std::min(bytes.find('\n', at), bytes.size());
        ASSERT_LE(end - at, 76u);
        at = end + 1;
      }
    }
  }
}

TEST_F(OutlookResponses, AForwardCarriesTheAttachmentsAsTheyWere) {
  auto original = html;
  original.replace(original.find("Numbers"), 7, "fw: Numbers");
  const auto forward = respond(deliver(original), Response::forward);
  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(forward->subject(), u"fw: Numbers");
  EXPECT_EQ(field(forward, "To"), "");
  ASSERT_EQ(forward->attachments()->count(), 2);
  EXPECT_EQ(forward->sources()[0]->contentId(), "p@x");
  EXPECT_EQ(forward->sources()[1]->fileName(), u"a.pdf");
  std::string bytes;
  forward->sources()[1]->content()([&](std::string_view more) { bytes += more; });
  EXPECT_EQ(bytes, "hello world");
  EXPECT_EQ(forward->sources()[1]->doubt(), u"");
}

TEST_F(OutlookResponses, AReplyGoesToReplyToAndOneToOneselfToTheFirstRecipients) {
  const std::string head = "Delivered-To: me@x\nSubject: re: a\nTo: you@x\n";
  EXPECT_EQ(field(respond(deliver(head + "From: a@x\nReply-To: list@x\n\nx\n"), Response::reply), "To"),
            "list@x");
  const auto own = respond(deliver(head + "From: me@x\n\nx\n"), Response::reply);
  EXPECT_EQ(field(own, "To"), "you@x");
  EXPECT_EQ(own->subject(), u"re: a");
}

TEST_F(OutlookResponses, AForwardOfAStrippedMessageGetsItsFilesBack) {
  const auto item = deliver(html);
  for (int i = 2; i >= 1; --i) ASSERT_EQ(strip(item, i), Removal::removed);
  finish();
  ASSERT_EQ(item->attachments()->count(), 0);

  const auto forward = std::dynamic_pointer_cast<MailboxItem>(item->respond(Response::forward));
  EXPECT_TRUE(restore(forward));
  forward->save();
  const auto id = forward->entryId();
  // The module looks for it in Drafts before the event is over.
  const auto drafts = client->nameSpace()->defaultFolder(DefaultFolder::drafts);
  ASSERT_EQ(drafts->itemCount(), 1);
  EXPECT_EQ(drafts->item(1)->entryId(), id);
  drafts->item(1)->display();
  finish();

  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(told.displayed, std::vector<std::string>{toUtf8(forward->entryId())});
  ASSERT_EQ(forward->attachments()->count(), 2);
  std::vector<std::string> contents;
  for (const auto& source : forward->sources()) {
    contents.emplace_back();
    source->content()([&](std::string_view more) { contents.back() += more; });
  }
  EXPECT_EQ(contents, (std::vector<std::string>{"png", "hello world"}));
  EXPECT_EQ(bytesOf(forward).find("X-Quillfile-Attachment"), std::string::npos);
  EXPECT_EQ(bytesOf(forward).find("Attachment saved to"), std::string::npos) << bytesOf(forward);
}

TEST_F(OutlookResponses, AReplyLosesTheNotesOfItsOriginal) {
  const auto item = deliver(html);
  ASSERT_EQ(strip(item, 2), Removal::removed);
  finish();
  const auto reply = std::dynamic_pointer_cast<MailboxItem>(item->respond(Response::reply));
  EXPECT_TRUE(eraseLinks(reply));
  reply->display();
  finish();
  EXPECT_EQ(bytesOf(reply).find("Attachment saved to"), std::string::npos) << bytesOf(reply);
}

TEST_F(OutlookResponses, AnEventThatIsCancelledMakesNoResponse) {
  struct Canceller final : ItemEvents {
    void onRespond(Response, bool& cancel) override {
      cancel = true;
      subscription.reset();  // in the middle of being told
    }
    void onSend(bool&) override {}
    void onWrite(bool& cancel) override { cancel = true; }
    void onClose(bool&) override {}
    Subscription subscription;
  } canceller;
  const auto item = deliver(html);
  canceller.subscription = item->listen(canceller);
  EXPECT_EQ(item->userResponds(Response::reply), nullptr);
  EXPECT_NE(item->userResponds(Response::reply), nullptr);
  finish();
  EXPECT_EQ(told.displayed.size(), 1u);
}

}  // namespace
}  // namespace quillfile::mailbox
