// Saving: the saving engine over a fake world that outlives it.
#pragma once

#include "core/saving/quillfile_routines.h"
#include "tests/fakes/fake_platform.h"

namespace quillfile {

class Saving {
 public:
  explicit Saving(FakePlatform& world)
      : settings_(world.settings, world.services, world.paths),
        fileTimes_(world.log, world.files, world.dates, world.paths),
        fileWaiting_(world.log, world.files, world.clock, world.user),
        savePathForm_(world.log, settings_, world.dialogs, world.paths),
        routines(portsOf(world), state) {}

 private:
  SavingPorts portsOf(FakePlatform& world) {
    return {.services = world.services,
            .utilities = world.utilities,
            .mailHelper = world.mailHelper,
            .settings = settings_,
            .files = world.files,
            .dates = world.dates,
            .letters = world.letters,
            .programs = world.programs,
            .user = world.user,
            .fileTimes = fileTimes_,
            .fileWaiting = fileWaiting_,
            .savePathForm = savePathForm_,
            .trace = Trace{world.log},
            .paths = world.paths,
            .installationFolder = world.installationFolder()};
  }

  Settings settings_;
  ManipulateFileTime fileTimes_;
  Files fileWaiting_;
  frmSavePath savePathForm_;

 public:
  SavingState state;
  QuillfileRoutines routines;
};

}  // namespace quillfile
