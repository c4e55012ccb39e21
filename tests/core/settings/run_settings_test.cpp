#include "core/settings/run_settings.h"

#include "tests/fakes/failure_sweep.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

void setAll(FakePlatform& world) {
  for (const TextView key : {u"AutomaticMode", u"SendDeleteAttachments", u"SendRemoveAttachments",
                             u"ErrorPrompt", u"SaveAllAttachments", u"AddURL", u"RemoveAttachment",
                             u"ReadWrite", u"ImitateOutlookFolders", u"PostProcess", u"AutomaticRename"})
    world.settings.set(key, u"1");
  world.settings.set(u"SavePath", u"C:\\Saved\\");
}

Text read(FakePlatform& world) {
  const Settings settings{world.settings, world.services, world.paths};
  const auto run = ReadRunSettings(settings);
  return fill(u"{} {}{}{}{}{}{} {} '{}' {} {} {}", run.automaticMode, int{run.sendDeleteAttachments},
              int{run.sendRemoveAttachments}, int{run.errorPrompt}, int{run.saveAllAttachments},
              int{run.addURL}, int{run.removeAttachment}, static_cast<std::int32_t>(run.readWrite),
              run.savePath, int{run.imitateOutlookFolders}, static_cast<std::int32_t>(run.postProcess),
              int{run.automaticRename});
}

TEST(ReadRunSettings, WithoutSettingsTheDefaultsApply) {
  FakePlatform world;
  EXPECT_EQ(read(world), u"0 000000 0 'C:\\' 0 0 1");
}

TEST(ReadRunSettings, EveryFieldComesFromItsKey) {
  FakePlatform world;
  setAll(world);
  EXPECT_EQ(read(world), u"1 111111 1 'C:\\Saved\\' 1 1 1");
}

TEST(ReadRunSettings, ValuesBeyondTheKnownOnesAreKept) {
  FakePlatform world;
  setAll(world);
  world.settings.set(u"AutomaticMode", u"2");
  world.settings.set(u"ReadWrite", u"7");
  world.settings.set(u"PostProcess", u"-3");
  EXPECT_EQ(read(world), u"2 111111 7 'C:\\Saved\\' 1 -3 1");
}

TEST(ReadRunSettings, AValueThatIsNoNumberReadsAsZeroAndTheNextKeyIsRead) {
  FakePlatform world;
  setAll(world);
  world.settings.set(u"RemoveAttachment", u"yes");
  world.settings.set(u"AutomaticRename", u"");
  EXPECT_EQ(read(world), u"1 111110 1 'C:\\Saved\\' 1 1 0");
  expectTranscript(world.record.lines(), {});
}

TEST(ReadRunSettings, AfterAnyFailureTheOtherKeysAreStillRead) {
  expectTranscript(
      sweepFailures(PathRules::windows(), setAll, read),
      {u"EngineServices.settingsApplicationName: 0 111111 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 0 111111 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 011111 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 101111 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 110111 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 111011 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 111101 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 111110 1 'C:\\Saved\\' 1 1 1",
       u"SettingsStore.read: 1 111111 0 'C:\\Saved\\' 1 1 1", u"SettingsStore.read: 1 111111 1 '' 1 1 1",
       u"EngineServices.expandPath: 1 111111 1 '' 1 1 1",
       u"SettingsStore.read: 1 111111 1 'C:\\Saved\\' 0 1 1",
       u"SettingsStore.read: 1 111111 1 'C:\\Saved\\' 1 0 1",
       u"SettingsStore.read: 1 111111 1 'C:\\Saved\\' 1 1 0"});
}

}  // namespace
}  // namespace quillfile
