// Which room gets which of the engine's calls.
#include "tests/core/module/module_world.h"

namespace quillfile {
namespace {

class Routing : public testing::Test {
 protected:
  void add(TextView folderId) { EXPECT_EQ(module.api.CEItemEvent(1, mail, folderId, u"store-1"), 0); }
  // The items that the saving engine got.
  std::vector<Text> savedItems() { return world.record.lines(u"save "); }

  FakePlatform world;
  ModuleUnderTest module{world};
  std::shared_ptr<FakeItem> mail = world.addItem({.subject = u"Invoices"});
  Text root = u"C:\\Saved\\";
};

TEST_F(Routing, ButtonOneRunsTheManualSaveAndNoOtherDoes) {
  module.open();
  EXPECT_EQ(module.api.CEButtonAction(2), 1);
  EXPECT_EQ(module.api.CEButtonAction(0), 1);
  expectTranscript(world.record.lines(), {});
  EXPECT_EQ(module.api.CEButtonAction(1), 1);
  EXPECT_EQ(world.record.lines(u"message box").size(), 1u);
}

TEST_F(Routing, TheMenuNeverRunsTheManualSave) {
  module.open();
  EXPECT_EQ(module.api.CEMenuAction(1), 0);
  expectTranscript(world.record.lines(), {});
}

TEST_F(Routing, TheHotkeyRunsTheManualSave) {
  module.open();
  EXPECT_EQ(module.api.CEHotkeyAction(), 0);
  EXPECT_EQ(world.record.lines(u"message box").size(), 1u);
}

TEST_F(Routing, AnInspectorIsHandedToTheTrackingAndResetsTheDeletePrompt) {
  EXPECT_EQ(module.api.CEInspectorOpen(world.openInspector(mail)), 0);
  expectTranscript(world.record.lines(), {u"tracking: map Invoices", u"deleted items: reset prompt"});
}

TEST_F(Routing, AFailureOfTheTrackingIsReportedAndAnsweredWithZero) {
  world.record.failOn(u"Tracking.MapUnderylingItem");
  EXPECT_EQ(module.api.CEInspectorOpen(world.openInspector(mail)), 0);
  expectTranscript(
      world.record.lines(u"error"),
      {u"error 0 Quillfile.CEInspectorOpen: Error occurred.  Reason: Tracking.MapUnderylingItem failed"});
}

TEST_F(Routing, AnItemInAMonitoredFolderIsProcessedAutomatically) {
  world.settings.set(u"AutomaticMode", u"1");
  module.open();
  add(u"Inbox-id");
  expectTranscript(savedItems(), {saved(u"Invoices", root)});
}

TEST_F(Routing, ASentItemGoesToSentItemsAlone) {
  world.settings.set(u"AutomaticMode", u"1");
  world.settings.set(u"SendRemoveAttachments", u"1");
  module.open();
  add(u"Sent Items-id");
  expectTranscript(savedItems(), {saved(u"Invoices", root, u"yes")});
}

TEST_F(Routing, ASentItemInAMonitoredSentFolderIsProcessedTwice) {
  world.settings.set(u"AutomaticMode", u"1");
  world.settings.set(u"SendRemoveAttachments", u"1");
  world.settings.set(u"FolderEntryId1", u"Sent Items-id");
  module.open();
  add(u"Sent Items-id");
  expectTranscript(savedItems(), {saved(u"Invoices", root, u"yes"), saved(u"Invoices", root)});
}

TEST_F(Routing, WithTheSendOptionsOffAMonitoredSentFolderIsStillProcessed) {
  world.settings.set(u"AutomaticMode", u"1");
  world.settings.set(u"FolderEntryId1", u"Sent Items-id");
  module.open();
  add(u"Sent Items-id");
  expectTranscript(savedItems(), {saved(u"Invoices", root)});
}

TEST_F(Routing, ADeletedItemGoesToTheDeletedItems) {
  module.open();
  add(u"Deleted Items-id");
  expectTranscript(world.record.lines(), {u"deleted items: Invoices"});
}

TEST_F(Routing, ADeletedItemIsIgnoredWhileTheModuleDeletesItself) {
  module.open();
  world.settings.setEngine(u"CVTemporarilyDisabled", u"True");
  add(u"Deleted Items-id");
  expectTranscript(world.record.lines(), {});
  world.settings.setEngine(u"CVTemporarilyDisabled", u"False");
  add(u"Deleted Items-id");
  expectTranscript(world.record.lines(), {u"deleted items: Invoices"});
}

TEST_F(Routing, FolderIdsAreComparedExactly) {
  module.open();
  add(u"deleted items-id");
  expectTranscript(world.record.lines(u"deleted"), {});
}

TEST_F(Routing, OtherKindsOfEventAreNothing) {
  world.settings.set(u"AutomaticMode", u"1");
  module.open();
  for (const std::int32_t kind : {0, 2, 3, 4, 5, -1})
    EXPECT_EQ(module.api.CEItemEvent(kind, mail, u"Inbox-id", u"store-1"), 0);
  expectTranscript(world.record.lines(), {});
}

TEST_F(Routing, AnItemBeforeStartUpOrAfterShutdownIsNothing) {
  world.settings.set(u"AutomaticMode", u"1");
  add(u"Inbox-id");
  expectTranscript(world.record.lines(), {});
  module.open();
  module.api.CEShutdown();
  world.record.clear();
  add(u"Inbox-id");
  expectTranscript(world.record.lines(), {});
}

TEST_F(Routing, AFailureWhileRoutingIsReportedAndAnsweredWithZero) {
  module.open();
  world.settings.set(u"FolderCount", u"many");
  add(u"Sent Items-id");
  world.settings.setEngine(u"CVTemporarilyDisabled", u"perhaps");
  add(u"Deleted Items-id");
  expectTranscript(world.record.lines(),
                   {u"error 0 Quillfile.CEItemEvent: Error occurred at line 2.  Reason: Type mismatch",
                    u"error 0 Quillfile.CEItemEvent: Error occurred at line 2.  Reason: Type mismatch"});
}

}  // namespace
}  // namespace quillfile
