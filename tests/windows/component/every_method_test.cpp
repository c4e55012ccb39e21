// Every method of every interface, once early-bound and once late-bound.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "hosts/windows/com/bstr.h"
#include "tests/windows/fakes/engine_world.h"

namespace quillfile::windows {
namespace {

class EveryMethod : public testing::Test {
 protected:
  EveryMethod() {
    world_.set(u"SaveAllAttachments", u"1");
    world_.create();
    explorer_ = world_.outlook.explorer.get();
    inspected_ = world_.outlook.inspector(world_.outlook.add({}));
    item_ = world_.outlook.add({}).object;
    box_ = std::make_unique<Boxes>();
  }

  // The manual command ends in a message box.
  struct Boxes {
    Boxes()
        : thread([this] {
            while (!stop) {
              if (const HWND box = FindWindowW(nullptr, L"Quillfile")) PostMessageW(box, WM_COMMAND, IDOK, 0);
              Sleep(10);
            }
          }) {}
    ~Boxes() {
      stop = true;
      thread.join();
    }
    std::atomic<bool> stop{false};
    std::thread thread;
  };

  EngineWorld world_;
  IDispatch* explorer_;
  Fake inspected_, item_;
  std::unique_ptr<Boxes> box_;
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
  expect(0, [&](LONG* out) { return module.CEExplorerOpen(explorer_, out); });
  expect(0, [&](LONG* out) { return module.CEExplorerActivate(explorer_, out); });
  expect(0, [&](LONG* out) { return module.CEExplorerDeactivate(explorer_, out); });
  expect(0, [&](LONG* out) { return module.CEInspectorOpen(inspected_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorActivate(inspected_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorDeactivate(inspected_.get(), out); });
  expect(0, [&](LONG* out) { return module.CEInspectorClose(inspected_.get(), out); });
  expect(1, [&](LONG* out) { return module.CEButtonAction(2, none, out); });
  expect(1, [&](LONG* out) { return module.CEButtonAction(1, none, out); });
  expect(0, [&](LONG* out) { return module.CEMenuAction(1, none, out); });
  expect(0, [&](LONG* out) { return module.CEHotkeyAction(none, out); });
  expect(0, [&](LONG* out) {
    return module.CEItemEvent(1, item_.get(), none, Bstr{u"folder-6"}.get(), none, out);
  });
  expect(0, [&](LONG* out) { return module.CEExplorerClose(explorer_, out); });
  expect(0, [&](LONG* out) { return module.CEShutdown(out); });
}

TEST_F(EveryMethod, OfIModuleAPILateBound) {
  const Object module{world_.module.as<IDispatch>(IID_IModuleAPI)};
  Ptr<IDispatch> engine{world_.host.get()};
  const Variant explorer{explorer_}, inspector = variant(inspected_), item = variant(item_);

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

}  // namespace
}  // namespace quillfile::windows
