#include "tests/fakes/fake_engine.h"

#include "tests/fakes/fake_system.h"

namespace quillfile {
namespace {

bool covers(TextView pattern, TextView text) {
  if (pattern.empty()) return text.empty();
  if (pattern[0] == u'*')
    return covers(pattern.substr(1), text) || (!text.empty() && covers(pattern, text.substr(1)));
  return !text.empty() && (pattern[0] == u'?' || pattern[0] == text[0]) &&
         covers(pattern.substr(1), text.substr(1));
}

}  // namespace

Ref<Application> FakeModuleHost::application() {
  return record_.asked(u"ModuleHost.application"), application_;
}

void FakeModuleHost::addButton(const Ref<Explorer>& explorer, TextView caption) {
  record_.asked(u"ModuleHost.addButton");
  record_.did(fill(explorer ? u"add button {}" : u"add button {} to Nothing", caption));
}
void FakeModuleHost::removeButton(TextView caption) {
  record_.asked(u"ModuleHost.removeButton");
  record_.did(fill(u"remove button {}", caption));
}
void FakeModuleHost::registerHotkey(std::int32_t modifiers, std::int32_t virtualKey) {
  record_.asked(u"ModuleHost.registerHotkey");
  record_.did(fill(u"register hotkey {} {}", modifiers, virtualKey));
}
void FakeModuleHost::unregisterHotkey(std::int32_t modifiers, std::int32_t virtualKey) {
  record_.asked(u"ModuleHost.unregisterHotkey");
  record_.did(fill(u"unregister hotkey {} {}", modifiers, virtualKey));
}
void FakeModuleHost::watchFolder(TextView entryId, TextView storeId) {
  record_.asked(u"ModuleHost.watchFolder");
  record_.did(fill(u"watch folder {} {}", entryId, storeId));
}
void FakeModuleHost::watchMonitoredFolders(TextView application, TextView section) {
  record_.asked(u"ModuleHost.watchMonitoredFolders");
  record_.did(fill(u"watch monitored folders {} {}", application, section));
}
Ref<Folder> FakeModuleHost::findFolder(TextView entryId, TextView storeId) {
  record_.asked(u"ModuleHost.findFolder");
  for (const auto& folder : known)
    if (folder->id() == entryId && folder->store() == storeId) return folder;
  return nullptr;
}
Text FakeModuleHost::folderPath(const Ref<Folder>& folder) {
  record_.asked(u"ModuleHost.folderPath");
  return folder ? dynamic_cast<FakeFolder&>(*folder).path : Text{};
}

std::optional<Text> FakeLanguageStrings::text(std::int32_t number) {
  record_.asked(u"LanguageStrings.text");
  const auto found = texts.find(number);
  return found == texts.end() ? std::nullopt : std::optional{found->second};
}

void FakeLog::write(TextView module, TextView procedure, TextView message, std::int32_t number) {
  if (fails) throw Failure{5, u"EngineLog.write failed"};
  const bool usual = module == u"Quillfile" && number == 0;
  record_.did(usual ? fill(u"trace {}: {}", procedure, message)
                    : fill(u"trace [{} {}] {}: {}", module, number, procedure, message));
}

Text FakeServices::settingsApplicationName() {
  return record_.asked(u"EngineServices.settingsApplicationName"), applicationName;
}
Ref<ModuleCollection> FakeServices::prepareModuleCollection(TextView module) {
  record_.asked(u"EngineServices.prepareModuleCollection");
  record_.did(fill(u"prepare module collection {}", module));
  return std::make_shared<ModuleCollection>();
}
Text FakeServices::specialFolderPath(std::int32_t code) {
  record_.asked(u"EngineServices.specialFolderPath");
  return code == 0 ? documentsFolder : Text{};
}
void FakeServices::ensureFolder(TextView path) {
  record_.asked(u"EngineServices.ensureFolder");
  record_.did(fill(u"ensure folder {}", path));
  files_.makeFolder(path);
}
Text FakeServices::expandPath(TextView path) {
  record_.asked(u"EngineServices.expandPath");
  const auto found = expansions.find(Text{path});
  return found == expansions.end() ? Text{path} : found->second;
}
void FakeServices::reportError(TextView message, std::int32_t level, TextView source) {
  if (reportFails) throw Failure{5, u"EngineServices.reportError failed"};
  record_.did(fill(u"error {} {}: {}", level, source, message));
}
Ref<LanguageStrings> FakeServices::languageStrings() {
  return record_.asked(u"EngineServices.languageStrings"), strings;
}
void FakeServices::prepareForm(TextView form) {
  record_.asked(u"EngineServices.prepareForm");
  record_.did(fill(u"prepare form {}", form));
}

std::int32_t FakeUtilities::matchText(TextView text, TextView pattern) {
  record_.asked(u"EngineUtilities.matchText");
  lastMatched = text;
  FakeLetters letters;
  const Text lowered = letters.lower(text), sought = letters.lower(pattern);
  if (sought.empty()) return 0;
  const bool wild = sought.find_first_of(u"*?") != Text::npos;
  return (wild ? covers(sought, lowered) : find(lowered, sought) > 0) ? 1 : 0;
}
Text FakeUtilities::cleanFileName(TextView text) {
  record_.asked(u"EngineUtilities.cleanFileName");
  Text clean{text};
  std::erase_if(clean, [](char16_t unit) {
    return unit < u' ' || TextView{u"\\/:*?\"<>|"}.find(unit) != TextView::npos;
  });
  return clean;
}
bool FakeUtilities::fileExists(TextView path) {
  return record_.asked(u"EngineUtilities.fileExists"), files_.find(path) != nullptr;
}
bool FakeUtilities::createFolderPath(TextView path) {
  record_.asked(u"EngineUtilities.createFolderPath");
  const bool made = files_.makeFolder(path);
  record_.did(fill(made ? u"create folder {}" : u"cannot create folder {}", path));
  return made;
}
void FakeUtilities::deleteFile(TextView path) {
  record_.asked(u"EngineUtilities.deleteFile");
  record_.did(fill(u"delete file {}", path));
  files_.erase(path);
}
void FakeUtilities::discardSavedFile(TextView path) {
  record_.asked(u"EngineUtilities.discardSavedFile");
  record_.did(fill(u"discard saved file {}", path));
  files_.erase(path);
}

}  // namespace quillfile
