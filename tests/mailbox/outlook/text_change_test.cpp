// A text that is changed step by step, and the hunks of the original that this makes.
#include "hosts/mailbox/outlook/text_change.h"

#include <gtest/gtest.h>

#include <random>

namespace quillfile::mailbox {
namespace {

Text appliedTo(const TextChange& change) {
  Text result;
  std::size_t at = 0;
  for (const auto& hunk : change.hunks()) {
    EXPECT_TRUE(at == 0 || hunk.begin > at) << "hunks touch";
    EXPECT_GE(hunk.end, hunk.begin);
    result += change.original().substr(at, hunk.begin - at) + hunk.replacement;
    at = hunk.end;
  }
  return result += change.original().substr(at);
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
  EXPECT_EQ(change.hunks(), (std::vector<Hunk>{{1, 3, u"\r"}}));
}

TEST(OutlookTextChange, HunksOfRandomChangesMakeTheCurrentText) {
  std::mt19937 random{7};
  const auto pick = [&](std::size_t below) { return random() % below; };
  for (int round = 0; round < 3000; ++round) {
    Text original;
    for (auto n = pick(20); n > 0; --n) original += u"ab\r\n"[pick(4)];
    TextChange change{original};
    for (int step = 0; step < 6; ++step) {
      Text next = change.current();
      const auto begin = pick(next.size() + 1);
      Text put;
      for (auto n = pick(4); n > 0; --n) put += u"xa\r\n"[pick(4)];
      next.replace(begin, pick(next.size() - begin + 1), put);
      change.set(next);
      ASSERT_EQ(change.current(), next);
      ASSERT_EQ(appliedTo(change), next);
    }
  }
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
