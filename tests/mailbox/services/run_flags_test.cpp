#include "hosts/mailbox/services/run_flags.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "hosts/mailbox/services/settings_file.h"

namespace quillfile::mailbox {
namespace {

class RunFlagsTest : public testing::Test {
 protected:
  ~RunFlagsTest() override { std::filesystem::remove_all(root); }

  std::optional<Text> inFile(TextView key) { return file.read(u"Corvane", u"Quillfile", key); }

  static std::filesystem::path freshFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillfile-flags-XXXXXX").string();
    return mkdtemp(pattern.data());
  }

  std::filesystem::path root = freshFolder();
  SettingsFile file{(root / "settings.ini").string()};
  RunFlags saving{file}, watching{file};  // two processes
};

TEST_F(RunFlagsTest, AFlagIsItsProcessesOwnWhileTheRunLasts) {
  saving.write(u"Corvane", u"Quillfile", u"ButtonClicked", u"1");
  EXPECT_EQ(saving.read(u"Corvane", u"Quillfile", u"ButtonClicked"), u"1");
  EXPECT_EQ(watching.read(u"Corvane", u"Quillfile", u"ButtonClicked"), std::nullopt);
}

TEST_F(RunFlagsTest, WhatAFailedRunLeavesBehindStandsInTheFile) {
  saving.write(u"Corvane", u"Quillfile", u"ButtonClicked", u"1");
  saving.settle();
  EXPECT_EQ(inFile(u"ButtonClicked"), u"1");
  saving.write(u"Corvane", u"Quillfile", u"ButtonClicked", u"1");
  saving.write(u"Corvane", u"Quillfile", u"ButtonClicked", u"0");
  saving.settle();
  EXPECT_EQ(inFile(u"ButtonClicked"), u"0");
}

TEST_F(RunFlagsTest, ARunThatWentWellWritesNothing) {
  saving.write(u"Corvane", u"Quillfile", u"ButtonClicked", u"1");
  saving.write(u"Corvane", u"Quillfile", u"ButtonClicked", u"0");
  saving.settle();
  EXPECT_FALSE(std::filesystem::exists(file.path()));
}

TEST_F(RunFlagsTest, EveryOtherKeyGoesStraightToTheFile) {
  saving.write(u"Corvane", u"Quillfile", u"OptionalRenameWanted", u"0");
  EXPECT_EQ(inFile(u"OptionalRenameWanted"), u"0");
}

}  // namespace
}  // namespace quillfile::mailbox
