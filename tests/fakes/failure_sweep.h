// The failure sweep: a scenario is run once for every call that can fail, with that call failing.
#pragma once

#include <functional>
#include <vector>

#include "tests/fakes/fake_platform.h"

namespace quillfile {

// Arranges a fresh world, then runs `act` in it with its first call failing, its second, and so on until no
// call is left to fail. One line for each failure, for expectTranscript:
//   "Item.save: <what act returned>; error 0 Quillfile.X: <report>; ..."
// A Failure that leaves `act` counts as the outcome "throws <description>".
std::vector<Text> sweepFailures(const PathRules& rules, const std::function<void(FakePlatform&)>& arrange,
                                const std::function<Text(FakePlatform&)>& act);

}  // namespace quillfile
