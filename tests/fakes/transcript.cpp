#include "tests/fakes/transcript.h"

namespace quillfile {

std::string joined(const std::vector<Text>& lines) {
  std::string all;
  for (const auto& line : lines) {
    Text visible = replaceAll(line, u"\r", u"\\r");
    visible = replaceAll(visible, u"\n", u"\\n");
    all += toUtf8(replaceAll(visible, u"\t", u"\\t")) + "\n";
  }
  return all;
}

void expectTranscript(const std::vector<Text>& actual, const std::vector<Text>& expected,
                      std::source_location where) {
  const testing::ScopedTrace trace{where.file_name(), static_cast<int>(where.line()), "transcript"};
  EXPECT_EQ(joined(expected), joined(actual));  // the framework shows two long texts as a difference of lines
}

}  // namespace quillfile
