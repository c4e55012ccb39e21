#include "tests/fakes/fake_system.h"

#include <chrono>
#include <cstdio>

namespace quillfile {
namespace {

Text twoDigits(std::int32_t number) { return (number < 10 ? u"0" : u"") + decimal(number); }

}  // namespace

Text FakeDates::general(const LocalTime& time) {
  record_.asked(u"DateFormat.general");
  const Text date = fill(u"{}/{}/{}", time.month, time.day, time.year);
  if (time.hour == 0 && time.minute == 0 && time.second == 0) return date;
  const auto hour = time.hour % 12 == 0 ? 12 : time.hour % 12;
  return fill(u"{} {}:{}:{} {}", date, hour, twoDigits(time.minute), twoDigits(time.second),
              time.hour < 12 ? TextView{u"AM"} : TextView{u"PM"});
}

LocalTime FakeDates::parse(TextView text) {
  record_.asked(u"DateFormat.parse");
  LocalTime time;
  char half = 'A';
  const auto read = std::sscanf(toUtf8(text).c_str(), "%d/%d/%d %d:%d:%d %cM", &time.month, &time.day,
                                &time.year,  // NOLINT
                                &time.hour, &time.minute, &time.second, &half);
  if (read != 3 && read != 7) throw Failure::typeMismatch();
  using namespace std::chrono;
  const year_month_day date{year{time.year}, month{static_cast<unsigned>(time.month)},
                            day{static_cast<unsigned>(time.day)}};
  if (!date.ok()) throw Failure::typeMismatch();
  if (read == 7) time.hour = time.hour % 12 + (half == 'P' ? 12 : 0);
  return time;
}

}  // namespace quillfile
