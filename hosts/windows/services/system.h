// The clock, and other programs.
#pragma once

#include "core/platform/system.h"

namespace quillfile::windows {

class SystemClock final : public Clock {
 public:
  std::int64_t seconds() override;
};

class SystemPrograms final : public Programs {
 public:
  void start(TextView commandLine, TextView path) override;
  Text machineName() override;
};

}  // namespace quillfile::windows
