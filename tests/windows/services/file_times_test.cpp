#include "hosts/windows/services/file_times.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>

#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {
namespace {

// What the last open asked for.
struct Opened {
  Text path;
  DWORD access, share, disposition, attributes;
  SECURITY_ATTRIBUTES security;
  HANDLE templateFile;
} opened;
FileTimes::FileTime timesSet[3];

HANDLE WINAPI recordOpenW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD attributes, HANDLE from) {
  opened = {Text{view(path)}, access, share, disposition, attributes, *security, from};
  return CreateFileW(path, access, share, nullptr, disposition, attributes, from);
}
HANDLE WINAPI recordOpenA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD attributes, HANDLE from) {
  opened = {fill(u"A:{}", fromUtf8(path)), access, share, disposition, attributes, *security, from};
  return CreateFileA(path, access, share, nullptr, disposition, attributes, from);
}
BOOL WINAPI recordTimes(HANDLE file, const FILETIME* created, const FILETIME* accessed,
                        const FILETIME* written) {
  timesSet[0] = std::bit_cast<FileTimes::FileTime>(*created);
  timesSet[1] = std::bit_cast<FileTimes::FileTime>(*accessed);
  timesSet[2] = std::bit_cast<FileTimes::FileTime>(*written);
  return SetFileTime(file, created, accessed, written);
}

class FileTimesTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  DiskFileTimes times_{{.createFileW = recordOpenW, .createFileA = recordOpenA, .setFileTime = recordTimes}};
};

TEST_F(FileTimesTest, OpeningToChangeAsksForWhatIsDocumented) {
  const Text path = u"\\\\?\\" + folder_.file(u"a.txt");
  const auto handle = times_.openToChange(path);
  ASSERT_NE(handle, FileTimes::invalid);
  times_.close(handle);
  EXPECT_EQ(opened.path, path);
  EXPECT_EQ(opened.access, 0xC0000000u);
  EXPECT_EQ(opened.share, 3u);
  EXPECT_EQ(opened.disposition, 3u);
  EXPECT_EQ(opened.attributes, 128u);
  EXPECT_EQ(opened.security.nLength, 12u);
  EXPECT_EQ(opened.security.lpSecurityDescriptor, nullptr);
  EXPECT_FALSE(opened.security.bInheritHandle);
  EXPECT_EQ(opened.templateFile, nullptr);
}

TEST_F(FileTimesTest, OpeningAloneAsksForWhatIsDocumented) {
  const Text path = folder_.file(u"a.txt");
  const auto handle = times_.openAlone(path);
  ASSERT_NE(handle, FileTimes::invalid);
  times_.close(handle);
  EXPECT_EQ(opened.path, u"A:" + path);
  EXPECT_EQ(opened.access, 0x80000000u);
  EXPECT_EQ(opened.share, 0u);
  EXPECT_EQ(opened.disposition, 3u);
  EXPECT_EQ(opened.attributes, 128u);
  EXPECT_EQ(opened.security.nLength, 12u);
}

TEST_F(FileTimesTest, ANameThatTheCodePageCannotHoldIsOpenedByItsWideForm) {
  const Text path = folder_.file(u"\u0416\u6F22\U0001F4CE.txt");
  const auto handle = times_.openAlone(path);
  EXPECT_NE(handle, FileTimes::invalid);
  times_.close(handle);
}

TEST_F(FileTimesTest, TheThreeTimesAreSetInOrderAndTheLastTwoAreKept) {
  const Text path = folder_.file(u"a.txt");
  const auto handle = times_.openToChange(path);
  const FileTimes::FileTime created = 128'000'000'000'000'000, accessed = created + 10'000'000,
                            written = created + 20'000'000;
  ASSERT_TRUE(times_.setTimes(handle, created, accessed, written));
  times_.close(handle);

  EXPECT_EQ(timesSet[0], created);
  EXPECT_EQ(timesSet[1], accessed);
  EXPECT_EQ(timesSet[2], written);
  WIN32_FILE_ATTRIBUTE_DATA found;
  GetFileAttributesExW(wide(path), GetFileExInfoStandard, &found);
  EXPECT_EQ(std::bit_cast<FileTimes::FileTime>(found.ftLastAccessTime), accessed);
  EXPECT_EQ(std::bit_cast<FileTimes::FileTime>(found.ftLastWriteTime), written);
}

TEST_F(FileTimesTest, AMissingFileAndAMissingFolderHaveTheSystemsCodes) {
  EXPECT_EQ(times_.openAlone(folder_ / u"missing.txt"), FileTimes::invalid);
  EXPECT_EQ(times_.lastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(times_.openToChange(folder_ / u"missing\\a.txt"), FileTimes::invalid);
  EXPECT_EQ(times_.lastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(FileTimesTest, AFileThatSomebodyElseHoldsIsASharingViolation) {
  const Text path = folder_.file(u"a.txt");
  const HANDLE holder = CreateFileW(wide(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(times_.openAlone(path), FileTimes::invalid);
  EXPECT_EQ(times_.lastError(), ERROR_SHARING_VIOLATION);
  CloseHandle(holder);
  const auto handle = times_.openAlone(path);
  EXPECT_NE(handle, FileTimes::invalid);
  times_.close(handle);
}

TEST_F(FileTimesTest, SettingTheTimesOfNoFileFailsWithTheInvalidHandleCode) {
  EXPECT_FALSE(times_.setTimes(FileTimes::invalid, 1, 1, 1));
  EXPECT_EQ(times_.lastError(), ERROR_INVALID_HANDLE);
}

TEST_F(FileTimesTest, ADeviceIsNoFile) {
  EXPECT_EQ(times_.openAlone(u"nul"), FileTimes::invalid);
  EXPECT_EQ(times_.openToChange(u"nul"), FileTimes::invalid);
}

TEST_F(FileTimesTest, ASystemTimeBecomesItsFileTime) {
  const auto epoch = times_.systemTimeToFileTime({1601, 1, 0, 1, 0, 0, 0, 0});
  EXPECT_EQ(epoch, FileTimes::FileTime{0});
  EXPECT_EQ(times_.systemTimeToFileTime({1970, 1, 0, 1, 0, 0, 0, 0}),
            FileTimes::FileTime{116'444'736'000'000'000});
  EXPECT_EQ(times_.systemTimeToFileTime({1970, 13, 0, 1, 0, 0, 0, 0}), std::nullopt);
  EXPECT_EQ(times_.lastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(FileTimesTest, ALocalFileTimeIsMovedByTheCurrentBias) {
  TIME_ZONE_INFORMATION zone;
  const DWORD season = GetTimeZoneInformation(&zone);
  const LONG minutes = zone.Bias + (season == TIME_ZONE_ID_DAYLIGHT ? zone.DaylightBias : 0);
  const FileTimes::FileTime local = 128'000'000'000'000'000;
  EXPECT_EQ(times_.localFileTimeToFileTime(local),
            local + static_cast<FileTimes::FileTime>(std::int64_t{minutes} * 60 * 10'000'000));
}

}  // namespace
}  // namespace quillfile::windows
