#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class CheckForAttachments : public SavingUnderBothRules {
 protected:
  std::shared_ptr<FakeItem> mail(ItemData data = {}) {
    data.label = u"A";
    if (data.subject.empty()) data.subject = u"Invoice";
    auto item = world.addItem(std::move(data));
    item->attach({.fileName = u"a.pdf"});
    return item;
  }
  bool check(SaveRequest request) {
    request.savePath = path(u"/Saved/");
    world.record.clear();
    return engine.CheckForAttachments(request);
  }
  // A request that saves everything and changes nothing.
  SaveRequest all(const std::shared_ptr<FakeItem>& item) const {
    return {.item = item, .skipCriteria = true, .afterSave = static_cast<AfterSave>(3)};
  }
  const Text savedLine = fill(u"A/a.pdf: save as {}", path(u"/Saved/a.pdf"));
};

TEST_P(CheckForAttachments, OnlyMailAndPostItemsAreSavedFrom) {
  for (const TextView type : {u"MeetingItem", u"ReportItem", u"ContactItem"}) {
    EXPECT_FALSE(check(all(mail({.type = Text{type}}))));
    expectTranscript(lines(), {});
  }
  for (const TextView type : {u"MailItem", u"PostItem"}) {
    world.files.erase(path(u"/Saved/a.pdf"));
    EXPECT_TRUE(check(all(mail({.type = Text{type}}))));
    expectTranscript(done(), {savedLine, u"A: save"});
  }
}

TEST_P(CheckForAttachments, AnItemThatIsNothingIsAnErrorAndNotACrash) {
  for (const TextView emails : {u"0", u"1"}) {
    world.settings.set(u"SaveEmailsWanted", emails);
    for (const bool skipCriteria : {true, false})
      EXPECT_FALSE(check({.item = nullptr, .skipCriteria = skipCriteria}));
    expectTranscript(lines(), {u"error 0 Quillfile.CheckForAttachments: Error occurred at line 1.  Reason: "
                               u"Object variable not set"});
  }
}

TEST_P(CheckForAttachments, TheEmailIsSavedOfEveryItemBeforeTheAttachments) {
  world.settings.set(u"SaveEmailsWanted", u"1");
  EXPECT_FALSE(check(all(mail({.type = u"ReportItem"}))));
  expectTranscript(done(), {fill(u"A: save as {} of type 3", path(u"/Saved/Invoice.msg"))});
  EXPECT_TRUE(check(all(mail())));
  expectTranscript(done(),
                   {fill(u"A: save as {} of type 3", path(u"/Saved/Invoice-1.msg")), savedLine, u"A: save"});
}

TEST_P(CheckForAttachments, AnEmailThatCannotBeSavedDoesNotKeepTheAttachments) {
  world.settings.set(u"SaveEmailsWanted", u"1");
  world.record.failOn(u"SafeItem.saveAs", {5, u"No such format"});
  EXPECT_TRUE(check(all(mail())));
  expectTranscript(done(), {u"SafeItem.saveAs fails",
                            u"error 0 Quillfile.SaveEmail: Error occurred at line 3.  Reason: No such format",
                            savedLine, u"A: save"});
}

TEST_P(CheckForAttachments, AttachmentsThatAreNotWantedAreLeftAlone) {
  world.settings.set(u"SaveAttachmentsWanted", u"0");
  EXPECT_FALSE(check(all(mail())));
  expectTranscript(lines(), {});
}

TEST_P(CheckForAttachments, WithEveryFilterOffNothingIsSaved) {
  EXPECT_FALSE(check({.item = mail()}));
  expectTranscript(done(), {});
}

TEST_P(CheckForAttachments, AFilterThatQualifiesTheItemSavesAllOfIt) {
  world.settings.set(u"EmailFromEnabled", u"1");
  world.settings.set(u"EmailFrom", u"ADA");
  EXPECT_TRUE(check({.item = mail(), .afterSave = AfterSave::mark_read}));
  expectTranscript(done(), {savedLine, u"A: save", u"A: UnRead = False"});
}

