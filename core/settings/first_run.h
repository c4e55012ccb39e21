// The first start on a user's machine: the settings that the module gives itself.
#pragma once

#include "core/platform/outlook.h"
#include "core/settings/settings.h"

namespace quillfile {

// Writes the first-run settings, unless SaveAllAttachments is there in any form. Never throws: an error is
// reported, and the keys already written stay.
void EnsureSettings(const Settings& settings, EngineServices& services, const PathRules& paths,
                    const Ref<Application>& outlookApp);

}  // namespace quillfile
