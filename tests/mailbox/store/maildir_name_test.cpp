#include "hosts/mailbox/store/maildir_name.h"

#include <gtest/gtest.h>

#include <set>

#include "hosts/mailbox/store/item_id.h"
#include "hosts/mailbox/store/temporary_name.h"

namespace quillfile::mailbox {
namespace {

TEST(MaildirName, IsAUniquePartAndFlags) {
  const auto name = parseMaildirName("1700000000.M1P2.host,S=812:2,FS");
  EXPECT_EQ(name.unique, "1700000000.M1P2.host,S=812");
  EXPECT_EQ(name.flags, "FS");
  EXPECT_EQ(parseMaildirName("1.host").unique, "1.host");
  EXPECT_EQ(parseMaildirName("1.host:2,").flags, "");
  EXPECT_EQ(parseMaildirName("1:2,x.host:2,S").unique, "1:2,x.host");
}

TEST(MaildirName, FlagsStandInOrderAndOnce) {
  EXPECT_EQ(maildirFileName("1.host", "SFS"), "1.host:2,FS");
  EXPECT_EQ(changedFlags("FS", "RS", "F"), "RS");
  EXPECT_EQ(changedFlags("Sab", "", "S"), "ab");
  EXPECT_TRUE(hasFlag("FS", 'S'));
}

TEST(MaildirName, BeginsWithItsDeliveryTime) {
  EXPECT_EQ(deliveryTime("1700000000.M1P2.host"), 1700000000);
  EXPECT_EQ(deliveryTime("nothing"), 0);
  EXPECT_EQ(deliveryTime("-5.x"), 0);
}

TEST(MaildirName, AFreshOneIsNeverGivenTwice) {
  std::set<std::string> names;
  for (int i = 0; i < 10'000; ++i) names.insert(freshUniqueName());
  EXPECT_EQ(names.size(), 10'000u);
  EXPECT_EQ(names.begin()->find_first_of(":/,"), std::string::npos);
}

TEST(ItemId, HoldsAnyNamePrintably) {
  for (const std::string name : {"1700000000.M1P2.host", "a b%41\x01\xFF:x", "%", "%4"}) {
    const auto printable = printableUnique(name);
    EXPECT_EQ(uniqueFromPrintable(printable), name);
    EXPECT_EQ(printable.find_first_not_of("0123456789.MPhostabx%FCD:412567"), std::string::npos) << printable;
  }
  EXPECT_EQ(printableUnique("1700000000.M1P2.host"), "1700000000.M1P2.host");
}

TEST(TemporaryName, SaysWhichMessageIsReplaced) {
  const auto replaced = replacedMessage("100.a.host", 77);
  const auto parsed = parseTemporaryMessageName(temporaryMessageName("200.b.host", replaced));
  ASSERT_TRUE(parsed);
  EXPECT_EQ(parsed->unique, "200.b.host");
  EXPECT_EQ(parsed->replaced, replaced);
  EXPECT_EQ(parseTemporaryMessageName(temporaryMessageName("200.b.host"))->replaced, std::nullopt);
  for (const char* foreign :
       {"200.b.host", "quillfile", "quillfile,a,", "quillfile,a,12", "quillfile,a,12-", "quillfile,a,12-3x"})
    EXPECT_FALSE(parseTemporaryMessageName(foreign)) << foreign;
}

}  // namespace
}  // namespace quillfile::mailbox
