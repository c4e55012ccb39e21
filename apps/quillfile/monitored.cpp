#include "apps/quillfile/monitored.h"

#include <algorithm>
#include <array>

#include "core/module/procedure.h"
#include "core/settings/number.h"
#include "hosts/mailbox/engine/mailbox_engine.h"

namespace quillfile::app {
namespace {

constexpr TextView section = u"Quillfile";

std::string value(mailbox::SettingsFile& settings, const Text& key) {
  return toUtf8(settings.read(mailbox::engineName, section, key).value_or(u""));
}

// The keys of one folder, with the member that each holds.
struct FolderKey {
  TextView stem;
  std::string MonitoredFolder::*member;
};
constexpr std::array<FolderKey, 3> folderKeys = {{
    {u"FolderName", &MonitoredFolder::name},
    {u"FolderEntryId", &MonitoredFolder::entryId},
    {u"FolderStoreId", &MonitoredFolder::storeId},
}};

Text numbered(TextView stem, std::size_t number) { return fill(u"{}{}", stem, number); }

// How many the settings speak of. A count that is no number is none, and nobody has more than a list can
// show.
std::size_t folderCount(mailbox::SettingsFile& settings) {
  constexpr std::int32_t most = 100'000;
  const auto text = settings.read(mailbox::engineName, section, u"FolderCount");
  std::int32_t count = 0;
  if (text) ignoringErrors([&] { count = toNumber(*text); });
  return static_cast<std::size_t>(std::clamp(count, 0, most));
}

}  // namespace

std::vector<MonitoredFolder> monitoredFolders(mailbox::SettingsFile& settings) {
  std::vector<MonitoredFolder> folders;
  for (std::size_t n = 1, count = folderCount(settings); n <= count; ++n) {
    MonitoredFolder folder;
    for (const auto& [stem, member] : folderKeys) folder.*member = value(settings, numbered(stem, n));
    if (!folder.entryId.empty()) folders.push_back(folder);
  }
  return folders;
}

std::set<std::string> monitoredIds(mailbox::SettingsFile& settings) {
  std::set<std::string> ids;
  for (const auto& folder : monitoredFolders(settings)) ids.insert(folder.entryId);
  return ids;
}

void setMonitoredFolders(mailbox::SettingsFile& settings, const std::vector<MonitoredFolder>& folders) {
  const std::size_t before = folderCount(settings);
  for (std::size_t n = 1; n <= folders.size(); ++n) {
    for (const auto& [stem, member] : folderKeys) {
      settings.write(mailbox::engineName, section, numbered(stem, n), fromUtf8(folders[n - 1].*member));
    }
  }
  settings.write(mailbox::engineName, section, u"FolderCount",
                 decimal(static_cast<std::int64_t>(folders.size())));
  for (std::size_t n = folders.size() + 1; n <= before; ++n) {
    for (const auto& [stem, member] : folderKeys) settings.erase(section, numbered(stem, n));
  }
}

}  // namespace quillfile::app
