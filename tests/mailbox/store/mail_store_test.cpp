#include "hosts/mailbox/store/mail_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "core/platform/failure.h"
#include "hosts/mailbox/store/maildir_name.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

std::vector<std::string> paths(const MailStore& store) {
  std::vector<std::string> result;
  for (const auto& folder : store.folders()) {
    const auto role = roleName(folder->role());
    result.push_back(folder->path() + (role.empty() ? "" : " (" + std::string{role} + ")"));
  }
  return result;
}
using Paths = std::vector<std::string>;

TEST(MailStore, OfMaildirPlusPlusIsTheInboxAndItsDottedFolders) {
  TemporaryFolder dir;
  makeMaildir(dir.path());
  for (const char* name : {".Sent Items", ".Projects.2026", ".Trash", ".Entw&APw-rfe", ".INBOX.Drafts"})
    makeMaildir(dir / name);
  std::filesystem::create_directories(dir / ".notmuch");
  const auto store = MailStore::open(dir.path());
  EXPECT_EQ(store->layout(), StoreLayout::maildir_plus_plus);
  EXPECT_EQ(paths(*store), (Paths{"Inbox (inbox)", "Entw\xC3\xBCrfe", "INBOX/Drafts (drafts)",
                                  "Projects/2026", "Sent Items (sent)", "Trash (deleted)"}));
  EXPECT_EQ(store->folder("Projects/2026")->name(), "2026");
  EXPECT_EQ(store->folder("inbox")->directory(), std::filesystem::canonical(dir.path()).string());
}

TEST(MailStore, NestedIsAsSyncProgramsWriteIt) {
  TemporaryFolder dir;
  for (const char* name : {"INBOX", "Projects/2026", "[Mail]/Sent Mail", "Archive/.old"})
    makeMaildir(dir / name);
  const auto store = MailStore::open(dir.path());
  EXPECT_EQ(store->layout(), StoreLayout::nested);
  EXPECT_EQ(paths(*store),
            (Paths{"Inbox (inbox)", "Archive/old", "Projects/2026", "[Mail]/Sent Mail (sent)"}));
  const auto made = store->createFolder("New/deep");
  EXPECT_TRUE(std::filesystem::is_directory(dir / "New/deep/cur"));
  EXPECT_EQ(made->path(), "New/deep");
}

TEST(MailStore, ThatIsNoneIsAFailureThatSaysSo) {
  TemporaryFolder dir;
  std::filesystem::create_directories(dir / "empty");
  try {
    MailStore::open(dir / "empty");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(toUtf8(failure.description),
              "Could not open the mail store " + dir / "empty" + ": it holds no Maildir folder");
  }
  EXPECT_THROW(MailStore::open(dir / "nowhere"), Failure);
}

TEST(MailStore, MakesAMissingFolderOnlyWhenItIsNeeded) {
  TemporaryFolder dir;
  makeMaildir(dir.path());
  const auto store = MailStore::open(dir.path());
  EXPECT_EQ(store->find(FolderRole::deleted), nullptr);
  EXPECT_EQ(namesIn(dir.path()), (std::set<std::string>{"cur", "new", "tmp"}));
  EXPECT_EQ(store->need(FolderRole::deleted)->path(), "Trash");
  EXPECT_EQ(store->need(FolderRole::deleted), store->find(FolderRole::deleted));
  EXPECT_TRUE(std::filesystem::is_directory(dir / ".Trash/new"));
}

TEST(MailStore, ARoleCanBeChosen) {
  TemporaryFolder dir;
  makeMaildir(dir.path());
  for (const char* name : {".Sent", ".Gesendet"}) makeMaildir(dir / name);
  const auto store =
      MailStore::open(dir.path(), {{FolderRole::sent, "Gesendet"}, {FolderRole::deleted, "Papierkorb"}});
  EXPECT_EQ(store->find(FolderRole::sent)->path(), "Gesendet");
  EXPECT_EQ(store->need(FolderRole::deleted)->path(), "Papierkorb");
}

TEST(MailStore, NoFolderIsEverMadeOutsideIt) {
  TemporaryFolder dir;
  makeMaildir(dir / "Mail");
  makeMaildir(dir / "Nested/INBOX");
  for (const auto& store : {MailStore::open(dir / "Mail"), MailStore::open(dir / "Nested")}) {
    EXPECT_NO_THROW(store->createFolder(".."));
    EXPECT_NO_THROW(store->createFolder("../../outside"));
    EXPECT_THROW(store->createFolder("/absolute"), Failure);
    EXPECT_THROW(store->createFolder(""), Failure);
    EXPECT_THROW(store->createFolder("a/cur"), Failure);
  }
  EXPECT_EQ(namesIn(dir.path()), (std::set<std::string>{"Mail", "Nested"}));
}

