#include "tests/fakes/failure_sweep.h"

namespace quillfile {
namespace {

constexpr std::int32_t mostCalls = 2000;  // a scenario that never gets to its end must not hang the tests

Text outcomeOf(FakePlatform& world, const std::function<Text(FakePlatform&)>& act) {
  try {
    return act(world);
  } catch (const Failure& failure) {
    return fill(u"throws {}", failure.description);
  }
}

}  // namespace

std::vector<Text> sweepFailures(const PathRules& rules, const std::function<void(FakePlatform&)>& arrange,
                                const std::function<Text(FakePlatform&)>& act) {
  std::vector<Text> runs;
  for (std::int32_t n = 1; n <= mostCalls; ++n) {
    FakePlatform world{rules};
    arrange(world);
    world.record.clear();
    world.record.failAt(n);
    const Text outcome = outcomeOf(world, act);
    if (world.record.failedCall().empty()) break;
    Text run = fill(u"{}: {}", world.record.failedCall(), outcome);
    for (const auto& report : world.record.lines(u"error ")) run += fill(u"; {}", report);
    runs.push_back(std::move(run));
  }
  return runs;
}

}  // namespace quillfile
