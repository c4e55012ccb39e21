// The registered component's life: created by ProgID, started, opened, stopped, let go.
#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/windows/com/bstr.h"
#include "tests/windows/fakes/engine_world.h"

namespace quillfile::windows {
namespace {

Text textFrom(HRESULT (STDMETHODCALLTYPE ::IModuleAPI::*get)(BSTR*), ::IModuleAPI* module) {
  Bstr text;
  EXPECT_EQ((module->*get)(text.out()), S_OK);
  return text.text();
}

using Lines = std::vector<Text>;

TEST(Component, ItSaysWhatItIs) {
  EngineWorld world;
  world.create();
  EXPECT_EQ(textFrom(&::IModuleAPI::get_RegistryName, world.module.get()), u"Quillfile");
  EXPECT_EQ(textFrom(&::IModuleAPI::get_FriendlyName, world.module.get()), u"Quillfile");
  EXPECT_EQ(textFrom(&::IModuleAPI::get_Version, world.module.get()), fromUtf8(QUILLFILE_VERSION));
}

TEST(Component, TheFirstStartWritesTheFirstRunsSettings) {
  EngineWorld world;
  wchar_t temp[MAX_PATH];
  GetTempPathW(MAX_PATH, temp);
  world.documents = fill(u"{}quillfile-first-run\\", view(temp));

  EXPECT_EQ(world.start(), 0);

  EXPECT_EQ(world.asked, Lines{u"PrepareModuleCollection Quillfile"});
  EXPECT_EQ(world.errors, Lines{});
  EXPECT_EQ(world.setting(u"SaveAllAttachments"), u"1");
  EXPECT_EQ(world.setting(u"FolderName1"), u"Inbox");
  EXPECT_EQ(world.setting(u"FolderEntryId1"), u"folder-6");
  EXPECT_EQ(world.setting(u"FolderStoreId1"), u"store");
  const Text saved = world.documents + u"Saved Attachments\\";
  EXPECT_EQ(world.setting(u"SavePath"), saved);
  EXPECT_NE(GetFileAttributesW(wide(saved)), INVALID_FILE_ATTRIBUTES);
  RemoveDirectoryW(wide(saved));
  RemoveDirectoryW(wide(world.documents));
}

TEST(Component, AnOpenedExplorerHasItsFoldersWatchedAndItsButton) {
  EngineWorld world;
  world.set(u"SaveAllAttachments", u"1");
  world.set(u"HotkeyEnabled", u"1");
  world.set(u"HotkeyMods", u"2");
  world.start();
  world.asked.clear();

  EXPECT_EQ(world.openExplorer(), 0);

  EXPECT_EQ(world.asked,
            (Lines{u"WatchMonitoredFolders QuillfileWineTests Quillfile", u"WatchFolder folder-3 store",
                   u"WatchFolder folder-5 store", u"AddButton Quillfile", u"RegisterHotkey 2 114"}));
}

TEST(Component, AFailureOfCEExplorerOpenReachesTheEarlyBoundCallerWithItsDescription) {
  EngineWorld world;
  world.set(u"SaveAllAttachments", u"1");
  world.start();
  world.host->on(u"AddButton", [](const Call&) -> Variant {
    throw Failure{E_ACCESSDENIED, u"No buttons today"};
  });

  LONG result = -1;
  const HRESULT outcome = world.module->CEExplorerOpen(world.outlook.explorer.get(), &result);

  EXPECT_EQ(outcome, E_ACCESSDENIED);
  Ptr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.out()), S_OK);
  Bstr description, source;
  info->GetDescription(description.out());
  info->GetSource(source.out());
  EXPECT_EQ(description.text(), u"No buttons today");
  EXPECT_EQ(source.text(), u"Quillfile");
}

TEST(Component, AFailureOfCESendMessageReachesTheLateBoundCallerWithItsDescription) {
  EngineWorld world;
  world.set(u"SaveAllAttachments", u"1");
  world.start();
  world.host->on(u"RemoveButton", [](const Call&) -> Variant {
    throw Failure{E_ACCESSDENIED, u"It is stuck"};
  });

  const Object late{world.module.as<IDispatch>(IID_IModuleAPI)};
  try {
    late.call(u"CESendMessage", u"RefreshButton");
    FAIL() << "the failure was kept";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.description, u"It is stuck");
  }
  EXPECT_EQ(late.call(u"CESendMessage", u"refreshbutton").number(), 0);
}

TEST(Component, AnOutputThatIsMissingIsRefused) {
  EngineWorld world;
  world.create();
  EXPECT_EQ(world.module->get_Version(nullptr), E_POINTER);
  EXPECT_EQ(world.module->CEShutdown(nullptr), E_POINTER);
  LONG result = 0;
  EXPECT_EQ(world.module->CEStartup(nullptr, &result), E_POINTER);
  EXPECT_EQ(world.module->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST(Component, StoppingTellsTheLogAndTheLibraryAndLetsGoOfEverything) {
  const long before = liveObjects;
  {
    EngineWorld world;
    world.set(u"SaveAllAttachments", u"1");
    world.start();
    world.openExplorer();
    world.asked.clear();
    EXPECT_EQ(world.stop(), 0);
    EXPECT_EQ(world.asked, Lines{u"CleanUp"});
    EXPECT_EQ(world.trace, Lines{u"Shutdown: Quillfile is stopping"});
    EXPECT_EQ(world.outlook.explorer->listeners(explorerEventsId), 0u);
    EXPECT_EQ(world.errors, Lines{});
  }
  EXPECT_EQ(liveObjects, before) << "fake objects that somebody still holds";
}

TEST(Component, TheLibraryCanBeUnloadedOnceTheComponentIsGone) {
  EngineWorld world;
  world.start();
  const HMODULE library = GetModuleHandleW(L"quillfile.dll");
  ASSERT_NE(library, nullptr);
  const auto canUnload = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void*>(GetProcAddress(library, "DllCanUnloadNow")));
  EXPECT_EQ(canUnload(), S_FALSE);
  world.stop();
  world.module = {};
  EXPECT_EQ(canUnload(), S_OK);
}

}  // namespace
}  // namespace quillfile::windows
