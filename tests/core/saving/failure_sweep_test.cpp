// Every call of a whole run fails once: what is then reported, what the run answers, and that no attachment
// is ever removed whose file is not there.
#include <algorithm>

#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

class FailureSweep : public SavingUnderBothRules {
 protected:
  // Two attachments, removed and linked, their files made read-only; then the item is deleted.
  std::vector<Text> sweep(TextView format) const {
    const auto arrange = [&](FakePlatform& fresh) {
      auto item = fresh.addItem(
          {.label = u"A", .format = Text{format}, .body = u"x", .htmlBody = u"x", .rtfBody = u"{x}"});
      item->attach({.fileName = u"a.pdf"}).attach({.fileName = u"b.pdf"});
      fresh.files.addFolder(path(u"/Saved/"));
      fresh.log.isWanted = false;
    };
    return sweepFailures(GetParam(), arrange, [&](FakePlatform& fresh) { return outcome(fresh); });
  }

  Text outcome(FakePlatform& fresh) const {
    const auto item = fresh.folder(DefaultFolder::inbox)->items.front();
    Saving room{fresh};
    const bool result = room.routines.CheckForAttachments({.item = item,
                                                           .skipCriteria = true,
                                                           .afterSave = AfterSave::remove_item,
                                                           .addLink = true,
                                                           .remove = true,
                                                           .readWrite = ReadWrite::read_only,
                                                           .savePath = path(u"/Saved/")});
    Text kept;
    for (const TextView name : {u"a.pdf", u"b.pdf"}) {
      const bool attached = std::any_of(item->attached.begin(), item->attached.end(),
                                        [&](const auto& data) { return data->fileName == name; });
      const auto* file = fresh.files.find(path(u"/Saved/") + Text{name});
      EXPECT_TRUE(attached || (file && file->content == "content")) << toUtf8(fresh.record.failedCall());
      kept += attached ? u" attached" : u" removed";
    }
    return fill(u"{}, {} saved,{}", result ? u"True" : u"False", room.state.counter.value, kept);
  }
};

