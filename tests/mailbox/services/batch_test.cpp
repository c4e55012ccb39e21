#include "tests/mailbox/services/batch_room.h"

#include <fcntl.h>
#include <sys/stat.h>

#include "hosts/mailbox/services/names.h"

namespace quillfile::mailbox {
namespace {

TEST_F(BatchTest, ASavedFileAnswersBeforeItsNameAppears) {
  Batch batch{reports};
  batch.files().save(saved + "/a.pdf", bytes("abc"));
  EXPECT_TRUE(batch.files().listed(saved + "/a.pdf"));
  EXPECT_FALSE(std::filesystem::exists(saved + "/a.pdf"));
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "abc");
  EXPECT_EQ(namesIn(saved), std::set<std::string>{"a.pdf"});
  EXPECT_EQ(reports.lines, Lines{"saved a.pdf"});
}

TEST_F(BatchTest, WhatIsNotCommittedIsGivenUp) {
  {
    Batch batch{reports};
    batch.change(rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc"));
  }
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
}

TEST_F(BatchTest, AFileThatIsReplacedWhileItIsBeingNamedLeavesItsMessageAsItIs) {
  Batch batch{reports, {.files = 1}};
  batch.change(rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc"));
  batch.eventEnded();
  for (const auto* content : {"two", "three"}) {
    batch.files().save(saved + "/a.pdf", bytes(content));
    batch.eventEnded();
  }
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "three");
  EXPECT_EQ(namesIn(saved), std::set<std::string>{"a.pdf"});
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
  EXPECT_EQ(reports.lines, (Lines{"untouched 100.a.host", "saved a.pdf"}));
}

TEST_F(BatchTest, AFileThatIsDeletedWhileItIsBeingNamedLeavesItsMessageAsItIs) {
  Batch batch{reports, {.files = 1}};
  batch.change(rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc"));
  batch.eventEnded();
  batch.files().remove(saved + "/a.pdf");
  EXPECT_FALSE(batch.files().listed(saved + "/a.pdf"));
  batch.commit();
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
}

TEST_F(BatchTest, AFileThatIsAskedAboutWhileItIsBeingNamedIsOnDiskThen) {
  Batch batch{reports, {.files = 1}};
  batch.files().save(saved + "/a.pdf", bytes("abc"));
  batch.eventEnded();
  EXPECT_EQ(batch.files().waiting(saved + "/a.pdf"), nullptr);
  EXPECT_EQ(readFile(saved + "/a.pdf"), "abc");
  batch.files().save(saved + "/b.pdf", bytes("b"));
  writeFile(saved + "/b.pdf", "another's");
  EXPECT_EQ(batch.files().onDisk(saved + "/b.pdf"), saved + "/b-1.pdf");
}

TEST_F(BatchTest, AFileThatWaitsForItsNameIsNowhereInItsFolder) {
  if (!keepsNameless(Descriptor{::open(saved.c_str(), O_RDONLY | O_CLOEXEC)}.get()))
    GTEST_SKIP() << "the file system has no files without a name";
  Batch batch{reports};
  batch.files().save(saved + "/a.pdf", bytes("abc"));
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
}

TEST_F(BatchTest, ARewrittenMessageIsANewFileWithTheOldFlagsAndTime) {
  const timespec times[2] = {{.tv_sec = 1'000'000, .tv_nsec = 0}, {.tv_sec = 1'000'000, .tv_nsec = 5}};
  ASSERT_EQ(::utimensat(AT_FDCWD, (folder / "Mail/cur/100.a.host:2,FS").c_str(), times, 0), 0);
  Batch batch{reports};
  const auto unique = batch.change(rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc"));
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{unique + ":2,FS"});
  EXPECT_EQ(readFile(folder / ("Mail/cur/" + unique + ":2,FS")), "without");
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
  struct stat status {};
  ASSERT_EQ(::stat((folder / ("Mail/cur/" + unique + ":2,FS")).c_str(), &status), 0);
  EXPECT_EQ(status.st_mtim.tv_sec, 1'000'000);
  EXPECT_EQ(status.st_mtim.tv_nsec, 5);
  EXPECT_EQ(status.st_nlink, 1u);
  EXPECT_EQ(reports.lines, (Lines{"saved a.pdf", "changed 100.a.host"}));
  EXPECT_EQ(reports.last.newUnique, unique);
}

TEST_F(BatchTest, AFileThatDoesNotHoldTheAttachmentGoesAndTheMessageStays) {
  Batch batch{reports};
  batch.change(rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abd"));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
  EXPECT_EQ(reports.lines, (Lines{"not saved a.pdf: The saved file does not read back as it was written",
                                  "untouched 100.a.host"}));
}

TEST_F(BatchTest, ANewMessageThatIsNotRightLeavesTheOldOne) {
  Batch batch{reports};
  auto change = rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc");
  change.check = [](const MessageFile& message) { return message.bytes() != "without"; };
  batch.change(std::move(change));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
  EXPECT_EQ(reports.lines, (Lines{"saved a.pdf", "untouched 100.a.host"}));
}

TEST_F(BatchTest, FlagsThatAnotherProgramSetsMeanwhileSurvive) {
  Batch batch{reports};
  auto change = rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc");
  change.clearFlags = "S";
  change.check = [&](const MessageFile&) {  // between the look at the old message and its end
    std::filesystem::rename(folder / "Mail/cur/100.a.host:2,FS", folder / "Mail/cur/100.a.host:2,RS");
    return true;
  };
  const auto unique = batch.change(std::move(change));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{unique + ":2,R"});
}

TEST_F(BatchTest, AMessageThatAnotherProgramDeletesMeanwhileStaysDeleted) {
  Batch batch{reports};
  auto change = rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc");
  change.check = [&](const MessageFile&) {
    return std::filesystem::remove(folder / "Mail/cur/100.a.host:2,FS");
  };
  batch.change(std::move(change));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
  EXPECT_EQ(reports.lines, (Lines{"saved a.pdf", "vanished 100.a.host"}));
}

TEST_F(BatchTest, ARewrittenMessageCanGoToAnotherFolderInOneStep) {
  Batch batch{reports};
  auto change = rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc");
  change.moveTo = store->need(FolderRole::deleted);
  const auto unique = batch.change(std::move(change));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{});
  EXPECT_EQ(namesIn(folder / "Mail/.Trash/cur"), std::set<std::string>{unique + ":2,FS"});
}

TEST_F(BatchTest, AChangeWithoutNewBytesWaitsForItsFilesToo) {
  Batch batch{reports};
  const auto file = batch.files().save(saved + "/a.pdf", bytes("abc"));
  batch.change({.folder = inbox,
                .unique = "100.a.host",
                .source = nullptr,
                .content = {},
                .check = {},
                .removed = {},
                .needs = {file},
                .setFlags = "R",
                .clearFlags = "S",
                .moveTo = nullptr});
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FR"});
  EXPECT_EQ(reports.lines, (Lines{"saved a.pdf", "changed 100.a.host"}));
}

TEST_F(BatchTest, GroupsThatOverlapDoAllTheirMessages) {
  constexpr int count = 60;
  for (int i = 0; i < count; ++i) deliver(std::to_string(200 + i) + ".b.host:2,", "with attachment");
  std::map<std::string, std::string> wanted;
  {
    Batch batch{reports, {.messages = 4}};
    for (int i = 0; i < count; ++i) {
      const std::string unique = std::to_string(200 + i) + ".b.host", text = std::to_string(i);
      auto change =
          rewriting(batch.files().save(batch.files().firstFreePath(saved, "a", ".txt"), bytes(text)), text);
      change.unique = unique;
      change.source = inbox->open(unique);
      change.content = bytes("rewritten " + text);
      wanted[batch.change(std::move(change)) + ":2,"] = "rewritten " + text;
      batch.eventEnded();
    }
    batch.commit();
  }
  std::map<std::string, std::string> found;
  for (const auto& name : messages()) found[name] = readFile(folder / ("Mail/cur/" + name));
  EXPECT_EQ(found.extract("100.a.host:2,FS").mapped(), "with attachment");
  EXPECT_EQ(found, wanted);
  EXPECT_EQ(namesIn(saved).size(), std::size_t{count});
  EXPECT_EQ(reports.lines.size(), std::size_t{2 * count});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
}

}  // namespace
}  // namespace quillfile::mailbox
