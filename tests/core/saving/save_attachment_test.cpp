#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class SaveAttachment : public SavingUnderBothRules {
 protected:
  std::shared_ptr<FakeItem> mail(AttachmentData attachment) {
    auto item = world.addItem({.label = u"A", .body = u"hello"});
    item->attach(std::move(attachment));
    return item;
  }
  SaveResult save(const std::shared_ptr<FakeItem>& item, const SavingContext& context = {}) {
    world.record.clear();
    return engine.SaveAttachment(item, item->attachments()->item(1), context, path(u"/Saved/"));
  }
  const Text saved = path(u"/Saved/a.pdf");
  const Text savedLine = fill(u"A/a.pdf: save as {}", saved);
};

TEST_P(SaveAttachment, EveryTypeButOleIsSaved) {
  struct Row {
    AttachmentType type;
    TextView traced;
    SaveResult result;
  };
  for (const auto& [type, line, result] :
       {Row{AttachmentType::by_value, u"Attachment Type: olByValue", SaveResult::saved},
        Row{AttachmentType::by_reference, u"Attachment Type: olByReference", SaveResult::saved},
        Row{AttachmentType::embedded_item, u"Attachment Type: olEmbeddedItem", SaveResult::saved},
        Row{AttachmentType::ole, u"Attachment Type: olOLE", SaveResult::skipped},
        Row{static_cast<AttachmentType>(7), u"Attachment Type: 7", SaveResult::saved}}) {
    EXPECT_EQ(save(mail({.fileName = u"a.pdf", .type = type})), result) << toUtf8(line);
    EXPECT_EQ(traced(u"SaveAttachment").front(), line);
  }
}

TEST_P(SaveAttachment, AnOleObjectIsOfTheWrongType) {
  EXPECT_EQ(save(mail({.fileName = u"a.pdf", .type = AttachmentType::ole})), SaveResult::skipped);
  expectTranscript(lines(), {u"trace SaveAttachment: Attachment Type: olOLE",
                             u"trace SaveAttachment: Not saving attachment (wrong type)"});
}

TEST_P(SaveAttachment, AnExcludedNameIsSkipped) {
  world.settings.set(u"ExclusionList", u"*.gif;a-b.pdf");
  EXPECT_EQ(save(mail({.fileName = u"a#b.pdf"})), SaveResult::skipped);
  expectTranscript(lines(), {u"trace SaveAttachment: Attachment Type: olByValue"});
}

TEST_P(SaveAttachment, TheModulesOwnImagesAreNeverSaved) {
  for (const TextView name : {u"paperclip.ico", u"Paperclip.ICO", u"TessalySoftware.ico"}) {
    EXPECT_EQ(save(mail({.fileName = Text{name}})), SaveResult::skipped);
    EXPECT_TRUE(done().empty());
  }
}

TEST_P(SaveAttachment, AFileThatDoesNotAppearIsSavedOnceMoreAndThenLeftAttached) {
  auto item = mail({.fileName = u"a.pdf", .savesNothing = true});
  EXPECT_EQ(save(item, {.addLink = true, .remove = true}), SaveResult::saved);
  expectTranscript(
      done(),
      {savedLine, u"pending events", u"pending events", savedLine, u"pending events", u"pending events",
       fill(
           u"error 0 Quillfile.SaveAttachment: Error occurred, leaving file attached: Could not find file at "
           u"'{}'",
           saved)});
  EXPECT_EQ(item->attached.size(), 1u);
  EXPECT_EQ(item->data.body, u"hello");
}

TEST_P(SaveAttachment, AFailedSaveIsReportedAndStopsTheRun) {
  world.record.failOn(u"Attachment.saveAsFile", {70, u"Disk full"});
  auto item = mail({.fileName = u"a.pdf"});
  EXPECT_EQ(save(item, {.addLink = true, .remove = true}), SaveResult::stop);
  EXPECT_EQ(
      lines().back(),
      fill(u"error 0 Quillfile.SaveAttachment: Error occurred at or near line 7.  Reason: Disk full (70).  "
           u"Path: {}",
           saved));
  EXPECT_EQ(item->attached.size(), 1u);
  EXPECT_EQ(saving.state.counter.value, 0);
}

TEST_P(SaveAttachment, TheSecondTryCanFailToo) {
  world.user.whilePending = [this] {
    world.clock.now += 2;
    world.record.failOn(u"Attachment.saveAsFile", {70, u"Disk full"});
  };
  EXPECT_EQ(save(mail({.fileName = u"a.pdf", .savesNothing = true}), {.remove = true}), SaveResult::stop);
}

TEST_P(SaveAttachment, ReadOnlyModeMarksAFileOnce) {
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"}), {.readWrite = ReadWrite::read_only}), SaveResult::saved);
  EXPECT_EQ(world.files.find(saved)->attributes, 33);
  expectTranscript(done(), {savedLine, fill(u"attributes of {} = 33", saved)});
  EXPECT_EQ(traced(u"SaveAttachment").back(), u"Marking attachment read only");
}

