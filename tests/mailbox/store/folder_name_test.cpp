#include "hosts/mailbox/store/folder_name.h"

#include <gtest/gtest.h>

namespace quillfile::mailbox {
namespace {

TEST(FolderName, ModifiedUtf7IsShownAsText) {
  EXPECT_EQ(shownName("Entw&APw-rfe"), "Entw\xC3\xBCrfe");
  EXPECT_EQ(shownName("&U,BTFw-"), "\xE5\x8F\xB0\xE5\x8C\x97");
  EXPECT_EQ(shownName("R&-D"), "R&D");
}

TEST(FolderName, WhatIsNoModifiedUtf7StandsAsItIs) {
  for (const char* name : {"R&D", "A&B-C", "&", "Entw\xC3\xBCrfe", "100%"}) EXPECT_EQ(shownName(name), name);
}

TEST(FolderName, NothingHarmfulIsShown) {
  EXPECT_EQ(shownName("a\x01\x7F\n"), "a%01%7F%0A");
  EXPECT_EQ(shownName("a\xFFz"), "a%FFz");
  EXPECT_EQ(shownName("a\xE2\x80\xAEz"), "a%E2%80%AEz");  // right-to-left override
  EXPECT_EQ(shownName("&AC8-"), "%2F");                   // an encoded "/"
  EXPECT_EQ(shownName("a\xE2\x82"), "a%E2%82");           // cut off
}

TEST(FolderName, GoesToDiskInModifiedUtf7) {
  for (const char* name :
       {"Projects", "Entw\xC3\xBCrfe", "\xE5\x8F\xB0\xE5\x8C\x97 x", "R&D", "\xF0\x9F\x98\x80", "a&b-c"})
    EXPECT_EQ(shownName(encodedName(name)), name) << encodedName(name);
  EXPECT_EQ(encodedName("Entw\xC3\xBCrfe"), "Entw&APw-rfe");
  EXPECT_EQ(encodedName("a.b"), "a&AC4-b");
  EXPECT_EQ(encodedName(".."), "&AC4ALg-");
}

}  // namespace
}  // namespace quillfile::mailbox
