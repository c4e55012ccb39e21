// Where an attachment is saved: the rename keywords, a name that is taken, the Save-As form.
#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class AttachmentPath : public SavingUnderBothRules {
 protected:
  std::shared_ptr<FakeItem> mail(ItemData data, TextView fileName, TextView displayName = u"Note #1") {
    auto item = world.addItem(std::move(data));
    item->attach({.fileName = Text{fileName}, .displayName = Text{displayName}});
    return item;
  }
  SaveResult save(const std::shared_ptr<FakeItem>& item) {
    world.record.clear();
    return engine.SaveAttachment(item, item->attachments()->item(1), {}, path(u"/Saved/"));
  }
  // The name under which the one attachment was saved, for items without a subject.
  Text savedName(const std::shared_ptr<FakeItem>& item) {
    EXPECT_EQ(save(item), SaveResult::saved);
    const auto saved = done();
    if (saved.size() != 1) return joinedLines(saved);
    return saved.front().substr(saved.front().find(path(u"/Saved/")) + path(u"/Saved/").size());
  }
  static Text joinedLines(const std::vector<Text>& lines) { return fromUtf8(joined(lines)); }
  void keywords(TextView text) { world.settings.set(u"AutomaticRenameKeywords", text); }
  void renameOff() { world.settings.set(u"AutomaticRename", u"0"); }
  void readOnly(TextView posix) { world.files.add(path(posix), "old").attributes = 33; }
  std::string content(TextView posix) { return world.files.find(path(posix))->content; }
};

TEST_P(AttachmentPath, TheDefaultIsTheAttachmentsOwnName) {
  EXPECT_EQ(savedName(mail({}, u"a.b.pdf")), u"a.b.pdf");
  EXPECT_EQ(savedName(mail({}, u"README")), u"README");
}

TEST_P(AttachmentPath, AnEmptyFileNameGivesWayToTheDisplayNameAsATextFile) {
  for (const TextView rename : {u"0", u"1"}) {
    world.settings.set(u"AutomaticRename", rename);
    EXPECT_EQ(savedName(mail({}, u"")), u"Note -1.txt");
    world.files.erase(path(u"/Saved/Note -1.txt"));
    EXPECT_EQ(savedName(mail({}, u"  ", u"RE: what?")), u"RE what-.txt");
    world.files.erase(path(u"/Saved/RE what-.txt"));
  }
}

// With a line end in it the note would be in two lines, and nobody would find the file by it.
TEST_P(AttachmentPath, ANameThatIsTakenAsItStandsHoldsNothingThatEndsALink) {
  renameOff();
  EXPECT_EQ(savedName(mail({}, u"a<b>:c.txt")), u"a-b--c.txt");
  world.settings.set(u"AutomaticRename", u"1");
  EXPECT_EQ(savedName(mail({}, u"a<b>:c.txt")), u"abc.txt");
  world.settings.set(u"OptionalRenameWanted", u"1");
  world.settings.set(u"ButtonClicked", u"1");
  EXPECT_EQ(save(mail({}, u"a<b>:c.txt")), SaveResult::cancelled);
  EXPECT_EQ(world.dialogs.requests.at(0).fileName, path(u"/Saved/a-b--c.txt"));
}

TEST_P(AttachmentPath, ADisplayNameIsCleanedLikeAnyTextThatBecomesAName) {
  renameOff();
  EXPECT_EQ(savedName(mail({}, u"", u"a\r\nb\u0001")), u"ab.txt");
  EXPECT_EQ(savedName(mail({}, u"", u"../<x>")), u"..-x.txt");
}

TEST_P(AttachmentPath, TheReceivedDateIsTheUsersWithHyphens) {
  keywords(u"<received date> <attachment name>");
  EXPECT_EQ(savedName(mail({.received = {2009, 3, 4, 14, 5, 0}}, u"a.b.pdf")),
            u"3-4-2009 2-05-00 PM a.b.pdf");
}

TEST_P(AttachmentPath, KeywordsIgnoreCaseAndAreReplacedWhereverTheyStand) {
  keywords(u"<SENDER NAME>-<Sender Address>-<SUBJECT>-<sender name>");
  EXPECT_EQ(savedName(mail({.label = u"A", .subject = u"In:voice #7"}, u"a.pdf")),
            u"Ada Lovelace-ada@example.com-Invoice -7-Ada Lovelace.pdf");
}

