// Dispatch: decides whether the module answers in place of the mail client when the user forwards an item or
// replies.
#pragma once

#include "core/settings/settings.h"
#include "core/tracking/responses.h"

namespace quillfile {

class Dispatch final : public ItemDispatch {
 public:
  struct Ports {
    const ModuleState& module;
    const Settings& settings;
    EngineServices& services;
    Trace trace;
  };
  Dispatch(const Ports& ports, Responses& responses) : ports_(ports), responses_(responses) {}

  // `action` is "Forward", "Reply" or "ReplyToAll"; letter case counts. Not for an item in the Outbox, and
  // not when AutomaticReattachWanted is off. `cancel` is False after an error.
  void ProcessClick(TextView typeName, std::int32_t slot, TextView action, bool& cancel) override;

 private:
  bool respond(TextView typeName, std::int32_t slot, TextView action);

  Ports ports_;
  Responses& responses_;
};

}  // namespace quillfile
