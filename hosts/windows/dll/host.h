// Host: the module with everything that Windows, Outlook and the engine give it.
#pragma once

#include "core/module/module.h"
#include "hosts/windows/engine/services.h"
#include "hosts/windows/outlook/mail_helper.h"
#include "hosts/windows/services/dates.h"
#include "hosts/windows/services/dialogs.h"
#include "hosts/windows/services/file_times.h"
#include "hosts/windows/services/files.h"
#include "hosts/windows/services/letters.h"
#include "hosts/windows/services/own_module.h"
#include "hosts/windows/services/registry_settings.h"
#include "hosts/windows/services/system.h"
#include "hosts/windows/services/user.h"

namespace quillfile::windows {

class Host {
 public:
  Host()
      : module_({.services = services_,
                 .utilities = services_,
                 .log = log_,
                 .mailHelper = mailHelper_,
                 .settings = settings_,
                 .files = files_,
                 .linkedFiles = linkedFiles_,
                 .fileTimes = fileTimes_,
                 .dates = dates_,
                 .letters = letters_,
                 .clock = clock_,
                 .programs = programs_,
                 .user = user_,
                 .dialogs = dialogs_,
                 .paths = PathRules::windows(),
                 .installationFolder = ownFolder()}) {}

  Module& module() { return module_; }
  void releaseEngine() { services_.release(); }

 private:
  ComServices services_;
  ComLog log_;
  OutlookMailHelper mailHelper_{services_};
  RegistrySettings settings_;
  DiskFiles files_;
  DiskLinkedFiles linkedFiles_{files_};
  DiskFileTimes fileTimes_;
  LocaleDates dates_;
  SystemLetters letters_;
  SystemClock clock_;
  SystemPrograms programs_;
  DesktopUser user_;
  DesktopDialogs dialogs_;
  Module module_;
};

}  // namespace quillfile::windows
