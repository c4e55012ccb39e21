#include "hosts/mailbox/services/dates.h"

#include <gtest/gtest.h>

#include "core/platform/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr LocalTime afternoon{.year = 2009, .month = 3, .day = 4, .hour = 14, .minute = 5, .second = 0};

TEST(LocaleDates, UsEnglishIsTheDocumentedText) {
  LocaleDates dates{DateWords::usEnglish()};
  EXPECT_EQ(dates.general(afternoon), u"3/4/2009 2:05:00 PM");
  EXPECT_EQ(dates.general({.year = 2009, .month = 3, .day = 4}), u"3/4/2009");
  EXPECT_EQ(dates.general({.year = 2009, .month = 12, .day = 31, .second = 1}), u"12/31/2009 12:00:01 AM");
  EXPECT_EQ(dates.general({.year = 2009, .month = 12, .day = 31, .hour = 12}), u"12/31/2009 12:00:00 PM");
}

TEST(LocaleDates, TheCLocaleAndAnUnknownOneAreUsEnglish) {
  for (const char* name : {"C", "no_SUCH.locale"}) {
    LocaleDates dates{DateWords::of(name)};
    EXPECT_EQ(dates.general(afternoon), u"3/4/2009 2:05:00 PM") << name;
  }
}

TEST(LocaleDates, ALocalesOwnOrderAndWordsAreUsed) {
  DateWords german = DateWords::usEnglish();
  german.date = u"%d.%m.%Y", german.time = u"%H:%M:%S", german.am = german.pm = u"", german.padded = true;
  EXPECT_EQ(LocaleDates{german}.general(afternoon), u"04.03.2009 14:05:00");
  DateWords named = DateWords::usEnglish();
  named.date = u"%e %b %Y", named.time = u"%k:%M:%S";
  EXPECT_EQ(LocaleDates{named}.general(afternoon), u"4 Mar 2009 14:05:00");
}

TEST(LocaleDates, EveryTextReadsBackToTheSameSecond) {
  DateWords lossy = DateWords::usEnglish();  // a locale whose own time has no minutes
  lossy.time = u"%H";
  DateWords ambiguous = DateWords::usEnglish();  // a month's name that begins another's
  ambiguous.date = u"%b%d %Y";
  for (std::size_t i = 0; i < 12; ++i) ambiguous.shortMonths[i] = decimal(static_cast<std::int64_t>(i) + 1);
  for (const DateWords& words : {DateWords::usEnglish(), lossy, ambiguous, DateWords::of("")}) {
    LocaleDates dates{words};
    for (std::int32_t i = 0; i < 5000; ++i) {
      const LocalTime time{.year = 1970 + i % 130,
                           .month = 1 + i % 12,
                           .day = 1 + i % 28,
                           .hour = i * 7 % 24,
                           .minute = i * 11 % 60,
                           .second = i * 13 % 60};
      ASSERT_EQ(dates.parse(dates.general(time)), time) << toUtf8(dates.general(time));
    }
  }
}

TEST(LocaleDates, ATextThatIsNoDateIsATypeMismatch) {
  LocaleDates dates{DateWords::usEnglish()};
  for (TextView text :
       {u"", u"yesterday", u"13/40/2009", u"2/29/2009", u"3/4/2009 25:00:00 PM", u"3/4/2009 2:05:00 PM x"}) {
    EXPECT_THROW(dates.parse(text), Failure) << toUtf8(text);
  }
  EXPECT_EQ(dates.parse(u"2/29/2008").day, 29);
}

}  // namespace
}  // namespace quillfile::mailbox
