#include "hosts/mailbox/engine/session.h"

#include <filesystem>

#include "core/links/link_commands.h"
#include "core/links/quillfile_extended.h"
#include "core/module/module.h"
#include "core/module/procedure.h"
#include "core/platform/platform.h"
#include "core/settings/settings.h"
#include "hosts/mailbox/engine/bad_settings.h"
#include "hosts/mailbox/engine/handled_notes.h"
#include "hosts/mailbox/engine/host_user.h"
#include "hosts/mailbox/engine/item_order.h"
#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/engine/mailbox_engine.h"
#include "hosts/mailbox/engine/seen.h"
#include "hosts/mailbox/services/clock.h"
#include "hosts/mailbox/services/dates.h"
#include "hosts/mailbox/services/file_system.h"
#include "hosts/mailbox/services/file_times.h"
#include "hosts/mailbox/services/leftovers.h"
#include "hosts/mailbox/services/letters.h"
#include "hosts/mailbox/services/programs.h"
#include "hosts/mailbox/services/run_flags.h"

namespace quillfile::mailbox {
namespace {

// A line end in a path would break its link in a note.
constexpr PathRules hostPaths() {
  auto rules = PathRules::posix();
  rules.invalidInPath = u"#\\:*?<>|\"\r\n";
  return rules;
}
constexpr PathRules paths = hostPaths();

// The folder that holds Paperclip.ico: the program's own, or share/quillfile beside an installed program's
// bin.
std::string installationFolder() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
  if (std::filesystem::exists(program / "Paperclip.ico", error)) return program.string();
  return (program.parent_path() / "share" / "quillfile").string();
}

}  // namespace

// In the order in which they need each other; the module goes first.
struct Session::Parts {
  explicit Parts(const SessionSetup& setup)
      : settings(setup.settings),
        flags(settings),
        trace(setup.trace),
        store(MailStore::open(setup.mail)),
        progress(terminal, setup.progress),
        handled(seenFile(stateFolder(), store->directory())),
        report(withProgress(setup.listeners)),
        batch(report),
        client(MailClient::create({.store = *store, .batch = batch, .reports = report})),
        files(batch.files()),
        linkedFiles(batch.files()),
        fileTimes(batch.files()),
        dates(DateWords::of("")),
        programs([this] {
          endOfEvent();
          batch.commit();
        }),
        prompts(terminal, setup.answer,
                [this](const std::string& path) { return engine.fileExists(fromUtf8(path)); }),
        user(prompts, progress, report),
        engine({.client = client,
                .store = *store,
                .batch = batch,
                .settings = settings,
                .files = files,
                .letters = letters,
                .trace = trace,
                .report = report}),
        module({.services = engine,
                .utilities = engine,
                .log = trace,
                .mailHelper = client->helper(),
                .settings = flags,
                .files = files,
                .linkedFiles = linkedFiles,
                .fileTimes = fileTimes,
                .dates = dates,
                .letters = letters,
                .clock = clock,
                .programs = programs,
                .user = user,
                .dialogs = user,
                .paths = paths,
                .installationFolder = fromUtf8(installationFolder())}) {}

  void endOfEvent() { engine.endOfEvent(); }
  RunReport::Listeners withProgress(RunReport::Listeners listeners) {
    listeners.error = [this, told = std::move(listeners.error)](const ErrorEntry& error) {
      progress.pause();
      if (told) told(error);
    };
    listeners.nextItem = [this] { progress.nextItem(); };
    listeners.saved = [this, told = std::move(listeners.saved)](const SavedEntry& file) {
      if (tellsWatch) handled.add(file.item);
      progress.file(file.fileName, file.size);
      if (told) told(file);
    };
    return listeners;
  }
  LinkPorts linkPorts(EngineLog& log) {
    return {.services = engine, .log = log, .letters = letters, .linkedFiles = linkedFiles, .paths = paths};
  }
  // The engine is a part of the session; the module holds it no longer than the session lasts.
  Ref<ModuleHost> engineRef() { return {std::shared_ptr<void>(), &engine}; }

  SettingsFile settings;
  RunFlags flags;
  TraceFile trace;
  std::shared_ptr<MailStore> store;
  StandardTerminal terminal;
  Progress progress;
  HandledNotes handled;
  bool tellsWatch = false;
  RunReport report;
  Batch batch;
  std::shared_ptr<MailClient> client;
  HostFileSystem files;
  HostLinkedFiles linkedFiles;
  HostFileTimes fileTimes;
  LocaleDates dates;
  UnicodeLetters letters;
  WallClock clock;
  HostPrograms programs;
  Prompts prompts;
  HostUser user;
  MailboxEngine engine;
  Module module;
};

Session::Session(const SessionSetup& setup) : parts_(std::make_unique<Parts>(setup)) {}
Session::~Session() = default;

MailStore& Session::store() { return *parts_->store; }
MailClient& Session::client() { return *parts_->client; }
SettingsFile& Session::settings() { return parts_->settings; }
RunReport& Session::report() { return parts_->report; }
Terminal& Session::terminal() { return parts_->terminal; }
Module& Session::module() { return parts_->module; }

bool Session::isFirstRun() { return !parts_->settings.read(engineName, moduleName, u"SaveAllAttachments"); }

std::string Session::saveFolder() {
  const auto path = parts_->settings.read(engineName, moduleName, u"SavePath");
  return path ? expandPath(toUtf8(*path)) : documentsFolder() + "/Saved Attachments/";
}

