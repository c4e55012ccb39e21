// The life of the module: start-up, explorers, messages, shutdown.
#include "tests/core/module/module_world.h"

namespace quillfile {
namespace {

class CQuillfileTest : public testing::Test {
 protected:
  FakePlatform world;
  ModuleUnderTest module{world};
};

const std::vector<Text> explorerSetUp{u"watch monitored folders Corvane Quillfile",
                                      u"watch folder Deleted Items-id store-1",
                                      u"deleted items: reset prompt",
                                      u"watch folder Sent Items-id store-1",
                                      u"add button Quillfile",
                                      u"tracking: no explorer",
                                      u"tracking: explorer",
                                      u"tracking: create lists"};

TEST_F(CQuillfileTest, ItSaysItsNamesAndItsVersion) {
  EXPECT_EQ(module.api.RegistryName(), u"Quillfile");
  EXPECT_EQ(module.api.FriendlyName(), u"Quillfile");
  EXPECT_EQ(module.api.Version(), u"4.0.84");
}

TEST_F(CQuillfileTest, StartUpKeepsTheEngineAndHooksNothing) {
  EXPECT_EQ(module.api.CEStartup(world.host), 0);
  expectTranscript(world.record.lines(), {u"prepare module collection Quillfile"});
  EXPECT_EQ(module.state.engine, world.host);
  EXPECT_EQ(module.state.outlookApp, world.application);
  EXPECT_NE(module.state.moduleCollection, nullptr);
}

TEST(CQuillfileStart, StartUpWritesTheFirstRunSettingsOnce) {
  FakePlatform world;
  ModuleUnderTest module{world};
  world.settings.set(u"SaveAllAttachments", u"Not Found");
  module.api.CEStartup(world.host);
  EXPECT_EQ(world.record.lines(u"setting ").size(), 22u);
  world.record.clear();
  module.api.CEStartup(world.host);
  expectTranscript(world.record.lines(), {u"prepare module collection Quillfile"});
}

TEST_F(CQuillfileTest, ASecondStartUpKeepsTheFirstEngine) {
  module.start();
  const auto other = std::make_shared<FakeModuleHost>(world.record, world.application);
  EXPECT_EQ(module.api.CEStartup(other), 0);
  EXPECT_EQ(module.state.engine, world.host);
}

TEST_F(CQuillfileTest, AnExplorerBeforeStartUpIsNotSetUp) {
  EXPECT_EQ(module.api.CEExplorerOpen(world.explorer), 0);
  expectTranscript(world.record.lines(), {});
}

TEST_F(CQuillfileTest, AnExplorerIsSetUpInOrder) {
  module.start();
  EXPECT_EQ(module.api.CEExplorerOpen(world.explorer), 0);
  expectTranscript(world.record.lines(), explorerSetUp);
  EXPECT_EQ(module.state.deletedFolderEntryId, u"Deleted Items-id");
  EXPECT_EQ(module.state.deletedFolderStoreId, u"store-1");
  EXPECT_EQ(module.state.sentFolderEntryId, u"Sent Items-id");
  EXPECT_EQ(module.state.sentFolderStoreId, u"store-1");
  EXPECT_EQ(module.state.outboxEntryId, u"Outbox-id");
  EXPECT_EQ(module.state.draftsEntryId, u"Drafts-id");
}

TEST_F(CQuillfileTest, EachFurtherExplorerIsSetUpToo) {
  module.open();
  module.api.CEExplorerOpen(world.explorer);
  expectTranscript(world.record.lines(), explorerSetUp);
}

TEST_F(CQuillfileTest, TheButtonAndTheHotkeyFollowTheSettings) {
  world.settings.set(u"EnableButton", u"0");
  world.settings.set(u"HotkeyEnabled", u"1");
  world.settings.set(u"HotkeyMods", u"2");
  module.start();
  module.api.CEExplorerOpen(world.explorer);
  expectTranscript(
      world.record.lines(),
      {u"watch monitored folders Corvane Quillfile", u"watch folder Deleted Items-id store-1",
       u"deleted items: reset prompt", u"watch folder Sent Items-id store-1", u"register hotkey 2 114",
       u"tracking: no explorer", u"tracking: explorer", u"tracking: create lists"});
}

TEST_F(CQuillfileTest, AFailureInTheSetUpGoesBackToTheEngineAndLaterStepsAreNotDone) {
  world.settings.set(u"HotkeyEnabled", u"often");
  module.start();
  EXPECT_THROW(module.api.CEExplorerOpen(world.explorer), Failure);
  expectTranscript(
      world.record.lines(),
      {u"watch monitored folders Corvane Quillfile", u"watch folder Deleted Items-id store-1",
       u"deleted items: reset prompt", u"watch folder Sent Items-id store-1", u"add button Quillfile"});
}

TEST_F(CQuillfileTest, ClosingAnExplorerIsTracedAndTheOtherWindowEventsAreNothing) {
  EXPECT_EQ(module.api.CEExplorerClose(), 0);
  EXPECT_EQ(module.api.CEExplorerActivate(), 0);
  EXPECT_EQ(module.api.CEExplorerDeactivate(), 0);
  EXPECT_EQ(module.api.CEInspectorClose(), 0);
  EXPECT_EQ(module.api.CEInspectorActivate(), 0);
  EXPECT_EQ(module.api.CEInspectorDeactivate(), 0);
  expectTranscript(world.record.lines(), {u"trace CEExplorerClose: CEExplorerClose occurred"});
}

TEST_F(CQuillfileTest, RefreshingTheHotkeyTakesTheOldOneAwayFirst) {
  module.start();
  world.settings.set(u"OldMods", u"4");
  module.api.CESendMessage(u"RefreshHotkey");
  expectTranscript(world.record.lines(), {u"unregister hotkey 4 114"});

  world.record.clear();
  world.settings.set(u"HotkeyEnabled", u"1");
  world.settings.set(u"HotkeyValue", u"115");
  EXPECT_EQ(module.api.CESendMessage(u"RefreshHotkey"), 0);
  expectTranscript(world.record.lines(), {u"unregister hotkey 4 114", u"register hotkey 0 115"});
}

TEST_F(CQuillfileTest, RefreshingTheButtonPutsItOnTheActiveExplorer) {
  module.start();
  EXPECT_EQ(module.api.CESendMessage(u"RefreshButton"), 0);
  expectTranscript(world.record.lines(), {u"remove button Quillfile", u"add button Quillfile"});

  world.record.clear();
  world.settings.set(u"EnableButton", u"0");
  module.api.CESendMessage(u"RefreshButton");
  expectTranscript(world.record.lines(), {u"remove button Quillfile"});
}

TEST_F(CQuillfileTest, MessagesAreComparedExactly) {
  module.start();
  for (const TextView message :
       {u"refreshhotkey", u"REFRESHBUTTON", u"RefreshHotkey ", u"ButtonClicked", u""})
    EXPECT_EQ(module.api.CESendMessage(message), 0);
  expectTranscript(world.record.lines(), {});
}

TEST_F(CQuillfileTest, AMessageBeforeStartUpFailsAndDoesNotCrash) {
  EXPECT_THROW(module.api.CESendMessage(u"RefreshButton"), Failure);
  EXPECT_THROW(module.api.CESendMessage(u"RefreshHotkey"), Failure);
}

// A reference that tells when the last holder lets go of it.
template <class T>
Ref<T> watched(const Ref<T>& object, Recorder& record, TextView name) {
  return {object.get(), [object, &record, name](T*) { record.did(fill(u"{} released", name)); }};
}

TEST_F(CQuillfileTest, ShutdownReleasesInOrder) {
  module.open();
  auto& state = module.state;
  state.engine = watched(state.engine, world.record, u"engine");
  state.outlookApp = watched(state.outlookApp, world.record, u"application");
  state.moduleCollection = watched(state.moduleCollection, world.record, u"collection");
  EXPECT_EQ(module.api.CEShutdown(), 0);
  expectTranscript(
      world.record.lines(),
      {u"trace Shutdown: Quillfile is stopping", u"mail helper: clean up", u"tracking: release lists",
       u"tracking: no explorer", u"tracking: clear explorer items", u"tracking: release all item slots",
       u"collection released", u"application released", u"engine released"});
  EXPECT_EQ(module.state.engine, nullptr);
  EXPECT_EQ(module.state.outlookApp, nullptr);
  EXPECT_EQ(module.state.moduleCollection, nullptr);
}

TEST(CQuillfileFailures, StartUpReportsAndReturnsZero) {
  const auto act = [](FakePlatform& world) {
    ModuleUnderTest module{world};
    return decimal(module.api.CEStartup(world.host));
  };
  const auto report = [](TextView call, TextView procedure, std::int32_t line) {
    return fill(u"{}: 0; error 0 Quillfile.{}: Error occurred at line {}.  Reason: {} failed", call,
                procedure, line, call);
  };
  expectTranscript(sweepFailures(
                       PathRules::windows(), [](FakePlatform&) {}, act),
                   {report(u"EngineServices.prepareModuleCollection", u"CEStartup", 1),
                    report(u"ModuleHost.application", u"CEStartup", 2),
                    report(u"Application.nameSpace", u"EnsureSettings", 1),
                    report(u"EngineServices.settingsApplicationName", u"EnsureSettings", 2),
                    report(u"SettingsStore.read", u"EnsureSettings", 2)});
}

TEST(CQuillfileFailures, EveryStepOfTheExplorerSetUpLetsItsFailureOut) {
  const auto act = [](FakePlatform& world) {
    ModuleUnderTest module{world};
    module.state.engine = world.host;
    module.state.outlookApp = world.application;
    return decimal(module.api.CEExplorerOpen(world.explorer));
  };
  const auto arrange = [](FakePlatform& world) { world.settings.set(u"HotkeyEnabled", u"1"); };
  std::vector<Text> expected;
  for (const TextView call : {u"Application.nameSpace",
                              u"EngineServices.settingsApplicationName",
                              u"ModuleHost.watchMonitoredFolders",
                              u"NameSpace.defaultFolder",
                              u"Folder.entryId",
                              u"Folder.storeId",
                              u"ModuleHost.watchFolder",
                              u"NameSpace.defaultFolder",
                              u"Folder.entryId",
                              u"NameSpace.defaultFolder",
                              u"Folder.entryId",
                              u"NameSpace.defaultFolder",
                              u"Folder.entryId",
                              u"Folder.storeId",
                              u"ModuleHost.watchFolder",
                              u"SettingsStore.read",
                              u"ModuleHost.addButton",
                              u"SettingsStore.read",
                              u"SettingsStore.read",
                              u"SettingsStore.read",
                              u"ModuleHost.registerHotkey",
                              u"Tracking.setExplorer",
                              u"Tracking.setExplorer"})
    expected.push_back(fill(u"{}: throws {} failed", call, call));
  expectTranscript(sweepFailures(PathRules::windows(), arrange, act), expected);
}

TEST(CQuillfileFailures, MessagesLetTheirFailuresOut) {
  const auto act = [](FakePlatform& world) {
    ModuleUnderTest module{world};
    module.state.engine = world.host;
    module.state.outlookApp = world.application;
    module.api.CESendMessage(u"RefreshHotkey");
    return decimal(module.api.CESendMessage(u"RefreshButton"));
  };
  std::vector<Text> expected;
  for (const TextView call :
       {u"EngineServices.settingsApplicationName", u"SettingsStore.read", u"SettingsStore.read",
        u"ModuleHost.unregisterHotkey", u"SettingsStore.read", u"ModuleHost.removeButton",
        u"SettingsStore.read", u"Application.activeExplorer", u"ModuleHost.addButton"})
    expected.push_back(fill(u"{}: throws {} failed", call, call));
  expectTranscript(sweepFailures(
                       PathRules::windows(), [](FakePlatform&) {}, act),
                   expected);
}

TEST(CQuillfileFailures, ShutdownReportsAtLevelOneAndReturnsZero) {
  const auto act = [](FakePlatform& world) {
    ModuleUnderTest module{world};
    return decimal(module.api.CEShutdown());
  };
  const auto report = [](TextView call) {
    return fill(u"{}: 0; error 1 Quillfile.CEShutdown: Error ocurred during shutdown.  Reason: {} failed",
                call, call);
  };
  expectTranscript(sweepFailures(
                       PathRules::windows(), [](FakePlatform&) {}, act),
                   {report(u"MailHelper.cleanUp"), report(u"Tracking.setExplorer")});
}

}  // namespace
}  // namespace quillfile
