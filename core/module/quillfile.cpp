#include "core/module/quillfile.h"

#include "core/module/procedure.h"
#include "core/settings/first_run.h"
#include "core/settings/monitored_folders.h"

namespace quillfile {
namespace {

constexpr TextView buttonCaption = u"Quillfile";
constexpr std::int32_t saveButton = 1;
constexpr std::int32_t itemAdded = 1;  // the one kind of item event that does something
constexpr Wording duringShutdown{u"Error ocurred during shutdown.  Reason: {}", false};  // sic

}  // namespace

Text CQuillfile::RegistryName() { return Text{moduleName}; }
Text CQuillfile::FriendlyName() { return Text{moduleName}; }
Text CQuillfile::Version() { return fromUtf8(QUILLFILE_VERSION); }

std::int32_t CQuillfile::CEStartup(const Ref<ModuleHost>& engine) {
  procedure(parts_.services, {.name = u".CEStartup", .wording = wording::atLine}, [&](Step& at) {
    at(1);
    state_.moduleCollection = parts_.services.prepareModuleCollection(moduleName);
    at(2);
    if (state_.engine) return;
    state_.engine = engine;
    state_.outlookApp = held(engine).application();
    EnsureSettings(parts_.settings, parts_.services, parts_.paths, state_.outlookApp);
  });
  return 0;
}

std::int32_t CQuillfile::CEExplorerOpen(const Ref<Explorer>& explorer) {
  if (!state_.engine) return 0;
  const auto nameSpace = held(state_.outlookApp).nameSpace();
  state_.engine->watchMonitoredFolders(parts_.settings.application(), Settings::section);
  findFolders(held(nameSpace));
  addButtonIfWanted(explorer);
  registerHotkeyIfWanted();
  rooms_.tracking.setExplorer(nullptr);
  rooms_.tracking.setExplorer(explorer);
  rooms_.tracking.createLists();
  return 0;
}

void CQuillfile::findFolders(NameSpace& nameSpace) {
  const auto folder = [&](DefaultFolder which) { return nameSpace.defaultFolder(which); };
  const auto watch = [&](Folder& watched, Text& entryId, Text& storeId) {
    entryId = watched.entryId();
    storeId = watched.storeId();
    state_.engine->watchFolder(entryId, storeId);
  };
  watch(held(folder(DefaultFolder::deleted_items)), state_.deletedFolderEntryId, state_.deletedFolderStoreId);
  state_.outboxEntryId = held(folder(DefaultFolder::outbox)).entryId();
  state_.draftsEntryId = held(folder(DefaultFolder::drafts)).entryId();
  rooms_.deletedItems.resetPrompt();
  watch(held(folder(DefaultFolder::sent_items)), state_.sentFolderEntryId, state_.sentFolderStoreId);
}

void CQuillfile::addButtonIfWanted(const Ref<Explorer>& explorer) {
  if (parts_.settings.flag(u"EnableButton")) held(state_.engine).addButton(explorer, buttonCaption);
}

void CQuillfile::registerHotkeyIfWanted() {
  if (!parts_.settings.flag(u"HotkeyEnabled")) return;
  const auto modifiers = parts_.settings.number(u"HotkeyMods");
  held(state_.engine).registerHotkey(modifiers, parts_.settings.number(u"HotkeyValue"));
}

std::int32_t CQuillfile::CESendMessage(TextView message) {
  if (message == u"RefreshHotkey") refreshHotkey();
  if (message == u"RefreshButton") refreshButton();
  return 0;
}

void CQuillfile::refreshHotkey() {
  const auto modifiers = parts_.settings.number(u"OldMods");
  held(state_.engine).unregisterHotkey(modifiers, parts_.settings.number(u"OldValue"));
  registerHotkeyIfWanted();
}

void CQuillfile::refreshButton() {
  held(state_.engine).removeButton(buttonCaption);
  if (parts_.settings.flag(u"EnableButton"))
    state_.engine->addButton(held(state_.outlookApp).activeExplorer(), buttonCaption);
}

std::int32_t CQuillfile::CEExplorerClose() {
  parts_.trace(u"CEExplorerClose", u"CEExplorerClose occurred");
  return 0;
}

std::int32_t CQuillfile::CEInspectorOpen(const Ref<Inspector>& inspector) {
  procedure(parts_.services, {.name = u".CEInspectorOpen", .wording = wording::reason}, [&](Step&) {
    rooms_.tracking.MapUnderylingItem(inspector);
    rooms_.deletedItems.resetPrompt();
  });
  return 0;
}

std::int32_t CQuillfile::CEButtonAction(std::int32_t button) {
  procedure(parts_.services, {.name = u".CEButtonAction", .wording = wording::reason}, [&](Step&) {
    if (button == saveButton) rooms_.commands.QuillfileButton();
  });
  return 1;
}

std::int32_t CQuillfile::CEHotkeyAction() {
  rooms_.commands.QuillfileButton();
  return 0;
}

std::int32_t CQuillfile::CEItemEvent(std::int32_t kind, const Ref<Item>& item, TextView folderEntryId,
                                     TextView folderStoreId) {
  if (!state_.outlookApp) return 0;
  procedure(parts_.services, {.name = u".CEItemEvent", .wording = wording::atLine}, [&](Step& at) {
    at(2);
    if (kind == itemAdded) routeAddedItem(item, folderEntryId, folderStoreId);
  });
  return 0;
}

void CQuillfile::routeAddedItem(const Ref<Item>& item, TextView folderEntryId, TextView folderStoreId) {
  if (folderEntryId == state_.sentFolderEntryId) {
    rooms_.commands.ProcessSentItems(item);
    if (IsSentFolderMonitored(parts_.settings, state_.sentFolderEntryId))
      rooms_.commands.CheckItemForAttachments(item, folderEntryId, folderStoreId);
  } else if (folderEntryId == state_.deletedFolderEntryId) {
    if (!parts_.settings.temporarilyDisabled()) rooms_.deletedItems.HandleDeletedItemsFolderAdd(item);
  } else {
    rooms_.commands.CheckItemForAttachments(item, folderEntryId, folderStoreId);
  }
}

std::int32_t CQuillfile::CEShutdown() {
  procedure(parts_.services, {.name = u".CEShutdown", .wording = duringShutdown, .level = 1}, [&](Step&) {
    parts_.trace(u"Shutdown", u"Quillfile is stopping");
    parts_.mailHelper.cleanUp();
    rooms_.tracking.releaseLists();
    rooms_.tracking.setExplorer(nullptr);
    rooms_.tracking.ClearExplorerItems();
    rooms_.tracking.ReleaseAllItemSlots();
    state_.moduleCollection.reset();
    state_.outlookApp.reset();
    state_.engine.reset();
  });
  return 0;
}

}  // namespace quillfile
