// Bytes that are needed for a while: the same ones, wherever they are kept, and nothing is left of them.
#include "hosts/mailbox/store/scratch.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <filesystem>

#include "core/platform/failure.h"

namespace quillfile::mailbox {
namespace {

// TMPDIR is a folder of its own.
class ScratchTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::TempDir() + "scratch-XXXXXX";
    folder_ = ::mkdtemp(name.data());
    ::setenv("TMPDIR", folder_.c_str(), 1);
  }
  void TearDown() override {
    ::unsetenv("TMPDIR");
    std::filesystem::remove_all(folder_);
  }
  std::string folder_;
};

Content inPieces(const std::string& bytes, std::size_t piece) {
  return [&bytes, piece](const Sink& sink) {
    for (std::size_t at = 0; at < bytes.size(); at += piece) sink(std::string_view{bytes}.substr(at, piece));
  };
}

TEST_F(ScratchTest, HoldsWhatItWasGiven) {
  for (const std::size_t size : {0u, 1u, 1u << 20, (1u << 20) + 1, 5u << 20}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    for (const std::size_t piece : {std::size_t{1000}, std::size_t{70'000}, std::size_t{3} << 20}) {
      const Scratch scratch{inPieces(bytes, piece)};
      EXPECT_TRUE(scratch.bytes() == bytes) << size << " in pieces of " << piece;
      scratch.forget(scratch.bytes());
      EXPECT_TRUE(scratch.bytes() == bytes) << "again, of " << size;
      EXPECT_TRUE(scratch.isWhole());
      EXPECT_TRUE(std::filesystem::is_empty(folder_)) << "while it is needed, too";
    }
  }
}

TEST_F(ScratchTest, GoesElsewhereWhereItsFolderIsMissing) {
  ::setenv("TMPDIR", (folder_ + "/not there").c_str(), 1);
  const std::string bytes(std::size_t{2} << 20, 'x');
  EXPECT_TRUE(Scratch{inPieces(bytes, 4096)}.bytes() == bytes);
}

// A limit on files' sizes stands for the full disk.
TEST_F(ScratchTest, SaysWhenTheDiskIsFull) {
  const auto before = ::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit low{.rlim_cur = 64 << 10, .rlim_max = limit.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &low);
  const std::string bytes(std::size_t{2} << 20, 'x');
  EXPECT_THROW(Scratch{inPieces(bytes, 4096)}, Failure);
  ::setrlimit(RLIMIT_FSIZE, &limit);
  ::signal(SIGXFSZ, before);
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

}  // namespace
}  // namespace quillfile::mailbox
