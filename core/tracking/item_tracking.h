// ItemTracking: the room as the module sees it. It puts the slots, the selection and the lists together, and
// hands the user's answers to the dispatcher.
#pragma once

#include "core/module/rooms.h"
#include "core/tracking/explorer_selection.h"
#include "core/tracking/item_lists.h"

namespace quillfile {

// Decides what becomes of a Forward, Reply or Reply All; lies above this room.
class ItemDispatch {
 public:
  virtual ~ItemDispatch() = default;
  virtual void ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) = 0;
};

class ItemTracking final : public Tracking, private ItemActions {
 public:
  ItemTracking(EngineServices& services, EngineLog& log, const ModuleState& module, ItemDispatch& dispatch)
      : dispatch_(dispatch),
        slots_(services, *this),
        selection_(services, log, module, slots_),
        lists_(services, slots_) {}

  ItemSlots& slots() { return slots_; }
  ItemLists& lists() { return lists_; }
  ExplorerSelection& selection() { return selection_; }

  void setExplorer(const Ref<Explorer>& explorer) override { selection_.listenTo(explorer); }
  void MapUnderylingItem(const Ref<Inspector>& inspector) override {  // sic
    slots_.MapUnderylingItem(inspector);
  }
  void createLists() override { lists_.create(); }
  void releaseLists() override { lists_.release(); }
  void ClearExplorerItems() override { slots_.ClearExplorerItems(); }
  void ReleaseAllItemSlots() override { slots_.ReleaseAllItemSlots(); }

 private:
  void ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) override {
    dispatch_.ProcessClick(typeName, slot, action, cancel);
  }
  bool AddToUserSavedList(TextView entryId) override { return lists_.AddToUserSavedList(entryId); }
  bool AddToPendingList(TextView slotName) override { return lists_.AddToPendingList(slotName); }
  std::int32_t CloseItem(const Ref<Item>& item) override { return lists_.CloseItem(item); }

  ItemDispatch& dispatch_;
  ItemSlots slots_;
  ExplorerSelection selection_;
  ItemLists lists_;
};

}  // namespace quillfile