void Session::start() {
  parts_->module.api().CEStartup(parts_->engineRef());
  parts_->client->explorer()->showFolder(parts_->client->folder(parts_->store->need(FolderRole::inbox)));
  openExplorer();
  for (const Text& sentence : badSettings(parts_->settings)) reportError(sentence, u"Quillfile.Settings");
}

// The module says of a setting that it cannot use only that it cannot.
void Session::openExplorer() {
  try {
    parts_->module.api().CEExplorerOpen(parts_->client->explorer());
  } catch (const Failure& failure) {
    if (failure.description != Failure::typeMismatch().description) throw;
    if (const auto bad = badSettings(parts_->settings); !bad.empty())
      throw UnusableSetting{{failure.number, bad.front()}};
    throw;
  }
}

void Session::cleanUp() { clearLeftovers(*parts_->store); }

Items Session::itemsOf(const std::shared_ptr<MailFolder>& folder) {
  Items items;
  for (const std::string& unique : itemsInOrder(*folder))
    items.push_back(parts_->client->item(folder, unique));
  return items;
}

void Session::select(const std::shared_ptr<MailFolder>& folder, Items items) {
  parts_->user.expectItems(static_cast<std::int64_t>(items.size()));
  parts_->client->explorer()->showFolder(parts_->client->folder(folder));
  parts_->client->explorer()->select(std::move(items));
}

void Session::pressButton() {
  parts_->module.api().CEButtonAction(1);
  parts_->report.count = parts_->module.counter().value;
  endOfEvent();
}

std::shared_ptr<MailboxInspector> Session::openWindow(const std::shared_ptr<MailboxItem>& item) {
  auto window = parts_->client->openInspector(item);
  parts_->module.api().CEInspectorOpen(window);
  return window;
}

std::vector<std::string> Session::linksIn(MailboxItem& item) {
  TraceFile silent{""};
  QuillfileExtended reader{parts_->linkPorts(silent)};
  const Text format = item.bodyFormat();
  MailboxSafeItem safe{item.shared_from_this()};
  const auto body = safe.workingCopy(format == u"HTML" ? BodyKind::html : BodyKind::plain);
  std::vector<std::string> links;
  Text path;
  for (Position position = 1; reader.CheckForLink(body->text(), position, format, path, true) && position > 0;
       path.clear()) {
    if (!path.empty()) links.push_back(toUtf8(path));
  }
  return links;
}

void Session::restore(const std::shared_ptr<MailboxItem>& item) {
  std::vector<std::string> gone;
  const auto links = linksIn(*item);
  QuillfileExtended reader{parts_->linkPorts(parts_->trace)};
  for (const std::string& path : links) {
    if (!reader.FileExists(nullptr, reader.linkedPath(nullptr, fromUtf8(path)))) gone.push_back(path);
  }
  for (const std::string& path : gone) {
    parts_->engine.reportError(
        fill(u"{} is gone, so its link was left in \"{}\"", fromUtf8(path), item->subject()), 0,
        u"Quillfile.Restore");
  }
  if (gone.size() == links.size()) return;
  const Ref<Application> application = parts_->client;
  LinkCommands commands{parts_->linkPorts(parts_->trace), parts_->client->helper(), application};
  if (commands.ReplaceLinksWithAttachments(item)) item->finishRestore();
  // The procedure erases every note; those of files that are gone are the only trace of them.
  for (const std::string& path : gone)
    parts_->module.saving().UpdateEmailBody(item, paths.linkTo(fromUtf8(path)));
  endOfEvent();
}

void Session::deleteItem(const std::shared_ptr<MailboxItem>& item) {
  const auto deleted = parts_->store->need(FolderRole::deleted);
  const bool arrives = item->folder()->path() != deleted->path();
  item->remove();
  endOfEvent();
  parts_->batch.commit();
  const auto moved = arrives ? parts_->client->item(fromUtf8(deleted->itemId(item->unique()))) : nullptr;
  if (!moved) return;  // it went for good, or could not be moved, which has been reported
  parts_->module.api().CEItemEvent(1, moved, fromUtf8(deleted->entryId()), fromUtf8(deleted->storeId()));
  endOfEvent();
}

std::set<std::string> Session::watchedFolders(bool anew) {
  if (anew) {
    parts_->settings.lookAgain();
    parts_->engine.forgetWatchedFolders();
    openExplorer();
  }
  return parts_->engine.watchedFolders();
}

void Session::arrived(const std::shared_ptr<MailFolder>& folder, const std::string& unique) {
  parts_->settings.lookAgain();
  const auto item = parts_->client->item(folder, unique);
  parts_->module.api().CEItemEvent(1, item, fromUtf8(folder->entryId()), fromUtf8(folder->storeId()));
  endOfEvent();
  parts_->batch.commit();
}

void Session::tellWatch() { parts_->tellsWatch = true; }

std::vector<std::string> Session::toldByOthers() { return parts_->handled.take(); }

void Session::reportError(TextView message, TextView source) {
  parts_->engine.reportError(message, 0, source);
}

void Session::endOfEvent() {
  parts_->endOfEvent();
  guarded([&](Step&) { return parts_->flags.settle(), true; },
          [&](const Failure& failure, const Step&) {
            parts_->engine.reportError(failure.description, 0, u"Quillfile.Settings");
            return false;
          });
}

void Session::finish() {
  endOfEvent();
  parts_->batch.commit();
  parts_->module.api().CEShutdown();
  parts_->progress.stop();
}

}  // namespace quillfile::mailbox
