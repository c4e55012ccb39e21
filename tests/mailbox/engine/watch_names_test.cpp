#include <gtest/gtest.h>

#include "hosts/mailbox/store/maildir_name.h"

namespace quillfile::mailbox {
namespace {

TEST(OwnUniqueName, IsOwnInItsFolderAndAMessageLikeAnyOtherElsewhere) {
  const auto own = ownUniqueName("Projects/2026");
  EXPECT_TRUE(isOwnIn("Projects/2026", own));
  EXPECT_TRUE(isOwnIn("Projects/2026", own + ",U=12"));
  EXPECT_FALSE(isOwnIn("Trash", own));
}

TEST(OwnUniqueName, IsNeverReadIntoAnotherProgramsName) {
  for (const char* unique : {"", "100", "100.", "100.M1P2.host", "1700000000.R123456789.host,U=4",
                             "1700000000.24127_1.host,U=5", "1700000000.M1P2V3I4.host,S=812,W=830"})
    EXPECT_FALSE(isOwnIn("Inbox", unique)) << unique;
  EXPECT_FALSE(isOwnIn("Inbox", freshUniqueName()));
}

}  // namespace
}  // namespace quillfile::mailbox
