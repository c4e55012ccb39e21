#include "core/text/text.h"

#include <gtest/gtest.h>

#include <random>

namespace quillfile {
namespace {

TEST(Text, PositionsStartAtOneAndZeroMeansNotFound) {
  EXPECT_EQ(find(u"a-b-c", u"-"), 2);
  EXPECT_EQ(find(u"a-b-c", u"-", 3), 4);
  EXPECT_EQ(find(u"a-b-c", u"x"), 0);
  EXPECT_EQ(find(u"abc", u"c", 4), 0);
  EXPECT_THROW(find(u"abc", u"c", 0), std::out_of_range);
}

TEST(Text, WhateverTheLengthsTheFirstOccurrenceIsFound) {
  std::mt19937 random{3};
  const TextView alphabet = u"ab\u0161\u0162";  // the low bytes are those of a and b
  const auto text = [&](std::size_t length) {
    Text made;
    while (made.size() < length) made += alphabet[random() % (1 + random() % 4)];
    return made;
  };
  for (int round = 0; round < 20'000; ++round) {
    const Text in = text(random() % 60), wanted = text(1 + random() % 9);
    const Position start = 1 + static_cast<Position>(random() % 10);
    const auto index = in.find(wanted, static_cast<std::size_t>(start - 1));
    ASSERT_EQ(quillfile::find(in, wanted, start), index == Text::npos ? 0 : static_cast<Position>(index) + 1)
        << toUtf8(in) << " " << toUtf8(wanted) << " " << start;
  }
}

TEST(Text, TheLastOccurrenceIsFoundAtOrBeforeAPosition) {
  EXPECT_EQ(findLast(u"a.b.pdf", u"."), 4);
  EXPECT_EQ(findLast(u"a.b.pdf", u".", 4), 4);
  EXPECT_EQ(findLast(u"a.b.pdf", u".", 3), 2);
  EXPECT_EQ(findLast(u"a", u"."), 0);
}

TEST(Text, ACutNeverLeavesHalfASurrogatePair) {
  EXPECT_EQ(cutLeft(u"ab\U0001F600c", 3), u"ab");
  EXPECT_EQ(cutLeft(u"ab\U0001F600c", 4), u"ab\U0001F600");
  EXPECT_EQ(cutLeft(u"ab", 40), u"ab");
}

TEST(Text, FillDoesNotLookInsideAValue) {
  EXPECT_EQ(fill(u"Error occurred at line {}.  Reason: {}", 3, u"no {}"),
            u"Error occurred at line 3.  Reason: no {}");
}

TEST(Text, SplitKeepsEmptyPieces) {
  EXPECT_EQ(split(u"a;;b;", u';'), (std::vector<Text>{u"a", u"", u"b", u""}));
  EXPECT_EQ(split(u"", u';'), (std::vector<Text>{u""}));
}

TEST(Text, ReplacementsAreNotSearchedAgain) {
  EXPECT_EQ(replaceAll(u"aa", u"a", u"aa"), u"aaaa");
  EXPECT_EQ(replaceAll(u"abc", u"", u"x"), u"abc");
}

TEST(Text, Utf8GoesBothWaysAndWhatIsNoneIsReplaced) {
  EXPECT_EQ(fromUtf8("\xC3\xA4\xF0\x9F\x98\x80"), u"\u00E4\U0001F600");
  EXPECT_EQ(toUtf8(u"\u00E4\U0001F600"), "\xC3\xA4\xF0\x9F\x98\x80");
  EXPECT_EQ(fromUtf8("a\xFF\xC0\xAF"), u"a\uFFFD\uFFFD\uFFFD");
  const Text lone{u'a', 0xD83D};
  EXPECT_EQ(toUtf8(lone), "a\xEF\xBF\xBD");
}

}  // namespace
}  // namespace quillfile
