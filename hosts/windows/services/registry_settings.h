// RegistrySettings: the settings, one string value each, under
// HKEY_CURRENT_USER\Software\VB and VBA Program Settings\<application>\<section>.
#pragma once

#include "core/platform/settings_store.h"

namespace quillfile::windows {

class RegistrySettings final : public SettingsStore {
 public:
  std::optional<Text> read(TextView application, TextView section, TextView key) override;
  void write(TextView application, TextView section, TextView key, TextView value) override;
};

}  // namespace quillfile::windows
