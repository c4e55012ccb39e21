#include "core/module/module.h"

#include "core/commands/deleted_items.h"
#include "core/commands/dispatch.h"
#include "core/files/files.h"
#include "core/files/frm_save_path.h"
#include "core/files/manipulate_file_time.h"
#include "core/saving/quillfile_routines.h"
#include "core/settings/settings.h"

namespace quillfile {
// In the order in which they need each other.
struct Module::Rooms {
  explicit Rooms(const Platform& platform)
      : settings(platform.settings, platform.services, platform.paths),
        fileTimes(platform.log, platform.fileTimes, platform.dates, platform.paths),
        files(platform.log, platform.fileTimes, platform.clock, platform.user),
        savePathForm(platform.log, settings, platform.dialogs, platform.paths),
        saving({.services = platform.services,
                .utilities = platform.utilities,
                .mailHelper = platform.mailHelper,
                .settings = settings,
                .files = platform.files,
                .dates = platform.dates,
                .letters = platform.letters,
                .programs = platform.programs,
                .user = platform.user,
                .fileTimes = fileTimes,
                .fileWaiting = files,
                .savePathForm = savePathForm,
                .trace = Trace{platform.log},
                .paths = platform.paths,
                .installationFolder = platform.installationFolder},
               savingState),
        commands({.module = state,
                  .settings = settings,
                  .saving = saving,
                  .counter = savingState.counter,
                  .services = platform.services,
                  .utilities = platform.utilities,
                  .user = platform.user,
                  .letters = platform.letters,
                  .trace = Trace{platform.log},
                  .paths = platform.paths}),
        linkPorts{.services = platform.services,
                  .log = platform.log,
                  .letters = platform.letters,
                  .linkedFiles = platform.linkedFiles,
                  .paths = platform.paths},
        linkCommands(linkPorts, platform.mailHelper, state.outlookApp),
        tracking(platform.services, platform.log, state, dispatch),
        responses(platform.services, state, tracking, linkCommands),
        dispatch({.module = state,
                  .settings = settings,
                  .services = platform.services,
                  .trace = Trace{platform.log}},
                 responses),
        deletedItems({.module = state,
                      .settings = settings,
                      .services = platform.services,
                      .utilities = platform.utilities,
                      .mailHelper = platform.mailHelper,
                      .dialogs = platform.dialogs,
                      .trace = Trace{platform.log}},
                     linkPorts),
        api({.services = platform.services,
             .mailHelper = platform.mailHelper,
             .settings = settings,
             .trace = Trace{platform.log},
             .paths = platform.paths,
             .state = state,
             .rooms = {.commands = commands, .tracking = tracking, .deletedItems = deletedItems}}) {}

  ModuleState state;
  SavingState savingState;
  Settings settings;
  ManipulateFileTime fileTimes;
  Files files;
  frmSavePath savePathForm;
  QuillfileRoutines saving;
  Commands commands;
  LinkPorts linkPorts;
  LinkCommands linkCommands;
  ItemTracking tracking;
  Responses responses;
  Dispatch dispatch;  // tracking hands the user's answers to it
  DeletedItemsFolder deletedItems;
  CQuillfile api;
};

Module::Module(const Platform& platform) : rooms_(std::make_unique<Rooms>(platform)) {}
Module::~Module() = default;

CQuillfile& Module::api() { return rooms_->api; }
ItemLists& Module::lists() { return rooms_->tracking.lists(); }
QuillfileRoutines& Module::saving() { return rooms_->saving; }
Responses& Module::responses() { return rooms_->responses; }
const RunCounter& Module::counter() const { return rooms_->savingState.counter; }

}  // namespace quillfile
