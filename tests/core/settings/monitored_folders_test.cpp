#include "core/settings/monitored_folders.h"

#include "tests/fakes/failure_sweep.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

Text monitored(FakePlatform& world) {
  const Settings settings{world.settings, world.services, world.paths};
  return IsSentFolderMonitored(settings, u"Sent Items-id") ? u"yes" : u"no";
}

TEST(IsSentFolderMonitored, WithoutAFolderCountOneEntryIsReadAndAnAbsentOneMatchesNothing) {
  FakePlatform world;
  EXPECT_EQ(monitored(world), u"no");
  world.settings.set(u"FolderEntryId1", u"Sent Items-id");
  EXPECT_EQ(monitored(world), u"yes");
}

TEST(IsSentFolderMonitored, OnlyTheFirstFolderCountEntriesCount) {
  FakePlatform world;
  world.settings.set(u"FolderCount", u"2");
  world.settings.set(u"FolderEntryId3", u"Sent Items-id");
  EXPECT_EQ(monitored(world), u"no");
  world.settings.set(u"FolderCount", u"3");
  EXPECT_EQ(monitored(world), u"yes");
  world.settings.set(u"FolderCount", u"0");
  EXPECT_EQ(monitored(world), u"no");
}

TEST(IsSentFolderMonitored, IdsAreComparedExactly) {
  FakePlatform world;
  world.settings.set(u"FolderEntryId1", u"SENT ITEMS-ID");
  EXPECT_EQ(monitored(world), u"no");
}

TEST(IsSentFolderMonitored, AllEntriesAreReadAndAFailureAfterAMatchShows) {
  const auto arrange = [](FakePlatform& world) {
    world.settings.set(u"FolderCount", u"2");
    world.settings.set(u"FolderEntryId1", u"Sent Items-id");
  };
  expectTranscript(
      sweepFailures(PathRules::windows(), arrange, monitored),
      {u"EngineServices.settingsApplicationName: throws EngineServices.settingsApplicationName failed",
       u"SettingsStore.read: throws SettingsStore.read failed",
       u"SettingsStore.read: throws SettingsStore.read failed",
       u"SettingsStore.read: throws SettingsStore.read failed"});
}

}  // namespace
}  // namespace quillfile