TEST(MailStore, AFolderThatLooksLikeAnotherIsToldApart) {
  TemporaryFolder dir;
  makeMaildir(dir.path());
  makeMaildir(dir / ".Inbox");
  makeMaildir(dir / ".a/b");
  makeMaildir(dir / (std::string{"."} + "x\ny"));
  EXPECT_EQ(paths(*MailStore::open(dir.path())), (Paths{"Inbox (inbox)", "Inbox (2)", "x%0Ay"}));
}

TEST(MailStore, ACircleOfLinksEnds) {
  TemporaryFolder dir;
  makeMaildir(dir / "INBOX");
  std::filesystem::create_directories(dir / "a");
  std::filesystem::create_directory_symlink(dir.path(), dir / "a/loop");
  EXPECT_EQ(MailStore::open(dir.path())->folder("Inbox")->path(), "Inbox");
}

TEST(MailStore, AnItemIdIsFolderAndUniqueName) {
  TemporaryFolder dir;
  makeMaildir(dir.path());
  makeMaildir(dir / ".Projects.2026");
  const auto store = MailStore::open(dir.path());
  const auto id = store->folder("Projects/2026")->itemId("17.M1 P2.host");
  EXPECT_EQ(id, "Projects/2026/17.M1%20P2.host");
  const auto address = store->address(id);
  ASSERT_TRUE(address);
  EXPECT_EQ(address->folder->path(), "Projects/2026");
  EXPECT_EQ(address->unique, "17.M1 P2.host");
  EXPECT_FALSE(store->address("Nowhere/17"));
  EXPECT_FALSE(store->address("Inbox/"));
  EXPECT_FALSE(store->address("17"));
}

class MailFolderTest : public testing::Test {
 protected:
  MailFolderTest() {
    makeMaildir(dir.path());
    makeMaildir(dir / ".Trash");
    store = MailStore::open(dir.path());
    inbox = store->folder("Inbox");
    trash = store->folder("Trash");
    writeFile(dir / "new/200.b.host", "second");
    writeFile(dir / "cur/100.a.host:2,FS", "first");
  }
  TemporaryFolder dir;
  std::shared_ptr<MailStore> store;
  std::shared_ptr<MailFolder> inbox, trash;
};

TEST_F(MailFolderTest, ListsOldestFirst) {
  writeFile(dir / "cur/99.z.host:2,", "x");
  writeFile(dir / "cur/.hidden", "x");
  const auto listing = inbox->list();
  std::vector<std::string> names;
  for (std::size_t i = 0; i < listing.size(); ++i) names.emplace_back(listing[i].fileName);
  EXPECT_EQ(names, (std::vector<std::string>{"99.z.host:2,", "100.a.host:2,FS", "200.b.host"}));
  EXPECT_EQ(listing.unread(), 2u);
  EXPECT_EQ(listing.find("200.b.host")->isNew, true);
  EXPECT_FALSE(listing.find("200.b"));
}

TEST_F(MailFolderTest, AMessageSeenInBothPlacesIsListedOnce) {
  writeFile(dir / "cur/200.b.host:2,S", "second");
  const auto listing = inbox->list();
  EXPECT_EQ(listing.size(), 2u);
  EXPECT_FALSE(listing.find("200.b.host")->isNew);
}

TEST_F(MailFolderTest, FindsAMessageWhateverBecameOfItsFlags) {
  EXPECT_EQ(inbox->open("200.b.host")->bytes(), "second");
  std::filesystem::rename(dir / "new/200.b.host", dir / "cur/200.b.host:2,S");
  EXPECT_EQ(inbox->open("200.b.host")->bytes(), "second");
  std::filesystem::rename(dir / "cur/200.b.host:2,S", dir / "cur/200.b.host:2,RS");
  EXPECT_EQ(inbox->find("200.b.host")->fileName, "200.b.host:2,RS");
  std::filesystem::remove(dir / "cur/200.b.host:2,RS");
  EXPECT_EQ(inbox->open("200.b.host"), nullptr);
}

TEST_F(MailFolderTest, FindsAMessageThatAnotherProgramRenamesAllTheTime) {
  const std::string one = inbox->directory() + "/cur/200.b.host:2,S";
  const std::string other = inbox->directory() + "/cur/200.b.host:2,";
  std::filesystem::rename(inbox->filePath(*inbox->find("200.b.host")), one);
  std::atomic<bool> stop = false;
  std::thread renamer{[&] {
    for (bool there = true; !stop; there = !there)
      ::rename((there ? one : other).c_str(), (there ? other : one).c_str());
  }};
  int lost = 0;
  for (int i = 0; i < 2000; ++i) {
    inbox->forgetLocations();
    if (!inbox->find("200.b.host")) ++lost;
  }
  stop = true;
  renamer.join();
  EXPECT_EQ(lost, 0);
}

