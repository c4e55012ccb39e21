// Commands: the three ways in which a run of saving begins. By hand over the selection, by itself for a new
// item in a monitored folder, and for an item that was sent. Each owns only the run around the saving
// engine's one entry per item: the settings, the folder, the walk, what is told.
#pragma once

#include "core/module/module_state.h"
#include "core/module/trace.h"
#include "core/platform/letter_case.h"
#include "core/platform/path_rules.h"
#include "core/platform/user_interface.h"
#include "core/saving/saving_engine.h"
#include "core/settings/run_settings.h"

namespace quillfile {

class Commands {
 public:
  struct Ports {
    const ModuleState& module;
    const Settings& settings;
    SavingEngine& saving;
    RunCounter& counter;
    EngineServices& services;
    EngineUtilities& utilities;
    UserInterface& user;
    LetterCase& letters;
    Trace trace;
    PathRules paths;
  };
  explicit Commands(const Ports& ports) : ports_(ports) {}

  // Saves the attachments of every selected item, and says how many. An error ends the walk and is reported.
  void QuillfileButton();

  // Handles an item that was added to a monitored folder. True only when automatic mode is off.
  bool CheckItemForAttachments(const Ref<Item>& item, TextView folderEntryId, TextView folderStoreId);

  // Handles an item that was added to Sent Items. Always False.
  bool ProcessSentItems(const Ref<Item>& item);

 private:
  Text manualSavePath(const RunSettings& run);
  Text automaticSavePath(const RunSettings& run, TextView folderEntryId, TextView folderStoreId);
  Text sentSavePath(const RunSettings& run);
  Text pathOf(const RunSettings& run, const Ref<Folder>& folder);
  void saveSelection(const RunSettings& run, TextView savePath);
  void save(const Ref<Item>& item, const RunSettings& run, TextView savePath, bool isSent);

  Ports ports_;
};

}  // namespace quillfile
