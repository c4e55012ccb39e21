// The monitored folders, as the settings list them.
#pragma once

#include "core/settings/settings.h"

namespace quillfile {

// Whether the folder is one of FolderEntryId1 to FolderEntryId<FolderCount>. Throws Failure.
bool IsSentFolderMonitored(const Settings& settings, TextView sentFolderEntryId);

}  // namespace quillfile
