// The option lines: the trace of what a run goes by.
#pragma once

#include "core/module/trace.h"
#include "core/settings/run_settings.h"

namespace quillfile {

// Eleven lines, in their fixed order, under the procedure's name. `savePath` is the run's, not the setting.
void traceOptions(const Trace& trace, TextView procedureName, const RunSettings& run, TextView savePath);

}  // namespace quillfile
