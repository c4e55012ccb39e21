// LocalTime: a date and a time of day in the user's time zone, to the second; and the port that turns it into
// text.
#pragma once

#include <cstdint>
#include <optional>

#include "core/text/text.h"

namespace quillfile {

struct LocalTime {
  std::int32_t year = 0;    // 1601 to 9999
  std::int32_t month = 0;   // 1 to 12
  std::int32_t day = 0;     // 1 to 31
  std::int32_t hour = 0;    // 0 to 23
  std::int32_t minute = 0;  // 0 to 59
  std::int32_t second = 0;  // 0 to 59

  bool operator==(const LocalTime&) const = default;
};

class DateFormat {
 public:
  virtual ~DateFormat() = default;
  // The general date format of the user's locale. US English: "3/4/2009 2:05:00 PM", "3/4/2009" at midnight.
  // Whatever the locale, parse(general(t)) == t.
  virtual Text general(const LocalTime& time) = 0;
  // The opposite. Throws Failure::typeMismatch() when the text is no date.
  virtual LocalTime parse(TextView text) = 0;
};

}  // namespace quillfile
