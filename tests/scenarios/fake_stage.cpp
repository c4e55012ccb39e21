#include "tests/scenarios/fake_stage.h"

#include <algorithm>

namespace quillfile {

namespace {

constexpr std::int32_t readOnlyBit = 1, archiveBit = 32;

bool act(FakeItem& item, Doing doing) {
  switch (doing) {
    case Doing::forward:
      return item.raiseRespond(Response::forward);
    case Doing::reply:
      return item.raiseRespond(Response::reply);
    case Doing::reply_all:
      return item.raiseRespond(Response::reply_all);
    case Doing::write:
      return item.raiseWrite();
    case Doing::send:
      return item.raiseSend();
    case Doing::close:
      return item.raiseClose();
  }
  return false;
}

}  // namespace

FakeStage::FakeStage(FakePlatform& fakes, Text folder) : Stage(std::move(folder), fakes.paths), world(fakes) {
  world.files.addFolder(saveFolder);
}

Stage::Mail FakeStage::add(const ItemData& data, const std::vector<AttachmentData>& attachments,
                           DefaultFolder folder) {
  const auto item = world.addItem(data, folder);
  for (auto attachment : attachments) {
    attachment.size = static_cast<std::int64_t>(attachment.content.size());
    item->attach(attachment);
  }
  items_.push_back(item);
  return mails_++;
}

void FakeStage::file(TextView name, bool readOnly) {
  world.files.add(saveFolder + Text{name}, "old").attributes = archiveBit + (readOnly ? readOnlyBit : 0);
}

void FakeStage::select(const std::vector<Mail>& mails) {
  std::vector<Ref<Item>> chosen;
  for (const auto mail : mails) chosen.push_back(item(mail));
  world.explorer->select(std::move(chosen));
}

void FakeStage::selectNothing() {
  world.explorer->selected.reset();
  world.explorer->listeners.raise([](ExplorerEvents& listener) { listener.onSelectionChange(); });
}

void FakeStage::does(Mail mail, Doing doing) {
  const auto item = items_.at(mail);
  world.record.did(lineOf(doing, act(*item, doing)));
}

std::vector<Text> FakeStage::itemsNow() const {
  std::vector<Text> found;
  for (const auto& item : items_) {
    if (item->removed) continue;
    std::vector<Text> names;
    for (const auto& attachment : item->attached) names.push_back(attachment->fileName);
    found.push_back(described(item->data.subject, item->data.unRead, names));
  }
  std::sort(found.begin(), found.end());
  return found;
}

void CoreStage::start() {
  module_ = std::make_unique<Module>(world.platform());
  calling(u"CEStartup", [&] { return module_->api().CEStartup(world.host); });
  openExplorer();
}

void CoreStage::stop() {
  calling(u"CEShutdown", [&] { return module_->api().CEShutdown(); });
}

void CoreStage::openExplorer() {
  calling(u"CEExplorerOpen", [&] { return module_->api().CEExplorerOpen(world.explorer); });
}

void CoreStage::closeExplorer() {
  calling(u"CEExplorerClose", [&] { return module_->api().CEExplorerClose(); });
}

void CoreStage::message(TextView text) {
  calling(u"CESendMessage", [&] { return module_->api().CESendMessage(text); });
}

void CoreStage::arrived(Mail mail, DefaultFolder folder) {
  calling(u"CEItemEvent", [&] {
    return module_->api().CEItemEvent(1, item(mail), world.folder(folder)->id(),
                                      world.folder(folder)->store());
  });
}

void CoreStage::button() {
  calling(u"CEButtonAction", [&] { return module_->api().CEButtonAction(1); });
}

void CoreStage::hotkey() {
  calling(u"CEHotkeyAction", [&] { return module_->api().CEHotkeyAction(); });
}

void CoreStage::open(Mail mail) {
  calling(u"CEInspectorOpen",
          [&] { return module_->api().CEInspectorOpen(world.openInspector(item(mail))); });
}

void fail(FakePlatform& world, const Failing& failing) {
  if (failing.call.empty()) return;
  if (failing.nth == 0)
    world.record.failOn(failing.call);
  else
    world.record.failOnce(failing.call, failing.nth);
}

std::vector<Text> filesBelow(FakeFiles& files, const Text& folder) {
  std::vector<Text> found;
  for (const auto& [path, file] : files.below(folder))
    found.push_back(
        described(replaceAll(path, u"\\", u"/"), (file.attributes & readOnlyBit) != 0, file.content));
  return found;
}

Outcome playOnCore(const Scenario& scenario, const PathRules& rules, const Text& saveFolder,
                   const Failing& failing) {
  FakePlatform world{rules};
  for (const auto& [key, value] : settingsOf(scenario, saveFolder, rules)) world.settings.set(key, value);
  world.user.answers = scenario.answers.boxes;
  world.dialogs.promptAnswers = scenario.answers.prompts;
  for (const auto& name : scenario.answers.fileNames)
    world.dialogs.chosenPaths.push_back(name ? std::optional{saveFolder + *name} : std::nullopt);
  Outcome outcome;
  {
    CoreStage stage{world, saveFolder};
    Scenario later = scenario;
    later.set = [&](Stage& given) {
      if (scenario.set) scenario.set(given);
      fail(world, failing);
    };
    play(later, stage);
    outcome.items = stage.itemsNow();
  }
  outcome.lines = world.record.lines();
  outcome.calls = world.record.calls();
  outcome.files = filesBelow(world.files, saveFolder);
  for (const auto& key : settingsWritten) outcome.settings.emplace_back(key, world.settings.get(key));
  return outcome;
}

}  // namespace quillfile
