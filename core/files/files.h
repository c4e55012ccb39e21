// Files: waiting for a file that another program has just been told to save.
#pragma once

#include "core/platform/engine.h"
#include "core/platform/system.h"
#include "core/platform/user_interface.h"

namespace quillfile {

class Files {
 public:
  Files(EngineLog& log, FileTimes& files, Clock& clock, UserInterface& user)
      : log_(log), files_(files), clock_(clock), user_(user) {}

  // Tries to open the file, alone, until that succeeds or about two seconds have passed; pending events are
  // processed between two tries. `module` is the name that the trace lines carry. Nothing is thrown.
  bool WaitForFile(TextView path, TextView module);

 private:
  // The open file; `invalid`, and the system's error, when the time is up.
  struct Opened {
    FileTimes::Handle handle = FileTimes::invalid;
    std::int32_t error = 0;
  };
  Opened openInTime(TextView path);

  EngineLog& log_;
  FileTimes& files_;
  Clock& clock_;
  UserInterface& user_;
};

}  // namespace quillfile
