#include "hosts/mailbox/services/batch.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/platform/failure.h"
#include "hosts/mailbox/services/leftovers.h"
#include "hosts/mailbox/store/mail_store.h"
#include "hosts/mailbox/store/temporary_name.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

Content bytes(std::string text) {
  return [text](const Sink& sink) { sink(text); };
}

struct RecordedReports : BatchReports {
  void onSaved(const SavedFile& file) override { lines.push_back("saved " + name(file)); }
  void onSaveFailed(const SavedFile& file, const Text& reason) override {
    lines.push_back("not saved " + name(file) + ": " + toUtf8(reason));
  }
  void onChanged(const ChangeReport& report) override {
    constexpr const char* words[] = {"changed ", "untouched ", "vanished "};
    lines.push_back(words[static_cast<int>(report.outcome)] + report.unique);
    last = report;
  }
  static std::string name(const SavedFile& file) { return file.path.substr(file.path.rfind('/') + 1); }

  std::vector<std::string> lines;
  ChangeReport last;
};
using Lines = std::vector<std::string>;

class BatchTest : public testing::Test {
 protected:
  BatchTest() {
    makeMaildir(folder / "Mail");
    std::filesystem::create_directories(saved);
    deliver("100.a.host:2,FS", "with attachment");
    store = MailStore::open(folder / "Mail");
    inbox = store->folder("Inbox");
  }

  void deliver(const std::string& name, const std::string& text) {
    writeFile(folder / ("Mail/cur/" + name), text);
  }
  std::set<std::string> messages() const { return namesIn(folder / "Mail/cur"); }

  MessageChange rewriting(const std::shared_ptr<SavedFile>& file, const std::string& decoded) {
    return {.folder = inbox,
            .unique = "100.a.host",
            .source = inbox->open("100.a.host"),
            .content = bytes("without"),
            .check = {},
            .removed = {{file, bytes(decoded)}},
            .needs = {},
            .setFlags = {},
            .clearFlags = {},
            .moveTo = nullptr};
  }

  TemporaryFolder folder;
  std::string saved = folder / "Saved";
  std::shared_ptr<MailStore> store;
  std::shared_ptr<MailFolder> inbox;
  RecordedReports reports;
};

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
  change.check = [](std::string_view message) { return message != "without"; };
  batch.change(std::move(change));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
  EXPECT_EQ(reports.lines, (Lines{"saved a.pdf", "untouched 100.a.host"}));
}

TEST_F(BatchTest, ANameThatAnotherProgramTookMeanwhileIsLeftToIt) {
  Batch batch{reports};
  const auto path = batch.files().firstFreePath(saved + "/", "a", ".pdf");
  batch.change(rewriting(batch.files().save(path, bytes("abc")), "abc"));
  writeFile(saved + "/a.pdf", "another's");
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "another's");
  EXPECT_EQ(readFile(saved + "/a-1.pdf"), "abc");
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(reports.lines, (Lines{"untouched 100.a.host", "saved a-1.pdf"}));
}

TEST_F(BatchTest, ALinkThatWaitsUnderTheNameIsNotFollowed) {
  const std::string outside = folder / "outside";
  writeFile(outside, "mine");
  std::filesystem::create_symlink(outside, saved + "/a.pdf");
  std::filesystem::create_symlink(folder / "nowhere", saved + "/b.pdf");
  Batch batch{reports};
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-1.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "b", ".pdf"), saved + "/b-1.pdf");
  batch.files().save(saved + "/b.pdf", bytes("abc"));  // chosen by the user: the link itself is replaced
  batch.commit();
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
  EXPECT_FALSE(std::filesystem::is_symlink(saved + "/b.pdf"));
  EXPECT_EQ(readFile(saved + "/b.pdf"), "abc");
  EXPECT_EQ(readFile(outside), "mine");
}

