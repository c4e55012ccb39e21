// What the tests of the tracking room share: the room over a fake world, with a dispatcher that records.
#pragma once

#include "core/tracking/responses.h"
#include "tests/fakes/fake_platform.h"
#include "tests/fakes/transcript.h"

namespace quillfile {

class RecordingDispatch : public ItemDispatch {
 public:
  explicit RecordingDispatch(Recorder& record) : record_(record) {}
  bool answer = false;
  void ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) override {
    record_.asked(u"ProcessClick");
    record_.did(fill(u"ProcessClick({}, {}, {})", typeName, slot, action));
    cancel = answer;
  }

 private:
  Recorder& record_;
};

struct TrackingUnderTest {
  explicit TrackingUnderTest(FakePlatform& fake) : world(fake), dispatch(fake.record) {
    state.outlookApp = world.application;
    state.outboxEntryId = world.folder(DefaultFolder::outbox)->id();
  }

  // As CEExplorerOpen does, with an empty transcript afterwards.
  void open() {
    tracking.setExplorer(world.explorer);
    tracking.createLists();
    world.record.clear();
  }
  // An item of that type in an inspector of its own.
  std::shared_ptr<FakeItem> openItem(ItemData data) {
    auto item = world.addItem(std::move(data));
    tracking.MapUnderylingItem(world.openInspector(item));
    return item;
  }
  const Ref<Item>& held(TextView type, std::int32_t slot) {
    return tracking.slots().find(type, slot)->item();
  }

  FakePlatform& world;
  ModuleState state;
  RecordingDispatch dispatch;
  ItemTracking tracking{world.services, world.log, state, dispatch};
  LinkCommands links{{world.services, world.log, world.letters, world.files, world.paths},
                     world.mailHelper,
                     state.outlookApp};
  Responses responses{world.services, state, tracking, links};
};

}  // namespace quillfile
