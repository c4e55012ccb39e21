#include "hosts/mailbox/services/programs.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/platform/failure.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

using Words = std::vector<std::string>;

TEST(CommandWords, AreSplitAsTheShellWould) {
  EXPECT_EQ(commandWords("a  b\tc", ""), (Words{"a", "b", "c"}));
  EXPECT_EQ(commandWords(R"(a 'b c' "d e" f\ g)", ""), (Words{"a", "b c", "d e", "f g"}));
  EXPECT_EQ(commandWords(R"(a'b'"c" '' "")", ""), (Words{"abc", "", ""}));
  EXPECT_EQ(commandWords(R"("\"\\\n" '\n' \\)", ""), (Words{R"("\\n)", R"(\n)", R"(\)"}));
  EXPECT_EQ(commandWords("", ""), Words{});
  EXPECT_EQ(commandWords("$HOME `x` *;|&>", ""), (Words{"$HOME", "`x`", "*;|&>"}));
}

TEST(CommandWords, APathInQuotesIsOneWordWhateverItHolds) {
  for (const std::string path :
       {R"(/s/a b.pdf)", R"(/s/"; rm -rf ~ ".pdf)", R"(/s/\)", R"(/s/'$(x)')", "/s/a\nb"}) {
    EXPECT_EQ(commandWords("view \"" + path + "\" x", path), (Words{"view", path, "x"}));
    EXPECT_EQ(commandWords("view '" + path + "' x", path), (Words{"view", path, "x"}));
    EXPECT_EQ(commandWords("view \"--file=" + path + "\"", path), (Words{"view", "--file=" + path}));
  }
  EXPECT_EQ(commandWords("view /s/a b.pdf", "/s/a b.pdf"), (Words{"view", "/s/a", "b.pdf"}));
}

TEST(CommandWords, AQuoteThatIsNeverClosedIsAFailure) {
  EXPECT_THROW(commandWords("a 'b", ""), Failure);
  EXPECT_THROW(commandWords("a \"b", ""), Failure);
}

// Waits for a program that nobody waits for.
std::string eventually(const std::string& path) {
  for (int i = 0; i < 500 && readFile(path).empty(); ++i) ::usleep(10'000);
  return readFile(path);
}

TEST(Programs, AreStartedWithoutAShellAndNotWaitedFor) {
  TemporaryFolder folder;
  const int inherited = ::dup(1);
  bool committed = false;
  HostPrograms programs{[&] { committed = true; }};
  writeFile(folder / "a \"b\".txt", "found");
  const std::string path = folder / "a \"b\".txt";
  programs.start(fromUtf8("/bin/sh -c 'cat \"$1\" > \"$0.part\"; mv \"$0.part\" \"$0\"' " + folder / "out" +
                          " \"" + path + "\""),
                 fromUtf8(path));
  EXPECT_TRUE(committed);
  EXPECT_EQ(eventually(folder / "out"), "found");
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);  // no child is left, dead or alive
  ::close(inherited);
}

TEST(Programs, ThatAreNotThereAreAFailure) {
  HostPrograms programs{nullptr};
  try {
    programs.start(u"/nowhere/program x", u"x");
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.description, u"Could not start /nowhere/program: it is not there");
  }
  EXPECT_THROW(programs.start(u"  ", u""), Failure);
}

}  // namespace
}  // namespace quillfile::mailbox