// The file that the host writes is read-only from the start.
TEST_P(SaveAttachment, ReadOnlyModeLeavesAReadOnlyFileAndWritableModeDoesNot) {
  for (const auto mode : {ReadWrite::read_only, ReadWrite::writable}) {
    world.files.erase(saved);
    auto item = mail({.fileName = u"a.pdf", .savesNothing = true});
    world.user.whilePending = [this] { world.files.add(saved).attributes = 33, ++world.clock.now; };
    EXPECT_EQ(save(item, {.readWrite = mode}), SaveResult::saved);
    EXPECT_EQ(world.files.find(saved)->attributes, mode == ReadWrite::read_only ? 33 : 32);
  }
}

TEST_P(SaveAttachment, WithoutAReadWriteModeTheAttributesAreNotEvenRead) {
  world.record.failOn(u"FileSystem.attributes");
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"})), SaveResult::saved);
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"}), {.readWrite = static_cast<ReadWrite>(3)}), SaveResult::saved);
}

TEST_P(SaveAttachment, TheFileGetsTheDateOfTheItem) {
  save(mail({.fileName = u"a.pdf"}));
  expectTranscript(traced(u"ChangeDateTo"), {fill(u"Changing date of {} to 3/4/2009 2:05:00 PM", saved),
                                             u"Successfully changed date"});
}

TEST_P(SaveAttachment, ALinkIsWrittenWithoutARemovalToo) {
  auto item = mail({.fileName = u"a.pdf"});
  EXPECT_EQ(save(item, {.addLink = true}), SaveResult::saved);
  const auto body = fill(u"hello\r\n\r\nAttachment saved to <{}>", link(u"/Saved/a.pdf"));
  expectTranscript(done(), {savedLine, fill(u"A: Body = {}", body), u"A: save by the wrapper", u"A: save"});
  expectTranscript(
      traced(u"UpdateEmailBody"),
      {u"Format: TEXT", fill(u"*** Body updated: Attachment saved to <{}>", link(u"/Saved/a.pdf")),
       fill(u"Body (without removal) after save: {}", body)});
}

TEST_P(SaveAttachment, TheBodyIsNotReadForATraceThatNobodyWants) {
  world.log.isWanted = false;
  world.record.failOn(u"Item.body");
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"}), {.addLink = true}), SaveResult::saved);
  EXPECT_EQ(lines().back(), u"A: save");
}

TEST_P(SaveAttachment, ANoteThatCannotBeWrittenDoesNotUndoTheSave) {
  world.record.failOn(u"SafeItem.setBody");
  auto item = mail({.fileName = u"a.pdf"});
  EXPECT_EQ(save(item, {.addLink = true, .remove = true}), SaveResult::saved);
  expectTranscript(done(), {savedLine, u"A/a.pdf: remove", u"SafeItem.setBody fails"});
}

TEST_P(SaveAttachment, ADeclinedRemovalLeavesTheAttachmentAndNoLink) {
  auto item = mail({.fileName = u"a.pdf", .removal = Removal::declined});
  EXPECT_EQ(save(item, {.addLink = true, .remove = true}), SaveResult::saved);
  expectTranscript(done(), {savedLine, u"A/a.pdf: removal declined"});
  EXPECT_EQ(saving.state.counter.value, 1);
}

TEST_P(SaveAttachment, TheFileOfASentAttachmentIsHandedOverAfterTheRemoval) {
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"}), {.remove = true, .deleteSaved = true}), SaveResult::saved);
  expectTranscript(done(), {savedLine, u"A/a.pdf: remove", fill(u"discard saved file {}", saved)});
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"}), {.deleteSaved = true}), SaveResult::saved);
  expectTranscript(done(), {savedLine, fill(u"discard saved file {}", saved)});
}

TEST_P(SaveAttachment, TheProgramRunsOnTheSavedFile) {
  world.settings.set(u"ExecuteWanted", u"1");
  world.settings.set(u"ExecuteCommandLine", path(u"/view %1"));
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"})), SaveResult::saved);
  expectTranscript(done(), {savedLine, fill(u"start {} for {}", path(u"/view ") + saved, saved)});
}

TEST_P(SaveAttachment, OnlyASavedAttachmentCounts) {
  save(mail({.fileName = u"a.pdf"}));
  save(mail({.fileName = u"b.pdf"}));
  save(mail({.fileName = u"paperclip.ico"}));
  EXPECT_EQ(saving.state.counter.value, 2);
}

TEST_P(SaveAttachment, AnErrorEndsItWithTheStepReached) {
  world.settings.set(u"AutomaticRename", u"yes");
  EXPECT_EQ(save(mail({.fileName = u"a.pdf"})), SaveResult::stop);
  expectTranscript(lines(),
                   {u"trace SaveAttachment: Attachment Type: olByValue",
                    fill(u"trace SaveAttachment: Checking path: {}", path(u"/Saved/")),
                    u"trace SaveAttachment: Error occurred.  Could not save attachment.  LastLineNumber: 5",
                    u"error 0 Quillfile.SaveAttachment: Error occurred at line 5.  Reason: Type mismatch"});
}

RUN_UNDER_BOTH_RULES(SaveAttachment);

}  // namespace
}  // namespace quillfile
