#include "tests/core/commands/commands_world.h"

namespace quillfile {
namespace {

class CheckItemForAttachments : public UnderBothRules {
 protected:
  CheckItemForAttachments() {
    typicalSettings(world);
    world.settings.set(u"AutomaticMode", u"1");
  }

  bool run(TextView entryId = u"Inbox-id") {
    return room.commands.CheckItemForAttachments(mail, entryId, u"store-1");
  }

  CommandsUnderTest room{world};
  std::shared_ptr<FakeItem> mail = world.addItem({.subject = u"Invoices"});
  Text root = path(u"C:\\Saved\\");
};
INSTANTIATE_TEST_SUITE_P(Paths, CheckItemForAttachments, bothRules(), rulesName);

TEST_P(CheckItemForAttachments, ANewItemIsHandedToTheSavingEngineOnce) {
  room.counter.value = 9;
  EXPECT_FALSE(run());
  EXPECT_EQ(room.counter.value, 1) << "reset, raised, and not reported";
  expectTranscript(
      world.record.lines(),
      std::vector<Text>{
          u"trace CheckItemForAttachments: Entering CheckItemForAttachments with subject 'Invoices'"} +
          optionLines(u"HandleUserItemsFolderAdd", root) +
          std::vector<Text>{saved(u"Invoices", root),
                            u"trace HandleUserItemsFolderAdd: Leaving HandleUserItemsFolderAdd"});
  EXPECT_EQ(world.settings.get(u"ButtonClicked"), std::nullopt);
}

TEST_P(CheckItemForAttachments, AutomaticModeOffOrAbsentIsTrueAndDoesNothing) {
  world.settings.set(u"AutomaticMode", u"0");
  EXPECT_TRUE(run());
  expectTranscript(world.record.lines(), {});

  FakePlatform fresh{GetParam()};
  CommandsUnderTest untouched{fresh};
  EXPECT_TRUE(untouched.commands.CheckItemForAttachments(mail, u"Inbox-id", u"store-1"));
  expectTranscript(fresh.record.lines(), {});
}

TEST_P(CheckItemForAttachments, AnyOtherModeIsFalseAndDoesNothing) {
  for (const TextView mode : {u"2", u"-1", u" 0", u"00", u"on"}) {
    world.settings.set(u"AutomaticMode", mode);
    EXPECT_FALSE(run()) << toUtf8(mode);
    expectTranscript(world.record.lines(), {});
  }
}

TEST_P(CheckItemForAttachments, ImitatingFoldersSavesBelowTheFoldersPath) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::inbox)->path = path(u"Inbox\\Projects");
  run();
  const Text below = path(u"C:\\Saved\\Inbox\\Projects\\");
  expectTranscript(
      world.record.lines(),
      std::vector<Text>{
          u"trace CheckItemForAttachments: Entering CheckItemForAttachments with subject 'Invoices'",
          u"create folder " + below} +
          optionLines(u"HandleUserItemsFolderAdd", below, true) +
          std::vector<Text>{saved(u"Invoices", below),
                            u"trace HandleUserItemsFolderAdd: Leaving HandleUserItemsFolderAdd"});
}

TEST_P(CheckItemForAttachments, AFolderWithoutAPathGoesByItsName) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::inbox)->path = u"";
  run();
  expectTranscript(world.record.lines(u"save "), {saved(u"Invoices", path(u"C:\\Saved\\Inbox\\"))});
}

TEST_P(CheckItemForAttachments, TheOtherSystemsSeparatorAndItsEscapeBecomeDashesInTheWholePath) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.settings.set(u"SavePath", fill(u"{}x{}y{}", root, world.paths.otherSeparator, world.paths.separator));
  world.folder(DefaultFolder::inbox)->path = fill(u"a%2Fb%2fc{}d", world.paths.otherSeparator);
  run();
  expectTranscript(world.record.lines(u"save "), {saved(u"Invoices", path(u"C:\\Saved\\x-y\\a-b-c-d\\"))});
  expectTranscript(world.record.lines(u"create"), {u"create folder " + path(u"C:\\Saved\\x-y\\a-b-c-d\\")});
}

TEST_P(CheckItemForAttachments, WithoutImitatingFoldersTheRootIsNotRewritten) {
  const Text odd = fill(u"{}x%2F{}y{}", root, world.paths.otherSeparator, world.paths.separator);
  world.settings.set(u"SavePath", odd);
  run();
  expectTranscript(world.record.lines(u"save "), {saved(u"Invoices", odd)});
}

TEST_P(CheckItemForAttachments, AFolderThatCannotBeFoundGivesAnEmptySavePathAndNoFolder) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  run(u"another-id");
  expectTranscript(world.record.lines(u"save "), {saved(u"Invoices", u"")});
  expectTranscript(world.record.lines(u"create"), {});
}

TEST_P(CheckItemForAttachments, AnItemOfNothingIsAReportedError) {
  EXPECT_FALSE(room.commands.CheckItemForAttachments(nullptr, u"Inbox-id", u"store-1"));
  expectTranscript(world.record.lines(), {u"error 0 Quillfile.CheckItemForAttachments: Error occurred at "
                                          u"line 4.  Reason: Object variable not set"});
}

TEST(CheckItemForAttachmentsFailures, EveryStepReportsItsOwnNumberAndIsFalse) {
  const auto arrange = [](FakePlatform& world) {
    typicalSettings(world);
    world.settings.set(u"AutomaticMode", u"1");
    world.settings.set(u"ImitateOutlookFolders", u"1");
    world.folder(DefaultFolder::inbox)->path = u"";
    world.addItem({.subject = u"Invoices"});
  };
  const auto act = [](FakePlatform& world) {
    CommandsUnderTest room{world};
    const Ref<Item> item = world.folder(DefaultFolder::inbox)->items.front();
    const bool off = room.commands.CheckItemForAttachments(item, u"Inbox-id", u"store-1");
    return fill(u"{} saved{}", static_cast<std::int64_t>(world.record.lines(u"save ").size()),
                off ? TextView{u", True"} : TextView{});
  };
  std::vector<Text> expected;
  const auto fails = [&](TextView call, std::int32_t line) {
    expected.push_back(
        fill(u"{}: 0 saved; error 0 Quillfile.CheckItemForAttachments: Error occurred at line {}.  Reason: "
             u"{} failed",
             call, line, call));
  };
  const auto goesOn = [&](TextView call, std::int32_t count) {
    expected.push_back(fill(u"{}: {} saved", call, count));
  };
  fails(u"EngineServices.settingsApplicationName", 1);
  fails(u"SettingsStore.read", 1);
  goesOn(u"SettingsStore.read", 0);  // the mode itself reads as 0, which is not on
  for (int n = 0; n < 8; ++n) goesOn(u"SettingsStore.read", 1);
  goesOn(u"EngineServices.expandPath", 1);
  for (int n = 0; n < 3; ++n) goesOn(u"SettingsStore.read", 1);
  fails(u"Item.subject", 4);
  fails(u"ModuleHost.findFolder", 6);
  fails(u"ModuleHost.folderPath", 6);
  fails(u"Folder.name", 6);
  fails(u"EngineUtilities.createFolderPath", 6);
  expectTranscript(sweepFailures(PathRules::windows(), arrange, act), expected);
}

}  // namespace
}  // namespace quillfile
