// ManipulateFileTime: gives a saved file the date at which its mail was received.
#pragma once

#include "core/module/trace.h"
#include "core/platform/date_time.h"
#include "core/platform/engine.h"
#include "core/platform/path_rules.h"
#include "core/platform/system.h"

namespace quillfile {

class ManipulateFileTime {
 public:
  ManipulateFileTime(EngineLog& log, FileTimes& times, DateFormat& dates, const PathRules& paths)
      : trace_(log), times_(times), dates_(dates), paths_(paths) {}

  // Sets creation, last access and last write to one local time, in the user's general date format. True only
  // when they were set; a failure is traced, the file stays as it was, and nothing is thrown.
  bool ChangeDateTo(TextView path, TextView dateText);

 private:
  bool change(TextView path, const LocalTime& time);
  bool failed(TextView message);  // traces it with the system's last error

  Trace trace_;
  FileTimes& times_;
  DateFormat& dates_;
  PathRules paths_;
};

}  // namespace quillfile
