// How failed checks show texts and times.
#pragma once

#include <ostream>

#include "core/platform/date_time.h"
#include "core/text/text.h"

namespace quillfile {

inline void PrintTo(const LocalTime& time, std::ostream* out) {
  *out << time.year << '-' << time.month << '-' << time.day << ' ' << time.hour << ':' << time.minute << ':'
       << time.second;
}

}  // namespace quillfile
