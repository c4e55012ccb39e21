#include "tests/windows/scenarios/side_by_side.h"

#include <gtest/gtest.h>

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"

namespace quillfile::windows {

namespace {

const wchar_t* const folderName = L"quillfile-stage";

class OnCore final : public Driver {
 public:
  explicit OnCore(FakePlatform& world) : world_(world), module_(world.platform()) {
    module_.api().CEStartup(world.host);
    openExplorer();
  }
  void button() override { module_.api().CEButtonAction(1); }
  void hotkey() override { module_.api().CEHotkeyAction(); }
  void itemAdded(const Ref<Item>& item, DefaultFolder folder) override {
    module_.api().CEItemEvent(1, item, world_.folder(folder)->id(), world_.folder(folder)->store());
  }
  void openInspector(const Ref<Item>& item) override {
    module_.api().CEInspectorOpen(world_.openInspector(item));
  }
  void openExplorer() override {
    failing([&] { module_.api().CEExplorerOpen(world_.explorer); });
  }
  void message(TextView text) override {
    failing([&] { module_.api().CESendMessage(text); });
  }
  void closeExplorer() override { module_.api().CEExplorerClose(); }
  void stop() override { module_.api().CEShutdown(); }

 private:
  // These two hand their failure to the engine.
  template <class Body>
  void failing(Body&& body) {
    try {
      body();
    } catch (const Failure& failure) {
      world_.record.did(fill(u"failed: {}", failure.description));
    }
  }

  FakePlatform& world_;
  Module module_;
};

class OnComponent final : public Driver {
 public:
  explicit OnComponent(ComWorld& world) : world_(world) {
    world_.start();
    openExplorer();
  }
  void button() override { world_.button(); }
  void hotkey() override {
    LONG result = -1;
    check(world_.module->CEHotkeyAction(VARIANT{}, &result));
  }
  void itemAdded(const Ref<Item>& item, DefaultFolder folder) override { world_.itemAdded(item, folder); }
  void openInspector(const Ref<Item>& item) override { world_.openInspector(item); }
  void openExplorer() override {
    failing([&] { world_.openExplorer(); });
  }
  void message(TextView text) override {
    LONG result = -1;
    failing([&] { check(world_.module->CESendMessage(Bstr{text}.get(), &result)); });
  }
  void closeExplorer() override {
    LONG result = -1;
    check(world_.module->CEExplorerClose(nullptr, &result));
  }
  void stop() override { world_.stop(); }

 private:
  template <class Body>
  void failing(Body&& body) {
    try {
      body();
    } catch (const Failure& failure) {
      world_.fakes.record.did(fill(u"failed: {}", failure.description));
    }
  }

  ComWorld& world_;
};

// What one side alone does: its own registry, disk, pointer and programs.
bool ofOneSide(TextView line) {
  for (const TextView beginning : {u"setting ", u"FileTimes.", u"pointer ", u"pending events",
                                   u"attributes of ", u"delete ", u"start "}) {
    if (startsWith(line, beginning)) return true;
  }
  return false;
}

std::vector<Text> comparable(const std::vector<Text>& lines, const Text& installed,
                             const Text& installedInFakes) {
  std::vector<Text> result;
  for (const auto& line : lines) {
    if (ofOneSide(line)) continue;
    result.push_back(startsWith(line, u"save-as dialog") ? Text{u"save-as dialog"}
                                                         : replaceAll(line, installed, installedInFakes));
  }
  return result;
}

// The keys that the module writes itself.
constexpr TextView written[] = {u"ButtonClicked", u"SaveAsMRUPath", u"OptionalRenameWanted"};

void run(const Scenario& scenario, Stage& stage, Driver& driver) {
  if (scenario.play) {
    scenario.play(stage, driver);
  } else {
    driver.button();
  }
  driver.stop();
}

}  // namespace

std::vector<std::pair<Text, Text>> SideBySide::usual(const Text& folder) {
  return {{u"SaveAllAttachments", u"1"}, {u"SavePath", folder},
          {u"RemoveAttachment", u"1"},   {u"AddURL", u"1"},
          {u"PostProcess", u"1"},        {u"ImitateOutlookFolders", u"0"},
          {u"AutomaticRename", u"0"},    {u"EnableButton", u"0"}};
}

Outcome SideBySide::onCore(const Scenario& scenario, TextView failing) {
  const TemporaryFolder folder{folderName};
  const Text path = folder.path() + u"\\";
  FakePlatform world;
  world.files.addFolder(path);
  for (const auto& [key, value] : usual(path)) world.settings.set(key, value);
  for (const auto& [key, value] : scenario.settings) world.settings.set(key, value);
  world.user.answers = scenario.answers.boxes;
  world.dialogs.promptAnswers = scenario.answers.prompts;
  for (const auto& chosen : scenario.answers.paths) {
    world.dialogs.chosenPaths.push_back(chosen ? std::optional{path + *chosen} : std::nullopt);
  }
  Stage stage{world, path, [&](TextView name, std::int32_t attributes) {
                world.files.add(path + Text{name}).attributes = attributes;
              }};
  if (scenario.act) scenario.act(stage);
  if (!failing.empty()) world.record.failOn(failing);
  {
    OnCore driver{world};
    run(scenario, stage, driver);
  }
  Outcome outcome{comparable(world.record.lines(), u"?", u"?"), {}};
  for (const auto key : written) outcome.settings.emplace_back(key, world.settings.get(key));
  return outcome;
}

Outcome SideBySide::onComponent(const Scenario& scenario, TextView failing, bool withMailHelper) {
  const TemporaryFolder folder{folderName};
  const Text path = folder.path() + u"\\";
  FakePlatform fakes;
  fakes.files.addFolder(path);
  ComWorld world{fakes, withMailHelper};
  Desktop desktop{fakes.record};
  for (const auto& [key, value] : usual(path)) world.set(key, value);
  for (const auto& [key, value] : scenario.settings) world.set(key, value);
  desktop.answers = scenario.answers.boxes;
  desktop.promptAnswers = scenario.answers.prompts;
  for (const auto& chosen : scenario.answers.paths) {
    desktop.chosenPaths.push_back(chosen ? std::optional{path + *chosen} : std::nullopt);
  }
  Stage stage{fakes, path, [&](TextView name, std::int32_t attributes) {
                fakes.files.add(path + Text{name}).attributes = attributes;
                SetFileAttributesW(wide(folder.file(name)), static_cast<DWORD>(attributes));
              }};
  if (scenario.act) scenario.act(stage);
  world.create();
  const Text installed = ComWorld::libraryFolder();
  if (!failing.empty()) fakes.record.failOn(failing);
  {
    OnComponent driver{world};
    run(scenario, stage, driver);
  }
  Outcome outcome{comparable(fakes.record.lines(), installed, fakes.installationFolder()), {}};
  for (const auto key : written) outcome.settings.emplace_back(key, world.setting(key));
  return outcome;
}

}  // namespace quillfile::windows
