// What the tests of CQuillfile share: the module over recording rooms.
#pragma once

#include "core/module/quillfile.h"
#include "tests/core/commands/commands_world.h"

namespace quillfile {

struct ModuleUnderTest : CommandsUnderTest {
  explicit ModuleUnderTest(FakePlatform& fake)
      : CommandsUnderTest(fake), tracking(fake.record), deletedItems(fake.record) {
    state = {};  // nothing is held before CEStartup
    typicalSettings(world);
  }

  // As the engine does, with an empty transcript afterwards.
  void start() {
    api.CEStartup(world.host);
    world.record.clear();
  }
  void open() {
    start();
    api.CEExplorerOpen(world.explorer);
    world.record.clear();
  }

  FakeTracking tracking;
  FakeDeletedItems deletedItems;
  CQuillfile api{{.services = world.services,
                  .mailHelper = world.mailHelper,
                  .settings = settings,
                  .trace = Trace{world.log},
                  .paths = world.paths,
                  .state = state,
                  .rooms = {.commands = commands, .tracking = tracking, .deletedItems = deletedItems}}};
};

}  // namespace quillfile
