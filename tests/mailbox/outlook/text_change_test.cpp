// A text that is changed step by step, and the hunks of the original that this makes.
#include "hosts/mailbox/outlook/text_change.h"

#include <gtest/gtest.h>

#include <random>

namespace quillfile::mailbox {
namespace {

Text appliedTo(const TextChange& change) {
  const Text original = change.original();
  Text result;
  std::size_t at = 0;
  for (const auto& hunk : change.hunks()) {
    EXPECT_TRUE(at == 0 || hunk.begin > at) << "hunks touch";
    EXPECT_GE(hunk.end, hunk.begin);
    result += original.substr(at, hunk.begin - at) + hunk.replacement;
    at = hunk.end;
  }
  return result += original.substr(at);
}

TEST(OutlookTextChange, NotesAtBothEndsAreTwoHunks) {
  TextChange change{u"body"};
  change.set(u"body\r\n\r\nnote");
  change.set(u"top\r\n\r\nbody\r\n\r\nnote");
  EXPECT_EQ(change.hunks(), (std::vector<Hunk>{{0, 0, u"top\r\n\r\n"}, {4, 4, u"\r\n\r\nnote"}}));
}

TEST(OutlookTextChange, WhatIsTakenBackLeavesNoHunk) {
  TextChange change{u"body"};
  change.set(u"body note");
  change.set(u"body");
  EXPECT_FALSE(change.changed());
  EXPECT_EQ(change.current(), u"body");
}

TEST(OutlookTextChange, ALineEndIsNeverPartedByAHunk) {
  TextChange change{u"a\r\nb"};
  change.set(u"a\rb");
  EXPECT_EQ(change.hunks(), (std::vector<Hunk>{{1, 3, u"\r", u"\r\n"}}));
}

TEST(OutlookTextChange, HunksOfRandomChangesMakeTheCurrentText) {
  std::mt19937 random{7};
  const auto pick = [&](std::size_t below) { return random() % below; };
  for (int round = 0; round < 3000; ++round) {
    Text original;
    for (auto n = pick(20); n > 0; --n) original += u"ab\r\n"[pick(4)];
    TextChange change{original};
    for (int step = 0; step < 6; ++step) {
      Text next{change.current()};
      const auto begin = pick(next.size() + 1);
      Text put;
      for (auto n = pick(4); n > 0; --n) put += u"xa\r\n"[pick(4)];
      next.replace(begin, pick(next.size() - begin + 1), put);
      change.set(next);
      ASSERT_EQ(change.current(), next);
      ASSERT_EQ(change.original(), original);
      ASSERT_EQ(appliedTo(change), next);
    }
  }
}

TEST(OutlookTextChange, HunksOfRandomReplacementsMakeTheCurrentTextAndPartNoLineEnd) {
  std::mt19937 random{8};
  const auto pick = [&](std::size_t below) { return random() % below; };
  for (int round = 0; round < 3000; ++round) {
    Text original, expected;
    for (auto n = pick(20); n > 0; --n) original += u"ab\r\n"[pick(4)];
    expected = original;
    TextChange change{original};
    for (int step = 0; step < 6; ++step) {
      const auto begin = pick(expected.size() + 1), size = pick(expected.size() - begin + 1);
      Text put;
      for (auto n = pick(4); n > 0; --n) put += u"xa\r\n"[pick(4)];
      change.replace(begin, begin + size, put);
      expected.replace(begin, size, put);
      ASSERT_EQ(change.current(), expected);
      ASSERT_EQ(change.original(), original);
      ASSERT_EQ(appliedTo(change), expected);
    }
    for (const auto& hunk : change.hunks())
      for (const auto at : {hunk.begin, hunk.end})
        ASSERT_FALSE(at > 0 && original.substr(at - 1, 2) == u"\r\n");
    ASSERT_EQ(TextChange(original, change.hunks()).current(), expected);
  }
}

// Of a large body only the shorter side of a cut may move: notes at its end must not cost the whole of it.
TEST(OutlookTextChange, ACutMovesTheShorterSideOnly) {
  TextChange change{Text(1000, u'x') + u"note" + Text(10, u'y')};
  const auto* first = change.current().data();
  change.replace(1000, 1004, u"");
  EXPECT_EQ(change.current().data(), first);
  const auto* last = &change.current().back();
  change.replace(10, 14, u"");
  EXPECT_EQ(&change.current().back(), last);
}

TEST(OutlookTextChange, AChangeInALongTextIsFoundAtEveryDistanceFromItsEnds) {
  const Text filler(3000, u'x');
  for (std::size_t at = 0; at <= filler.size(); at += 37) {
    Text next = filler;
    TextChange change{filler};
    change.set(next.insert(at, u"note"));
    ASSERT_EQ(appliedTo(change), next);
    ASSERT_EQ(change.hunks().size(), 1u);
    ASSERT_EQ(change.hunks()[0].replacement, u"note");
  }
}

}  // namespace
}  // namespace quillfile::mailbox
