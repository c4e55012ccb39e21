#include "core/files/files.h"

#include <cstdlib>

#include "core/module/procedure.h"
#include "core/module/trace.h"

namespace quillfile {
namespace {

constexpr TextView procedureName = u"WaitForFile";
constexpr std::int64_t patience = 1;  // whole seconds: a try that fails later than this is the last

}  // namespace

bool Files::WaitForFile(TextView path, TextView module) {
  const Trace trace{log_, module};
  return guarded(
      [&](Step&) {
        trace(procedureName, u"Entering with {}", path);
        const auto [handle, error] = openInTime(path);
        const bool opened = handle != FileTimes::invalid;
        if (opened) {
          trace(procedureName, u"File opened normally");
          files_.close(handle);
        } else {
          trace(procedureName, u"File never opened: {}", error);
        }
        trace(procedureName, u"Leaving");
        return opened;
      },
      [](const Failure&, const Step&) { return false; });
}

Files::Opened Files::openInTime(TextView path) {
  const auto start = clock_.seconds();
  for (;;) {
    const auto handle = files_.openAlone(path);
    if (handle != FileTimes::invalid) return {.handle = handle};
    const auto error = files_.lastError();
    // The difference counts either way, so that a clock set back cannot keep the user waiting.
    if (std::abs(clock_.seconds() - start) > patience) return {.error = error};
    user_.processPendingEvents();
  }
}

}  // namespace quillfile
