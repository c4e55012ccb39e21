// CQuillfile: the module's front. It keeps the references to the engine and to the mail client, asks the
// engine for the button, the hotkey and the watching of folders, and routes each call to the room that does
// the work.
#pragma once

#include "core/module/imodule_api.h"
#include "core/module/module_state.h"
#include "core/module/rooms.h"
#include "core/module/trace.h"
#include "core/platform/path_rules.h"
#include "core/settings/settings.h"

namespace quillfile {

class CQuillfile final : public IModuleAPI {
 public:
  struct Parts {
    EngineServices& services;
    MailHelper& mailHelper;
    const Settings& settings;
    Trace trace;
    PathRules paths;
    ModuleState& state;
    Rooms rooms;
  };
  explicit CQuillfile(const Parts& parts) : parts_(parts), state_(parts.state), rooms_(parts.rooms) {}

  Text RegistryName() override;
  Text FriendlyName() override;
  Text Version() override;
  std::int32_t CEStartup(const Ref<ModuleHost>& engine) override;
  std::int32_t CEShutdown() override;
  std::int32_t CESendMessage(TextView message) override;
  std::int32_t CEExplorerOpen(const Ref<Explorer>& explorer) override;
  std::int32_t CEExplorerClose() override;
  std::int32_t CEExplorerActivate() override { return 0; }
  std::int32_t CEExplorerDeactivate() override { return 0; }
  std::int32_t CEInspectorOpen(const Ref<Inspector>& inspector) override;
  std::int32_t CEInspectorClose() override { return 0; }
  std::int32_t CEInspectorActivate() override { return 0; }
  std::int32_t CEInspectorDeactivate() override { return 0; }
  std::int32_t CEButtonAction(std::int32_t button) override;
  std::int32_t CEMenuAction(std::int32_t) override { return 0; }
  std::int32_t CEHotkeyAction() override;
  std::int32_t CEItemEvent(std::int32_t kind, const Ref<Item>& item, TextView folderEntryId,
                           TextView folderStoreId) override;

 private:
  void findFolders(NameSpace& nameSpace);
  void addButtonIfWanted(const Ref<Explorer>& explorer);
  void registerHotkeyIfWanted();
  void refreshHotkey();
  void refreshButton();
  void routeAddedItem(const Ref<Item>& item, TextView folderEntryId, TextView folderStoreId);

  Parts parts_;
  ModuleState& state_;
  Rooms rooms_;
};

}  // namespace quillfile
