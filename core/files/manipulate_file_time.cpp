#include "core/files/manipulate_file_time.h"

#include "core/module/procedure.h"

namespace quillfile {
namespace {

constexpr TextView procedureName = u"ChangeDateTo";

FileTimes::SystemTime systemTimeOf(const LocalTime& time) {
  const auto field = [](std::int32_t value) { return static_cast<std::uint16_t>(value); };
  constexpr std::uint16_t dayOfWeek = 0, milliseconds = 0;  // neither is looked at
  return {field(time.year), field(time.month),  dayOfWeek,          field(time.day),
          field(time.hour), field(time.minute), field(time.second), milliseconds};
}

}  // namespace

bool ManipulateFileTime::ChangeDateTo(TextView path, TextView dateText) {
  trace_(procedureName, u"Changing date of {} to {}", path, dateText);
  return guarded([&](Step&) { return change(path, dates_.parse(dateText)); },
                 [](const Failure&, const Step&) { return false; });
}

bool ManipulateFileTime::change(TextView path, const LocalTime& time) {
  const auto local = times_.systemTimeToFileTime(systemTimeOf(time));
  if (!local) return failed(u"System file time conversion failed.  Reason: {}");
  const auto utc = times_.localFileTimeToFileTime(*local);
  if (!utc) return failed(u"File time conversion failed.  Reason: {}");

  const auto handle = times_.openToChange(fill(u"{}{}", paths_.longPathPrefix, path));
  // Against 0 alone, on purpose: the handle of a failed open passes, and the failure shows at the next step.
  if (handle == 0) return failed(u"CreateFile failed.  Reason: {}");
  const bool changed =
      times_.setTimes(handle, *utc, *utc, *utc) || failed(u"SetFileTime failed.  Reason: {}");
  if (changed) trace_(procedureName, u"Successfully changed date");
  times_.close(handle);
  return changed;
}

bool ManipulateFileTime::failed(TextView message) {
  trace_(procedureName, message, times_.lastError());
  return false;
}

}  // namespace quillfile
