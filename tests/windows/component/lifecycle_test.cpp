// The registered component's life: created by ProgID, started, opened, stopped, let go.
#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/windows/com/bstr.h"
#include "tests/fakes/transcript.h"
#include "tests/windows/fakes/com_world.h"

namespace quillfile::windows {
namespace {

class Component : public testing::Test {
 protected:
  Component() { world_.set(u"SaveAllAttachments", u"1"); }

  Text textFrom(HRESULT (STDMETHODCALLTYPE ::IModuleAPI::*get)(BSTR*)) {
    Bstr text;
    EXPECT_EQ((world_.module.get()->*get)(text.out()), S_OK);
    return text.text();
  }

  FakePlatform fakes_;
  ComWorld world_{fakes_};
};

TEST_F(Component, SaysWhatItIs) {
  world_.create();
  EXPECT_EQ(textFrom(&::IModuleAPI::get_RegistryName), u"Quillfile");
  EXPECT_EQ(textFrom(&::IModuleAPI::get_FriendlyName), u"Quillfile");
  EXPECT_EQ(textFrom(&::IModuleAPI::get_Version), fromUtf8(QUILLFILE_VERSION));
}

TEST_F(Component, HasTheButtonAddedToAnOpenedExplorer) {
  world_.set(u"HotkeyEnabled", u"1");
  world_.set(u"HotkeyMods", u"2");

  EXPECT_EQ(world_.start(), 0);
  EXPECT_EQ(world_.openExplorer(), 0);

  expectTranscript(fakes_.record.lines(),
                   {u"prepare module collection Quillfile", u"watch monitored folders Corvane Quillfile",
                    u"watch folder Deleted Items-id store-1", u"watch folder Sent Items-id store-1",
                    u"add button Quillfile", u"register hotkey 2 114"});
  EXPECT_EQ(fakes_.explorer->listeners.count(), 1u);  // the bridge to the automation object
}

TEST_F(Component, HandsAFailureOfCEExplorerOpenToTheEarlyBoundCaller) {
  world_.start();
  fakes_.record.failOn(u"ModuleHost.addButton", {E_ACCESSDENIED, u"No buttons today"});

  LONG result = -1;
  const HRESULT outcome =
      world_.module->CEExplorerOpen(world_.outlook.explorer(fakes_.explorer).object().get(), &result);

  EXPECT_EQ(outcome, E_ACCESSDENIED);
  EXPECT_EQ(result, 0);
  Ptr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.out()), S_OK);
  Bstr description, source;
  info->GetDescription(description.out());
  info->GetSource(source.out());
  EXPECT_EQ(description.text(), u"No buttons today");
  EXPECT_EQ(source.text(), u"Quillfile");
}

TEST_F(Component, HandsAFailureOfCESendMessageToTheLateBoundCaller) {
  world_.start();
  fakes_.record.failOn(u"ModuleHost.removeButton", {E_ACCESSDENIED, u"It is stuck"});
  const Object late{world_.module.as<IDispatch>(IID_IModuleAPI)};
  try {
    late.call(u"CESendMessage", u"RefreshButton");
    FAIL() << "the failure was kept";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.description, u"It is stuck");
  }
  EXPECT_EQ(late.call(u"CESendMessage", u"refreshbutton").number(), 0);
}

TEST_F(Component, RefusesAMissingOutput) {
  world_.create();
  EXPECT_EQ(world_.module->get_Version(nullptr), E_POINTER);
  EXPECT_EQ(world_.module->CEShutdown(nullptr), E_POINTER);
  LONG result = 0;
  EXPECT_EQ(world_.module->CEStartup(nullptr, &result), E_POINTER);
  EXPECT_EQ(world_.module->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(Component, MakesAFreshLogObjectForEachLine) {
  world_.start();
  world_.openExplorer();
  LONG result = 0;
  world_.module->CEExplorerClose(nullptr, &result);
  world_.module->CEExplorerClose(nullptr, &result);
  EXPECT_EQ(world_.logsMade, 2);
}

TEST_F(Component, LetsGoOfEverythingWhenItStops) {
  {
    FakePlatform fakes;
    ComWorld world{fakes};
    world.set(u"SaveAllAttachments", u"1");
    world.start();
    world.openExplorer();
    const auto explorer = world.outlook.explorer(fakes.explorer).object();
    fakes.record.clear();
    EXPECT_EQ(world.stop(), 0);
    expectTranscript(fakes.record.lines(),
                     {u"trace Shutdown: Quillfile is stopping", u"mail helper: clean up"});
    EXPECT_EQ(static_cast<Scripted*>(explorer.get())->listeners(explorerEventsId), 0u);
  }
  world_.module = {};
}

TEST(ComponentObjects, NoneIsLeftOnceTheWorldIsGone) {
  const long before = liveObjects;
  {
    FakePlatform fakes;
    ComWorld world{fakes};
    world.set(u"SaveAllAttachments", u"1");
    world.start();
    world.openExplorer();
    world.stop();
  }
  EXPECT_EQ(liveObjects, before);
}

TEST_F(Component, LetsItsLibraryBeUnloadedOnceItIsGone) {
  world_.start();
  const HMODULE library = GetModuleHandleW(L"quillfile.dll");
  ASSERT_NE(library, nullptr);
  const auto canUnload = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(
      reinterpret_cast<void*>(GetProcAddress(library, "DllCanUnloadNow")));
  EXPECT_EQ(canUnload(), S_FALSE);
  world_.stop();
  world_.module = {};
  EXPECT_EQ(canUnload(), S_OK);
}

}  // namespace
}  // namespace quillfile::windows
