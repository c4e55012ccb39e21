#include "core/platform/letter_case.h"

#include <gtest/gtest.h>

#include "tests/fakes/fake_system.h"

namespace quillfile {
namespace {

TEST(LetterCase, AHitIsFoundAtEveryDistanceAndAlsoWhereTwoWindowsMeet) {
  FakeLetters letters;
  for (Position at = 1; at <= 3000; at += 7) {
    const Text text = Text(static_cast<std::size_t>(at - 1), u'x') + u"FILE" + Text(300, u'x');
    ASSERT_EQ(findIgnoringCase(letters, text, u"file"), at);
    ASSERT_EQ(findIgnoringCase(letters, text, u"file", at), at);
    ASSERT_EQ(findIgnoringCase(letters, text, u"file", at + 1), 0);
    ASSERT_EQ(findLastIgnoringCase(letters, text, u"file"), at);
    ASSERT_EQ(findLastIgnoringCase(letters, text, u"file", at), at);
    ASSERT_EQ(findLastIgnoringCase(letters, text, u"file", at - 1 > 0 ? at - 1 : 1), at == 1 ? 1 : 0);
  }
}

TEST(LetterCase, TheFirstOfSeveralIsFoundForwardsAndTheLastBackwards) {
  FakeLetters letters;
  const Text text = Text(500, u'.') + u"aBc" + Text(900, u'.') + u"AbC" + Text(500, u'.');
  EXPECT_EQ(findIgnoringCase(letters, text, u"ABC"), 501);
  EXPECT_EQ(findIgnoringCase(letters, text, u"ABC", 502), 1404);
  EXPECT_EQ(findLastIgnoringCase(letters, text, u"ABC"), 1404);
  EXPECT_EQ(findLastIgnoringCase(letters, text, u"ABC", 1403), 501);
}

TEST(LetterCase, ASearchBelowPositionOneIsACallersMistake) {
  FakeLetters letters;
  EXPECT_THROW(findIgnoringCase(letters, u"abc", u"a", 0), std::out_of_range);
  EXPECT_EQ(findIgnoringCase(letters, u"abc", u"c", 4), 0);
  EXPECT_EQ(findIgnoringCase(letters, u"", u"c"), 0);
  EXPECT_EQ(findLastIgnoringCase(letters, u"", u"c"), 0);
}

}  // namespace
}  // namespace quillfile
