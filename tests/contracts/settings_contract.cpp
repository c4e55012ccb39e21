// What every host's settings, dates and letters keep.
#include "core/platform/failure.h"
#include "tests/contracts/contract.h"

namespace quillfile {
namespace {

class SettingsContract : public Contract {
 protected:
  std::optional<Text> read(TextView key, TextView section = u"Quillfile") {
    return ports.settings.read(u"Corvane", section, key);
  }
  void write(TextView key, TextView value, TextView section = u"Quillfile") {
    ports.settings.write(u"Corvane", section, key, value);
  }
};
FOR_EVERY_HOST(SettingsContract);

TEST_P(SettingsContract, AKeyThatWasNeverWrittenHasNoValue) { EXPECT_EQ(read(u"SavePath"), std::nullopt); }

TEST_P(SettingsContract, AnEmptyValueIsAValue) {
  write(u"SavePath", u"");
  EXPECT_EQ(read(u"SavePath"), u"");
}

TEST_P(SettingsContract, TheLastValueStands) {
  write(u"SavePath", u"one");
  write(u"SavePath", u"two");
  EXPECT_EQ(read(u"SavePath"), u"two");
}

TEST_P(SettingsContract, TheCaseOfAKeyAndASectionIsOfNoAccount) {
  write(u"SavePath", u"x");
  EXPECT_EQ(read(u"savepath"), u"x");
  EXPECT_EQ(read(u"SAVEPATH", u"quillfile"), u"x");
}

TEST_P(SettingsContract, SectionsAreApart) {
  write(u"CVTemporarilyDisabled", u"True", u"Corvane");
  EXPECT_EQ(read(u"CVTemporarilyDisabled"), std::nullopt);
  EXPECT_EQ(read(u"CVTemporarilyDisabled", u"Corvane"), u"True");
}

TEST_P(SettingsContract, AnyTextComesBackAsItWas) {
  for (const Text& value :
       {Text{u" a "}, Text{u"C:\\Saved\\ä b\\"}, Text{u"\"quoted\""}, Text{u"a;b#c=d[e]"},
        Text{u"line\r\nline\ttab"}, Text{u"\u4E2D\u6587 \U0001F4CE"}, Text(20'000, u'x')}) {
    write(u"SavePath", value);
    EXPECT_EQ(read(u"SavePath"), value);
  }
}

using DatesContract = Contract;
FOR_EVERY_HOST(DatesContract);

TEST_P(DatesContract, WhatIsWrittenIsReadBackToTheSecond) {
  for (std::int32_t i = 0; i < 300; ++i) {
    const LocalTime time{.year = 1970 + i % 130,
                         .month = 1 + i % 12,
                         .day = 1 + i % 28,
                         .hour = i * 7 % 24,
                         .minute = i * 11 % 60,
                         .second = i * 13 % 60};
    const Text text = ports.dates.general(time);
    EXPECT_TRUE(ports.dates.parse(text) == time) << toUtf8(text);
  }
}

TEST_P(DatesContract, MidnightIsADateAlone) {
  const Text midnight = ports.dates.general({.year = 2009, .month = 3, .day = 4});
  const Text later = ports.dates.general({.year = 2009, .month = 3, .day = 4, .second = 1});
  EXPECT_TRUE(startsWith(later, midnight)) << toUtf8(later);
  EXPECT_LT(midnight.size(), later.size());
}

TEST_P(DatesContract, ATextThatIsNoDateIsATypeMismatch) {
  for (const TextView text : {u"", u"yesterday", u"13/40/2009", u"2/29/2009"}) {
    try {
      ports.dates.parse(text);
      ADD_FAILURE() << toUtf8(text) << " was taken for a date";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.number, Failure::typeMismatch().number);
    }
  }
}

using LettersContract = Contract;
FOR_EVERY_HOST(LettersContract);

TEST_P(LettersContract, EachUnitKeepsItsPlace) {
  EXPECT_EQ(ports.letters.lower(u"PaperClip.ICO"), u"paperclip.ico");
  EXPECT_EQ(ports.letters.lower(u"\u00C4\u00D6\u00DC \u00DF \u00D7"), u"\u00E4\u00F6\u00FC \u00DF \u00D7");
  EXPECT_EQ(ports.letters.lower(u""), u"");
  for (char16_t unit = 1; unit < 0xFFFF; ++unit) {
    const Text text{u'A', unit, u'Z'};
    const Text lower = ports.letters.lower(text);
    ASSERT_EQ(lower.size(), 3u) << int{unit};
    ASSERT_EQ(lower[0], u'a') << int{unit};
    ASSERT_EQ(lower[2], u'z') << int{unit};
  }
}

using SystemContract = Contract;
FOR_EVERY_HOST(SystemContract);

TEST_P(SystemContract, TheMachineHasANameAndTheClockDoesNotGoBack) {
  EXPECT_NE(ports.programs.machineName(), u"");
  const auto before = ports.clock.seconds();
  EXPECT_GE(ports.clock.seconds(), before);
}

}  // namespace
}  // namespace quillfile
