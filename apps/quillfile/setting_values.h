// Which keys and values the settings take.
#pragma once

#include <string>

#include "apps/quillfile/options.h"
#include "core/settings/settings_table.h"

namespace quillfile::app {

// The setting of that key; of a numbered one with its number ("FolderName2"). Throws WrongCommandLine.
const Setting& settingNamed(const std::string& key);

struct CheckedValue {
  std::string value;    // as it is to be written: a folder is made absolute and ends in the separator
  std::string warning;  // a sentence; empty for none
};
// Throws WrongCommandLine when the setting cannot have that value.
CheckedValue checkedValue(const Setting& setting, const std::string& key, const std::string& value);

}  // namespace quillfile::app
