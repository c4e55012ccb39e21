#include "hosts/mailbox/store/message_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t large = 1 << 20;

TEST(MessageFile, ALargeMessageThatIsCutShortReadsAsZerosFromThereAndSaysSo) {
  const TemporaryFolder folder;
  for (const std::size_t left : {std::size_t{0}, std::size_t{5000}, large / 2}) {
    const auto path = folder / "message";
    writeFile(path, std::string(large, 'x'));
    const auto message = MessageFile::open(path);
    EXPECT_EQ(std::count(message->bytes().begin(), message->bytes().end(), 'x'), large);
    EXPECT_TRUE(message->isAsOpened());
    ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(left)), 0);
    const auto there =
        static_cast<std::size_t>(std::count(message->bytes().begin(), message->bytes().end(), 'x'));
    EXPECT_EQ(there, left);
    EXPECT_EQ(std::count(message->bytes().begin(), message->bytes().end(), '\0'), large - left);
    EXPECT_FALSE(message->isAsOpened());
    // Even when it is as long as before.
    writeFile(path, std::string(large, 'x'));
    EXPECT_FALSE(message->isAsOpened());
    message->forget(message->bytes());
    EXPECT_EQ(message->bytes().size(), large);
  }
}

TEST(MessageFile, SeveralMessagesAreToldApart) {
  const TemporaryFolder folder;
  std::vector<std::shared_ptr<MessageFile>> messages;
  for (const char* name : {"a", "b", "c"}) {
    writeFile(folder / name, std::string(large, 'x'));
    messages.push_back(MessageFile::open(folder / name));
  }
  messages.erase(messages.begin());
  ASSERT_EQ(::truncate((folder / "c").c_str(), 0), 0);
  for (const auto& message : messages) std::count(message->bytes().begin(), message->bytes().end(), 'x');
  EXPECT_TRUE(messages[0]->isAsOpened());
  EXPECT_FALSE(messages[1]->isAsOpened());
}

TEST(MessageFile, ASmallMessageKeepsItsBytesAndSaysWhenTheFileIsAnother) {
  const TemporaryFolder folder;
  writeFile(folder / "message", "one\n");
  const auto message = MessageFile::open(folder / "message");
  EXPECT_TRUE(message->isAsOpened());
  writeFile(folder / "message", "another\n");
  EXPECT_EQ(message->bytes(), "one\n");
  EXPECT_FALSE(message->isAsOpened());
}

TEST(MessageFile, IsStillAtItsPathUntilAnotherFileStandsThereOrItsBytesChange) {
  const TemporaryFolder folder;
  writeFile(folder / "a", "one\n");
  const auto message = MessageFile::open(folder / "a");
  EXPECT_TRUE(message->isStillAt(folder / "a"));
  ASSERT_EQ(::rename((folder / "a").c_str(), (folder / "b").c_str()), 0);
  EXPECT_FALSE(message->isStillAt(folder / "a"));
  EXPECT_TRUE(message->isStillAt(folder / "b"));
  writeFile(folder / "a", "one\n");
  EXPECT_FALSE(message->isStillAt(folder / "a"));
  writeFile(folder / "b", "another\n");
  EXPECT_FALSE(message->isStillAt(folder / "b"));
}

// While one thread meets lost pages, another makes and gives up mappings.
TEST(MessageFile, LostPagesAreReplacedBesideAThreadThatMapsOtherFiles) {
  const TemporaryFolder folder;
  writeFile(folder / "other", std::string(large, 'y'));
  std::atomic<bool> stop = false;
  std::thread mapper{[&] {
    while (!stop) {
      const auto other = MessageFile::open(folder / "other");
      EXPECT_EQ(std::count(other->bytes().begin(), other->bytes().end(), 'y'), large);
      EXPECT_TRUE(other->isAsOpened());
    }
  }};
  for (int i = 0; i < 50; ++i) {
    const auto path = folder / "message";
    writeFile(path, std::string(large, 'x'));
    const auto message = MessageFile::open(path);
    ASSERT_EQ(::truncate(path.c_str(), 0), 0);
    EXPECT_EQ(std::count(message->bytes().begin(), message->bytes().end(), '\0'), large);
    EXPECT_FALSE(message->isAsOpened());
  }
  stop = true;
  mapper.join();
}

TEST(MessageFileDeathTest, ABusErrorElsewhereStopsTheProgramAsBefore) {
  const TemporaryFolder folder;
  writeFile(folder / "message", std::string(large, 'x'));
  const auto message = MessageFile::open(folder / "message");
  EXPECT_DEATH(::raise(SIGBUS), "");
}

}  // namespace
}  // namespace quillfile::mailbox
