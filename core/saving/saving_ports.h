// SavingPorts: what the saving engine asks of the world.
#pragma once

#include "core/files/files.h"
#include "core/files/frm_save_path.h"
#include "core/files/manipulate_file_time.h"
#include "core/module/trace.h"
#include "core/platform/date_time.h"
#include "core/platform/engine.h"
#include "core/platform/item.h"
#include "core/platform/letter_case.h"
#include "core/platform/path_rules.h"
#include "core/platform/system.h"
#include "core/platform/user_interface.h"
#include "core/settings/settings.h"

namespace quillfile {

struct SavingPorts {
  EngineServices& services;
  EngineUtilities& utilities;
  MailHelper& mailHelper;
  const Settings& settings;
  FileSystem& files;
  DateFormat& dates;
  LetterCase& letters;
  Programs& programs;
  UserInterface& user;
  ManipulateFileTime& fileTimes;
  Files& fileWaiting;
  frmSavePath& savePathForm;
  Trace trace;
  PathRules paths;
  Text installationFolder;  // no separator at its end
};

}  // namespace quillfile
