// The commands: one function each. They throw WrongCommandLine and, where the store or the settings cannot be
// used, Failure; what went wrong with single items is in the report and in the exit status.
#pragma once

#include "apps/quillfile/options.h"

namespace quillfile::app {

int runCommand(const Options& options);

int runFolders(const Options& options);
int runList(const Options& options);
int runShow(const Options& options);
int runSave(const Options& options);
int runWatch(const Options& options);
int runMonitor(const Options& options);
int runRespond(const Options& options);
int runDelete(const Options& options);
int runRestore(const Options& options);
int runImport(const Options& options);
int runSettings(const Options& options);

}  // namespace quillfile::app
