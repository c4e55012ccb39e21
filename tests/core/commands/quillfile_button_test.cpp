#include "tests/core/commands/commands_world.h"

namespace quillfile {
namespace {

class QuillfileButton : public UnderBothRules {
 protected:
  QuillfileButton() { typicalSettings(world); }

  void select(std::initializer_list<TextView> subjects) {
    std::vector<Ref<Item>> items;
    for (const auto subject : subjects) items.push_back(world.addItem({.subject = Text{subject}}));
    world.explorer->selected = items;
  }

  CommandsUnderTest room{world};
  Text root = path(u"C:\\Saved\\");
};
INSTANTIATE_TEST_SUITE_P(Paths, QuillfileButton, bothRules(), rulesName);

TEST_P(QuillfileButton, TheSelectedItemsAreSavedLastFirstAndCounted) {
  select({u"One", u"Two", u"Three"});
  room.commands.QuillfileButton();
  expectTranscript(
      world.record.lines(),
      std::vector<Text>{u"trace QuillfileButton: Entering QuillfileButton", u"pointer 11"} +
          optionLines(u"QuillfileButton", root) +
          std::vector<Text>{u"setting Corvane/Quillfile/ButtonClicked = 1", saved(u"Three", root),
                            saved(u"Two", root), saved(u"One", root),
                            u"message box Quillfile: Processing complete.  3 attachments removed.",
                            u"setting Corvane/Quillfile/ButtonClicked = 0",
                            u"trace QuillfileButton: Leaving QuillfileButton", u"pointer 0"});
}

TEST_P(QuillfileButton, AnEmptySelectionSavesNothingAndStillSaysSo) {
  room.counter.value = 9;
  room.commands.QuillfileButton();
  expectTranscript(world.record.lines(u"message box"),
                   {u"message box Quillfile: Processing complete.  0 attachments removed."});
  expectTranscript(world.record.lines(u"save "), {});
}

TEST_P(QuillfileButton, ExactlyOneAttachmentIsToldInTheSingular) {
  select({u"One"});
  room.commands.QuillfileButton();
  expectTranscript(world.record.lines(u"message box"),
                   {u"message box Quillfile: Processing complete.  1 attachment removed."});
}

TEST_P(QuillfileButton, ImitatingFoldersSavesBelowTheFoldersPath) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::inbox)->path = path(u"Projects\\20%2F26");
  select({u"One"});
  room.commands.QuillfileButton();
  const Text below = path(u"C:\\Saved\\Projects\\20%2F26\\");
  expectTranscript(world.record.lines(u"create"), {u"create folder " + below});
  expectTranscript(world.record.lines(u"save "), {saved(u"One", below)});
  expectTranscript(world.record.lines(u"trace QuillfileButton: Root"),
                   {u"trace QuillfileButton: Root Save Path: " + below});
}

TEST_P(QuillfileButton, TheOtherSystemsSeparatorStaysInAPathSavedByHand) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::inbox)->path = fill(u"a{}b", world.paths.otherSeparator);
  select({u"One"});
  room.commands.QuillfileButton();
  expectTranscript(
      world.record.lines(u"save "),
      {saved(u"One", fill(u"{}a{}b{}", root, world.paths.otherSeparator, world.paths.separator))});
}

TEST_P(QuillfileButton, AFolderWithoutAPathGoesByItsName) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.folder(DefaultFolder::inbox)->path = u"";
  select({u"One"});
  room.commands.QuillfileButton();
  expectTranscript(world.record.lines(u"save "), {saved(u"One", path(u"C:\\Saved\\Inbox\\"))});
}

TEST_P(QuillfileButton, NoSeparatorIsPutAfterTheRootSavePath) {
  world.settings.set(u"SavePath", path(u"C:\\Saved"));
  select({u"One"});
  room.commands.QuillfileButton();
  expectTranscript(world.record.lines(u"save "), {saved(u"One", path(u"C:\\Saved"))});

  world.record.clear();
  world.settings.set(u"ImitateOutlookFolders", u"1");
  room.commands.QuillfileButton();
  expectTranscript(world.record.lines(u"save "), {saved(u"One", path(u"C:\\SavedInbox\\"))});
}

