// Every scenario on the core, under either system's path rules: what lies in the save folder afterwards, and
// the same transcript under both. The other hosts' transcripts are compared with these.
#include "tests/fakes/transcript.h"
#include "tests/scenarios/fake_stage.h"

namespace quillfile {
namespace {

class EveryScenario : public testing::TestWithParam<Scenario> {};

std::vector<Text> namesOf(const std::vector<Text>& files) {
  std::vector<Text> names;
  for (const auto& file : files) names.push_back(file.substr(0, file.find(u" | ")));
  return names;
}

TEST_P(EveryScenario, LeavesTheFilesThatItSaysUnderBothRules) {
  const auto windows = playOnCore(GetParam(), PathRules::windows(), u"C:\\Saved\\");
  const auto posix = playOnCore(GetParam(), PathRules::posix(), u"/saved/");
  expectTranscript(namesOf(posix.files), GetParam().files);
  EXPECT_EQ(windows.files.size(), posix.files.size());
  EXPECT_EQ(windows.settings.size(), posix.settings.size());
}

INSTANTIATE_TEST_SUITE_P(Core, EveryScenario, testing::ValuesIn(allScenarios()),
                         [](const auto& given) { return given.param.name; });

}  // namespace
}  // namespace quillfile
