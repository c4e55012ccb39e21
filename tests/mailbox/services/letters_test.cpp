#include "hosts/mailbox/services/letters.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/services/text_match.h"

namespace quillfile::mailbox {
namespace {

TEST(UnicodeLetters, LowerCaseKeepsEveryPosition) {
  UnicodeLetters letters;
  EXPECT_EQ(letters.lower(u"Ab-\u00C4\u0416\U00010400z"), u"ab-\u00E4\u0436\U00010428z");
  const Text lone{u'A', 0xD801, u'B', 0xDC00};
  EXPECT_EQ(letters.lower(lone), (Text{u'a', 0xD801, u'b', 0xDC00}));
  for (char32_t c = 1; c < 0x10000; ++c) {
    const Text one(1, static_cast<char16_t>(c));
    ASSERT_EQ(letters.lower(one).size(), 1u);
  }
}

TEST(UnicodeLetters, ALongTextIsLoweredAsItsUnitsAre) {
  UnicodeLetters letters;
  for (std::size_t at = 0; at < 200; ++at) {
    Text text(200, u'A'), wanted(200, u'a');
    text[at] = u'\u0416', wanted[at] = u'\u0436';
    ASSERT_EQ(letters.lower(text), wanted) << at;
    text[at] = u'[', wanted[at] = u'[';  // what follows the capitals
    ASSERT_EQ(letters.lower(text), wanted) << at;
    text[at] = u'@', wanted[at] = u'@';  // and what stands before them
    ASSERT_EQ(letters.lower(text), wanted) << at;
  }
}

TEST(UnicodeLetters, SearchesIgnoreCaseAndCountInTheTextItself) {
  UnicodeLetters letters;
  EXPECT_EQ(findIgnoringCase(letters, u"\u0130x FILE:///", u"file:///"), 4);
  EXPECT_EQ(findLastIgnoringCase(letters, u"<P>a<p>b", u"<P", 4), 1);
  EXPECT_EQ(replaceAllIgnoringCase(letters, u"a</BODY>b</Body>", u"</body>", u"!"), u"a!b!");
}

struct MatchCase {
  const char* name;
  TextView text, pattern;
  bool matches;
};

TEST(MatchText, FollowsItsRules) {
  UnicodeLetters letters;
  for (const MatchCase& row : {
           MatchCase{.name = "contained", .text = u"Quarterly report", .pattern = u"REPORT", .matches = true},
           MatchCase{
               .name = "not contained", .text = u"Quarterly report", .pattern = u"rapport", .matches = false},
           MatchCase{.name = "empty pattern", .text = u"x", .pattern = u"", .matches = false},
           MatchCase{.name = "empty both", .text = u"", .pattern = u"", .matches = false},
           MatchCase{.name = "star covers all", .text = u"", .pattern = u"*", .matches = true},
           MatchCase{.name = "star at front", .text = u"a.PDF", .pattern = u"*.pdf", .matches = true},
           MatchCase{.name = "whole text", .text = u"a.pdf.exe", .pattern = u"*.pdf", .matches = false},
           MatchCase{.name = "one unit", .text = u"a1.gif", .pattern = u"a?.gif", .matches = true},
           MatchCase{.name = "one unit is needed", .text = u"a.gif", .pattern = u"a?.gif", .matches = false},
           MatchCase{.name = "backtracks", .text = u"aXbXbc", .pattern = u"a*bc", .matches = true},
       }) {
    EXPECT_EQ(matchText(letters, row.text, row.pattern), row.matches) << row.name;
  }
}

}  // namespace
}  // namespace quillfile::mailbox
