#include "core/module/module.h"

#include "core/files/files.h"
#include "core/files/frm_save_path.h"
#include "core/files/manipulate_file_time.h"
#include "core/saving/quillfile_routines.h"
#include "core/settings/settings.h"

namespace quillfile {
namespace {

class Untracked final : public Tracking, public DeletedItems {
 public:
  void setExplorer(const Ref<Explorer>&) override {}
  void MapUnderylingItem(const Ref<Inspector>&) override {}  // sic
  void createLists() override {}
  void releaseLists() override {}
  void ClearExplorerItems() override {}
  void ReleaseAllItemSlots() override {}
  void resetPrompt() override {}
  void HandleDeletedItemsFolderAdd(const Ref<Item>&) override {}
};

}  // namespace

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
        api({.services = platform.services,
             .mailHelper = platform.mailHelper,
             .settings = settings,
             .trace = Trace{platform.log},
             .paths = platform.paths,
             .state = state,
             .rooms = {.commands = commands, .tracking = untracked, .deletedItems = untracked}}) {}

  ModuleState state;
  SavingState savingState;
  Settings settings;
  ManipulateFileTime fileTimes;
  Files files;
  frmSavePath savePathForm;
  QuillfileRoutines saving;
  Commands commands;
  Untracked untracked;
  CQuillfile api;
};

Module::Module(const Platform& platform) : rooms_(std::make_unique<Rooms>(platform)) {}
Module::~Module() = default;

CQuillfile& Module::api() { return rooms_->api; }
const RunCounter& Module::counter() const { return rooms_->savingState.counter; }

}  // namespace quillfile
