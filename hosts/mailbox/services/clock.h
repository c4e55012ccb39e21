// WallClock: the port Clock over the system's clock.
#pragma once

#include <chrono>

#include "core/platform/system.h"

namespace quillfile::mailbox {

class WallClock : public Clock {
 public:
  std::int64_t seconds() override {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(now).count();
  }
};

}  // namespace quillfile::mailbox
