// LocaleDates: dates as text, by the automation rules (VarBstrFromDate, VarDateFromStr).
#pragma once

#include <windows.h>

#include "core/platform/date_time.h"

namespace quillfile::windows {

class LocaleDates final : public DateFormat {
 public:
  // The user's locale, with the user's own changes to it.
  explicit LocaleDates(LCID locale = LOCALE_USER_DEFAULT) : locale_(locale) {}
  Text general(const LocalTime& time) override;
  LocalTime parse(TextView text) override;

 private:
  LCID locale_;
};

}  // namespace quillfile::windows
