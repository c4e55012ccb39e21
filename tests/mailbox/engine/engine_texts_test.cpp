#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "hosts/mailbox/engine/item_order.h"
#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/engine/mailbox_engine.h"
#include "hosts/mailbox/engine/printable.h"
#include "hosts/mailbox/engine/progress.h"

namespace quillfile::mailbox {
namespace {

// An environment variable for the length of a test.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    set(value);
  }
  ~Variable() { set(before_ ? before_->c_str() : nullptr); }

 private:
  void set(const char* value) { value ? setenv(name_, value, 1) : unsetenv(name_); }

  const char* name_;
  std::optional<std::string> before_;
};

TEST(Printable, NothingThatATerminalWouldObeyGetsThrough) {
  EXPECT_EQ(printable(u"a\x1B[31mb\u202Efdp.exe\nc\td"), "a\uFFFD[31mb\uFFFDfdp.exe c d");
  EXPECT_EQ(printable(Text{u'a', 0, u'b', 0x9B}), "a\uFFFDb\uFFFD");
  EXPECT_EQ(printableLines(u"one\r\ntwo\x07\n"), "one\ntwo\uFFFD\n");
}

TEST(SizeText, CountsInPowersOfAThousand) {
  EXPECT_EQ(sizeText(0), "0 bytes");
  EXPECT_EQ(sizeText(1), "1 byte");
  EXPECT_EQ(sizeText(999), "999 bytes");
  EXPECT_EQ(sizeText(1000), "1.0 KB");
  EXPECT_EQ(sizeText(48'300), "48.3 KB");
  EXPECT_EQ(sizeText(999'950), "1.0 MB");
  EXPECT_EQ(sizeText(5'000'000'000'000), "5.0 TB");
}

TEST(ProgressLine, TellsWhatIsDoneHowFastAndHowLongStill) {
  EXPECT_EQ(progressLine(0, 300, 0, 0.2, ""), "0 of 300 items, 0 bytes");
  EXPECT_EQ(progressLine(12, 300, 4'500'000, 2, "report.pdf"),
            "12 of 300 items, 4.5 MB, 2.2 MB/s, 49 s left, report.pdf");
  EXPECT_EQ(progressLine(1, 300, 1000, 10, ""), "1 of 300 items, 1.0 KB, 100 bytes/s, 50 min left");
}

TEST(KnownFolders, TheEnvironmentDecidesWhereItNamesAnAbsolutePath) {
  const Variable home{"HOME", "/home/u/"};
  const Variable config{"XDG_CONFIG_HOME", nullptr};
  const Variable documents{"XDG_DOCUMENTS_DIR", nullptr};
  EXPECT_EQ(configFolder(), "/home/u/.config");
  EXPECT_EQ(documentsFolder(), "/home/u/Documents");
  const Variable relative{"XDG_CONFIG_HOME", "conf"};
  EXPECT_EQ(configFolder(), "/home/u/.config");
  const Variable papers{"XDG_DOCUMENTS_DIR", "/srv/papers/"};
  EXPECT_EQ(documentsFolder(), "/srv/papers");
}

TEST(ExpandPath, KnowsTheHomeFolderAndTheEnvironment) {
  const Variable home{"HOME", "/home/u"};
  const Variable name{"QF_TEST", "x y"};
  EXPECT_EQ(expandPath("~/a/"), "/home/u/a/");
  EXPECT_EQ(expandPath("~other/a"), (std::filesystem::current_path() / "~other/a").string());
  EXPECT_EQ(expandPath("/srv/$QF_TEST/${QF_TEST}!"), "/srv/x y/x y!");
  EXPECT_EQ(expandPath("/srv/$NO_SUCH_NAME/$/${"), "/srv/$NO_SUCH_NAME/$/${");
  EXPECT_EQ(expandPath(""), (std::filesystem::current_path() / "").string());  // a link needs a whole path
}

TEST(CleanFileName, RemovesWhatNoSystemTakes) {
  EXPECT_EQ(cleanFileName(u"Re: 1/2? <a|b> \"c\" *\\"), u"Re 12 ab c");
  EXPECT_EQ(cleanFileName(u"a/../b"), u"a..b");
  EXPECT_EQ(cleanFileName(u"a\x01\u202Eb\n.pdf. "), u"ab.pdf");
  EXPECT_EQ(cleanFileName(u".."), u"");
  EXPECT_EQ(cleanFileName(u"con"), u"_con");
}

TEST(NumbersIn, ANumberOrARangeWithinTheList) {
  using Numbers = std::vector<std::size_t>;
  EXPECT_EQ(numbersIn("3", 7), (Numbers{3}));
  EXPECT_EQ(numbersIn("3-5", 7), (Numbers{3, 4, 5}));
  for (const char* wrong : {"", "0", "8", "5-3", "3-", "3-8", "-3", "a", "3a", "99999999999999999999"}) {
    EXPECT_TRUE(numbersIn(wrong, 7).empty()) << wrong;
  }
}

TEST(ReceivedSeconds, TheTopmostReceivedFieldWinsThenDateThenTheFile) {
  const char* const both =
      "Received: from a by b; Sat, 22 Nov 1997 00:00:00 +0000\nReceived: x; Fri, 21 Nov 1997 00:00:00 +0000\n"
      "Date: Fri, 21 Nov 1997 09:55:06 -0600\n";
  EXPECT_EQ(receivedSeconds(both, 5), 880156800);
  EXPECT_EQ(receivedSeconds("Date: Fri, 21 Nov 1997 09:55:06 -0600\n", 5), 880127706);
  EXPECT_EQ(receivedSeconds("Subject: no date\n", 5), 5);
}

}  // namespace
}  // namespace quillfile::mailbox
