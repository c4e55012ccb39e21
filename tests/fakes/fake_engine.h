// The add-in engine, as fakes: its host interface, services, utilities, log and language table.
#pragma once

#include <map>
#include <memory>
#include <optional>

#include "core/platform/engine.h"
#include "tests/fakes/fake_files.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

class FakeModuleHost : public ModuleHost {
 public:
  FakeModuleHost(Recorder& record, std::shared_ptr<FakeApplication> application)
      : record_(record), application_(std::move(application)) {}

  std::vector<std::shared_ptr<FakeFolder>> known;  // those that findFolder() finds

  Ref<Application> application() override;
  void addButton(const Ref<Explorer>& explorer, TextView caption) override;
  void removeButton(TextView caption) override;
  void registerHotkey(std::int32_t modifiers, std::int32_t virtualKey) override;
  void unregisterHotkey(std::int32_t modifiers, std::int32_t virtualKey) override;
  void watchFolder(TextView entryId, TextView storeId) override;
  void watchMonitoredFolders(TextView application, TextView section) override;
  Ref<Folder> findFolder(TextView entryId, TextView storeId) override;
  Text folderPath(const Ref<Folder>& folder) override;

 private:
  Recorder& record_;
  std::shared_ptr<FakeApplication> application_;
};

class FakeLanguageStrings : public LanguageStrings {
 public:
  explicit FakeLanguageStrings(Recorder& record) : record_(record) {}
  std::map<std::int32_t, Text> texts;
  std::optional<Text> text(std::int32_t number) override;

 private:
  Recorder& record_;
};

class FakeLog : public EngineLog {
 public:
  explicit FakeLog(Recorder& record) : record_(record) {}
  bool isWanted = true;
  bool fails = false;  // not one of the calls that a sweep fails, which would sweep the trace and little else
  bool wanted() override { return isWanted; }
  void write(TextView module, TextView procedure, TextView message, std::int32_t number) override;

 private:
  Recorder& record_;
};

class FakeServices : public EngineServices {
 public:
  FakeServices(Recorder& record, FakeFiles& files, Text documents)
      : documentsFolder(std::move(documents)), record_(record), files_(files) {}

  Text applicationName = u"Corvane";
  Text documentsFolder;                          // ends in a separator
  std::map<Text, Text> expansions;               // what expandPath() answers; else the path itself
  std::shared_ptr<FakeLanguageStrings> strings;  // Nothing: the engine has no table
  bool reportFails = false;

  Text settingsApplicationName() override;
  Ref<ModuleCollection> prepareModuleCollection(TextView module) override;
  Text specialFolderPath(std::int32_t code) override;
  void ensureFolder(TextView path) override;
  Text expandPath(TextView path) override;
  void reportError(TextView message, std::int32_t level, TextView source) override;
  Ref<LanguageStrings> languageStrings() override;
  void prepareForm(TextView form) override;

 private:
  Recorder& record_;
  FakeFiles& files_;
};

class FakeUtilities : public EngineUtilities {
 public:
  FakeUtilities(Recorder& record, FakeFiles& files) : record_(record), files_(files) {}

  Text lastMatched;  // the text that matchText() was given last
  // Ignores the case of ASCII letters; "*" and "?" are wildcards, and a pattern that has one must cover the
  // whole text; one without is found anywhere; an empty one nowhere.
  std::int32_t matchText(TextView text, TextView pattern) override;
  Text cleanFileName(TextView text) override;
  bool fileExists(TextView path) override;
  bool createFolderPath(TextView path) override;
  void deleteFile(TextView path) override;
  void discardSavedFile(TextView path) override;

 private:
  Recorder& record_;
  FakeFiles& files_;
};

}  // namespace quillfile
