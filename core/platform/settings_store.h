// SettingsStore: texts by application, section and key, for the current user. Every call may throw Failure.
#pragma once

#include <optional>

#include "core/text/text.h"

namespace quillfile {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  // The value as it is now, whoever changed it (another program's change may take some milliseconds to show);
  // none when the key is absent.
  virtual std::optional<Text> read(TextView application, TextView section, TextView key) = 0;
  virtual void write(TextView application, TextView section, TextView key, TextView value) = 0;
};

}  // namespace quillfile
