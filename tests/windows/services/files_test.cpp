#include "hosts/windows/services/files.h"

#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/windows/services/disk_path.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {
namespace {

class FilesTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  DiskFiles files_;
};

TEST_F(FilesTest, OnlyAnExistingFileThatIsNotHiddenIsListed) {
  const Text file = folder_.file(u"a.txt");
  const Text hidden = folder_.file(u"hidden.txt");
  const Text system = folder_.file(u"system.txt");
  SetFileAttributesW(wide(hidden), FILE_ATTRIBUTE_HIDDEN);
  SetFileAttributesW(wide(system), FILE_ATTRIBUTE_SYSTEM);

  EXPECT_TRUE(files_.fileListed(file));
  EXPECT_FALSE(files_.fileListed(hidden));
  EXPECT_FALSE(files_.fileListed(system));
  EXPECT_FALSE(files_.fileListed(folder_.path()));
  EXPECT_FALSE(files_.fileListed(folder_ / u"missing.txt"));
  EXPECT_FALSE(files_.fileListed(folder_ / u"*.txt"));
  EXPECT_FALSE(files_.fileListed(u""));
}

TEST_F(FilesTest, OnlyAFolderIsAFolder) {
  EXPECT_TRUE(files_.folderExists(folder_.path()));
  EXPECT_TRUE(files_.folderExists(folder_.path() + u"\\"));
  EXPECT_FALSE(files_.folderExists(folder_.file(u"a.txt")));
  EXPECT_FALSE(files_.folderExists(folder_ / u"missing"));
}

TEST_F(FilesTest, ATakenNameIsNumberedFromOne) {
  EXPECT_EQ(files_.firstFreePath(folder_.path() + u"\\", u"a", u".pdf"), folder_ / u"a.pdf");
  folder_.file(u"a.pdf");
  EXPECT_EQ(files_.firstFreePath(folder_.path() + u"\\", u"a", u".pdf"), folder_ / u"a-1.pdf");
  folder_.file(u"a-1.pdf");
  EXPECT_EQ(files_.firstFreePath(folder_.path(), u"a", u".pdf"), folder_ / u"a-2.pdf");
}

TEST_F(FilesTest, TheReadOnlyStateIsTheLowestBit) {
  const Text file = folder_.file(u"a.txt");
  EXPECT_EQ(files_.attributes(file) % 2, 0);
  files_.setAttributes(file, files_.attributes(file) + 1);
  EXPECT_EQ(files_.attributes(file) % 2, 1);
  files_.setAttributes(file, files_.attributes(file) - 1);
  EXPECT_EQ(files_.attributes(file) % 2, 0);
}

TEST_F(FilesTest, WhatIsNotThereFailsWithTheSystemsNumber) {
  const auto numberOf = [](auto&& body) {
    try {
      body();
    } catch (const Failure& failure) {
      EXPECT_FALSE(failure.description.empty());
      EXPECT_NE(failure.description.back(), u'.');
      return failure.number;
    }
    return 0;
  };
  const Text missing = folder_ / u"missing.txt";
  EXPECT_EQ(numberOf([&] { files_.attributes(missing); }), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(numberOf([&] { files_.setAttributes(missing, 0); }), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(numberOf([&] { files_.deleteFile(missing); }), ERROR_FILE_NOT_FOUND);
}

TEST_F(FilesTest, ADeletedFileIsGone) {
  const Text file = folder_.file(u"a.txt");
  files_.deleteFile(file);
  EXPECT_FALSE(files_.fileListed(file));
}

TEST_F(FilesTest, ALinkIsFollowedToAPlainFileOnly) {
  DiskLinkedFiles linked{files_};
  const Text file = folder_.file(u"a.txt");
  EXPECT_TRUE(linked.exists({}, file));
  EXPECT_FALSE(linked.exists({}, folder_ / u"missing.txt"));
  EXPECT_FALSE(linked.exists({}, folder_ / u"?.txt"));
  EXPECT_FALSE(linked.exists({}, fill(u"\\\\?\\{}", file)));
  EXPECT_FALSE(linked.exists({}, u"nul"));
  EXPECT_FALSE(linked.exists({}, u"a.txt"));
}

TEST(DiskPath, OnlyALongFullPathGetsTheLongForm) {
  const Text longName(300, u'x');
  EXPECT_EQ(diskPath(u"C:\\a.pdf"), u"C:\\a.pdf");
  EXPECT_EQ(diskPath(u"C:\\" + longName), u"\\\\?\\C:\\" + longName);
  EXPECT_EQ(diskPath(u"C:\\b/" + longName), u"\\\\?\\C:\\b\\" + longName);
  EXPECT_EQ(diskPath(u"\\\\server\\share\\" + longName), u"\\\\?\\UNC\\server\\share\\" + longName);
  EXPECT_EQ(diskPath(u"\\\\?\\C:\\" + longName), u"\\\\?\\C:\\" + longName);
  EXPECT_EQ(diskPath(longName), longName);
}

}  // namespace
}  // namespace quillfile::windows
