#include "hosts/mailbox/engine/trace_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "core/platform/failure.h"

namespace quillfile::mailbox {
namespace {

std::string contentOf(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path).rdbuf();
  return content.str();
}

struct TracePath {
  std::string path = testing::TempDir() + "trace-" + std::to_string(getpid());
  ~TracePath() { unlink(path.c_str()); }
};

TEST(TraceFile, EveryTraceIsOneLineOfFourFields) {
  const TracePath at;
  TraceFile{at.path}.write(u"Quillfile", u"SaveEmail", u"a\tb\r\nc\\d", 0);
  const std::regex line(
      "\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}\tQuillfile\tSaveEmail\ta\\\\tb\\\\r\\\\nc\\\\d\n");
  EXPECT_TRUE(std::regex_match(contentOf(at.path), line)) << contentOf(at.path);
}

TEST(TraceFile, AnErrorReportNamesItsLevelAndItsSource) {
  const TracePath at;
  TraceFile{at.path}.writeError(1, u"Quillfile.CEShutdown", u"no\nway");
  const std::regex line("[^\t]+\tERROR 1\tQuillfile\\.CEShutdown\tno\\\\nway\n");
  EXPECT_TRUE(std::regex_match(contentOf(at.path), line)) << contentOf(at.path);
}

TEST(TraceFile, LinesAreAppendedAndNobodyElseMayReadThem) {
  const TracePath at;
  TraceFile{at.path}.write(u"m", u"p", u"one", 0);
  TraceFile{at.path}.write(u"m", u"p", u"two", 0);
  const std::string all = contentOf(at.path);
  EXPECT_NE(all.find("one\n"), std::string::npos);
  EXPECT_NE(all.find("two\n"), std::string::npos);
  struct stat status {};
  ASSERT_EQ(stat(at.path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(TraceFile, WithoutAPathNothingIsWanted) { EXPECT_FALSE(TraceFile{""}.wanted()); }

TEST(TraceFile, APathThatCannotBeOpenedIsAClearFailure) {
  try {
    TraceFile trace{"/nowhere/at/all"};
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_NE(failure.description.find(u"/nowhere/at/all"), Text::npos) << toUtf8(failure.description);
  }
}

}  // namespace
}  // namespace quillfile::mailbox
