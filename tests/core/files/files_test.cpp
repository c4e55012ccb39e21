#include "core/files/files.h"

#include "tests/fakes/both_rules.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

bool wait(FakePlatform& world, TextView path, TextView module = u"Quillfile") {
  Files files{world.log, world.files, world.clock, world.user};
  return files.WaitForFile(path, module);
}

class WaitForFile : public UnderBothRules {
 protected:
  Text file = path(u"C:\\Saved\\a.pdf");
};
INSTANTIATE_TEST_SUITE_P(Paths, WaitForFile, bothRules(), rulesName);

TEST_P(WaitForFile, AnUnlockedFileNeedsOneTry) {
  world.files.add(file);
  EXPECT_TRUE(wait(world, file));
  expectTranscript(
      world.record.lines(),
      {u"trace WaitForFile: Entering with " + file, u"FileTimes.openAlone " + file,
       u"trace WaitForFile: File opened normally", u"FileTimes.close", u"trace WaitForFile: Leaving"});
  EXPECT_EQ(world.files.openHandles(), 0u);
}

TEST_P(WaitForFile, AFileThatNeverAppearsIsGivenUpAfterTwoSecondsWithTheSystemsError) {
  EXPECT_FALSE(wait(world, file));
  const Text failedTry = fill(u"FileTimes.openAlone {}: error 2", file);
  expectTranscript(world.record.lines(),
                   {u"trace WaitForFile: Entering with " + file, failedTry, u"pending events", failedTry,
                    u"pending events", failedTry, u"trace WaitForFile: File never opened: 2",
                    u"trace WaitForFile: Leaving"});
}

TEST_P(WaitForFile, ALockedFileIsWaitedForUntilItsHolderLetsGo) {
  world.files.add(file).locked = true;
  world.user.whilePending = [&] { world.files.find(file)->locked = false; };
  EXPECT_TRUE(wait(world, file));
  expectTranscript(
      world.record.lines(),
      {u"trace WaitForFile: Entering with " + file, fill(u"FileTimes.openAlone {}: error 32", file),
       u"pending events", u"FileTimes.openAlone " + file, u"trace WaitForFile: File opened normally",
       u"FileTimes.close", u"trace WaitForFile: Leaving"});
}

TEST_P(WaitForFile, TheBoundIsTimeAndNotANumberOfTries) {
  int tries = 0;
  world.user.whilePending = [&] { world.clock.now += ++tries == 500 ? 2 : 0; };
  EXPECT_FALSE(wait(world, file));
  EXPECT_EQ(tries, 500);
}

TEST_P(WaitForFile, AClockThatIsSetBackEndsTheWaitToo) {
  world.user.whilePending = [&] { world.clock.now -= 3600; };
  EXPECT_FALSE(wait(world, file));
  EXPECT_EQ(world.record.lines(u"pending").size(), 1u);
}

TEST_P(WaitForFile, TheTraceCarriesTheModuleNameThatWasGiven) {
  world.files.add(file);
  EXPECT_TRUE(wait(world, file, u"Other"));
  expectTranscript(world.record.lines(u"trace"), {u"trace [Other 0] WaitForFile: Entering with " + file,
                                                  u"trace [Other 0] WaitForFile: File opened normally",
                                                  u"trace [Other 0] WaitForFile: Leaving"});
}

TEST_P(WaitForFile, AnUnexpectedErrorEndsItWithFalse) {
  world.record.failOn(u"UserInterface.processPendingEvents");
  EXPECT_FALSE(wait(world, file));
  expectTranscript(world.record.lines(), {u"trace WaitForFile: Entering with " + file,
                                          fill(u"FileTimes.openAlone {}: error 2", file),
                                          u"UserInterface.processPendingEvents fails"});
}

TEST_P(WaitForFile, AnyFailureOfAnExistingFileIsWaitedOut) {
  const auto runs = sweepFailures(
      GetParam(), [&](FakePlatform& swept) { swept.files.add(file); },
      [&](FakePlatform& swept) { return Text{wait(swept, file) ? u"opened" : u"not opened"}; });
  expectTranscript(runs, {u"FileTimes.openAlone: opened"});
}

}  // namespace
}  // namespace quillfile
