#include "hosts/mailbox/engine/seen.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "core/platform/failure.h"

namespace quillfile::mailbox {
namespace {

class SeenTest : public testing::Test {
 protected:
  SeenTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillfile-seen-XXXXXX").string();
    root = mkdtemp(pattern.data());
    file = (root / "state/quillfile/watch-1").string();
    open();
  }
  ~SeenTest() override { std::filesystem::remove_all(root); }

  void open() {
    seen.reset();
    seen = std::make_unique<Seen>(file);
  }
  std::string text() const {
    std::ifstream in{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{in}, {}};
  }

  std::filesystem::path root;
  std::string file;
  std::unique_ptr<Seen> seen;
};

TEST_F(SeenTest, WhatWasFlushedIsThereAfterARestart) {
  EXPECT_FALSE(seen->knows("Inbox"));
  seen->add("Inbox", "100.a.host");
  seen->learn("Work/2026");
  seen->flush();
  open();
  EXPECT_TRUE(seen->knows("Inbox"));
  EXPECT_TRUE(seen->knows("Work/2026"));
  EXPECT_TRUE(seen->contains("Inbox", "100.a.host"));
  EXPECT_FALSE(seen->contains("Work/2026", "100.a.host"));
  EXPECT_FALSE(seen->contains("Inbox", "200.b.host"));
}

TEST_F(SeenTest, ATryIsCountedAcrossRestartsUntilTheMessageIsDoneWith) {
  EXPECT_EQ(seen->beginTry("Inbox", "100.a.host"), 1);
  open();
  EXPECT_EQ(seen->beginTry("Inbox", "100.a.host"), 2);
  EXPECT_EQ(seen->beginTry("Inbox", "200.b.host"), 1);
  open();
  EXPECT_EQ(seen->beginTry("Inbox", "100.a.host"), 3);
  seen->add("Inbox", "100.a.host");
  seen->flush();
  open();
  EXPECT_TRUE(seen->contains("Inbox", "100.a.host"));
  EXPECT_EQ(seen->beginTry("Inbox", "100.a.host"), 1);
}

TEST_F(SeenTest, WhatAPowerCutLeftHalfWrittenIsLeftOut) {
  seen->add("Inbox", "100.a.host");
  seen->add("Inbox", "200.b.host");
  seen->flush();
  seen.reset();
  const std::string whole = text();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    std::ofstream{file, std::ios::binary | std::ios::trunc} << whole.substr(0, length);
    open();
    EXPECT_FALSE(seen->contains("Inbox", "200.b.host")) << length;
    seen->add("Inbox", "300.c.host");
    seen->flush();
    open();
    EXPECT_TRUE(seen->contains("Inbox", "300.c.host")) << length;
    seen.reset();
  }
}

TEST_F(SeenTest, MessagesThatAreGoneAreForgotten) {
  for (const char* unique : {"100.a.host", "200.b.host", "300.c.host"}) seen->add("Inbox", unique);
  seen->keepOnly("Inbox", {seenHash("200.b.host")});
  seen->flush();
  EXPECT_FALSE(seen->contains("Inbox", "100.a.host"));
  EXPECT_TRUE(seen->contains("Inbox", "200.b.host"));
}

TEST_F(SeenTest, TheFileStaysSmallWhateverComesAndGoes) {
  for (int i = 0; i < 20'000; ++i) {
    seen->add("Inbox", std::to_string(i) + ".a.host");
    if (i % 100 == 0) seen->keepOnly("Inbox", {seenHash(std::to_string(i) + ".a.host")});
    if (i % 100 == 0) seen->flush();
  }
  EXPECT_LT(std::filesystem::file_size(file), 60'000u);
}

TEST_F(SeenTest, ManyMessagesOfAFirstLookAreKeptAtOnce) {
  std::vector<std::uint64_t> hashes;
  for (int i = 0; i < 10'000; ++i) hashes.push_back(seenHash(std::to_string(i)));
  seen->addAll("Inbox", hashes);
  seen->flush();
  open();
  EXPECT_TRUE(seen->contains("Inbox", "0"));
  EXPECT_TRUE(seen->contains("Inbox", "9999"));
  EXPECT_FALSE(seen->contains("Inbox", "10000"));
}

TEST_F(SeenTest, ASecondWatchOverTheSameStoreIsRefused) { EXPECT_THROW(Seen{file}, Failure); }

TEST(SeenFileTest, OneStoreHasOneFileHoweverItIsSpelled) {
  const auto here = std::filesystem::current_path().string();
  EXPECT_EQ(seenFile("/s", here), seenFile("/s", here + "/."));
  EXPECT_NE(seenFile("/s", here), seenFile("/s", "/"));
}

}  // namespace
}  // namespace quillfile::mailbox
