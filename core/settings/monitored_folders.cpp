#include "core/settings/monitored_folders.h"

namespace quillfile {

bool IsSentFolderMonitored(const Settings& settings, TextView sentFolderEntryId) {
  bool monitored = false;
  const std::int64_t count = settings.number(u"FolderCount");
  for (std::int64_t n = 1; n <= count; ++n)  // all are read: an error in a later one must show
    if (settings.text(u"FolderEntryId", n) == sentFolderEntryId) monitored = true;
  return monitored;
}

}  // namespace quillfile
