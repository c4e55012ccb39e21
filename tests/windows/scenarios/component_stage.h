// ComponentStage: the stage of the registered component: the fakes of the core's tests behind real automation
// objects, the real registry, disk and desktop.
#pragma once

#include "tests/scenarios/fake_stage.h"
#include "tests/windows/fakes/com_world.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {

class ComponentStage final : public FakeStage {
 public:
  ComponentStage(ComWorld& com, Text folder) : FakeStage(com.fakes, std::move(folder)), com_(com) {}

  void file(TextView name, bool readOnly) override;
  void start() override;
  void stop() override;
  void openExplorer() override;
  void closeExplorer() override;
  void message(TextView text) override;
  void arrived(Mail mail, DefaultFolder folder) override;
  void button() override;
  void hotkey() override;
  void open(Mail mail) override;

 private:
  ComWorld& com_;
};

// A scenario on the component, and the same on the core over the fakes alone, in one folder. Only what both
// sides have in common is in the outcomes.
struct BothOutcomes {
  Outcome component, core;
};
BothOutcomes playOnBoth(const Scenario& scenario, const Failing& failing = {}, bool withMailHelper = true);

}  // namespace quillfile::windows
