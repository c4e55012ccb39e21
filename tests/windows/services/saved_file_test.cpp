// The core's waiting for a file and its change of dates, over the system's own calls.
#include <gtest/gtest.h>

#include <thread>

#include "core/files/files.h"
#include "core/files/manipulate_file_time.h"
#include "hosts/windows/services/dates.h"
#include "hosts/windows/services/file_times.h"
#include "hosts/windows/services/system.h"
#include "hosts/windows/services/user.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/transcript.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {
namespace {

class SavedFile : public testing::Test {
 protected:
  TemporaryFolder folder_;
  Recorder record_;
  FakeLog log_{record_};
  DiskFileTimes fileTimes_;
  SystemClock clock_;
  DesktopUser user_;
  LocaleDates dates_;
  Files files_{log_, fileTimes_, clock_, user_};
  ManipulateFileTime changer_{log_, fileTimes_, dates_, PathRules::windows()};
};

TEST_F(SavedFile, IsWaitedForOnceWhenItIsThere) {
  const Text path = folder_.file(u"a.txt");
  EXPECT_TRUE(files_.WaitForFile(path, u"Quillfile"));
  expectTranscript(record_.lines(),
                   {u"trace WaitForFile: Entering with " + path, u"trace WaitForFile: File opened normally",
                    u"trace WaitForFile: Leaving"});
}

TEST_F(SavedFile, IsGivenUpAfterTwoSecondsWhenItNeverComes) {
  const Text path = folder_ / u"missing.txt";
  const auto start = GetTickCount64();
  EXPECT_FALSE(files_.WaitForFile(path, u"Quillfile"));
  EXPECT_GE(GetTickCount64() - start, 1000u);
  EXPECT_LE(GetTickCount64() - start, 4000u);
  expectTranscript(record_.lines(),
                   {u"trace WaitForFile: Entering with " + path, u"trace WaitForFile: File never opened: 2",
                    u"trace WaitForFile: Leaving"});
}

TEST_F(SavedFile, IsGivenUpWithTheSharingCodeWhileSomebodyHoldsIt) {
  const Text path = folder_.file(u"a.txt");
  const HANDLE holder = CreateFileW(wide(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_FALSE(files_.WaitForFile(path, u"Quillfile"));
  CloseHandle(holder);
  expectTranscript(record_.lines(),
                   {u"trace WaitForFile: Entering with " + path, u"trace WaitForFile: File never opened: 32",
                    u"trace WaitForFile: Leaving"});
}

TEST_F(SavedFile, IsOpenedAsSoonAsItsHolderLetsGo) {
  const Text path = folder_.file(u"a.txt");
  const HANDLE holder = CreateFileW(wide(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  std::thread letsGo{[&] {
    Sleep(300);
    CloseHandle(holder);
  }};
  EXPECT_TRUE(files_.WaitForFile(path, u"Quillfile"));
  letsGo.join();
}

TEST_F(SavedFile, GetsTheDateThatTheTextSays) {
  const Text path = folder_.file(u"a.txt");
  const Text text =
      dates_.general({.year = 2009, .month = 3, .day = 4, .hour = 14, .minute = 5, .second = 6});
  EXPECT_TRUE(changer_.ChangeDateTo(path, text));

  WIN32_FILE_ATTRIBUTE_DATA found;
  GetFileAttributesExW(wide(path), GetFileExInfoStandard, &found);
  FILETIME local;
  SYSTEMTIME parts;
  FileTimeToLocalFileTime(&found.ftLastWriteTime, &local);
  FileTimeToSystemTime(&local, &parts);
  EXPECT_EQ(parts.wYear, 2009);
  EXPECT_EQ(parts.wMonth, 3);
  EXPECT_EQ(parts.wDay, 4);
  EXPECT_EQ(parts.wHour, 14);
  EXPECT_EQ(parts.wMinute, 5);
  EXPECT_EQ(parts.wSecond, 6);
  expectTranscript(record_.lines(), {fill(u"trace ChangeDateTo: Changing date of {} to {}", path, text),
                                     u"trace ChangeDateTo: Successfully changed date"});
}

TEST_F(SavedFile, ThatIsNotThereShowsAtTheSettingOfItsTimes) {
  const Text path = folder_ / u"missing.txt";
  EXPECT_FALSE(changer_.ChangeDateTo(path, u"3/4/2009 2:05:00 PM"));
  expectTranscript(record_.lines(),
                   {fill(u"trace ChangeDateTo: Changing date of {} to 3/4/2009 2:05:00 PM", path),
                    u"trace ChangeDateTo: SetFileTime failed.  Reason: 6"});
}

TEST_F(SavedFile, KeepsItsDateWhenTheTextIsNone) {
  EXPECT_FALSE(changer_.ChangeDateTo(folder_.file(u"a.txt"), u"soon"));
}

}  // namespace
}  // namespace quillfile::windows