TEST_F(MailFolderTest, MarksKeepWhatOtherProgramsSet) {
  inbox->find("100.a.host");
  std::filesystem::rename(dir / "cur/100.a.host:2,FS", dir / "cur/100.a.host:2,RSab");
  EXPECT_TRUE(inbox->setFlag("100.a.host", 'S', false));
  EXPECT_TRUE(inbox->setFlag("200.b.host", 'S', true));
  EXPECT_EQ(namesIn(dir / "cur"), (std::set<std::string>{"100.a.host:2,Rab", "200.b.host:2,S"}));
  EXPECT_FALSE(inbox->setFlag("300.c.host", 'S', true));
}

TEST_F(MailFolderTest, AnUnreadMessageInNewStaysThereWhenMarkedUnread) {
  EXPECT_TRUE(inbox->setFlag("200.b.host", 'S', false));
  EXPECT_EQ(namesIn(dir / "new"), std::set<std::string>{"200.b.host"});
}

TEST_F(MailFolderTest, MovesAndNeverReplaces) {
  writeFile(dir / ".Trash/cur/100.a.host:2,FS", "another");
  const auto unique = inbox->moveTo(*trash, "100.a.host");
  ASSERT_TRUE(unique);
  EXPECT_NE(*unique, "100.a.host");
  EXPECT_EQ(trash->open(*unique)->bytes(), "first");
  EXPECT_EQ(trash->open("100.a.host")->bytes(), "another");
  EXPECT_EQ(inbox->moveTo(*trash, "200.b.host"), "200.b.host");
  EXPECT_EQ(namesIn(dir / ".Trash/new"), std::set<std::string>{"200.b.host"});
  EXPECT_FALSE(inbox->moveTo(*trash, "200.b.host"));
}

TEST_F(MailFolderTest, DeletesAndCreates) {
  EXPECT_TRUE(inbox->erase("100.a.host"));
  EXPECT_FALSE(inbox->erase("100.a.host"));
  const auto draft = trash->create([](const Sink& sink) { sink("Subject: x\n"), sink("\nbody"); }, "SD");
  EXPECT_EQ(readFile(dir / (".Trash/cur/" + draft + ":2,DS")), "Subject: x\n\nbody");
  EXPECT_EQ(namesIn(dir / ".Trash/tmp"), std::set<std::string>{});
  EXPECT_THROW(trash->create([](const Sink&) { throw Failure{5, u"broken"}; }, ""), Failure);
  EXPECT_EQ(namesIn(dir / ".Trash/tmp"), std::set<std::string>{});
}

TEST_F(MailFolderTest, LargeAndSmallMessagesHaveTheirBytes) {
  std::string large(5 << 20, 'x');
  large.back() = 'y';
  writeFile(dir / "cur/300.c.host:2,", large);
  writeFile(dir / "cur/400.d.host:2,", "");
  const auto message = inbox->open("300.c.host");
  EXPECT_EQ(message->bytes(), large);
  message->forget(message->bytes());
  EXPECT_EQ(message->bytes().back(), 'y');
  EXPECT_EQ(inbox->open("400.d.host")->bytes(), "");
}

TEST_F(MailFolderTest, AMessageIsHandledByOneAtATime) {
  const auto first = inbox->open("100.a.host"), second = inbox->open("100.a.host");
  EXPECT_TRUE(first->lock());
  EXPECT_FALSE(second->lock());
}

TEST_F(MailFolderTest, AMessageThatIsGoneCannotBeTaken) {
  const auto message = inbox->open("100.a.host");
  inbox->erase("100.a.host");
  EXPECT_FALSE(message->lock());
  EXPECT_EQ(message->bytes(), "first");
}

TEST_F(MailFolderTest, WhatIsNoRegularFileIsAFailure) {
  ASSERT_EQ(::mkfifo((dir / "cur/300.fifo:2,").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", dir / "cur/301.device:2,");
  EXPECT_THROW(inbox->open("301.device"), Failure);
  EXPECT_EQ(inbox->open("300.fifo"), nullptr);
}

TEST(Listing, OfTwoHundredThousandMessagesIsSmall) {
  TemporaryFolder dir;
  makeMaildir(dir.path());
  for (int i = 0; i < 200'000; ++i) {
    const std::string name =
        dir / ("cur/" + std::to_string(1'700'000'000 + i * 7 % 200'000) + ".M1P2.host:2,S");
    ::symlink("x", name.c_str());
  }
  const auto listing = Listing::read(dir.path());
  ASSERT_EQ(listing.size(), 200'000u);
  EXPECT_EQ(listing[0].unique, "1700000000.M1P2.host");
  EXPECT_EQ(listing[199'999].unique, "1700199999.M1P2.host");
}

}  // namespace
}  // namespace quillfile::mailbox
