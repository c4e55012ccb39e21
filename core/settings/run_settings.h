// RunSettings: the options of one processing run, read in one go.
#pragma once

#include "core/saving/saving_engine.h"
#include "core/settings/settings.h"

namespace quillfile {

struct RunSettings {
  std::int32_t automaticMode = 0;  // 1 is on; any other number is neither on nor, when it is not 0, off
  bool sendDeleteAttachments = false;
  bool sendRemoveAttachments = false;
  bool errorPrompt = false;
  bool saveAllAttachments = false;
  bool addURL = false;
  bool removeAttachment = false;
  ReadWrite readWrite{};
  Text savePath = {};
  bool imitateOutlookFolders = false;
  AfterSave postProcess{};
  bool automaticRename = false;
};

// Goes on with the next key after an error: what cannot be read stays 0, or empty.
RunSettings ReadRunSettings(const Settings& settings);

}  // namespace quillfile
