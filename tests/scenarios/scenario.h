// Scenario: something that happens between user, mail client, engine and module, told once, and played on
// every host's stage: on the core over its fakes, on the registered Windows component, on the mailbox host.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/platform/user_interface.h"
#include "tests/scenarios/stage.h"

namespace quillfile {

// What the user answers, in turn; without an answer left, the careful one.
struct Answers {
  std::deque<Answer> boxes = {};
  std::deque<std::int32_t> prompts = {};           // 1 No, 2 No to All, 3 Yes, 4 Yes to All
  std::deque<std::optional<Text>> fileNames = {};  // in the Save-As form, in the save folder; none: Cancel
};

struct Scenario {
  std::string name;
  std::vector<std::pair<Text, Text>> settings = {};  // beside those of usualSettings()
  std::function<void(Stage&)> set = {};              // what is there before the module is started
  std::function<void(Stage&)> play = {};             // empty: every item is selected and the button pressed
  Answers answers = {};
  std::vector<Text> files = {};  // paths below the save folder that must be there in the end, by letter
};

inline void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }

// A manual run that removes and links, into the save folder; and the scenario's own, "{program}" in them
// being a program of that system's that does nothing.
std::vector<std::pair<Text, Text>> settingsOf(const Scenario& scenario, const Text& saveFolder,
                                              const PathRules& rules);
// The settings that the module writes itself.
extern const std::vector<Text> settingsWritten;

// From the scenery to the module's stop.
void play(const Scenario& scenario, Stage& stage);

std::vector<Scenario> savingScenarios();   // the button and the hotkey over items of every kind
std::vector<Scenario> optionScenarios();   // the same with every setting
std::vector<Scenario> arrivalScenarios();  // automatic processing, sent and deleted items
std::vector<Scenario> answerScenarios();   // items that are watched, answered, written, sent and closed
std::vector<Scenario> allScenarios();
// The one of that name among all.
Scenario scenarioNamed(const std::string& name);

}  // namespace quillfile