TEST_P(FailureSweep, APlainMail) {
  // "@" stands for the save folder.
  std::vector<Text> expected{
      u"EngineServices.settingsApplicationName: False, 0 saved, attached attached; error 0 "
      u"Quillfile.CheckForAttachments: Error occurred at line 1.  Reason: "
      u"EngineServices.settingsApplicationName failed",
      u"SettingsStore.read: False, 0 saved, attached attached; error 0 Quillfile.CheckForAttachments: Error "
      u"occurred at line 1.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: False, 0 saved, attached attached; error 0 Quillfile.CheckForAttachments: Error "
      u"occurred at line 2.  Reason: SettingsStore.read failed",
      u"Item.typeName: False, 0 saved, attached attached; error 0 Quillfile.CheckForAttachments: Error "
      u"occurred at line 2.  Reason: Item.typeName failed",
      u"Item.unRead: False, 0 saved, attached attached; error 0 Quillfile.CheckForAttachments: Error "
      u"occurred at line 6.  Reason: Item.unRead failed",
      u"Item.attachments: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachments.Handler: Could "
      u"not save attachments.  LastLineNumber: 2.  Reason: Item.attachments failed",
      u"Attachments.count: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachments.Handler: "
      u"Could not save attachments.  LastLineNumber: 2.  Reason: Attachments.count failed",
      u"Attachments.item: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachments.Handler: Could "
      u"not save attachments.  Reason: Attachments.item failed; Attempting to save to @ with attachment "
      u"index = 2",
      u"Attachment.type: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachments.Handler: Could "
      u"not save attachments.  Reason: Attachment.type failed; Attempting to save to @ with attachment index "
      u"= 2",
      u"Attachment.type: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error occurred "
      u"at line 1.  Reason: Attachment.type failed",
      u"Attachment.fileName: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 2.  Reason: Attachment.fileName failed",
      u"SettingsStore.read: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 3.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"Item.receivedTime: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: Item.receivedTime failed",
      u"DateFormat.general: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: DateFormat.general failed",
      u"Item.subject: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error occurred at "
      u"line 5.  Reason: Item.subject failed",
      u"EngineUtilities.cleanFileName: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: "
      u"Error occurred at line 5.  Reason: EngineUtilities.cleanFileName failed",
      u"EngineUtilities.cleanFileName: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: "
      u"Error occurred at line 5.  Reason: EngineUtilities.cleanFileName failed",
      u"EngineUtilities.fileExists: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: "
      u"Error occurred at line 5.  Reason: EngineUtilities.fileExists failed",
      u"Attachment.saveAsFile: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at or near line 7.  Reason: Attachment.saveAsFile failed (5).  Path: @b.pdf",
      u"FileTimes.openAlone: True, 2 saved, removed removed",
      u"Item.receivedTime: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 8.  Reason: Item.receivedTime failed",
      u"DateFormat.general: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 8.  Reason: DateFormat.general failed",
      u"DateFormat.parse: True, 2 saved, removed removed",
      u"FileTimes.systemTimeToFileTime: True, 2 saved, removed removed",
      u"FileTimes.localFileTimeToFileTime: True, 2 saved, removed removed",
      u"FileTimes.openToChange: True, 2 saved, removed removed",
      u"FileTimes.setTimes: True, 2 saved, removed removed",
      u"FileSystem.attributes: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 9.  Reason: FileSystem.attributes failed",
      u"FileSystem.setAttributes: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 9.  Reason: FileSystem.setAttributes failed",
      u"Attachment.remove: True, 0 saved, attached attached; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 10.  Reason: Attachment.remove failed",
      u"MailHelper.bodyFormat: True, 2 saved, removed removed",
      u"SettingsStore.read: True, 2 saved, removed removed",
      u"MailHelper.wrap: True, 2 saved, removed removed",
      u"SafeItem.body: True, 2 saved, removed removed",
      u"SafeItem.setBody: True, 2 saved, removed removed",
      u"SafeItem.save: True, 2 saved, removed removed",
      u"Item.save: True, 0 saved, attached removed; error 0 Quillfile.SaveAttachment: Error occurred at line "
      u"11.  Reason: Item.save failed",
      u"SettingsStore.read: True, 0 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 12.  Reason: SettingsStore.read failed",
      u"Attachments.item: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachments.Handler: Could "
      u"not save attachments.  Reason: Attachments.item failed; Attempting to save to @ with attachment "
      u"index = 1",
      u"Attachment.type: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachments.Handler: Could "
      u"not save attachments.  Reason: Attachment.type failed; Attempting to save to @ with attachment index "
      u"= 1",
      u"Attachment.type: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error occurred "
      u"at line 1.  Reason: Attachment.type failed",
      u"Attachment.fileName: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 2.  Reason: Attachment.fileName failed",
      u"SettingsStore.read: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 3.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: SettingsStore.read failed",
      u"Item.receivedTime: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error occurred "
      u"at line 5.  Reason: Item.receivedTime failed",
      u"DateFormat.general: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: DateFormat.general failed",
      u"Item.subject: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error occurred at "
      u"line 5.  Reason: Item.subject failed",
      u"EngineUtilities.cleanFileName: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: "
      u"Error occurred at line 5.  Reason: EngineUtilities.cleanFileName failed",
      u"EngineUtilities.cleanFileName: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: "
      u"Error occurred at line 5.  Reason: EngineUtilities.cleanFileName failed",
      u"EngineUtilities.fileExists: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 5.  Reason: EngineUtilities.fileExists failed",
      u"Attachment.saveAsFile: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at or near line 7.  Reason: Attachment.saveAsFile failed (5).  Path: @a.pdf",
      u"FileTimes.openAlone: True, 2 saved, removed removed",
      u"Item.receivedTime: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error occurred "
      u"at line 8.  Reason: Item.receivedTime failed",
      u"DateFormat.general: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 8.  Reason: DateFormat.general failed",
      u"DateFormat.parse: True, 2 saved, removed removed",
      u"FileTimes.systemTimeToFileTime: True, 2 saved, removed removed",
      u"FileTimes.localFileTimeToFileTime: True, 2 saved, removed removed",
      u"FileTimes.openToChange: True, 2 saved, removed removed",
      u"FileTimes.setTimes: True, 2 saved, removed removed",
      u"FileSystem.attributes: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 9.  Reason: FileSystem.attributes failed",
      u"FileSystem.setAttributes: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error "
      u"occurred at line 9.  Reason: FileSystem.setAttributes failed",
      u"Attachment.remove: True, 1 saved, attached removed; error 0 Quillfile.SaveAttachment: Error occurred "
      u"at line 10.  Reason: Attachment.remove failed",
      u"MailHelper.bodyFormat: True, 2 saved, removed removed",
      u"SettingsStore.read: True, 2 saved, removed removed",
      u"MailHelper.wrap: True, 2 saved, removed removed",
      u"SafeItem.body: True, 2 saved, removed removed",
      u"SafeItem.setBody: True, 2 saved, removed removed",
      u"SafeItem.save: True, 2 saved, removed removed",
      u"Item.save: True, 1 saved, removed removed; error 0 Quillfile.SaveAttachment: Error occurred at line "
      u"11.  Reason: Item.save failed",
      u"SettingsStore.read: True, 1 saved, removed removed; error 0 Quillfile.SaveAttachment: Error occurred "
      u"at line 12.  Reason: SettingsStore.read failed",
      u"SettingsStore.read: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error "
      u"occurred at line 1.  Reason: SettingsStore.read failed",
      u"MailHelper.wrap: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error occurred "
      u"at line 2.  Reason: MailHelper.wrap failed",
      u"Item.attachments: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error occurred "
      u"at line 3.  Reason: Item.attachments failed",
      u"Attachments.count: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error occurred "
      u"at line 3.  Reason: Attachments.count failed",
      u"MailHelper.bodyFormat: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error "
      u"occurred at line 4.  Reason: MailHelper.bodyFormat failed",
      u"SafeItem.body: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error occurred at "
      u"line 4.  Reason: SafeItem.body failed",
      u"Attachments.add: True, 2 saved, removed removed; error 0 Quillfile.AttachPaperclip: Error occurred "
      u"at line 4.  Reason: Attachments.add failed",
      u"Item.save: True, 2 saved, removed removed; error 0 Quillfile.SaveAttachments.Handler: Could not save "
      u"attachments.  LastLineNumber: 5.  Reason: Item.save failed",
      u"SettingsStore.write: False, 2 saved, removed removed; error 0 Quillfile.CheckForAttachments: Error "
      u"occurred at line 7.  Reason: SettingsStore.write failed",
      u"Item.remove: False, 2 saved, removed removed; error 0 Quillfile.CheckForAttachments: Error occurred "
      u"at line 7.  Reason: Item.remove failed",
      u"UserInterface.processPendingEvents: False, 2 saved, removed removed; error 0 "
      u"Quillfile.CheckForAttachments: Error occurred at line 7.  Reason: UserInterface.processPendingEvents "
      u"failed",
      u"SettingsStore.write: False, 2 saved, removed removed; error 0 Quillfile.CheckForAttachments: Error "
      u"occurred at line 7.  Reason: SettingsStore.write failed",
  };
  for (auto& line : expected) line = replaceAll(line, u"@", path(u"/Saved/"));
  expectTranscript(sweep(u"TEXT"), expected);
}

TEST_P(FailureSweep, NoFormatLosesAnAttachment) {
  EXPECT_FALSE(sweep(u"HTML").empty());
  EXPECT_FALSE(sweep(u"RTF").empty());
}

RUN_UNDER_BOTH_RULES(FailureSweep);

}  // namespace
}  // namespace quillfile
