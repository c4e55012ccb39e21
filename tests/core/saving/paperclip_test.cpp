#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class Paperclip : public SavingUnderBothRules {
 protected:
  Text icon() const { return world.installationFolder() + Text{GetParam().separator} + u"Paperclip.ico"; }
  std::vector<Text> added(TextView format, TextView position) const {
    return {u"trace AttachPaperclip: Retain Paperclip: 1", u"trace AttachPaperclip: Attachment Count: 0",
            fill(u"trace AttachPaperclip: Adding paperclip to {} email at {}", format, position),
            fill(u"A: add {} as 'Paperclip retained by Quillfile', type by default, position {}", icon(),
                 position),
            fill(u"trace AttachPaperclip: Retained paperclip with {}", icon())};
  }
};

TEST_P(Paperclip, AnItemWithAnAttachmentLeftGetsNone) {
  auto item = world.addItem({.subject = u"A"});
  item->attach({.fileName = u"kept.pdf"});
  EXPECT_TRUE(engine.AttachPaperclip(item));
  expectTranscript(lines(), {u"trace AttachPaperclip: Retain Paperclip: 1",
                             u"trace AttachPaperclip: Attachment Count: 1"});
}

TEST_P(Paperclip, NothingIsAddedWhenItIsNotWanted) {
  world.settings.set(u"RetainPaperclip", u"0");
  EXPECT_TRUE(engine.AttachPaperclip(world.addItem({.subject = u"A"})));
  expectTranscript(lines(), {u"trace AttachPaperclip: Retain Paperclip: 0"});
}

TEST_P(Paperclip, InAnEmptyPlainBodyItsPlaceIsMinusOne) {
  EXPECT_TRUE(engine.AttachPaperclip(world.addItem({.subject = u"A"})));
  expectTranscript(lines(), added(u"TEXT", u"-1"));
}

TEST_P(Paperclip, InHtmlItsPlaceIsBeforeTheLastUnit) {
  EXPECT_TRUE(
      engine.AttachPaperclip(world.addItem({.subject = u"A", .format = u"HTML", .htmlBody = u"<p></p>"})));
  expectTranscript(lines(), added(u"HTML", u"6"));
}

TEST_P(Paperclip, InRichTextItsPlaceIsAfterTheLastAngleBracket) {
  EXPECT_TRUE(
      engine.AttachPaperclip(world.addItem({.subject = u"A", .format = u"RTF", .rtfBody = u"{a>b>c}"})));
  expectTranscript(lines(), added(u"RTF", u"6"));
}

TEST_P(Paperclip, AWrappedItemIsNotWrappedAgain) {
  auto item = world.addItem({.subject = u"A"});
  const auto safe = world.mailHelper.wrap(item);
  world.record.failOn(u"MailHelper.wrap");
  EXPECT_TRUE(engine.AttachPaperclip(safe));
  EXPECT_EQ(item->attached.size(), 1u);
}

TEST_P(Paperclip, WhateverFailsIsReportedAndFalse) {
  const auto runs = sweepFailures(
      GetParam(), [](FakePlatform& fresh) { fresh.addItem({.subject = u"A"}); },
      [](FakePlatform& fresh) {
        Saving room{fresh};
        const auto item = fresh.folder(DefaultFolder::inbox)->items.front();
        return Text{room.routines.AttachPaperclip(Ref<Item>{item}) ? u"True" : u"False"};
      });
  const auto failed = [](TextView call, int step) {
    return fill(
        u"{}: False; error 0 Quillfile.AttachPaperclip: Error occurred at line {}.  Reason: {} failed", call,
        step, call);
  };
  expectTranscript(
      runs,
      {failed(u"EngineServices.settingsApplicationName", 1), failed(u"SettingsStore.read", 1),
       failed(u"MailHelper.wrap", 2), failed(u"Item.attachments", 3), failed(u"Attachments.count", 3),
       failed(u"MailHelper.bodyFormat", 4), failed(u"SafeItem.body", 4), failed(u"Attachments.add", 4)});
}

RUN_UNDER_BOTH_RULES(Paperclip);

}  // namespace
}  // namespace quillfile
