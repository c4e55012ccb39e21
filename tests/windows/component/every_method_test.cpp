// Every method of every interface, once early-bound and once late-bound.
#include <gtest/gtest.h>

#include "hosts/windows/com/bstr.h"
#include "tests/windows/fakes/com_world.h"
#include "tests/windows/fakes/desktop.h"

namespace quillfile::windows {
namespace {

class EveryMethod : public testing::Test {
 protected:
  EveryMethod() {
    world_.set(u"SaveAllAttachments", u"1");
    world_.create();
  }

  FakePlatform fakes_;
  ComWorld world_{fakes_};
  Desktop desktop_{fakes_.record};
  const Ptr<IDispatch> explorer_ = world_.outlook.explorer(fakes_.explorer).object();
  const Ptr<IDispatch> item_ = world_.outlook.item(fakes_.addItem({.subject = u"Invoices"})).object();
  const Ptr<IDispatch> inspector_ =
      world_.outlook.inspector(fakes_.openInspector(fakes_.addItem({.subject = u"Open"}))).object();
};

TEST_F(EveryMethod, OfIModuleAPIEarlyBound) {
  auto& module = *world_.module.get();
  IDispatch* engine = world_.host.get();
  VARIANT none{};
  const auto expect = [](LONG wanted, auto&& call) {
    LONG result = -1;
    EXPECT_EQ(call(&result), S_OK);
    EXPECT_EQ(result, wanted);
  };
  expect(0, [&](LONG* out) { return module.CEStartup(&engine, out); });
  expect(0, [&](LONG* out) { return module.CESendMessage(Bstr{u"RefreshHotkey"}.get(), out); });
  expect(0, [&](LONG* out) { return module.CEExplorerOpen(explorer_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEExplorerActivate(explorer_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEExplorerDeactivate(explorer_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorOpen(inspector_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorActivate(inspector_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorDeactivate(inspector_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorClose(inspector_.get(), out); });
  expect(1, [&](LONG* out) { return module.CEButtonAction(2, none, out); });
  expect(1, [&](LONG* out) { return module.CEButtonAction(1, none, out); });
  expect(0, [&](LONG* out) { return module.CEMenuAction(1, none, out); });
  expect(0, [&](LONG* out) { return module.CEHotkeyAction(none, out); });
  expect(0, [&](LONG* out) {
    return module.CEItemEvent(1, item_.get(), none, Bstr{u"folder-6"}.get(), none, out);
  });
  expect(0, [&](LONG* out) { return module.CEExplorerClose(explorer_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEShutdown(out); });
}

TEST_F(EveryMethod, OfIModuleAPILateBound) {
  const Object module{world_.module.as<IDispatch>(IID_IModuleAPI)};
  Ptr<IDispatch> engine{world_.host.get()};
  const Variant explorer{explorer_}, inspector{inspector_}, item{item_};

  EXPECT_EQ(module.get(u"RegistryName").text(), u"Quillfile");
  EXPECT_EQ(module.get(u"FriendlyName").text(), u"Quillfile");
  EXPECT_EQ(module.get(u"Version").text(), fromUtf8(QUILLFILE_VERSION));
  const Variant none;
  EXPECT_EQ(module.call(u"CEStartup", Variant::reference(engine)).number(), 0);
  EXPECT_EQ(module.call(u"CESendMessage", u"RefreshHotkey").number(), 0);
  EXPECT_EQ(module.call(u"CEExplorerOpen", explorer).number(), 0);
  EXPECT_EQ(module.call(u"CEExplorerActivate", explorer).number(), 0);
  EXPECT_EQ(module.call(u"CEExplorerDeactivate", explorer).number(), 0);
  EXPECT_EQ(module.call(u"CEInspectorOpen", inspector).number(), 0);
  EXPECT_EQ(module.call(u"CEInspectorActivate", inspector).number(), 0);
  EXPECT_EQ(module.call(u"CEInspectorDeactivate", inspector).number(), 0);
  EXPECT_EQ(module.call(u"CEInspectorClose", inspector).number(), 0);
  EXPECT_EQ(module.call(u"CEButtonAction", 2, none).number(), 1);
  EXPECT_EQ(module.call(u"CEMenuAction", 1, none).number(), 0);
  EXPECT_EQ(module.call(u"CEHotkeyAction", none).number(), 0);
  EXPECT_EQ(module.call(u"CEItemEvent", 4, item, none, u"folder-6", u"store").number(), 0);
  EXPECT_EQ(module.call(u"CEExplorerClose", explorer).number(), 0);
  EXPECT_EQ(module.call(u"CEShutdown").number(), 0);
}

TEST_F(EveryMethod, OfICQuillfileEarlyBound) {
  world_.start();
  world_.openExplorer();
  const auto lists = world_.module.as<::ICQuillfile>();
  ASSERT_TRUE(lists);
  VARIANT_BOOL result = VARIANT_FALSE;
  EXPECT_EQ(lists->AddToPendingList(Bstr{u"m_olMailItem99"}.get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
  EXPECT_EQ(lists->IsOnPendingList(Bstr{u"m_olMailItem99"}.get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
  EXPECT_EQ(lists->AddToUserSavedList(Bstr{u"an id"}.get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  EXPECT_EQ(lists->IsOnUserSavedList(Bstr{u"an id"}.get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_TRUE);
  EXPECT_EQ(lists->PurgePendingList(), S_OK);
  EXPECT_EQ(lists->IsOnPendingList(Bstr{u"m_olMailItem99"}.get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
  EXPECT_EQ(lists->DeleteFromDrafts(Bstr{u"no such item"}.get(), &result), S_OK);
  EXPECT_EQ(result, VARIANT_FALSE);
}

TEST_F(EveryMethod, OfICQuillfileLateBound) {
  world_.start();
  world_.openExplorer();
  const Object lists = Object{world_.module.as<IDispatch>()};  // the default interface
  EXPECT_TRUE(lists.call(u"AddToPendingList", u"m_olMailItem99").boolean());
  EXPECT_TRUE(lists.call(u"IsOnPendingList", u"m_olMailItem99").boolean());
  EXPECT_FALSE(lists.call(u"AddToUserSavedList", u"an id").boolean());
  EXPECT_TRUE(lists.call(u"IsOnUserSavedList", u"an id").boolean());
  lists.run(u"PurgePendingList");
  EXPECT_FALSE(lists.call(u"IsOnPendingList", u"m_olMailItem99").boolean());
  EXPECT_FALSE(lists.call(u"DeleteFromDrafts", u"no such item").boolean());
}

}  // namespace
}  // namespace quillfile::windows
