// The module's own rooms as fakes, for tests of what calls them.
#pragma once

#include "core/module/rooms.h"
#include "core/saving/saving_engine.h"
#include "tests/fakes/fake_item.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

inline Text labelOf(const Ref<Item>& item) {
  const auto fake = std::dynamic_pointer_cast<FakeItem>(item);
  return fake ? fake->data.label : u"Nothing";
}

class FakeSavingEngine : public SavingEngine {
 public:
  FakeSavingEngine(Recorder& record, RunCounter& counter) : record_(record), counter_(counter) {}

  std::int32_t attachmentsPerItem = 1;  // what each item adds to the run counter
  Text failsFor;                        // the label of an item that lets a failure out

  bool CheckForAttachments(const SaveRequest& request) override {
    const auto flag = [](bool on) { return on ? TextView{u"yes"} : TextView{u"no"}; };
    record_.did(
        fill(u"save {}: skip criteria {}, after save {}, error prompt {}, add link {}, remove {}, "
             u"read/write {}, path {}, sent {}",
             labelOf(request.item), flag(request.skipCriteria), static_cast<std::int32_t>(request.afterSave),
             flag(request.errorPrompt), flag(request.addLink), flag(request.remove),
             static_cast<std::int32_t>(request.readWrite), request.savePath, flag(request.isSent)));
    if (!failsFor.empty() && labelOf(request.item) == failsFor) throw Failure{5, u"the saving engine failed"};
    counter_.value += attachmentsPerItem;
    return true;
  }

 private:
  Recorder& record_;
  RunCounter& counter_;
};

class FakeTracking : public Tracking {
 public:
  explicit FakeTracking(Recorder& record) : record_(record) {}
  void setExplorer(const Ref<Explorer>& explorer) override {
    record_.asked(u"Tracking.setExplorer");
    record_.did(explorer ? u"tracking: explorer" : u"tracking: no explorer");
  }
  void MapUnderylingItem(const Ref<Inspector>& inspector) override {
    record_.asked(u"Tracking.MapUnderylingItem");
    record_.did(fill(u"tracking: map {}", labelOf(held(inspector).currentItem())));
  }
  void createLists() override { record_.did(u"tracking: create lists"); }
  void releaseLists() override { record_.did(u"tracking: release lists"); }
  void ClearExplorerItems() override { record_.did(u"tracking: clear explorer items"); }
  void ReleaseAllItemSlots() override { record_.did(u"tracking: release all item slots"); }

 private:
  Recorder& record_;
};

class FakeDeletedItems : public DeletedItems {
 public:
  explicit FakeDeletedItems(Recorder& record) : record_(record) {}
  void resetPrompt() override { record_.did(u"deleted items: reset prompt"); }
  void HandleDeletedItemsFolderAdd(const Ref<Item>& item) override {
    record_.did(fill(u"deleted items: {}", labelOf(item)));
  }

 private:
  Recorder& record_;
};

}  // namespace quillfile
