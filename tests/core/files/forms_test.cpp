#include "core/files/frm_save_path.h"
#include "core/files/frm_yes_no_prompt.h"
#include "tests/fakes/both_rules.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

class SaveAs : public UnderBothRules {
 protected:
  Text ask(TextView proposed) {
    const Settings settings{world.settings, world.services, world.paths};
    frmSavePath form{world.log, settings, world.dialogs, world.paths};
    return form.SaveAs(proposed);
  }
  Text inSaved = path(u"C:\\Saved\\a.pdf");
  Text inOther = path(u"C:\\Other\\b.pdf");
};
INSTANTIATE_TEST_SUITE_P(Paths, SaveAs, bothRules(), rulesName);

TEST_P(SaveAs, WithoutALastFolderTheDialogOpensOnTheProposedPathAndTheChoiceIsRemembered) {
  world.dialogs.chosenPaths = {inOther};
  EXPECT_EQ(ask(inSaved), inOther);
  const Text folder = path(u"C:\\Other\\");
  expectTranscript(
      world.record.lines(),
      {u"trace SaveAs: Entering SaveAs with: " + inSaved, u"trace SaveAs: MRU path: ",
       u"trace SaveAs: File Extension: pdf",
       fill(u"save-as dialog Quillfile: name {}, folder , extension pdf, filter All Files (*.*)|*.*, flags 2",
            inSaved),
       u"trace SaveAs: Switching mru path to: " + folder,
       u"setting Corvane/Quillfile/SaveAsMRUPath = " + folder});
}

TEST_P(SaveAs, WithALastFolderTheDialogOpensThereWithTheNameAlone) {
  world.settings.set(u"SaveAsMRUPath", path(u"C:\\Other\\"));
  ask(inSaved);
  EXPECT_EQ(world.dialogs.requests.at(0).fileName, u"a.pdf");
  EXPECT_EQ(world.dialogs.requests.at(0).initialFolder, path(u"C:\\Other\\"));
}

TEST_P(SaveAs, ABareNameStaysWholeWhateverTheLastFolder) {
  world.settings.set(u"SaveAsMRUPath", path(u"C:\\Other\\"));
  ask(u"a.pdf");
  EXPECT_EQ(world.dialogs.requests.at(0).fileName, u"a.pdf");
  EXPECT_EQ(world.dialogs.requests.at(0).initialFolder, u"");
}

TEST_P(SaveAs, ANameWithoutAPointSetsNoExtension) {
  ask(path(u"C:\\Saved\\readme"));
  EXPECT_EQ(world.dialogs.requests.at(0).defaultExtension, u"");
  EXPECT_EQ(world.record.lines(u"trace").size(), 2u);
}

TEST_P(SaveAs, APointInAFolderCountsAsAnExtensionsPoint) {
  ask(path(u"C:\\v1.0\\readme"));
  EXPECT_EQ(world.dialogs.requests.at(0).defaultExtension, path(u"0\\readme"));
}

TEST_P(SaveAs, CancellingReturnsAnEmptyTextAndChangesNothing) {
  world.dialogs.chosenPaths = {std::nullopt};
  EXPECT_EQ(ask(inSaved), u"");
  EXPECT_EQ(world.settings.get(u"SaveAsMRUPath"), std::nullopt);
}

TEST_P(SaveAs, AChoiceWithoutAFolderIsReturnedAndNotRemembered) {
  world.dialogs.chosenPaths = {u"b.pdf"};
  EXPECT_EQ(ask(inSaved), u"b.pdf");
  EXPECT_EQ(world.settings.get(u"SaveAsMRUPath"), std::nullopt);
}

TEST_P(SaveAs, AnyFailureReturnsAnEmptyText) {
  const auto runs = sweepFailures(
      GetParam(), [&](FakePlatform& swept) { swept.dialogs.chosenPaths = {inOther}; },
      [&](FakePlatform& swept) {
        const Settings settings{swept.settings, swept.services, swept.paths};
        frmSavePath form{swept.log, settings, swept.dialogs, swept.paths};
        return fill(u"'{}'", form.SaveAs(inSaved));
      });
  expectTranscript(runs, {u"EngineServices.settingsApplicationName: ''", u"SettingsStore.read: ''",
                          u"Dialogs.showSaveAs: ''", u"SettingsStore.write: ''"});
}