TEST_P(AttachmentPath, AnExchangeSenderIsNamedByTheResolvedAddress) {
  keywords(u"<sender address>");
  EXPECT_EQ(savedName(mail({.senderType = u"EX", .smtpAddress = u"ada@host.example"}, u"a.pdf")),
            u"ada@host.example.pdf");
  EXPECT_EQ(savedName(mail({.hasSender = false, .senderAddress = u"other@example.com"}, u"a.pdf")),
            u"other@example.com.pdf");
}

TEST_P(AttachmentPath, TheSenderIsReadOnlyForItsKeyword) {
  world.record.failOn(u"MailHelper.wrap");
  EXPECT_EQ(savedName(mail({}, u"a.pdf")), u"a.pdf");
}

TEST_P(AttachmentPath, ASubjectIsCutToTheRoomThatTheTemplateLeaves) {
  keywords(u"<subject>");  // 9 units
  const Text subject = Text(117, u's') + u"\U0001F600" + Text(50, u's');
  EXPECT_EQ(savedName(mail({.label = u"A", .subject = subject}, u"a.pdf")), Text(117, u's') + u".pdf");
}

TEST_P(AttachmentPath, InATemplateOf127UnitsTheSubjectStaysUnreplaced) {
  const Text filler(118, u'x');
  keywords(u"<subject>" + filler);
  EXPECT_EQ(savedName(mail({.label = u"A", .subject = u"s"}, u"a.pdf")), u"subject" + filler + u".pdf");
  keywords(u"<subject>" + filler.substr(1));
  EXPECT_EQ(savedName(mail({.label = u"A", .subject = u"st"}, u"a.pdf")), u"s" + filler.substr(1) + u".pdf");
}

TEST_P(AttachmentPath, ATakenNameIsNumbered) {
  world.files.add(path(u"/Saved/x.pdf"));
  world.files.add(path(u"/Saved/x-1.pdf"));
  EXPECT_EQ(savedName(mail({}, u"x.pdf")), u"x-2.pdf");
  world.files.add(path(u"/Saved/README"));
  EXPECT_EQ(savedName(mail({}, u"README")), u"README-1");
}

TEST_P(AttachmentPath, ATemplateThatLeavesNothingLeavesTheAttachmentsOwnName) {
  for (const TextView nothing : {u"<subject>", u"", u"*?"}) {
    keywords(nothing);
    EXPECT_EQ(savedName(mail({}, u"README")), u"README") << toUtf8(nothing);
    world.files.erase(path(u"/Saved/README"));
  }
}

// The points are those of an address and a subject.
TEST_P(AttachmentPath, ANumberStandsAtTheEndOfANameWithoutAnExtension) {
  keywords(u"<sender address> <subject>");
  const auto item = [&](TextView name) { return mail({.label = u"A", .subject = u"v1.2"}, name); };
  EXPECT_EQ(savedName(item(u"README")), u"ada@example.com v1.2");
  EXPECT_EQ(savedName(item(u"README")), u"ada@example.com v1.2-1");
  EXPECT_EQ(savedName(item(u"a.pdf")), u"ada@example.com v1.2.pdf");
  EXPECT_EQ(savedName(item(u"a.pdf")), u"ada@example.com v1.2-1.pdf");
}

TEST_P(AttachmentPath, TheRunIsTracedStepByStep) {
  world.files.add(path(u"/Saved/x.pdf"));
  auto item = world.addItem({.label = u"A"});
  item->attach({.fileName = u"x.pdf", .displayName = u"The x", .type = AttachmentType::embedded_item});
  world.record.clear();
  EXPECT_EQ(engine.SaveAttachment(item, item->attachments()->item(1), {}, path(u"/Saved/In?/")),
            SaveResult::saved);
  expectTranscript(traced(u"SaveAttachment"),
                   {u"Attachment Type: olEmbeddedItem", fill(u"Checking path: {}", path(u"/Saved/In-/")),
                    u"Building path.  Success: True", u"Attachment Keywords: <attachment name>",
                    u"Attachment FileName: x.pdf", u"Attachment DisplayName: The x", u"Attachment Type: 5",
                    fill(u"Saving attachment to: {}", path(u"/Saved/In-/x.pdf"))});
}

