#include "hosts/mailbox/services/leftovers.h"

#include "hosts/mailbox/store/temporary_name.h"
#include "tests/mailbox/services/batch_room.h"

namespace quillfile::mailbox {
namespace {

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
