#include "hosts/mailbox/services/settings_file.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/platform/failure.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {
namespace {

constexpr TextView application = u"Corvane", section = u"Quillfile";

class SettingsFileTest : public testing::Test {
 protected:
  std::optional<Text> read(TextView key) { return settings.read(application, section, key); }
  void write(TextView key, TextView value) { settings.write(application, section, key, value); }
  void anotherWrites(const std::string& bytes) {
    std::filesystem::create_directories(folder / "config");
    writeFile(path, bytes);
  }
  std::string failureOf(const std::string& bytes) {
    writeFile(path, bytes);
    try {
      settings.read(application, section, u"x");
    } catch (const Failure& failure) {
      return toUtf8(failure.description);
    }
    return "none";
  }

  TemporaryFolder folder;
  std::string path = folder / "config/settings.ini";
  std::int64_t tick = 0;  // of the clock
  bool standing = false;  // else it ticks at each reading
  SettingsFile settings{path, [this] { return standing ? tick : ++tick; }};
};

TEST_F(SettingsFileTest, AMissingFileHasNoValuesAndIsMadeByTheFirstWrite) {
  EXPECT_EQ(read(u"SavePath"), std::nullopt);
  EXPECT_EQ(namesIn(folder.path()), std::set<std::string>{});
  write(u"SavePath", u"/home/u/\u00E4 b/");
  settings.write(application, application, u"CVTemporarilyDisabled", u"True");
  EXPECT_EQ(readFile(path),
            "[Quillfile]\nSavePath=/home/u/\xC3\xA4 b/\n\n[Corvane]\nCVTemporarilyDisabled=True\n");
  EXPECT_EQ(read(u"savepath"), u"/home/u/\u00E4 b/");
}

TEST_F(SettingsFileTest, AWriteChangesItsOwnLineAndNothingElse) {
  write(u"AddURL", u"0");
  const std::string before =
      "\xEF\xBB\xBF; mine\r\n[Other]\r\nAddURL=9\r\n\r\n[quillfile]\r\n# why\r\n addurl = 0 "
      "\r\nUnknown=\"\\x41\"\r\n\r\n; end\r\n";
  writeFile(path, before);
  write(u"AddURL", u"1");
  write(u"New", u"x");
  EXPECT_EQ(readFile(path),
            "\xEF\xBB\xBF; mine\r\n[Other]\r\nAddURL=9\r\n\r\n[quillfile]\r\n# "
            "why\r\nAddURL=1\r\nUnknown=\"\\x41\"\r\nNew=x\n\r\n; end\r\n");
  EXPECT_EQ(read(u"Unknown"), u"A");
  settings.erase(section, u"new");
  settings.erase(section, u"absent");
  EXPECT_EQ(read(u"New"), std::nullopt);
}

TEST_F(SettingsFileTest, AnyValueComesBackAsItWas) {
  for (const Text& value :
       {Text{u""}, Text{u" a "}, Text{u"\"a\""}, Text{u"a;b#c=d"}, Text{u"\r\n\t\\"}, Text{u"[x]"},
        Text{u"\u0001\u007F"}, Text{u"\""}, Text{u"x"} + Text(1, u'\0') + u"y"}) {
    write(u"key", value);
    EXPECT_EQ(read(u"key"), value) << readFile(path);
  }
}

TEST_F(SettingsFileTest, AChangeByAnotherProgramIsSeenInTheNextTick) {
  write(u"a", u"1");
  for (int i = 0; i < 200; ++i) {
    writeFile(path, "[Quillfile]\na=" + std::to_string(i % 10) + "\n");
    ASSERT_EQ(read(u"a"), fromUtf8(std::to_string(i % 10)));
  }
}

TEST_F(SettingsFileTest, InOneTickTheFileIsLookedAtASingleTime) {
  standing = true;
  anotherWrites("[Quillfile]\na=1\n");
  EXPECT_EQ(read(u"a"), u"1");
  anotherWrites("[Quillfile]\na=2\n");
  EXPECT_EQ(read(u"a"), u"1");
  EXPECT_EQ(read(u"A"), u"1");
  ++tick;
  EXPECT_EQ(read(u"a"), u"2");
}

TEST_F(SettingsFileTest, WhoeverIsToldOfAChangeSeesItAtOnce) {
  standing = true;
  anotherWrites("[Quillfile]\na=1\n");
  EXPECT_EQ(read(u"a"), u"1");
  anotherWrites("[Quillfile]\na=2\n");
  settings.lookAgain();
  EXPECT_EQ(read(u"a"), u"2");
}

TEST_F(SettingsFileTest, OnesOwnWritesAreSeenAtOnceAndWhatOthersHaveWrittenWithThem) {
  standing = true;
  write(u"a", u"1");
  EXPECT_EQ(read(u"a"), u"1");
  anotherWrites("[Quillfile]\na=1\nb=2\n");
  write(u"a", u"3");
  EXPECT_EQ(read(u"a"), u"3");
  EXPECT_EQ(read(u"b"), u"2");
  settings.erase(section, u"a");
  EXPECT_EQ(read(u"a"), std::nullopt);
}

TEST_F(SettingsFileTest, AFileThatCannotBeReadIsAFailureAtEveryReadingOfATick) {
  standing = true;
  anotherWrites("[Quillfile]\na=1\n");
  EXPECT_EQ(read(u"a"), u"1");
  anotherWrites("nonsense\n");
  ++tick;
  EXPECT_THROW(read(u"a"), Failure);
  EXPECT_THROW(read(u"b"), Failure);
}

TEST_F(SettingsFileTest, AFileThatIsNoSettingsFileIsAClearError) {
  write(u"a", u"1");
  EXPECT_EQ(failureOf("[Quillfile]\nnonsense\n"),
            "Line 2 of the settings file " + path + " is no section, no setting and no comment");
  EXPECT_EQ(failureOf("[Quillfile\n"),
            "Line 1 of the settings file " + path + " is no section, no setting and no comment");
  EXPECT_EQ(failureOf("[a]\nx=\"\\q\"\n"),
            "Line 2 of the settings file " + path + " is no section, no setting and no comment");
  EXPECT_EQ(failureOf(std::string(2 << 20, ' ')), "The settings file " + path + " is larger than 1 MB");
  EXPECT_EQ(failureOf("[a]\nx=1\n"), "none");
  writeFile(path, "nonsense\n");
  EXPECT_THROW(write(u"a", u"1"), Failure);
  EXPECT_EQ(readFile(path), "nonsense\n");
}

TEST_F(SettingsFileTest, OfASettingThatStandsTwiceTheLastCounts) {
  anotherWrites("[Quillfile]\na=1\n[quillfile]\nA=2\n");
  EXPECT_EQ(read(u"a"), u"2");
}

TEST_F(SettingsFileTest, ALinkedFileStaysALink) {
  std::filesystem::create_directories(folder / "config");
  writeFile(folder / "real.ini", "[Quillfile]\n");
  std::filesystem::create_symlink(folder / "real.ini", path);
  write(u"a", u"1");
  EXPECT_TRUE(std::filesystem::is_symlink(path));
  EXPECT_EQ(readFile(folder / "real.ini"), "[Quillfile]\na=1\n");
}

TEST_F(SettingsFileTest, WritersExcludeEachOther) {
  constexpr int writers = 4, each = 25;
  for (int w = 0; w < writers; ++w)
    if (::fork() == 0) {
      for (int i = 0; i < each; ++i) write(fromUtf8("k" + std::to_string(w) + "-" + std::to_string(i)), u"v");
      ::_exit(0);
    }
  for (int w = 0; w < writers; ++w) ::wait(nullptr);
  int found = 0;
  for (int w = 0; w < writers; ++w)
    for (int i = 0; i < each; ++i)
      found += read(fromUtf8("k" + std::to_string(w) + "-" + std::to_string(i))) ? 1 : 0;
  EXPECT_EQ(found, writers * each);
}

}  // namespace
}  // namespace quillfile::mailbox