TEST_P(AttachmentPath, AFolderThatCannotBeMadeShowsInTheFailedSave) {
  world.files.refuseFolder(path(u"/New/"));
  auto item = mail({.label = u"A"}, u"x.pdf");
  EXPECT_EQ(engine.SaveAttachment(item, item->attachments()->item(1), {}, path(u"/New/")), SaveResult::stop);
  expectTranscript(
      done(),
      {fill(u"cannot create folder {}", path(u"/New/")),
       fill(u"error 0 Quillfile.SaveAttachment: Error occurred at or near line 7.  Reason: Path not found "
            u"(76).  Path: {}",
            path(u"/New/x.pdf"))});
}

TEST_P(AttachmentPath, WithoutRenamingAWritableFileIsReplacedWithoutAQuestion) {
  renameOff();
  world.files.add(path(u"/Saved/x.pdf"), "old");
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::saved);
  expectTranscript(done(), {fill(u"delete {}", path(u"/Saved/x.pdf")),
                            fill(u"A/x.pdf: save as {}", path(u"/Saved/x.pdf"))});
  EXPECT_EQ(content(u"/Saved/x.pdf"), "content");
}

constexpr TextView question =
    u"question Quillfile: Warning: A file with the same name ('x.pdf') already exists and is "
    u"read-only.\r\nWould you "
    u"like to rename the file?";

TEST_P(AttachmentPath, NoAtTheReadOnlyQuestionSkipsTheAttachment) {
  renameOff();
  readOnly(u"/Saved/x.pdf");
  world.user.answers = {Answer::no};
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::skipped);
  expectTranscript(done(), {Text{question}});
}

TEST_P(AttachmentPath, CancelAtTheReadOnlyQuestionStopsTheRun) {
  renameOff();
  readOnly(u"/Saved/x.pdf");
  world.user.answers = {Answer::cancel};
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::stop);
  expectTranscript(done(), {Text{question}});
}

TEST_P(AttachmentPath, YesAtTheReadOnlyQuestionAsksForAPath) {
  renameOff();
  readOnly(u"/Saved/x.pdf");
  world.user.answers = {Answer::yes};
  world.dialogs.chosenPaths = {path(u"/Saved/y.pdf")};
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::saved);
  EXPECT_EQ(world.dialogs.requests.at(0).fileName, path(u"/Saved/x.pdf"));
  EXPECT_EQ(content(u"/Saved/y.pdf"), "content");
  EXPECT_EQ(content(u"/Saved/x.pdf"), "old");
}

TEST_P(AttachmentPath, YesAndThenNoPathIsACancelledAttachment) {
  renameOff();
  readOnly(u"/Saved/x.pdf");
  world.user.answers = {Answer::yes};
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::cancelled);
  EXPECT_EQ(content(u"/Saved/x.pdf"), "old");
}

class SaveAsPrompt : public AttachmentPath {
 protected:
  SaveAsPrompt() {
    world.settings.set(u"OptionalRenameWanted", u"1");
    world.settings.set(u"ButtonClicked", u"2");
  }
};

TEST_P(SaveAsPrompt, TheChosenPathIsTakenAsItIs) {
  world.files.add(path(u"/Saved/chosen.pdf"), "old");
  world.dialogs.chosenPaths = {path(u"/Saved/chosen.pdf")};
  keywords(u"<subject>");
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::saved);
  expectTranscript(traced(u"SaveAttachment"),
                   {u"Attachment Type: olByValue", u"ButtonClicked: 2; OptionalRenameWanted: 1",
                    u"Attachment FileName: x.pdf", u"Attachment DisplayName: Note #1", u"Attachment Type: 1",
                    fill(u"Saving attachment to: {}", path(u"/Saved/chosen.pdf"))});
  EXPECT_EQ(content(u"/Saved/chosen.pdf"), "content");
}

TEST_P(SaveAsPrompt, CancellingEndsTheAttachmentAlone) {
  EXPECT_EQ(save(mail({.label = u"A"}, u"x.pdf")), SaveResult::cancelled);
}

