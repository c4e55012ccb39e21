#include "tests/mailbox/scenarios/mailbox_stage.h"

#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "core/module/module.h"

namespace quillfile::mailbox {

namespace {

FolderRole roleOf(DefaultFolder folder) {
  switch (folder) {
    case DefaultFolder::deleted_items:
      return FolderRole::deleted;
    case DefaultFolder::outbox:
      return FolderRole::outbox;
    case DefaultFolder::sent_items:
      return FolderRole::sent;
    case DefaultFolder::drafts:
      return FolderRole::drafts;
    case DefaultFolder::inbox:
      break;
  }
  return FolderRole::inbox;
}

// This host has one answer for every question.
PresetAnswer presetOf(const Answers& answers) {
  const auto same = [](const auto& all) {
    return std::all_of(all.begin(), all.end(), [&](const auto& one) { return one == all.front(); });
  };
  const bool renames = !answers.boxes.empty() && answers.boxes.front() == Answer::yes;
  if (!same(answers.prompts) || !answers.fileNames.empty() || renames)
    throw Unplayable{"answers that differ"};
  constexpr PresetAnswer ofPrompt[] = {PresetAnswer::cancel, PresetAnswer::no, PresetAnswer::no_to_all,
                                       PresetAnswer::yes, PresetAnswer::yes_to_all};
  if (!answers.prompts.empty()) return ofPrompt[static_cast<std::size_t>(answers.prompts.front())];
  if (answers.boxes.empty() || answers.boxes.front() == Answer::cancel) return PresetAnswer::cancel;
  return PresetAnswer::no;
}

bool isReadOnly(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && (status.st_mode & 0222) == 0;
}

// A line of the trace file as a line of the transcript.
Text transcriptLine(const std::string& line) {
  std::istringstream fields{line};
  std::string time, module, procedure, message;
  std::getline(fields, time, '\t'), std::getline(fields, module, '\t'), std::getline(fields, procedure, '\t');
  std::getline(fields, message);
  if (module.starts_with("ERROR "))
    return fromUtf8("error " + module.substr(6) + " " + procedure + ": " + message);
  return fromUtf8("trace " + procedure + ": " + message);
}

}  // namespace

MailboxStage::MailboxStage(const TemporaryFolder& root, const Scenario& scenario)
    : Stage(fromUtf8(root / "saved/"), PathRules::posix()), root_(root) {
  setup_.mail = root / "mail";
  setup_.settings = root / "settings.ini";
  setup_.trace = root / "trace";
  setup_.answer = presetOf(scenario.answers);
  store_ = MailStore::create(setup_.mail);
  std::filesystem::create_directories(root / "saved");
  SettingsFile settings{setup_.settings};
  for (const auto& [key, value] : settingsOf(scenario, saveFolder, paths)) {
    if (value == u"soon") throw Unplayable{"a report of the module's about settings: it has its own"};
    if (startsWith(key, u"FolderEntryId")) throw Unplayable{"the fakes' folders"};
    settings.write(u"Corvane", u"Quillfile", key, value);
  }
}

MailboxStage::~MailboxStage() = default;

std::shared_ptr<MailFolder> MailboxStage::folderOf(DefaultFolder folder) {
  return (session_ ? session_->store() : *store_).need(roleOf(folder));
}

Stage::Mail MailboxStage::add(const ItemData& item, const std::vector<AttachmentData>& attachments,
                              DefaultFolder folder) {
  const std::string message = messageOf(item, attachments);
  Placed placed{.folder = folderOf(folder), .unique = {}, .item = {}};
  placed.unique = placed.folder->create([&](const Sink& sink) { sink(message); }, "");
  placed_.push_back(placed);
  return mails_++;
}

void MailboxStage::file(TextView name, bool readOnly) {
  const auto path = toUtf8(saveFolder + Text{name});
  writeFile(path, "old");
  if (readOnly) ::chmod(path.c_str(), 0444);
}

const std::shared_ptr<MailboxItem>& MailboxStage::item(Mail mail) {
  auto& placed = placed_.at(mail);
  if (!placed.item) placed.item = session_->client().item(placed.folder, placed.unique);
  return placed.item;
}

void MailboxStage::start() {
  session_ = std::make_unique<Session>(setup_);
  for (auto& placed : placed_) placed.folder = session_->store().folder(placed.folder->path());
  session_->start();
}

void MailboxStage::stop() {
  session_->finish();
  readTrace();
  if (const auto& message = session_->report().message)
    outcome_.lines.push_back(fromUtf8("message box Quillfile: " + *message));
  std::set<std::string> folders;
  for (const auto& placed : placed_) folders.insert(placed.folder->path());
  for (const auto& path : folders) {
    for (const auto& found : session_->itemsOf(session_->store().folder(path))) {
      std::vector<Text> names;
      const auto attachments = found->attachments();
      for (std::int32_t i = 1; i <= attachments->count(); ++i)
        names.push_back(attachments->item(i)->fileName());
      outcome_.items.push_back(described(found->subject(), found->unRead(), names));
    }
  }
  std::sort(outcome_.items.begin(), outcome_.items.end());
  session_.reset();
}

void MailboxStage::openExplorer() { session_->module().api().CEExplorerOpen(session_->client().explorer()); }
void MailboxStage::closeExplorer() { session_->module().api().CEExplorerClose(); }
void MailboxStage::message(TextView text) { session_->module().api().CESendMessage(text); }

void MailboxStage::arrived(Mail mail, DefaultFolder folder) {
  const auto held = item(mail);
  session_->arrived(folderOf(folder), held->unique());
}

void MailboxStage::show(DefaultFolder folder) {
  shown_ = folder;
  session_->client().explorer()->showFolder(session_->client().folder(folderOf(folder)));
}

void MailboxStage::select(const std::vector<Mail>& mails) {
  Items items;
  for (const auto mail : mails) items.push_back(item(mail));
  session_->select(folderOf(shown_), std::move(items));
}

void MailboxStage::button() { session_->pressButton(); }

void MailboxStage::open(Mail mail) { windows_.push_back(session_->openWindow(item(mail))); }

void MailboxStage::does(Mail mail, Doing doing) {
  constexpr Response responses[] = {Response::forward, Response::reply, Response::reply_all};
  bool cancelled = false;
  if (doing == Doing::send || doing == Doing::write) throw Unplayable{"writing and sending"};
  if (doing == Doing::close)
    cancelled = !item(mail)->userCloses();
  else
    cancelled = item(mail)->userResponds(responses[static_cast<std::size_t>(doing)]) == nullptr;
  session_->endOfEvent();
  readTrace();
  outcome_.lines.push_back(lineOf(doing, cancelled));
}

void MailboxStage::readTrace() {
  std::istringstream trace{readFile(setup_.trace).substr(traceRead_)};
  for (std::string line; std::getline(trace, line); traceRead_ += line.size() + 1)
    outcome_.lines.push_back(transcriptLine(line));
}

Outcome MailboxStage::outcome() const {
  Outcome outcome = outcome_;
  for (const auto& entry : std::filesystem::recursive_directory_iterator{root_ / "saved"}) {
    if (!entry.is_regular_file()) continue;
    const auto path = entry.path().string();
    outcome.files.push_back(
        described(fromUtf8(path).substr(saveFolder.size()), isReadOnly(path), readFile(path)));
  }
  std::sort(outcome.files.begin(), outcome.files.end());
  SettingsFile settings{setup_.settings};
  for (const auto& key : settingsWritten)
    outcome.settings.emplace_back(key, settings.read(u"Corvane", u"Quillfile", key));
  return outcome;
}

}  // namespace quillfile::mailbox
