// ComModuleHost: the engine as CEStartup hands it over.
#pragma once

#include "core/platform/engine.h"
#include "hosts/windows/outlook/adapted.h"

namespace quillfile::windows {

class ComModuleHost final : public Adapted<ModuleHost> {
 public:
  using Adapted::Adapted;
  Ref<Application> application() override;
  void addButton(const Ref<Explorer>& explorer, TextView caption) override;
  void removeButton(TextView caption) override;
  void registerHotkey(std::int32_t modifiers, std::int32_t virtualKey) override;
  void unregisterHotkey(std::int32_t modifiers, std::int32_t virtualKey) override;
  void watchFolder(TextView entryId, TextView storeId) override;
  void watchMonitoredFolders(TextView application, TextView section) override;
  Ref<Folder> findFolder(TextView entryId, TextView storeId) override;
  Text folderPath(const Ref<Folder>& folder) override;
};

}  // namespace quillfile::windows
