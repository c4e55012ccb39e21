// Settings that a person or another program has written and that cannot be read as what they should be. The
// module counts such a value as nothing, or fails where it reads it; the user hears of it when it starts.
#pragma once

#include <optional>
#include <vector>

#include "core/settings/settings_table.h"
#include "hosts/mailbox/services/settings_file.h"

namespace quillfile::mailbox {

// What the setting takes, when `value` is none of that: "1 (on) or 0 (off)". None: the value is one.
std::optional<Text> wantedInsteadOf(const Setting& setting, TextView value);

// A sentence for each bad value in the file. Throws Failure when it cannot be read.
std::vector<Text> badSettings(SettingsFile& settings);

}  // namespace quillfile::mailbox
