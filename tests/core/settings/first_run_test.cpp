#include "core/settings/first_run.h"

#include "tests/fakes/both_rules.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

void ensure(FakePlatform& world) {
  const Settings settings{world.settings, world.services, world.paths};
  EnsureSettings(settings, world.services, world.paths, world.application);
}

class EnsureSettingsTest : public UnderBothRules {};
INSTANTIATE_TEST_SUITE_P(Paths, EnsureSettingsTest, bothRules(), rulesName);

std::vector<Text> firstRun(const Text& savePath) {
  return {u"setting Corvane/Quillfile/FolderName1 = Inbox",
          u"setting Corvane/Quillfile/FolderEntryId1 = Inbox-id",
          u"setting Corvane/Quillfile/FolderStoreId1 = store-1",
          u"setting Corvane/Quillfile/FolderCount = 1",
          u"setting Corvane/Quillfile/SaveAllAttachments = 1",
          u"setting Corvane/Quillfile/SubjectLineEnabled = 0",
          u"setting Corvane/Quillfile/SubjectLine = ",
          u"setting Corvane/Quillfile/AttachmentNameEnabled = 0",
          u"setting Corvane/Quillfile/AttachmentName = ",
          u"setting Corvane/Quillfile/EmailFromEnabled = 0",
          u"setting Corvane/Quillfile/EmailFrom = ",
          u"ensure folder " + savePath,
          u"setting Corvane/Quillfile/SavePath = " + savePath,
          u"setting Corvane/Quillfile/RemoveAttachment = 1",
          u"setting Corvane/Quillfile/AddURL = 1",
          u"setting Corvane/Quillfile/RetainPaperclip = 1",
          u"setting Corvane/Quillfile/PostProcess = 1",
          u"setting Corvane/Quillfile/ImitateOutlookFolders = 1",
          u"setting Corvane/Quillfile/AutomaticRename = 1",
          u"setting Corvane/Quillfile/ErrorPrompt = 1",
          u"setting Corvane/Quillfile/OptionalRenameWanted = 0",
          u"setting Corvane/Quillfile/SendDeleteAttachments = 0",
          u"setting Corvane/Quillfile/SendRemoveAttachments = 0"};
}

TEST_P(EnsureSettingsTest, TheFirstRunWritesTheTableAndASecondChangesNothing) {
  const Text savePath = world.paths.drives ? u"C:\\Users\\Ada\\Documents\\Saved Attachments\\"
                                           : u"/home/ada/Documents/Saved Attachments/";
  ensure(world);
  expectTranscript(world.record.lines(), firstRun(savePath));
  EXPECT_EQ(world.settings.get(u"AutomaticMode"), std::nullopt)
      << "automatic processing is the user's to turn on";

  world.record.clear();
  ensure(world);
  expectTranscript(world.record.lines(), {});
}

TEST_P(EnsureSettingsTest, NothingIsPutBetweenTheSpecialFolderAndItsSubfolder) {
  world.services.documentsFolder = u"X";
  ensure(world);
  EXPECT_EQ(world.settings.get(u"SavePath"), fill(u"XSaved Attachments{}", world.paths.separator));
}

TEST_P(EnsureSettingsTest, OneKeyAloneStopsTheFirstRun) {
  world.settings.set(u"SaveAllAttachments", u"");
  ensure(world);
  expectTranscript(world.record.lines(), {});
  EXPECT_EQ(world.settings.get(u"AddURL"), std::nullopt);
}

TEST_P(EnsureSettingsTest, AStoredNotFoundCountsAsAbsent) {
  world.settings.set(u"SaveAllAttachments", u"Not Found");
  ensure(world);
  EXPECT_EQ(world.settings.get(u"SaveAllAttachments"), u"1");
}

TEST(EnsureSettings, AnErrorEndsItAndTheKeysAlreadyWrittenStay) {
  FakePlatform world;
  world.application->session->folders.erase(DefaultFolder::inbox);
  ensure(world);
  expectTranscript(world.record.lines(), {u"error 0 Quillfile.EnsureSettings: Error occurred at line 3.  "
                                          u"Reason: The folder could not be found"});

  const auto written = [](FakePlatform& swept) {
    ensure(swept);
    return decimal(static_cast<std::int64_t>(swept.record.lines(u"setting ").size()));
  };
  const auto runs = sweepFailures(
      PathRules::windows(), [](FakePlatform&) {}, written);
  std::vector<Text> expected;
  const auto fails = [&](TextView call, std::int32_t settingsWritten, std::int32_t step) {
    expected.push_back(
        fill(u"{}: {}; error 0 Quillfile.EnsureSettings: Error occurred at line {}.  Reason: {} failed", call,
             settingsWritten, step, call));
  };
  fails(u"Application.nameSpace", 0, 1);
  fails(u"EngineServices.settingsApplicationName", 0, 2);
  fails(u"SettingsStore.read", 0, 2);
  fails(u"NameSpace.defaultFolder", 0, 3);
  fails(u"Folder.name", 0, 3);
  fails(u"SettingsStore.write", 0, 3);
  fails(u"Folder.entryId", 1, 3);
  fails(u"SettingsStore.write", 1, 3);
  fails(u"Folder.storeId", 2, 3);
  for (std::int32_t n = 2; n <= 10; ++n) fails(u"SettingsStore.write", n, n == 2 ? 3 : 4);
  fails(u"EngineServices.specialFolderPath", 11, 5);
  fails(u"EngineServices.ensureFolder", 11, 5);
  for (std::int32_t n = 11; n <= 21; ++n) fails(u"SettingsStore.write", n, n == 11 ? 5 : 6);
  expectTranscript(runs, expected);
}

}  // namespace
}  // namespace quillfile