TEST_F(BatchTest, FlagsThatAnotherProgramSetsMeanwhileSurvive) {
  Batch batch{reports};
  auto change = rewriting(batch.files().save(saved + "/a.pdf", bytes("abc")), "abc");
  change.clearFlags = "S";
  change.check = [&](std::string_view) {  // between the look at the old message and its end
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
  change.check = [&](std::string_view) {
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

TEST_F(BatchTest, AReplacedFileIsThereUntilTheNewOneTakesItsPlace) {
  writeFile(saved + "/a.pdf", "old");
  Batch batch{reports};
  batch.files().remove(saved + "/a.pdf");
  EXPECT_FALSE(batch.files().listed(saved + "/a.pdf"));
  EXPECT_EQ(readFile(saved + "/a.pdf"), "old");
  batch.files().save(saved + "/a.pdf", bytes("new"));
  EXPECT_EQ(readFile(saved + "/a.pdf"), "old");
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "new");
}

TEST_F(BatchTest, AFileThatComesAfterItsNameWasCalledFreeIsNotReplaced) {
  Batch batch{reports};
  EXPECT_FALSE(batch.files().listed(saved + "/a.pdf"));
  writeFile(saved + "/a.pdf", "another's");
  batch.files().save(saved + "/a.pdf", bytes("ours"));
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "another's");
  EXPECT_EQ(readFile(saved + "/a-1.pdf"), "ours");
}

TEST_F(BatchTest, OfTwoAttachmentsWithOneNameTheFirstStaysInTheMessageWhenTheSecondReplacesIt) {
  Batch batch{reports};
  const auto first = batch.files().save(saved + "/a.pdf", bytes("first"));
  batch.files().remove(saved + "/a.pdf");
  const auto second = batch.files().save(saved + "/a.pdf", bytes("second"));
  auto change = rewriting(first, "first");
  change.removed.push_back({second, bytes("second")});
  batch.change(std::move(change));
  batch.commit();
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(readFile(saved + "/a.pdf"), "second");
}

TEST_F(BatchTest, AReadOnlyFileIsNeitherDeletedNorReplaced) {
  writeFile(saved + "/a.pdf", "old");
  ::chmod((saved + "/a.pdf").c_str(), 0444);
  Batch batch{reports};
  EXPECT_THROW(batch.files().remove(saved + "/a.pdf"), Failure);
  EXPECT_THROW(batch.files().save(saved + "/a.pdf", bytes("new")), Failure);
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "old");
  EXPECT_EQ(namesIn(saved), std::set<std::string>{"a.pdf"});
}

