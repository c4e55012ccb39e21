// What is left of the system: letters, dates, the clock and programs.
#pragma once

#include "core/platform/date_time.h"
#include "core/platform/letter_case.h"
#include "core/platform/system.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

// ASCII and the Latin-1 letters.
class FakeLetters : public LetterCase {
 public:
  Text lower(TextView text) override {
    Text result{text};
    for (auto& unit : result) {
      const bool latin = unit >= 0xC0 && unit <= 0xDE && unit != 0xD7;
      if ((unit >= u'A' && unit <= u'Z') || latin) unit = static_cast<char16_t>(unit + 0x20);
    }
    return result;
  }
};

// US English: "3/4/2009 2:05:00 PM", the time left out at midnight.
class FakeDates : public DateFormat {
 public:
  explicit FakeDates(Recorder& record) : record_(record) {}
  Text general(const LocalTime& time) override;
  LocalTime parse(TextView text) override;

 private:
  Recorder& record_;
};

class FakeClock : public Clock {
 public:
  std::int64_t now = 1000;
  std::int64_t seconds() override { return now; }
};

class FakePrograms : public Programs {
 public:
  explicit FakePrograms(Recorder& record) : record_(record) {}
  Text machine = u"MACHINE";
  void start(TextView commandLine, TextView path) override {
    record_.asked(u"Programs.start");
    record_.did(fill(u"start {} for {}", commandLine, path));
  }
  Text machineName() override { return record_.asked(u"Programs.machineName"), machine; }

 private:
  Recorder& record_;
};

}  // namespace quillfile
