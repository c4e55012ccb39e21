#include "hosts/mailbox/services/saved_files.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/platform/failure.h"
#include "tests/mailbox/services/batch_room.h"

namespace quillfile::mailbox {
namespace {

using SavedFilesTest = BatchTest;

TEST_F(SavedFilesTest, ANameThatAnotherProgramTookMeanwhileIsLeftToIt) {
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

TEST_F(SavedFilesTest, ALinkThatWaitsUnderTheNameIsNotFollowed) {
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

std::ptrdiff_t openFiles() { return std::distance(std::filesystem::directory_iterator{"/proc/self/fd"}, {}); }

TEST_F(SavedFilesTest, AFileThatCannotBeWrittenGivesItsRoomOnTheDiskBackAtOnce) {
  Batch batch{reports};
  batch.files().save(saved + "/a.pdf", bytes("abc"));
  const auto before = openFiles();
  const auto fails = [](const Sink& sink) {
    sink("half of it");
    throw Failure{28, u"the disk is full"};
  };
  EXPECT_THROW(batch.files().save(saved + "/b.pdf", fails), Failure);
  EXPECT_EQ(openFiles(), before);
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "abc");
  EXPECT_FALSE(std::filesystem::exists(saved + "/b.pdf"));
}

TEST_F(SavedFilesTest, AReplacedFileIsThereUntilTheNewOneTakesItsPlace) {
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

TEST_F(SavedFilesTest, AFileThatComesAfterItsNameWasCalledFreeOrClaimedIsNotReplaced) {
  for (const bool claims : {false, true}) {
    Batch batch{reports};
    if (claims) {
      EXPECT_TRUE(batch.files().claim(saved + "/a.pdf"));
    } else {
      EXPECT_FALSE(batch.files().listed(saved + "/a.pdf"));
    }
    writeFile(saved + "/a.pdf", "another's");
    batch.files().save(saved + "/a.pdf", bytes("ours"));
    batch.commit();
    EXPECT_EQ(readFile(saved + "/a.pdf"), "another's");
    EXPECT_EQ(readFile(saved + "/a-1.pdf"), "ours");
    for (const char* name : {"/a.pdf", "/a-1.pdf"}) std::filesystem::remove(saved + name);
  }
}

TEST_F(SavedFilesTest, AClaimedNameIsSpokenForUntilTheEventIsOver) {
  Batch batch{reports};
  EXPECT_TRUE(batch.files().claim(saved + "//a.pdf"));
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-1.pdf");
  EXPECT_TRUE(batch.files().claim(saved + "/a.pdf"));  // nothing was saved to it yet
  batch.eventEnded();
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a.pdf");
}

TEST_F(SavedFilesTest, ANameUnderWhichAnythingIsCannotBeClaimed) {
  writeFile(saved + "/file", "x");
  writeFile(saved + "/leaving", "x");
  std::filesystem::create_symlink(folder / "nowhere", saved + "/link");
  Batch batch{reports};
  batch.files().save(saved + "/waiting", bytes("x"));
  batch.files().remove(saved + "/leaving");
  std::filesystem::create_directory(saved + "/folder");
  for (const char* name : {"file", "leaving", "link", "waiting", "folder", ""})
    EXPECT_FALSE(batch.files().claim(saved + "/" + name)) << name;
  EXPECT_THROW(batch.files().claim(saved + "/nowhere/a.pdf"), Failure);
}

TEST_F(SavedFilesTest, AFolderIsLookedForOnDiskUnlessFilesWaitInIt) {
  Batch batch{reports};
  EXPECT_TRUE(batch.files().isFolder(saved + "/"));
  EXPECT_FALSE(batch.files().isFolder(saved + "/none"));
  EXPECT_FALSE(batch.files().isFolder(""));
  batch.files().save(saved + "/a.pdf", bytes("x"));
  EXPECT_FALSE(batch.files().isFolder(""));
  std::filesystem::rename(saved, saved + "-moved");
  EXPECT_TRUE(batch.files().isFolder(saved + "/"));
  batch.commit();  // into the folder that was meant
  EXPECT_EQ(readFile(saved + "-moved/a.pdf"), "x");
  EXPECT_FALSE(batch.files().isFolder(saved + "/"));
}

TEST_F(SavedFilesTest, OfTwoAttachmentsWithOneNameTheFirstStaysInTheMessageWhenTheSecondReplacesIt) {
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

TEST_F(SavedFilesTest, AReadOnlyFileIsNeitherDeletedNorReplaced) {
  writeFile(saved + "/a.pdf", "old");
  ::chmod((saved + "/a.pdf").c_str(), 0444);
  Batch batch{reports};
  EXPECT_THROW(batch.files().remove(saved + "/a.pdf"), Failure);
  EXPECT_THROW(batch.files().save(saved + "/a.pdf", bytes("new")), Failure);
  batch.commit();
  EXPECT_EQ(readFile(saved + "/a.pdf"), "old");
  EXPECT_EQ(namesIn(saved), std::set<std::string>{"a.pdf"});
}

TEST_F(SavedFilesTest, TwentyThousandFilesOfOneNameAreNumberedWithoutGaps) {
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

TEST_F(SavedFilesTest, ANameThatHasBecomeFreeIsUsedAgain) {
  for (const char* name : {"a.pdf", "a-1.pdf", "a-2.pdf"}) writeFile(saved + "/" + name, "");
  Batch batch{reports};
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-3.pdf");
  ::usleep(20'000);  // a folder's change time may be no finer than the system's clock tick
  std::filesystem::remove(saved + "/a-1.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-1.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-4.pdf");
}

TEST_F(SavedFilesTest, ANameThatNobodySavedToIsFreeAfterTheEvent) {
  Batch batch{reports};
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a.pdf");
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a-1.pdf");
  batch.eventEnded();
  EXPECT_EQ(batch.files().firstFreePath(saved, "a", ".pdf"), saved + "/a.pdf");
}

TEST_F(SavedFilesTest, TwoProcessesThatSaveIntoOneFolderNeverOverwriteEachOther) {
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

TEST_F(SavedFilesTest, AMissingFolderAndAnImpossibleNameAreFailures) {
  Batch batch{reports};
  EXPECT_THROW(batch.files().save(folder / "nowhere/a.pdf", bytes("")), Failure);
  EXPECT_THROW(batch.files().save(saved + "/" + std::string(256, 'a'), bytes("")), Failure);
  EXPECT_THROW(batch.files().save(saved + "/a" + std::string(1, '\0') + ".pdf", bytes("")), Failure);
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
}

TEST_F(SavedFilesTest, AContentThatFailsLeavesNothing) {
  Batch batch{reports};
  EXPECT_THROW(batch.files().save(saved + "/a.pdf",
                                  [](const Sink&) {
                                    throw Failure{5, u"broken"};
                                  }),
               Failure);
  EXPECT_FALSE(batch.files().listed(saved + "/a.pdf"));
  EXPECT_EQ(namesIn(saved), std::set<std::string>{});
}

TEST_F(SavedFilesTest, ALongNameIsCutSoThatItsNumberFits) {
  Batch batch{reports};
  const std::string base(300, 'a');
  const auto first = batch.files().firstFreePath(saved, base, ".pdf");
  const auto second = batch.files().firstFreePath(saved, base, ".pdf");
  EXPECT_EQ(first, saved + "/" + std::string(251, 'a') + ".pdf");
  EXPECT_EQ(second, saved + "/" + std::string(249, 'a') + "-1.pdf");
}

TEST_F(SavedFilesTest, NewFoldersAreMadeWithTheirParents) {
  Batch batch{reports};
  EXPECT_TRUE(batch.files().makeFolder(saved + "/x/y/z/"));
  EXPECT_TRUE(batch.files().makeFolder(saved + "/x/y/z/"));
  writeFile(saved + "/file", "");
  EXPECT_FALSE(batch.files().makeFolder(saved + "/file/y"));
  batch.files().save(saved + "/x/y/z/a.pdf", bytes("abc"));
  batch.commit();
  EXPECT_EQ(readFile(saved + "/x/y/z/a.pdf"), "abc");
}

TEST_F(SavedFilesTest, TheTemporaryFilesOfARunThatWasStoppedAreSwept) {
  writeFile(saved + "/.quillfile-999999999-1.part", "half");
  writeFile(saved + "/.quillfile-" + std::to_string(::getppid()) + "-1.part", "its maker lives");
  Batch batch{reports};
  batch.files().save(saved + "/a.pdf", bytes("abc"));
  batch.commit();
  EXPECT_EQ(namesIn(saved),
            (std::set<std::string>{".quillfile-" + std::to_string(::getppid()) + "-1.part", "a.pdf"}));
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

TEST_F(SavedFilesTest, AFileThatDoesNotFitIsAFailureAndLeavesNothing) {
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

TEST_F(SavedFilesTest, AFolderThatMayNotBeWrittenToIsAFailure) {
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

}  // namespace
}  // namespace quillfile::mailbox
