#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/platform/failure.h"
#include "hosts/mailbox/services/batch.h"
#include "hosts/mailbox/services/file_system.h"
#include "hosts/mailbox/services/file_times.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

struct NoReports : BatchReports {
  void onSaved(const SavedFile&) override {}
  void onSaveFailed(const SavedFile&, const Text&) override {}
  void onChanged(const ChangeReport&) override {}
};

class FilePortsTest : public testing::Test {
 protected:
  Text text(const std::string& name) { return fromUtf8(folder / name); }
  void saveWaiting(const std::string& name) {
    batch.files().save(folder / name, [](const Sink& sink) { sink("abc"); });
  }
  struct stat statusOf(const std::string& name) {
    struct stat status {};
    ::stat((folder / name).c_str(), &status);
    return status;
  }

  TemporaryFolder folder;
  NoReports reports;
  Batch batch{reports};
  HostFileSystem files{batch.files()};
  HostFileTimes times{batch.files()};
  HostLinkedFiles linked{batch.files()};
};

TEST_F(FilePortsTest, FilesAreListedAndFoldersAreNot) {
  writeFile(folder / "a.txt", "");
  writeFile(folder / ".hidden", "");
  saveWaiting("waiting.txt");
  std::filesystem::create_directories(folder / "sub");
  EXPECT_TRUE(files.fileListed(text("a.txt")));
  EXPECT_TRUE(files.fileListed(text(".hidden")));
  EXPECT_TRUE(files.fileListed(text("waiting.txt")));
  EXPECT_TRUE(files.fileListed(text("/waiting.txt")));  // a doubled separator
  EXPECT_FALSE(files.fileListed(text("sub")));
  EXPECT_FALSE(files.fileListed(text("none")));
  EXPECT_TRUE(files.folderExists(text("sub/")));
  EXPECT_FALSE(files.folderExists(text("a.txt")));
}

TEST_F(FilePortsTest, ADeletedFileIsGoneAtOnceForWhoeverAsks) {
  writeFile(folder / "a.txt", "");
  saveWaiting("waiting.txt");
  files.deleteFile(text("a.txt"));
  files.deleteFile(text("waiting.txt"));
  EXPECT_FALSE(files.fileListed(text("a.txt")));
  EXPECT_FALSE(files.fileListed(text("waiting.txt")));
  batch.commit();
  EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{});
  EXPECT_THROW(files.deleteFile(text("a.txt")), Failure);
}

TEST_F(FilePortsTest, ReadOnlyIsTheLackOfEveryWritePermission) {
  writeFile(folder / "a.txt", "");
  saveWaiting("waiting.txt");
  for (const char* name : {"a.txt", "waiting.txt"}) {
    EXPECT_EQ(files.attributes(text(name)), 0);
    files.setAttributes(text(name), 1);
    EXPECT_EQ(files.attributes(text(name)), 1);
    EXPECT_EQ(times.openToChange(text(name)), FileTimes::invalid);
    EXPECT_EQ(times.lastError(), EACCES);
  }
  batch.commit();
  EXPECT_EQ(statusOf("waiting.txt").st_mode & 0222, 0u);
  files.setAttributes(text("waiting.txt"), 0);
  EXPECT_EQ(files.attributes(text("waiting.txt")), 0);
  EXPECT_THROW(files.attributes(text("none")), Failure);
}

TEST_F(FilePortsTest, AWaitingFileKeepsTheTimesThatItIsGiven) {
  saveWaiting("waiting.txt");
  const auto utc = times.systemTimeToFileTime({2009, 3, 0, 4, 14, 5, 0, 0});
  ASSERT_TRUE(utc);
  EXPECT_EQ(*utc, 128806491000000000u);
  const auto handle = times.openToChange(text("waiting.txt"));
  ASSERT_NE(handle, FileTimes::invalid);
  EXPECT_TRUE(times.setTimes(handle, *utc, *utc, *utc));
  times.close(handle);
  batch.commit();
  EXPECT_EQ(statusOf("waiting.txt").st_mtim.tv_sec, 1236175500);
  EXPECT_FALSE(times.setTimes(handle, *utc, *utc, *utc));
  EXPECT_EQ(times.lastError(), EBADF);
}

TEST_F(FilePortsTest, TimesThatAreNoneAreRefused) {
  EXPECT_FALSE(times.systemTimeToFileTime({2009, 2, 0, 30, 0, 0, 0, 0}));
  EXPECT_FALSE(times.systemTimeToFileTime({1600, 1, 0, 1, 0, 0, 0, 0}));
  EXPECT_EQ(times.systemTimeToFileTime({1601, 1, 0, 1, 0, 0, 0, 0}), 0u);
  EXPECT_EQ(times.openAlone(text("none")), FileTimes::invalid);
  EXPECT_EQ(times.lastError(), ENOENT);
}

TEST_F(FilePortsTest, LocalTimesAreConvertedWithTheBiasOfNow) {
  ::setenv("TZ", "EAT-3", 1);
  ::tzset();
  EXPECT_EQ(times.localFileTimeToFileTime(FileTimes::FileTime{4} * 3600 * 10'000'000),
            FileTimes::FileTime{3600} * 10'000'000);
  ::unsetenv("TZ");
  ::tzset();
}

TEST_F(FilePortsTest, ALinkLeadsToARegularFileOnly) {
  writeFile(folder / "a.txt", "");
  std::filesystem::create_symlink(folder / "a.txt", folder / "link");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  saveWaiting("waiting.txt");
  EXPECT_TRUE(linked.exists(nullptr, text("a.txt")));
  EXPECT_TRUE(linked.exists(nullptr, text("waiting.txt")));
  for (const char* name : {"link", "pipe", "", "none"})
    EXPECT_FALSE(linked.exists(nullptr, text(name))) << name;
  EXPECT_FALSE(linked.exists(nullptr, u"/dev/null"));
}

}  // namespace
}  // namespace quillfile::mailbox
