// MailboxEngine: the add-in engine of this host. It gives the module its mail client, its services and its
// utilities, and remembers which folders the module wants watched.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "core/platform/engine.h"
#include "core/platform/letter_case.h"
#include "core/platform/settings_store.h"
#include "core/platform/system.h"
#include "hosts/mailbox/engine/run_report.h"
#include "hosts/mailbox/engine/trace_file.h"
#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/store/mail_store.h"

namespace quillfile::mailbox {

inline constexpr TextView engineName = u"Corvane";  // the settings application name

struct EngineParts {
  std::shared_ptr<MailClient> client;
  MailStore& store;
  Batch& batch;
  SettingsStore& settings;
  FileSystem& files;
  LetterCase& letters;
  TraceFile& trace;
  RunReport& report;
};

class MailboxEngine : public ModuleHost, public EngineServices, public EngineUtilities {
 public:
  explicit MailboxEngine(EngineParts parts) : parts_(std::move(parts)) {}

  // The ids of the folders that the module asked to be told about.
  const std::set<std::string>& watchedFolders() const { return watched_; }
  void forgetWatchedFolders() { watched_.clear(); }
  // The event that the module handled is over: its changes go to the batch, and what it gave up goes to the
  // trash.
  void endOfEvent();

  Ref<Application> application() override { return parts_.client; }
  void addButton(const Ref<Explorer>&, TextView) override {}  // this host has no toolbar
  void removeButton(TextView) override {}
  void registerHotkey(std::int32_t, std::int32_t) override {}
  void unregisterHotkey(std::int32_t, std::int32_t) override {}
  void watchFolder(TextView entryId, TextView storeId) override;
  void watchMonitoredFolders(TextView application, TextView section) override;
  Ref<Folder> findFolder(TextView entryId, TextView storeId) override;
  Text folderPath(const Ref<Folder>& folder) override;

  Text settingsApplicationName() override { return Text{engineName}; }
  Ref<ModuleCollection> prepareModuleCollection(TextView module) override;
  Text specialFolderPath(std::int32_t code) override;
  void ensureFolder(TextView path) override;
  Text expandPath(TextView path) override;
  void reportError(TextView message, std::int32_t level, TextView source) override;
  Ref<LanguageStrings> languageStrings() override { return nullptr; }
  void prepareForm(TextView) override {}

  std::int32_t matchText(TextView text, TextView pattern) override;
  Text cleanFileName(TextView text) override;
  // Where the answer is no, the name is this process's until the event is over.
  bool fileExists(TextView path) override;
  bool createFolderPath(TextView path) override;
  void deleteFile(TextView path) override;
  void discardSavedFile(TextView path) override;

 private:
  void giveUp(const std::string& path);

  EngineParts parts_;
  std::set<std::string> watched_;
  std::vector<std::string> discarded_;  // saved files that go once the batch has them on disk
};

// `text` without what a file name cannot hold on any system, made a usable name: "Re: 1/2?" -> "Re 12".
Text cleanFileName(TextView text);

}  // namespace quillfile::mailbox
