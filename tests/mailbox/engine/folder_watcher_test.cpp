#include "hosts/mailbox/engine/folder_watcher.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace quillfile::mailbox {
namespace {

namespace fs = std::filesystem;

class FolderWatcherTest : public testing::Test {
 protected:
  FolderWatcherTest() : root(freshFolder()) {
    makeFolder(root / "mail");
    listen();
  }
  ~FolderWatcherTest() override { fs::remove_all(root); }

  static fs::path freshFolder() {
    std::string pattern = (fs::temp_directory_path() / "quillfile-watcher-XXXXXX").string();
    return mkdtemp(pattern.data());
  }
  static void makeFolder(const fs::path& folder) {
    for (const char* name : {"tmp", "new", "cur"}) fs::create_directories(folder / name);
  }
  void listen() {
    const auto store = (root / "mail").string();
    watcher.watch(store,
                  {{.path = "Inbox", .directory = store}, {.path = "Work", .directory = store + "/.Work"}},
                  (root / "settings.ini").string());
  }
  void deliver(const fs::path& folder, const std::string& name) {
    std::ofstream{folder / "tmp" / name} << "message";
    fs::rename(folder / "tmp" / name, folder / "new" / name);
  }

  fs::path root;
  FolderWatcher watcher;
};

TEST_F(FolderWatcherTest, TellsOfWhatAppearsAndOfNothingElse) {
  EXPECT_TRUE(watcher.read().appeared.empty());
  deliver(root / "mail", "100.a.host");
  fs::rename(root / "mail/new/100.a.host", root / "mail/cur/100.a.host:2,S");
  fs::remove(root / "mail/cur/100.a.host:2,S");
  std::ofstream{root / "mail/dovecot-uidlist"} << "3";
  const auto news = watcher.read();
  ASSERT_EQ(news.appeared.size(), 2u);
  EXPECT_EQ(news.appeared[0].folder, "Inbox");
  EXPECT_EQ(news.appeared[0].location.fileName, "100.a.host");
  EXPECT_TRUE(news.appeared[0].location.isNew);
  EXPECT_EQ(news.appeared[1].location.fileName, "100.a.host:2,S");
  EXPECT_FALSE(news.appeared[1].location.isNew);
  EXPECT_FALSE(news.folders);
  EXPECT_FALSE(news.file);
}

TEST_F(FolderWatcherTest, AFolderThatIsMadeWhileWatchingIsTold) {
  makeFolder(root / "mail/.Work");
  EXPECT_TRUE(watcher.read().folders);
  listen();
  EXPECT_FALSE(watcher.read().folders);
  deliver(root / "mail/.Work", "100.a.host");
  ASSERT_EQ(watcher.read().appeared.size(), 1u);
}

TEST_F(FolderWatcherTest, AFolderThatNobodyAskedForIsNot) {
  makeFolder(root / "mail/.Other");
  EXPECT_FALSE(watcher.read().folders);
}

TEST_F(FolderWatcherTest, AFolderThatIsReplacedIsTold) {
  fs::rename(root / "mail/new", root / "mail/old");
  EXPECT_TRUE(watcher.read().folders);
  listen();
  fs::create_directory(root / "mail/new");
  EXPECT_TRUE(watcher.read().folders);
}

TEST_F(FolderWatcherTest, TheSettingsFileIsToldWhenItIsReplacedOrWritten) {
  std::ofstream{root / "other.ini"} << "x";
  EXPECT_FALSE(watcher.read().file);
  fs::rename(root / "other.ini", root / "settings.ini");
  EXPECT_TRUE(watcher.read().file);
  std::ofstream{root / "settings.ini"} << "y";
  EXPECT_TRUE(watcher.read().file);
}

TEST_F(FolderWatcherTest, WhatTheSettingsAreALinkToIsToldOfToo) {
  fs::create_directory(root / "kept");
  std::ofstream{root / "kept/quillfile.ini"} << "x";
  fs::create_symlink("kept/quillfile.ini", root / "settings.ini");
  listen();
  std::ofstream{root / "kept/new.ini"} << "y";
  EXPECT_FALSE(watcher.read().file);
  fs::rename(root / "kept/new.ini", root / "kept/quillfile.ini");
  EXPECT_TRUE(watcher.read().file);
  fs::create_symlink("kept/other.ini", root / "settings.new");
  fs::rename(root / "settings.new", root / "settings.ini");
  EXPECT_TRUE(watcher.read().file);
}

}  // namespace
}  // namespace quillfile::mailbox
