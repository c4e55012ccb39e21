#include "hosts/mailbox/store/message_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

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

TEST(MessageFileDeathTest, ABusErrorElsewhereStopsTheProgramAsBefore) {
  const TemporaryFolder folder;
  writeFile(folder / "message", std::string(large, 'x'));
  const auto message = MessageFile::open(folder / "message");
  EXPECT_DEATH(::raise(SIGBUS), "");
}

}  // namespace
}  // namespace quillfile::mailbox
