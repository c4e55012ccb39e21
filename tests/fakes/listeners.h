// Listeners: whoever listens to a fake event source, and the delivery to them.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "core/platform/subscription.h"

namespace quillfile {

template <class Listener>
class Listeners {
 public:
  Subscription add(Listener& listener) {
    all_->push_back(&listener);
    return Subscription{[all = all_, &listener] {
      const auto found = std::find(all->begin(), all->end(), &listener);
      if (found != all->end()) all->erase(found);
    }};
  }

  // Calls `deliver` for each; one that ended its subscription meanwhile gets nothing.
  template <class Deliver>
  void raise(Deliver&& deliver) {
    const auto all = all_;  // a delivery may end the source itself
    for (auto* listener : std::vector<Listener*>{*all})
      if (std::find(all->begin(), all->end(), listener) != all->end()) deliver(*listener);
  }

  std::size_t count() const { return all_->size(); }

 private:
  std::shared_ptr<std::vector<Listener*>> all_ = std::make_shared<std::vector<Listener*>>();
};

}  // namespace quillfile
