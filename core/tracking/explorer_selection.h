// ExplorerSelection: listens to one explorer, and keeps the explorer's current item of each type: the first
// item of the selection. Items in the Outbox are never tracked.
#pragma once

#include "core/module/module_state.h"
#include "core/module/trace.h"
#include "core/tracking/item_slots.h"

namespace quillfile {

class ExplorerSelection final : public ExplorerEvents {
 public:
  ExplorerSelection(EngineServices& services, EngineLog& log, const ModuleState& module, ItemSlots& slots)
      : services_(services), trace_(log), module_(module), slots_(slots) {}

  // Listens to `explorer` instead of the one before; to none when it is Nothing. May throw Failure.
  void listenTo(const Ref<Explorer>& explorer);
  const Ref<Explorer>& explorer() const { return explorer_; }

  void onSelectionChange() override;
  bool ExplorerMapUnderlyingItem(const Ref<Selection>& selection);

 private:
  EngineServices& services_;
  Trace trace_;
  const ModuleState& module_;
  ItemSlots& slots_;
  Ref<Explorer> explorer_;
  Subscription subscription_;
};

}  // namespace quillfile
