// frmSavePath: the Save-As dialog for one attachment, which opens in the folder that was chosen last.
#pragma once

#include "core/module/trace.h"
#include "core/platform/path_rules.h"
#include "core/platform/user_interface.h"
#include "core/settings/settings.h"

namespace quillfile {

class frmSavePath {
 public:
  frmSavePath(EngineLog& log, const Settings& settings, Dialogs& dialogs, const PathRules& paths)
      : trace_(log), settings_(settings), dialogs_(dialogs), paths_(paths) {}

  // Proposes a full path and returns the full path chosen; empty when the user cancels, or after an error.
  Text SaveAs(TextView path);

 private:
  SaveAsRequest requestFor(TextView path);
  void rememberFolder(TextView chosen);

  Trace trace_;
  const Settings& settings_;
  Dialogs& dialogs_;
  PathRules paths_;
};

}  // namespace quillfile
