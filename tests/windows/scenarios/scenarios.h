// The scenarios: saving by hand, of new items and of sent ones; and items that are watched, answered and
// deleted.
#pragma once

#include "tests/windows/scenarios/side_by_side.h"

namespace quillfile::windows {

std::vector<Scenario> saveScenarios();  // save_scenarios.cpp
std::vector<Scenario> itemScenarios();  // item_scenarios.cpp

}  // namespace quillfile::windows