class YesNoPrompt : public testing::Test {
 protected:
  FakePlatform world;
  frmYesNoPrompt prompt{world.services, world.dialogs};
};

TEST_F(YesNoPrompt, WithoutALanguageTableTheEnglishMessageStands) {
  prompt.FileToBeDeletedPath = u"C:\\Saved\\a.pdf";
  prompt.Show();
  expectTranscript(
      world.record.lines(),
      {u"prepare form frmYesNoPrompt",
       u"prompt An attachment was saved to: C:\\Saved\\a.pdf\r\nWould you like to delete this file?"});
  const auto& shown = world.dialogs.prompts.at(0);
  EXPECT_EQ(shown.path, u"C:\\Saved\\a.pdf");
  EXPECT_EQ(shown.yes, u"Yes");
  EXPECT_EQ(shown.yesToAll, u"Yes to All");
  EXPECT_EQ(shown.no, u"No");
  EXPECT_EQ(shown.noToAll, u"No to All");
}

TEST_F(YesNoPrompt, TheLanguageTablesTextsReplaceEveryText) {
  const auto strings = std::make_shared<FakeLanguageStrings>(world.record);
  strings->texts = {{175, u"Titel"},    {176, u"Loeschen?"}, {177, u"Ja"},
                    {178, u"Ja, alle"}, {179, u"Nein"},      {180, u"Nein, alle"}};
  prompt.LangStrings = strings;
  prompt.FileToBeDeletedPath = u"C:\\a";
  prompt.Show();
  const auto& shown = world.dialogs.prompts.at(0);
  EXPECT_EQ(shown.caption, u"Titel");
  EXPECT_EQ(shown.message, u"Loeschen?");
  EXPECT_EQ(shown.yes, u"Ja");
  EXPECT_EQ(shown.yesToAll, u"Ja, alle");
  EXPECT_EQ(shown.no, u"Nein");
  EXPECT_EQ(shown.noToAll, u"Nein, alle");
  EXPECT_EQ(shown.path, u"C:\\a");
}

TEST_F(YesNoPrompt, ATextThatTheTableLacksStaysEnglish) {
  const auto strings = std::make_shared<FakeLanguageStrings>(world.record);
  strings->texts = {{177, u"Ja"}};
  prompt.LangStrings = strings;
  prompt.Show();
  EXPECT_EQ(world.dialogs.prompts.at(0).yes, u"Ja");
  EXPECT_EQ(world.dialogs.prompts.at(0).no, u"No");
}

TEST_F(YesNoPrompt, TheResponseIsTheButtonsAndZeroWithoutOne) {
  EXPECT_EQ(prompt.Response(), 0);
  world.dialogs.promptAnswers = {frmYesNoPrompt::ResponseYesToAll, frmYesNoPrompt::ResponseNo};
  prompt.Show();
  EXPECT_EQ(prompt.Response(), 4);
  prompt.Show();
  EXPECT_EQ(prompt.Response(), 1);
  prompt.Show();  // closed without a button
  EXPECT_EQ(prompt.Response(), 0);
}

TEST(YesNoPromptFailures, AFailureGoesToTheCaller) {
  const auto runs = sweepFailures(
      PathRules::windows(), [](FakePlatform&) {},
      [](FakePlatform& world) {
        frmYesNoPrompt prompt{world.services, world.dialogs};
        prompt.Show();
        return decimal(prompt.Response());
      });
  expectTranscript(runs, {u"EngineServices.prepareForm: throws EngineServices.prepareForm failed",
                          u"Dialogs.showDeletePrompt: throws Dialogs.showDeletePrompt failed"});
}

}  // namespace
}  // namespace quillfile