TEST_P(SaveAsPrompt, ALongNameIsProposedShortened) {
  save(mail({.label = u"A"}, Text(196, u'n') + u".pdf"));
  EXPECT_EQ(world.dialogs.requests.at(0).fileName, path(u"/Saved/") + Text(40, u'n') + u".pdf");
}

TEST_P(SaveAsPrompt, IsNotShownUnlessBothSettingsAreOn) {
  world.settings.set(u"ButtonClicked", u"0");
  EXPECT_EQ(savedName(mail({}, u"x.pdf")), u"x.pdf");
  world.settings.set(u"ButtonClicked", u"1");
  world.settings.set(u"OptionalRenameWanted", u"0");
  EXPECT_EQ(savedName(mail({}, u"y.pdf")), u"y.pdf");
  EXPECT_TRUE(world.dialogs.requests.empty());
}

class RenameIt : public AttachmentPath {
 protected:
  Text rename(ItemData data, TextView extension = u".msg") {
    return engine.RenameIt(world.addItem(std::move(data)), extension, path(u"/Saved/"));
  }
};

TEST_P(RenameIt, AnEmailIsNamedAfterItsSubject) {
  EXPECT_EQ(rename({.subject = u"In/voice: 7"}), path(u"/Saved/Invoice 7.msg"));
}

TEST_P(RenameIt, ATakenNameIsNumberedBeforeItsExtension) {
  world.files.add(path(u"/Saved/v1.2.msg"));
  world.files.add(path(u"/Saved/v1.2-1.msg"));
  EXPECT_EQ(rename({.subject = u"v1.2"}), path(u"/Saved/v1.2-2.msg"));
  world.files.add(path(u"/Saved/plain"));
  EXPECT_EQ(rename({.subject = u"plain"}, u""), path(u"/Saved/plain-1"));
}

TEST_P(RenameIt, ALongSubjectIsCutTo124Units) {
  EXPECT_EQ(rename({.subject = Text(127, u's')}), path(u"/Saved/") + Text(127, u's') + u".msg");
  EXPECT_EQ(rename({.subject = Text(128, u's')}), path(u"/Saved/") + Text(124, u's') + u".msg");
  EXPECT_EQ(rename({.subject = Text(123, u's') + u"\U0001F600" + Text(9, u's')}),
            path(u"/Saved/") + Text(123, u's') + u".msg");
}

TEST_P(RenameIt, NothingHasNoName) {
  EXPECT_EQ(engine.RenameIt(nullptr, u".msg", path(u"/Saved/")), u"");
  expectTranscript(lines(), {});
}

TEST_P(RenameIt, AFolderThatCannotBeMadeIsAnnounced) {
  world.files.refuseFolder(path(u"/New/"));
  EXPECT_EQ(engine.RenameIt(world.addItem({.subject = u"A"}), u".msg", path(u"/New/")), u"");
  expectTranscript(lines(),
                   {fill(u"cannot create folder {}", path(u"/New/")),
                    fill(u"message box Quillfile: Warning: Unable to create folder {}\r\nPlease create it "
                         u"manually and try again.",
                         path(u"/New/"))});
}

TEST_P(RenameIt, AnErrorLeavesWhatHasBeenBuiltSoFar) {
  const auto runs = sweepFailures(
      GetParam(), [](FakePlatform& fresh) { fresh.addItem({.subject = u"A"}); },
      [&](FakePlatform& fresh) {
        Saving room{fresh};
        return room.routines.RenameIt(fresh.folder(DefaultFolder::inbox)->items.front(), u".msg",
                                      path(u"/S/"));
      });
  const auto failed = [](TextView call, TextView result, int step) {
    return fill(u"{}: {}; error 0 Quillfile.RenameIt: Error occurred at line {}.  Reason: {} failed", call,
                result, step, call);
  };
  expectTranscript(runs, {failed(u"EngineUtilities.createFolderPath", u"", 2),
                          failed(u"Item.subject", u"", 3), failed(u"EngineUtilities.cleanFileName", u"", 3),
                          failed(u"EngineUtilities.fileExists", path(u"/S/A.msg"), 5)});
}

RUN_UNDER_BOTH_RULES(AttachmentPath);
RUN_UNDER_BOTH_RULES(SaveAsPrompt);
RUN_UNDER_BOTH_RULES(RenameIt);

}  // namespace
}  // namespace quillfile
