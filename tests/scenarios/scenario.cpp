#include "tests/scenarios/scenario.h"

#include <algorithm>
#include <stdexcept>

namespace quillfile {

const std::vector<Text> settingsWritten{u"ButtonClicked", u"SaveAsMRUPath", u"OptionalRenameWanted"};

std::vector<std::pair<Text, Text>> settingsOf(const Scenario& scenario, const Text& saveFolder,
                                              const PathRules& rules) {
  const TextView program = rules.drives ? u"C:\\windows\\system32\\cmd.exe /c rem" : u"/bin/true";
  std::vector<std::pair<Text, Text>> settings{{u"SaveAllAttachments", u"1"}, {u"SavePath", saveFolder},
                                              {u"RemoveAttachment", u"1"},   {u"AddURL", u"1"},
                                              {u"PostProcess", u"1"},        {u"ImitateOutlookFolders", u"0"},
                                              {u"AutomaticRename", u"0"},    {u"EnableButton", u"0"}};
  for (const auto& [key, value] : scenario.settings)
    settings.emplace_back(key, replaceAll(value, u"{program}", program));
  return settings;
}

void play(const Scenario& scenario, Stage& stage) {
  if (scenario.set) scenario.set(stage);
  stage.start();
  if (scenario.play) {
    scenario.play(stage);
  } else {
    std::vector<Stage::Mail> all;
    for (Stage::Mail mail = 0; mail < stage.mails(); ++mail) all.push_back(mail);
    stage.select(all);
    stage.button();
  }
  stage.stop();
}

std::vector<Scenario> allScenarios() {
  std::vector<Scenario> all;
  for (auto scenarios : {savingScenarios(), optionScenarios(), arrivalScenarios(), answerScenarios()})
    std::move(scenarios.begin(), scenarios.end(), std::back_inserter(all));
  return all;
}

Scenario scenarioNamed(const std::string& name) {
  for (auto& scenario : allScenarios())
    if (scenario.name == name) return scenario;
  throw std::invalid_argument{"there is no scenario " + name};
}

}  // namespace quillfile
