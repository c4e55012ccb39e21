// Events of an object's connection point, delivered to a handler until the subscription ends.
#pragma once

#include <functional>

#include "core/platform/subscription.h"
#include "hosts/windows/com/object.h"

namespace quillfile::windows {

// The arguments of one event.
class EventArguments {
 public:
  explicit EventArguments(DISPPARAMS* params) : params_(params) {}

  // Runs `body` with the event's Cancel, its last argument; what it sets goes back to the client, also when
  // it throws. Some events come without one: then it starts False, and what is set is lost.
  template <class Body>
  void withCancel(Body&& body) const {
    VARIANT_BOOL* cancel = this->cancel();
    struct Back {
      VARIANT_BOOL* to;
      bool value;
      ~Back() {
        if (to != nullptr) *to = value ? VARIANT_TRUE : VARIANT_FALSE;
      }
    } back{cancel, cancel != nullptr && *cancel != VARIANT_FALSE};
    body(back.value);
  }

 private:
  VARIANT_BOOL* cancel() const;

  DISPPARAMS* params_;
};

using EventHandler = std::function<void(DISPID event, const EventArguments& arguments)>;

// Connects to the connection point `events` of `source`. Throws Failure when the source has no such events.
Subscription connect(const Object& source, const IID& events, EventHandler handler);

}  // namespace quillfile::windows
