// Dates: the general date format of the user's locale (LC_TIME), and back.
#pragma once

#include <string>
#include <vector>

#include "core/platform/date_time.h"

namespace quillfile::mailbox {

// A locale's patterns in strftime's letters (m d e Y B b H I M S p), and the words that they stand for.
struct DateWords {
  Text date;                      // "%m/%d/%Y"
  Text time;                      // "%I:%M:%S %p"
  std::vector<Text> months;       // twelve, %B
  std::vector<Text> shortMonths;  // twelve, %b
  Text am, pm;                    // both or neither
  bool padded = true;             // whether days, months and hours of one digit get a zero

  static DateWords usEnglish();
  // Of the named locale ("" is the environment's); US English where there is no such locale, and for "C".
  static DateWords of(const std::string& locale);
};

class LocaleDates : public DateFormat {
 public:
  explicit LocaleDates(DateWords words);

  // US English: "3/4/2009 2:05:00 PM", and "3/4/2009" at midnight. Where a locale's own text would not read
  // back to the same second, ISO 8601's "2009-03-04 14:05:00" stands in.
  Text general(const LocalTime& time) override;
  LocalTime parse(TextView text) override;

 private:
  Text format(TextView pattern, const LocalTime& time) const;

  DateWords words_;
};

}  // namespace quillfile::mailbox
