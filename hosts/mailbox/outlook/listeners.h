// Listeners: whoever wants to hear of an object's events, and the telling of them. A listener may end its own
// subscription, or another's, while it is being told; nobody is told after ending, and who joins during a
// delivery hears the next one. The object may go before its subscriptions do.
#pragma once

#include <memory>
#include <vector>

#include "core/platform/subscription.h"

namespace quillfile::mailbox {

template <class Events>
class Listeners {
 public:
  Subscription add(Events& listener) {
    auto seat = std::make_shared<Seat>(Seat{&listener});
    std::erase_if(seats_, [](const auto& old) { return old->listener == nullptr; });
    seats_.push_back(seat);
    return Subscription{[seat] { seat->listener = nullptr; }};
  }

  // Calls `tell(listener)` for everyone who listens now, in the order in which they came.
  template <class Tell>
  void deliver(Tell&& tell) const {
    const auto present = seats_;
    for (const auto& seat : present)
      if (seat->listener != nullptr) tell(*seat->listener);
  }

 private:
  struct Seat {
    Events* listener;
  };
  std::vector<std::shared_ptr<Seat>> seats_;
};

}  // namespace quillfile::mailbox
