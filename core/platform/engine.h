// The add-in engine: what it offers to the module that it hosts. Every call may throw Failure.
#pragma once

#include <cstdint>
#include <optional>

#include "core/platform/outlook.h"

namespace quillfile {

// The object passed to CEStartup.
class ModuleHost {
 public:
  virtual ~ModuleHost() = default;
  virtual Ref<Application> application() = 0;
  virtual void addButton(const Ref<Explorer>& explorer, TextView caption) = 0;
  virtual void removeButton(TextView caption) = 0;
  virtual void registerHotkey(std::int32_t modifiers, std::int32_t virtualKey) = 0;
  virtual void unregisterHotkey(std::int32_t modifiers, std::int32_t virtualKey) = 0;
  virtual void watchFolder(TextView entryId, TextView storeId) = 0;
  virtual void watchMonitoredFolders(TextView application, TextView section) = 0;
  virtual Ref<Folder> findFolder(TextView entryId, TextView storeId) = 0;  // Nothing when there is none
  // The folder's path within its store, components joined by the path separator; empty for none.
  virtual Text folderPath(const Ref<Folder>& folder) = 0;
};

// What the engine keeps for a module between start-up and shutdown; opaque to the module.
class ModuleCollection {
 public:
  virtual ~ModuleCollection() = default;
};

// Localised texts by number; none where the engine has no table.
class LanguageStrings {
 public:
  virtual ~LanguageStrings() = default;
  virtual std::optional<Text> text(std::int32_t number) = 0;
};

// One line of the trace. A failure to write it is the caller's to ignore.
class EngineLog {
 public:
  virtual ~EngineLog() = default;
  // False where lines go nowhere: the caller may then leave a costly message unbuilt.
  virtual bool wanted() = 0;
  virtual void write(TextView module, TextView procedure, TextView message, std::int32_t number) = 0;
};

// The engine's global services.
class EngineServices {
 public:
  virtual ~EngineServices() = default;
  virtual Text settingsApplicationName() = 0;
  virtual Ref<ModuleCollection> prepareModuleCollection(TextView module) = 0;
  virtual Text specialFolderPath(std::int32_t code) = 0;  // 0: the user's documents; ends in a separator
  virtual void ensureFolder(TextView path) = 0;
  virtual Text expandPath(TextView path) = 0;
  virtual void reportError(TextView message, std::int32_t level, TextView source) = 0;
  virtual Ref<LanguageStrings> languageStrings() = 0;
  virtual void prepareForm(TextView form) = 0;  // the engine's look for a form of the module's
};

// The engine's utility operations on texts and files.
class EngineUtilities {
 public:
  virtual ~EngineUtilities() = default;
  virtual std::int32_t matchText(TextView text, TextView pattern) = 0;  // non-zero: it matches
  virtual Text cleanFileName(TextView text) = 0;  // without what a file name cannot hold
  virtual bool fileExists(TextView path) = 0;
  virtual bool createFolderPath(TextView path) = 0;  // with its parents; false when it cannot be made
  virtual void deleteFile(TextView path) = 0;        // for good or to the recycle bin: the engine decides
  // What is done with the saved file of a sent attachment that the user wants deleted.
  virtual void discardSavedFile(TextView path) = 0;
};

}  // namespace quillfile
