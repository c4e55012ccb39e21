// IModuleAPI: the module as the add-in engine sees it, in the interface's slot order. A host turns the
// results into the engine's last argument, and drops the arguments that the module does not use. All calls
// come one at a time, on one thread. Only CEExplorerOpen and CESendMessage let a Failure out.
#pragma once

#include "core/platform/engine.h"

namespace quillfile {

class IModuleAPI {
 public:
  virtual ~IModuleAPI() = default;

  virtual Text RegistryName() = 0;
  virtual Text FriendlyName() = 0;
  virtual Text Version() = 0;  // "4.0.84"
  virtual std::int32_t CEStartup(const Ref<ModuleHost>& engine) = 0;
  virtual std::int32_t CEShutdown() = 0;
  virtual std::int32_t CESendMessage(TextView message) = 0;
  virtual std::int32_t CEExplorerOpen(const Ref<Explorer>& explorer) = 0;
  virtual std::int32_t CEExplorerClose() = 0;
  virtual std::int32_t CEExplorerActivate() = 0;
  virtual std::int32_t CEExplorerDeactivate() = 0;
  virtual std::int32_t CEInspectorOpen(const Ref<Inspector>& inspector) = 0;
  virtual std::int32_t CEInspectorClose() = 0;
  virtual std::int32_t CEInspectorActivate() = 0;
  virtual std::int32_t CEInspectorDeactivate() = 0;
  virtual std::int32_t CEButtonAction(std::int32_t button) = 0;
  virtual std::int32_t CEMenuAction(std::int32_t menu) = 0;
  virtual std::int32_t CEHotkeyAction() = 0;
  // `kind` 1: `item` was added to the watched folder that the two ids name.
  virtual std::int32_t CEItemEvent(std::int32_t kind, const Ref<Item>& item, TextView folderEntryId,
                                   TextView folderStoreId) = 0;
};

}  // namespace quillfile