TEST_P(CheckForAttachments, AFilterByNameSavesWhatMatchesAndNoMore) {
  world.settings.set(u"AttachmentNameEnabled", u"1");
  world.settings.set(u"AttachmentName", u"*.pdf");
  EXPECT_FALSE(check({.item = mail(), .afterSave = AfterSave::mark_read}));
  expectTranscript(done(), {savedLine, u"A: save by the wrapper"});
}

TEST_P(CheckForAttachments, AfterwardsTheItemIsMarkedAsTheCallerWants) {
  auto request = all(mail());
  request.afterSave = AfterSave::mark_read;
  EXPECT_TRUE(check(request));
  EXPECT_EQ(lines().back(), u"A: UnRead = False");

  request = all(mail({.unRead = false}));
  request.afterSave = AfterSave::keep_unread;
  EXPECT_TRUE(check(request));
  EXPECT_EQ(lines().back(), u"A: save");
}

TEST_P(CheckForAttachments, ADeletionIsHiddenFromTheModulesOwnEvents) {
  auto request = all(mail());
  request.afterSave = AfterSave::remove_item;
  EXPECT_TRUE(check(request));
  expectTranscript(
      done(), {savedLine, u"A: save", u"setting Corvane/Corvane/CVTemporarilyDisabled = True", u"A: delete",
               u"pending events", u"setting Corvane/Corvane/CVTemporarilyDisabled = False"});
  EXPECT_EQ(lines().back(), u"trace SaveAttachment: Deleting email");
}

TEST_P(CheckForAttachments, ADeletionThatFailsTakesTheFlagBack) {
  world.record.failOn(u"Item.remove", {5, u"Not allowed"});
  auto request = all(mail());
  request.afterSave = AfterSave::remove_item;
  EXPECT_FALSE(check(request));
  expectTranscript(
      done(), {savedLine, u"A: save", u"setting Corvane/Corvane/CVTemporarilyDisabled = True",
               u"Item.remove fails", u"setting Corvane/Corvane/CVTemporarilyDisabled = False",
               u"error 0 Quillfile.CheckForAttachments: Error occurred at line 7.  Reason: Not allowed"});
}

TEST_P(CheckForAttachments, AFolderThatCannotBeMadeIsAnnouncedAndTheItemStays) {
  world.files.refuseFolder(path(u"/New/"));
  auto request = all(mail());
  request.afterSave = AfterSave::remove_item;
  request.savePath = path(u"/New/");
  EXPECT_TRUE(engine.CheckForAttachments(request));
  expectTranscript(done(),
                   {fill(u"cannot create folder {}", path(u"/New/")),
                    fill(u"message box Quillfile: Warning: Unable to create folder {}\r\nPlease create it "
                         u"manually and try again.",
                         path(u"/New/"))});
}

class SentItem : public CheckForAttachments {
 protected:
  SaveRequest sent() { return {.item = mail(), .afterSave = static_cast<AfterSave>(3), .isSent = true}; }
};

TEST_P(SentItem, RemovesByItsOwnSettingAndSkipsTheCriteria) {
  world.settings.set(u"SendRemoveAttachments", u"1");
  EXPECT_TRUE(check(sent()));
  expectTranscript(
      done(),
      {savedLine, u"A/a.pdf: remove",
       fill(u"A: add {}{}Paperclip.ico as 'Paperclip retained by Quillfile', type by default, position -1",
            world.installationFolder(), GetParam().separator),
       u"A: save"});
}

TEST_P(SentItem, HandsTheSavedFileOverWhenItIsNotToBeKept) {
  world.settings.set(u"SendDeleteAttachments", u"1");
  EXPECT_TRUE(check(sent()));
  expectTranscript(done(), {savedLine, fill(u"discard saved file {}", path(u"/Saved/a.pdf")), u"A: save"});
}

TEST_P(SentItem, WithBothSettingsOffPassesTheCriteriaLikeAnyOther) {
  EXPECT_FALSE(check(sent()));
  expectTranscript(done(), {});
}

TEST_P(SentItem, TheSendSettingsCountForNoOtherItem) {
  world.settings.set(u"SendRemoveAttachments", u"1");
  EXPECT_FALSE(check({.item = mail()}));
  expectTranscript(done(), {});
}

RUN_UNDER_BOTH_RULES(CheckForAttachments);
RUN_UNDER_BOTH_RULES(SentItem);

}  // namespace
}  // namespace quillfile
