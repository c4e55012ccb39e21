#include "tests/core/saving/saving_room.h"

namespace quillfile {
namespace {

using Exclusion = SavingUnderBothRules;

TEST_P(Exclusion, ANameOnTheListMatches) {
  EXPECT_TRUE(engine.IsAMatch(u"b.jpg", u"a.gif;b.jpg"));
  EXPECT_FALSE(engine.IsAMatch(u"c.jpg", u"a.gif;b.jpg"));
}

TEST_P(Exclusion, BlanksAroundASeparatorBelongToThePatterns) {
  EXPECT_FALSE(engine.IsAMatch(u"b.jpg", u"a.gif; b.jpg"));
}

// Whether an exclusion ignores case rests with the match, as it does not for the filters.
TEST_P(Exclusion, TheNameIsMatchedInItsOwnLetters) {
  engine.IsAMatch(u"Logo.GIF", u"a.gif");
  EXPECT_EQ(world.utilities.lastMatched, u"Logo.GIF");
}

// Counted by letting the n-th call fail: the list below has two patterns, the last one empty.
TEST_P(Exclusion, AnEmptyLastPatternIsStillTried) {
  world.record.failAt(2);
  EXPECT_TRUE(engine.IsAMatch(u"a.gif", u"a.gif;"));
  expectTranscript(lines(), {u"EngineUtilities.matchText fails",
                             u"error 0 Quillfile.IsAMatch: Error occurred detecting exclusions: "
                             u"EngineUtilities.matchText failed"});
}

TEST_P(Exclusion, AnErrorIsReportedAndTheResultSoFarStands) {
  world.record.failAt(1);
  EXPECT_FALSE(engine.IsAMatch(u"a.gif", u"a.gif;b.jpg"));
  expectTranscript(lines(), {u"EngineUtilities.matchText fails",
                             u"error 0 Quillfile.IsAMatch: Error occurred detecting exclusions: "
                             u"EngineUtilities.matchText failed"});
}

TEST_P(Exclusion, AnEmptyListIsNeverAsked) {
  auto mail = world.addItem({.subject = u"A"});
  mail->attach({.fileName = u"a.gif"});
  world.record.failOn(u"EngineUtilities.matchText");
  EXPECT_EQ(engine.SaveAttachment(mail, mail->attachments()->item(1), {}, path(u"/Saved/")),
            SaveResult::saved);
}

RUN_UNDER_BOTH_RULES(Exclusion);

}  // namespace
}  // namespace quillfile
