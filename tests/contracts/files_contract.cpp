// What every host's files and file times keep.
#include "core/files/files.h"
#include "core/files/manipulate_file_time.h"
#include "core/platform/failure.h"
#include "tests/contracts/contract.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/transcript.h"

namespace quillfile {
namespace {

constexpr std::int32_t notFound = 2, sharingViolation = 32;
constexpr FileTimes::FileTime second = 10'000'000;

using FilesContract = Contract;
FOR_EVERY_HOST(FilesContract);

TEST_P(FilesContract, AFileIsListedAndAFolderIsNot) {
  const Text path = host->file(u"a.txt");
  EXPECT_TRUE(ports.files.fileListed(path));
  EXPECT_FALSE(ports.files.fileListed(host->folder()));
  EXPECT_FALSE(ports.files.fileListed(host->folder() + u"missing.txt"));
  EXPECT_FALSE(ports.files.fileListed(u""));
  EXPECT_TRUE(ports.files.folderExists(host->folder()));
  EXPECT_FALSE(ports.files.folderExists(path));
  EXPECT_FALSE(ports.files.folderExists(host->folder() + u"missing"));
}

TEST_P(FilesContract, ATakenNameIsNumberedFromOne) {
  const auto free = [&] { return ports.files.firstFreePath(host->folder(), u"a", u".pdf"); };
  EXPECT_EQ(free(), host->folder() + u"a.pdf");
  host->file(u"a.pdf");
  EXPECT_EQ(free(), host->folder() + u"a-1.pdf");
  host->file(u"a-1.pdf");
  host->file(u"a-3.pdf");
  EXPECT_EQ(free(), host->folder() + u"a-2.pdf");
}

TEST_P(FilesContract, TheReadOnlyStateIsTheLowestBitAndComesBack) {
  const Text path = host->file(u"a.txt");
  const auto before = ports.files.attributes(path);
  EXPECT_EQ(before % 2, 0);
  ports.files.setAttributes(path, before + 1);
  EXPECT_EQ(ports.files.attributes(path) % 2, 1);
  ports.files.setAttributes(path, before);
  EXPECT_EQ(ports.files.attributes(path) % 2, 0);
}

TEST_P(FilesContract, ADeletedFileIsGone) {
  const Text path = host->file(u"a.txt");
  ports.files.deleteFile(path);
  EXPECT_FALSE(ports.files.fileListed(path));
}

TEST_P(FilesContract, WhatIsNotThereIsAFailureWithAReason) {
  const Text missing = host->folder() + u"missing.txt";
  const auto reasonOf = [](auto&& call) {
    try {
      call();
    } catch (const Failure& failure) {
      return failure.description;
    }
    return Text{};
  };
  EXPECT_NE(reasonOf([&] { ports.files.attributes(missing); }), u"");
  EXPECT_NE(reasonOf([&] { ports.files.setAttributes(missing, 0); }), u"");
  EXPECT_NE(reasonOf([&] { ports.files.deleteFile(missing); }), u"");
}

using FileTimesContract = Contract;
FOR_EVERY_HOST(FileTimesContract);

TEST_P(FileTimesContract, ASystemTimeCountsFrom1601) {
  EXPECT_EQ(ports.times.systemTimeToFileTime({1601, 1, 0, 1, 0, 0, 0, 0}), FileTimes::FileTime{0});
  EXPECT_EQ(ports.times.systemTimeToFileTime({1970, 1, 0, 1, 0, 0, 0, 0}), 116'444'736'000'000'000u);
  EXPECT_EQ(ports.times.systemTimeToFileTime({2008, 2, 0, 29, 23, 59, 59, 0}),
            *ports.times.systemTimeToFileTime({2008, 3, 0, 1, 0, 0, 0, 0}) - second);
}

TEST_P(FileTimesContract, ATimeThatIsNoneIsRefused) {
  EXPECT_EQ(ports.times.systemTimeToFileTime({1970, 13, 0, 1, 0, 0, 0, 0}), std::nullopt);
  EXPECT_EQ(ports.times.systemTimeToFileTime({2009, 2, 0, 30, 0, 0, 0, 0}), std::nullopt);
  EXPECT_NE(ports.times.lastError(), 0);
}

TEST_P(FileTimesContract, AMissingFileHasTheCode2) {
  const Text missing = host->folder() + u"missing.txt";
  EXPECT_EQ(ports.times.openAlone(missing), FileTimes::invalid);
  EXPECT_EQ(ports.times.lastError(), notFound);
  EXPECT_EQ(ports.times.openToChange(missing), FileTimes::invalid);
  EXPECT_EQ(ports.times.lastError(), notFound);
}

TEST_P(FileTimesContract, AFileThatAnotherProgramHoldsHasTheCode32) {
  const Text path = host->file(u"a.txt");
  {
    const auto held = host->hold(path, 0);
    if (!held) GTEST_SKIP() << "no program can keep a file to itself on this system";
    EXPECT_EQ(ports.times.openAlone(path), FileTimes::invalid);
    EXPECT_EQ(ports.times.lastError(), sharingViolation);
  }
  const auto handle = ports.times.openAlone(path);
  EXPECT_NE(handle, FileTimes::invalid);
  ports.times.close(handle);
}

TEST_P(FileTimesContract, TheTimesThatAreSetAreTheFiles) {
  const Text path = host->file(u"a.txt");
  const FileTimes::FileTime written = 128'806'491'000'000'000;
  const auto handle = ports.times.openToChange(path);
  ASSERT_NE(handle, FileTimes::invalid);
  EXPECT_TRUE(ports.times.setTimes(handle, written, written + second, written));
  ports.times.close(handle);
  EXPECT_EQ(host->lastWrite(path), written);
}

TEST_P(FileTimesContract, NoFileHasNoTimesToSet) {
  EXPECT_FALSE(ports.times.setTimes(FileTimes::invalid, 1, 1, 1));
  EXPECT_NE(ports.times.lastError(), 0);
}

// The two procedures that the module's own files have, over the host's ports.
class SavedFileContract : public Contract {
 protected:
  // What WaitForFile has told between its first line and its last.
  void expectTrace(TextView path, TextView line) {
    expectTranscript(record_.lines(u"trace "),
                     {fill(u"trace WaitForFile: Entering with {}", path),
                      fill(u"trace WaitForFile: {}", line), u"trace WaitForFile: Leaving"});
  }

  Recorder record_;
  FakeLog log_{record_};
  Files waiting_{log_, ports.times, ports.clock, ports.user};
  ManipulateFileTime dating_{log_, ports.times, ports.dates, ports.paths};
};
FOR_EVERY_HOST(SavedFileContract);

TEST_P(SavedFileContract, OneThatIsThereIsOpenedAtOnce) {
  const Text path = host->file(u"a.txt");
  EXPECT_TRUE(waiting_.WaitForFile(path, u"Quillfile"));
  expectTrace(path, u"File opened normally");
}

TEST_P(SavedFileContract, OneThatNeverAppearsIsGivenUpWithTheCode2) {
  const Text path = host->folder() + u"missing.txt";
  EXPECT_FALSE(waiting_.WaitForFile(path, u"Quillfile"));
  expectTrace(path, u"File never opened: 2");
}

TEST_P(SavedFileContract, OneThatStaysHeldIsGivenUpWithTheCode32) {
  const Text path = host->file(u"a.txt");
  const auto held = host->hold(path, 0);
  if (!held) GTEST_SKIP() << "no program can keep a file to itself on this system";
  EXPECT_FALSE(waiting_.WaitForFile(path, u"Quillfile"));
  expectTrace(path, u"File never opened: 32");
}

TEST_P(SavedFileContract, OneThatIsLetGoIsOpenedThen) {
  const Text path = host->file(u"a.txt");
  const auto held = host->hold(path, 300);
  if (!held) GTEST_SKIP() << "no program can keep a file to itself on this system";
  EXPECT_TRUE(waiting_.WaitForFile(path, u"Quillfile"));
}

TEST_P(SavedFileContract, GetsTheLocalTimeThatTheTextSays) {
  const Text path = host->file(u"a.txt");
  const Text text =
      ports.dates.general({.year = 2009, .month = 3, .day = 4, .hour = 14, .minute = 5, .second = 6});
  EXPECT_TRUE(dating_.ChangeDateTo(path, text));
  const auto local = ports.times.systemTimeToFileTime({2009, 3, 0, 4, 14, 5, 6, 0});
  EXPECT_EQ(host->lastWrite(path), ports.times.localFileTimeToFileTime(*local));
}

TEST_P(SavedFileContract, KeepsItsTimeWhenTheTextIsNone) {
  const Text path = host->file(u"a.txt");
  const auto before = host->lastWrite(path);
  EXPECT_FALSE(dating_.ChangeDateTo(path, u"soon"));
  EXPECT_EQ(host->lastWrite(path), before);
}

}  // namespace
}  // namespace quillfile
