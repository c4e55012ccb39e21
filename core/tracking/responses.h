// Responses: the module's own forward and replies, in place of the mail client's. A forward gets its saved
// files back and is opened from Drafts, as it is stored; a reply loses the link notes.
#pragma once

#include <functional>

#include "core/links/link_commands.h"
#include "core/module/module_state.h"
#include "core/tracking/item_tracking.h"

namespace quillfile {

class Responses {
 public:
  Responses(EngineServices& services, const ModuleState& module, ItemTracking& tracking, LinkCommands& links)
      : services_(services), module_(module), tracking_(tracking), links_(links) {}

  // Each answers the item in the slot; for slot 0 every tracked item of the explorer's selection, the last
  // first.

  // What opening the last forward from Drafts answered. Throws Failure.
  bool ForwardItem(std::int32_t slot, TextView typeName);
  // True when the replies were opened. Reports its own errors.
  bool ReplyItem(std::int32_t slot, TextView typeName);
  // True when the replies were opened. Throws Failure.
  bool ReplyAllItem(std::int32_t slot, TextView typeName);

  // Opens, or deletes, the item of Drafts that has this EntryID; False when there is none.
  bool DisplayFromDrafts(TextView entryId);
  bool DeleteFromDrafts(TextView entryId);

 private:
  void forEachSource(std::int32_t slot, TextView typeName, const std::function<void(Item&)>& answer);
  void reply(Response response, std::int32_t slot, TextView typeName);
  bool withDraft(TextView procedureName, TextView entryId, const std::function<void(Item&)>& act);

  EngineServices& services_;
  const ModuleState& module_;
  ItemTracking& tracking_;
  LinkCommands& links_;
};

}  // namespace quillfile
