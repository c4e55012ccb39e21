#include "tests/core/commands/commands_world.h"

namespace quillfile {
namespace {

class ProcessSentItems : public UnderBothRules {
 protected:
  ProcessSentItems() {
    typicalSettings(world);
    world.settings.set(u"SendRemoveAttachments", u"1");
  }

  CommandsUnderTest room{world};
  std::shared_ptr<FakeItem> mail = world.addItem({.subject = u"Offer"}, DefaultFolder::sent_items);
  Text root = path(u"C:\\Saved\\");
};
INSTANTIATE_TEST_SUITE_P(Paths, ProcessSentItems, bothRules(), rulesName);

TEST_P(ProcessSentItems, ASentItemIsHandedToTheSavingEngineAsSent) {
  EXPECT_FALSE(room.commands.ProcessSentItems(mail));
  expectTranscript(world.record.lines(), std::vector<Text>{u"trace ProcessSentItems: Processing: Offer-id",
                                                           u"trace ProcessSentItems: TypeName: MailItem"} +
                                             optionLines(u"ProcessSentItems", root, false, u"-1", u"0") +
                                             std::vector<Text>{saved(u"Offer", root, u"yes")});
}

TEST_P(ProcessSentItems, WithBothSendOptionsOffNothingHappens) {
  world.settings.set(u"SendRemoveAttachments", u"0");
  EXPECT_FALSE(room.commands.ProcessSentItems(mail));
  expectTranscript(world.record.lines(), {});
}

TEST_P(ProcessSentItems, EitherSendOptionIsEnough) {
  world.settings.set(u"SendRemoveAttachments", u"0");
  world.settings.set(u"SendDeleteAttachments", u"1");
  EXPECT_FALSE(room.commands.ProcessSentItems(mail));
  expectTranscript(world.record.lines(u"save "), {saved(u"Offer", root, u"yes")});
}

TEST_P(ProcessSentItems, TheRunCounterIsNotReset) {
  room.counter.value = 4;
  room.commands.ProcessSentItems(mail);
  EXPECT_EQ(room.counter.value, 5);
}

TEST_P(ProcessSentItems, ImitatingFoldersSavesBelowSentItemsWithoutRewritingThePath) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::sent_items)->path = fill(u"Sent%2F{}x", world.paths.otherSeparator);
  room.commands.ProcessSentItems(mail);
  const Text below = fill(u"{}Sent%2F{}x{}", root, world.paths.otherSeparator, world.paths.separator);
  expectTranscript(world.record.lines(u"create"), {u"create folder " + below});
  expectTranscript(world.record.lines(u"save "), {saved(u"Offer", below, u"yes")});
}

TEST_P(ProcessSentItems, AnEmptyFolderPathDoesNotFallBackToTheName) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::sent_items)->path = u"";
  room.commands.ProcessSentItems(mail);
  expectTranscript(world.record.lines(u"save "),
                   {saved(u"Offer", root + Text{world.paths.separator}, u"yes")});
}

TEST_P(ProcessSentItems, AnItemWhoseTypeCannotBeReadHasBeenNamedByThen) {
  world.record.failOn(u"Item.typeName");
  EXPECT_FALSE(room.commands.ProcessSentItems(mail));
  expectTranscript(
      world.record.lines(),
      {u"trace ProcessSentItems: Processing: Offer-id", u"Item.typeName fails",
       u"error 0 Quillfile.ProcessSentItems: Error occurred at line 4.  Reason: Item.typeName failed"});
}

TEST(ProcessSentItemsFailures, EveryStepReportsItsOwnNumber) {
  const auto arrange = [](FakePlatform& world) {
    typicalSettings(world);
    world.settings.set(u"SendRemoveAttachments", u"1");
    world.settings.set(u"SendDeleteAttachments", u"1");
    world.settings.set(u"ImitateOutlookFolders", u"1");
    world.addItem({.subject = u"Offer"}, DefaultFolder::sent_items);
  };
  const auto act = [](FakePlatform& world) {
    CommandsUnderTest room{world};
    room.commands.ProcessSentItems(world.folder(DefaultFolder::sent_items)->items.front());
    return fill(u"{} saved", static_cast<std::int64_t>(world.record.lines(u"save ").size()));
  };
  std::vector<Text> expected{u"EngineServices.settingsApplicationName: 1 saved"};
  for (int n = 0; n < 9; ++n) expected.push_back(u"SettingsStore.read: 1 saved");
  expected.push_back(u"EngineServices.expandPath: 1 saved");
  for (int n = 0; n < 3; ++n) expected.push_back(u"SettingsStore.read: 1 saved");
  for (const auto& [call, line] :
       std::initializer_list<std::pair<TextView, int>>{{u"Application.nameSpace", 3},
                                                       {u"NameSpace.defaultFolder", 3},
                                                       {u"ModuleHost.folderPath", 3},
                                                       {u"EngineUtilities.createFolderPath", 3},
                                                       {u"Item.entryId", 4},
                                                       {u"Item.typeName", 4}})
    expected.push_back(fill(
        u"{}: 0 saved; error 0 Quillfile.ProcessSentItems: Error occurred at line {}.  Reason: {} failed",
        call, line, call));
  expectTranscript(sweepFailures(PathRules::windows(), arrange, act), expected);
}

}  // namespace
}  // namespace quillfile
