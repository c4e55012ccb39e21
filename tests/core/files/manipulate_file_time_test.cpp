#include "core/files/manipulate_file_time.h"

#include "tests/fakes/both_rules.h"
#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

// 2009-03-04 12:05:00 UTC, which is 14:05:00 in the fake's time zone.
constexpr FileTimes::FileTime received = 128806419000000000;

bool change(FakePlatform& world, TextView path, TextView date = u"3/4/2009 2:05:00 PM") {
  ManipulateFileTime times{world.log, world.files, world.dates, world.paths};
  return times.ChangeDateTo(path, date);
}

class ChangeDateTo : public UnderBothRules {
 protected:
  Text file = path(u"C:\\Saved\\a.pdf");
  Text opened = fill(u"{}{}", world.paths.longPathPrefix, file);  // Windows: the long-path form
  Text entering = fill(u"trace ChangeDateTo: Changing date of {} to 3/4/2009 2:05:00 PM", file);
};
INSTANTIATE_TEST_SUITE_P(Paths, ChangeDateTo, bothRules(), rulesName);

TEST_P(ChangeDateTo, AllThreeTimesBecomeTheLocalTimeGiven) {
  world.files.add(file);
  EXPECT_TRUE(change(world, file));
  expectTranscript(world.record.lines(),
                   {entering, u"FileTimes.openToChange " + opened,
                    fill(u"FileTimes.setTimes {} {} {}", received, received, received),
                    u"trace ChangeDateTo: Successfully changed date", u"FileTimes.close"});
  EXPECT_EQ(world.files.find(file)->creation, received);
  EXPECT_EQ(world.files.openHandles(), 0u);
}

TEST_P(ChangeDateTo, APathBeyondTheClassic260UnitsIsOpenedWhole) {
  file = path(u"C:\\Saved\\") + Text(300, u'n') + u".pdf";
  world.files.add(file);
  EXPECT_TRUE(change(world, file));
  EXPECT_EQ(world.record.lines(u"FileTimes.openToChange").at(0),
            fill(u"FileTimes.openToChange {}{}", world.paths.longPathPrefix, file));
}

TEST_P(ChangeDateTo, AFileThatIsMissingShowsAsAFailureToSetItsTimes) {
  EXPECT_FALSE(change(world, file));
  expectTranscript(world.record.lines(),
                   {entering, fill(u"FileTimes.openToChange {}: error 2", opened),
                    u"trace ChangeDateTo: SetFileTime failed.  Reason: 6", u"FileTimes.close"});
}

TEST_P(ChangeDateTo, AReadOnlyFileKeepsItsTimes) {
  world.files.add(file).attributes = 33;
  EXPECT_FALSE(change(world, file));
  EXPECT_EQ(world.files.find(file)->lastWrite, 0u);
}

TEST_P(ChangeDateTo, OnlyAHandleOfZeroIsAFailedOpen) {
  world.files.add(file);
  world.files.opensAsZero = true;
  EXPECT_FALSE(change(world, file));
  expectTranscript(world.record.lines(), {entering, u"trace ChangeDateTo: CreateFile failed.  Reason: 5"});
}

TEST_P(ChangeDateTo, ATextThatIsNoDateLeavesTheFileAlone) {
  world.files.add(file);
  EXPECT_FALSE(change(world, file, u"tomorrow"));
  expectTranscript(world.record.lines(),
                   {fill(u"trace ChangeDateTo: Changing date of {} to tomorrow", file)});
}

TEST_P(ChangeDateTo, ADateWithoutATimeIsMidnight) {
  world.files.add(file);
  EXPECT_TRUE(change(world, file, u"3/4/2009"));
  EXPECT_EQ(world.files.find(file)->lastWrite, received - (14 * 3600 + 5 * 60) * 10'000'000ULL);
}

TEST(ChangeDateToOnWindows, APathInLongPathFormGetsThePrefixASecondTime) {
  FakePlatform world;
  EXPECT_FALSE(change(world, u"\\\\?\\C:\\Saved\\a.pdf"));
  EXPECT_EQ(world.record.lines(u"FileTimes.openToChange").at(0),
            u"FileTimes.openToChange \\\\?\\\\\\?\\C:\\Saved\\a.pdf: error 2");
}

TEST_P(ChangeDateTo, EveryFailureHasItsOwnMessageAndLeavesTheFileAsItWas) {
  const auto runs = sweepFailures(
      GetParam(), [&](FakePlatform& swept) { swept.files.add(file); },
      [&](FakePlatform& swept) {
        const bool changed = change(swept, file);
        EXPECT_EQ(swept.files.find(file)->lastWrite, changed ? received : 0);
        return swept.record.lines(u"trace").back();
      });
  expectTranscript(
      runs,
      {u"DateFormat.parse: " + entering,
       u"FileTimes.systemTimeToFileTime: trace ChangeDateTo: System file time conversion failed.  Reason: 87",
       u"FileTimes.localFileTimeToFileTime: trace ChangeDateTo: File time conversion failed.  Reason: 87",
       u"FileTimes.openToChange: trace ChangeDateTo: SetFileTime failed.  Reason: 6",
       u"FileTimes.setTimes: trace ChangeDateTo: SetFileTime failed.  Reason: 5"});
}

}  // namespace
}  // namespace quillfile
