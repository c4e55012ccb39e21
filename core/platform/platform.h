// Platform: every port in one place, for the composition of the module. A room takes only the ports it needs.
#pragma once

#include "core/platform/date_time.h"
#include "core/platform/engine.h"
#include "core/platform/failure.h"
#include "core/platform/item.h"
#include "core/platform/letter_case.h"
#include "core/platform/outlook.h"
#include "core/platform/path_rules.h"
#include "core/platform/settings_store.h"
#include "core/platform/system.h"
#include "core/platform/user_interface.h"

namespace quillfile {

struct Platform {
  EngineServices& services;
  EngineUtilities& utilities;
  EngineLog& log;
  MailHelper& mailHelper;
  SettingsStore& settings;
  FileSystem& files;
  LinkedFiles& linkedFiles;
  FileTimes& fileTimes;
  DateFormat& dates;
  LetterCase& letters;
  Clock& clock;
  Programs& programs;
  UserInterface& user;
  Dialogs& dialogs;
  PathRules paths;
  Text installationFolder;  // the folder of the module's own file, where "Paperclip.ico" lies; no separator
                            // at its end
};

}  // namespace quillfile