TEST_F(BatchTest, TwentyThousandFilesOfOneNameAreNumberedWithoutGaps) {
  RecordedReports quiet;
  Batch batch{quiet};
  for (int i = 0; i < 20'000; ++i) {
    batch.files().save(batch.files().firstFreePath(saved, "image001", ".png"), bytes("x"));
    batch.eventEnded();
  }
  batch.commit();
  EXPECT_EQ(namesIn(saved).size(), 20'000u);
  EXPECT_TRUE(std::filesystem::exists(saved + "/image001.png"));
  EXPECT_TRUE(std::filesystem::exists(saved + "/image001-19999.png"));
}

TEST_F(BatchTest, ANameThatHasBecomeFreeIsUsedAgain) {
  for (const char* name : {"a.pdf", "a-1.pdf", "a-2.pdf"}) writeFile(saved + "/" + name, "");
  Batch batch{reports};
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-3.pdf");
  ::usleep(20'000);  // a folder's change time may be no finer than the system's clock tick
  std::filesystem::remove(saved + "/a-1.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-1.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-4.pdf");
}

TEST_F(BatchTest, ANameThatNobodySavedToIsFreeAfterTheEvent) {
  Batch batch{reports};
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-1.pdf");
  batch.eventEnded();
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a.pdf");
}

TEST_F(BatchTest, TwoProcessesThatSaveIntoOneFolderNeverOverwriteEachOther) {
  constexpr int each = 300;
  const auto saveSome = [&] {
    RecordedReports quiet;
    Batch batch{quiet, {.messages = 64, .files = 16}};
    for (int i = 0; i < each; ++i) {
      batch.files().save(batch.files().firstFreePath(saved, "a", ".txt"), bytes(std::to_string(::getpid())));
      batch.eventEnded();
    }
    batch.commit();
  };
  pid_t children[2];
  for (pid_t& child : children) {
    child = ::fork();
    if (child == 0) {
      saveSome();
      ::_exit(0);
    }
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
  }
  std::map<std::string, int> written;
  for (const auto& name : namesIn(saved)) ++written[readFile(saved + "/" + name)];
  EXPECT_EQ(written[std::to_string(children[0])], each);
  EXPECT_EQ(written[std::to_string(children[1])], each);
}

TEST_F(BatchTest, AMissingFolderAndAnImpossibleNameAreFailures) {
  Batch batch{reports};
  EXPECT_THROW(batch.files().save(folder / "nowhere/a.pdf", bytes("")), Failure);
  EXPECT_THROW(batch.files().save(saved + "/" + std::string(256, 'a'), bytes("")), Failure);
  EXPECT_THROW(batch.files().save(saved + "/a" + std::string(1, '\0') + ".pdf", bytes("")), Failure);
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
}

TEST_F(BatchTest, AContentThatFailsLeavesNothing) {
  Batch batch{reports};
  EXPECT_THROW(batch.files().save(saved + "/a.pdf",
                                  [](const Sink&) {
                                    throw Failure{5, u"broken"};
                                  }),
               Failure);
  EXPECT_FALSE(batch.files().listed(saved + "/a.pdf"));
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
}

TEST_F(BatchTest, ALongNameIsCutSoThatItsNumberFits) {
  Batch batch{reports};
  const std::string base(300, 'a');
  const auto first = batch.files().firstFreePath(saved, base, ".pdf");
  const auto second = batch.files().firstFreePath(saved, base, ".pdf");
  EXPECT_EQ(first, saved + "/" + std::string(251, 'a') + ".pdf");
  EXPECT_EQ(second, saved + "/" + std::string(249, 'a') + "-1.pdf");
}

TEST_F(BatchTest, NewFoldersAreMadeWithTheirParents) {
  Batch batch{reports};
  EXPECT_TRUE(batch.files().makeFolder(saved + "/x/y/z/"));
  EXPECT_TRUE(batch.files().makeFolder(saved + "/x/y/z/"));
  writeFile(saved + "/file", "");
  EXPECT_FALSE(batch.files().makeFolder(saved + "/file/y"));
  batch.files().save(saved + "/x/y/z/a.pdf", bytes("abc"));
  batch.commit();
  EXPECT_EQ(readFile(saved + "/x/y/z/a.pdf"), "abc");
}

TEST_F(BatchTest, TheTemporaryFilesOfARunThatWasStoppedAreSwept) {
  writeFile(saved + "/.quillfile-999999999-1.part", "half");
  writeFile(saved + "/.quillfile-" + std::to_string(::getppid()) + "-1.part", "its maker lives");
  Batch batch{reports};
  batch.files().save(saved + "/a.pdf", bytes("abc"));
  batch.commit();
  EXPECT_EQ(namesIn(saved),
            (std::set<std::string>{".quillfile-" + std::to_string(::getppid()) + "-1.part", "a.pdf"}));
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

// In a process of its own, since what it does to itself stays.
template <class Work>
int inChild(Work&& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(BatchTest, AFileThatDoesNotFitIsAFailureAndLeavesNothing) {
  const int error = inChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit most{.rlim_cur = 1000, .rlim_max = 1000};
    ::setrlimit(RLIMIT_FSIZE, &most);
    Batch batch{reports};
    try {
      batch.files().save(saved + "/a.pdf", bytes(std::string(5000, 'x')));
    } catch (const Failure& failure) {
      return static_cast<int>(failure.number);
    }
    return 0;
  });
  EXPECT_EQ(error, EFBIG);
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
}

TEST_F(BatchTest, AFolderThatMayNotBeWrittenToIsAFailure) {
  if (::getuid() != 0) GTEST_SKIP() << "needs root, to become somebody else";
  ::chmod(folder.path().c_str(), 0755);
  const int error = inChild([&] {
    if (::setuid(65534) != 0) return 0;
    Batch batch{reports};
    EXPECT_FALSE(batch.files().makeFolder(saved + "/x"));
    try {
      batch.files().save(saved + "/a.pdf", bytes("abc"));
    } catch (const Failure& failure) {
      return static_cast<int>(failure.number);
    }
    return 0;
  });
  EXPECT_EQ(error, EACCES);
}

class LeftoversTest : public BatchTest {
 protected:
  // As a run leaves it that is stopped after it has linked the new message.
  std::string leaveDuplicate(bool linked) {
    const auto source = inbox->open("100.a.host");
    const auto name = temporaryMessageName("200.b.host", replacedMessage("100.a.host", source->inode()));
    writeFile(folder / ("Mail/tmp/" + name), "without");
    if (linked)
      std::filesystem::create_hard_link(folder / ("Mail/tmp/" + name), folder / "Mail/cur/200.b.host:2,FS");
    return name;
  }
};

TEST_F(LeftoversTest, TheOldMessageOfADuplicateGoes) {
  leaveDuplicate(true);
  const auto cleared = clearLeftovers(*store);
  EXPECT_EQ(cleared.duplicates, 1);
  EXPECT_EQ(messages(), std::set<std::string>{"200.b.host:2,FS"});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{});
}

TEST_F(LeftoversTest, AMessageThatWasNeverLinkedGoesAndTheOldOneStays) {
  leaveDuplicate(false);
  writeFile(folder / "Mail/tmp/another.program", "delivering");
  const auto cleared = clearLeftovers(*store);
  EXPECT_EQ(cleared.duplicates, 0);
  EXPECT_EQ(cleared.temporaries, 1);
  EXPECT_EQ(messages(), std::set<std::string>{"100.a.host:2,FS"});
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{"another.program"});
}

TEST_F(LeftoversTest, AMessageThatTheUserBroughtBackUnderTheSameNameIsNotTheOldOne) {
  leaveDuplicate(true);
  std::filesystem::rename(folder / "Mail/cur/100.a.host:2,FS", folder / "old");
  deliver("100.a.host:2,S", "from a backup");
  clearLeftovers(*store);
  EXPECT_EQ(messages(), (std::set<std::string>{"100.a.host:2,S", "200.b.host:2,FS"}));
}

TEST_F(LeftoversTest, WhatALivingProcessIsWorkingOnStays) {
  const auto name = leaveDuplicate(false);
  const auto maker = MessageFile::open(folder / ("Mail/tmp/" + name));
  ASSERT_TRUE(maker->lock());
  EXPECT_EQ(clearLeftovers(*store).temporaries, 0);
  EXPECT_EQ(namesIn(folder / "Mail/tmp"), std::set<std::string>{name});
}

}  // namespace
}  // namespace quillfile::mailbox
