// The monitored folders: the numbered keys FolderName, FolderEntryId and FolderStoreId, from 1 to
// FolderCount.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "hosts/mailbox/services/settings_file.h"
#include "hosts/mailbox/store/mail_folder.h"

namespace quillfile::app {

struct MonitoredFolder {
  std::string name, entryId, storeId;
};

std::vector<MonitoredFolder> monitoredFolders(mailbox::SettingsFile& settings);
std::set<std::string> monitoredIds(mailbox::SettingsFile& settings);

// Writes the list anew, numbered without gaps, and takes out the keys of folders past its end.
void setMonitoredFolders(mailbox::SettingsFile& settings, const std::vector<MonitoredFolder>& folders);

}  // namespace quillfile::app
