#include "hosts/windows/engine/module_host.h"

#include "hosts/windows/outlook/application.h"

namespace quillfile::windows {

Ref<Application> ComModuleHost::application() {
  return adapt<OutlookApplication>(object().get(u"Application").object());
}

void ComModuleHost::addButton(const Ref<Explorer>& explorer, TextView caption) {
  object().run(u"AddButton", behind(explorer).ptr(), caption);
}

void ComModuleHost::removeButton(TextView caption) { object().run(u"RemoveButton", caption); }

void ComModuleHost::registerHotkey(std::int32_t modifiers, std::int32_t virtualKey) {
  object().run(u"RegisterHotkey", modifiers, virtualKey);
}

void ComModuleHost::unregisterHotkey(std::int32_t modifiers, std::int32_t virtualKey) {
  object().run(u"UnregisterHotkey", modifiers, virtualKey);
}

void ComModuleHost::watchFolder(TextView entryId, TextView storeId) {
  object().run(u"WatchFolder", entryId, storeId);
}

void ComModuleHost::watchMonitoredFolders(TextView application, TextView section) {
  object().run(u"WatchMonitoredFolders", application, section);
}

Ref<Folder> ComModuleHost::findFolder(TextView entryId, TextView storeId) {
  return adapt<OutlookFolder>(object().call(u"FindFolder", entryId, storeId).object());
}

Text ComModuleHost::folderPath(const Ref<Folder>& folder) {
  return object().call(u"FolderPath", behind(folder).ptr()).text();
}

}  // namespace quillfile::windows