TEST_P(QuillfileButton, AFolderThatCannotBeMadeStopsNothingHere) {
  world.settings.set(u"ImitateOutlookFolders", u"1");
  world.files.refuseFolder(root);
  select({u"One"});
  room.commands.QuillfileButton();
  expectTranscript(world.record.lines(u"save "), {saved(u"One", path(u"C:\\Saved\\Inbox\\"))});
}

TEST_P(QuillfileButton, AFailureLeavesButtonClickedAndResetsTheOptionalRename) {
  world.settings.set(u"OptionalRenameWanted", u"1");
  select({u"One", u"Two"});
  room.saving.failsFor = u"One";
  room.commands.QuillfileButton();
  expectTranscript(
      world.record.lines(),
      std::vector<Text>{u"trace QuillfileButton: Entering QuillfileButton", u"pointer 11"} +
          optionLines(u"QuillfileButton", root) +
          std::vector<Text>{u"setting Corvane/Quillfile/ButtonClicked = 1", saved(u"Two", root),
                            saved(u"One", root), u"pointer 0",
                            u"setting Corvane/Quillfile/OptionalRenameWanted = 0",
                            u"error 0 Quillfile.QuillfileButton: Error occurred on line: 8; Reason: the "
                            u"saving engine failed",
                            u"trace QuillfileButton: Error on Line: 8 : the saving engine failed"});
  EXPECT_EQ(world.settings.get(u"ButtonClicked"), u"1");
}

TEST_P(QuillfileButton, BeforeStartUpItIsAnErrorLikeAnyOther) {
  room.state = {};
  room.commands.QuillfileButton();
  expectTranscript(
      world.record.lines(u"error"),
      {u"error 0 Quillfile.QuillfileButton: Error occurred on line: 8; Reason: Object variable not set"});
}

TEST_P(QuillfileButton, ASelectionOfNothingIsAnErrorAndNotACrash) {
  world.explorer->selected = std::nullopt;
  room.commands.QuillfileButton();
  expectTranscript(
      world.record.lines(u"error"),
      {u"error 0 Quillfile.QuillfileButton: Error occurred on line: 8; Reason: Object variable not set"});
}

TEST(QuillfileButtonFailures, EveryStepReportsItsOwnNumber) {
  const auto arrange = [](FakePlatform& world) {
    typicalSettings(world);
    world.settings.set(u"ImitateOutlookFolders", u"1");
    world.explorer->selected = std::vector<Ref<Item>>{world.addItem({.subject = u"One"})};
  };
  const auto act = [](FakePlatform& world) {
    CommandsUnderTest room{world};
    room.commands.QuillfileButton();
    return fill(u"clicked {}, rename {}", world.settings.get(u"ButtonClicked").value_or(u"-"),
                world.settings.get(u"OptionalRenameWanted").value_or(u"-"));
  };
  std::vector<Text> expected{u"EngineServices.settingsApplicationName: clicked 0, rename -"};
  // Twelve settings are read, each of which may fail without ending the run.
  for (int n = 0; n < 9; ++n) expected.push_back(u"SettingsStore.read: clicked 0, rename -");
  expected.push_back(u"EngineServices.expandPath: clicked 0, rename -");
  for (int n = 0; n < 3; ++n) expected.push_back(u"SettingsStore.read: clicked 0, rename -");
  const auto fails = [&](TextView call, TextView clicked, std::int32_t line) {
    expected.push_back(
        fill(u"{}: clicked {}, rename 0; error 0 Quillfile.QuillfileButton: Error occurred on line: {}; "
             u"Reason: {} failed",
             call, clicked, line, call));
  };
  fails(u"UserInterface.setPointer", u"-", 3);
  fails(u"Application.activeExplorer", u"-", 5);
  fails(u"Explorer.currentFolder", u"-", 5);
  fails(u"ModuleHost.folderPath", u"-", 5);
  fails(u"EngineUtilities.createFolderPath", u"-", 5);
  fails(u"SettingsStore.write", u"-", 7);
  fails(u"Application.activeExplorer", u"1", 8);
  fails(u"Explorer.selection", u"1", 8);
  fails(u"Selection.count", u"1", 8);
  fails(u"Selection.item", u"1", 8);
  fails(u"UserInterface.messageBox", u"1", 9);
  fails(u"SettingsStore.write", u"1", 10);
  fails(u"UserInterface.setPointer", u"0", 12);
  expectTranscript(sweepFailures(PathRules::windows(), arrange, act), expected);
}

}  // namespace
}  // namespace quillfile
