#include "hosts/mailbox/engine/item_order.h"

#include <gtest/gtest.h>

#include "hosts/mailbox/store/mail_store.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

class ItemOrderTest : public testing::Test {
 protected:
  void deliver(const std::string& unique, const std::string& message) {
    writeFile(root / ("cur/" + unique + ":2,S"), message);
  }
  static std::string dated(int minute) {
    return "Date: Fri, 21 Nov 1997 09:" + std::to_string(10 + minute) + ":00 +0000\n";
  }
  std::vector<std::string> order() { return itemsInOrder(*store->need(FolderRole::inbox)); }

  TemporaryFolder root;
  std::shared_ptr<MailStore> store = MailStore::create(root.path());
};

TEST_F(ItemOrderTest, OfManyMessagesTheOldestComesFirst) {
  constexpr int count = 1000, step = 377;  // without a common divisor: each number once
  std::vector<std::string> expected;
  expected.reserve(count);
  for (int i = 0; i < count; ++i) expected.push_back("m" + std::to_string(i) + ".host");
  for (int i = 0; i < count; ++i) {
    const int n = i * step % count;
    const std::string second = std::to_string(100 + n % 60).substr(1), minute = std::to_string(10 + n / 60);
    deliver(expected[static_cast<std::size_t>(n)],
            "Date: Fri, 21 Nov 1997 09:" + minute + ":" + second + " +0000\n\nbody\n");
  }
  EXPECT_EQ(order(), expected);
}

TEST_F(ItemOrderTest, ADateBehindALongHeaderIsFound) {
  int minute = 0;
  std::vector<std::string> expected;
  for (const std::size_t length : {0, 4080, 5000, 40'000, 300'000}) {
    expected.push_back("b" + std::to_string(9 - minute));  // their names would order them the other way round
    deliver(expected.back(), "X-Long: " + std::string(length, 'x') + "\n" + dated(minute++) + "\nbody\n");
  }
  EXPECT_EQ(order(), expected);
}

TEST_F(ItemOrderTest, ADateInTheBodyIsNone) {
  deliver("a", "Subject: x\r\n" + dated(20) + "\r\n");
  deliver("b", "Subject: x\r\n" + dated(10) + "\r\n" + dated(40));
  deliver("c", "Subject: x\n" + dated(0) + "\n" + dated(40));
  EXPECT_EQ(order(), (std::vector<std::string>{"c", "b", "a"}));
}

}  // namespace
}  // namespace quillfile::mailbox
