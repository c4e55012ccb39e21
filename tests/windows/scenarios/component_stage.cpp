#include "tests/windows/scenarios/component_stage.h"

#include <algorithm>

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"
#include "tests/windows/fakes/desktop.h"

namespace quillfile::windows {

namespace {

const wchar_t* const folderName = L"quillfile-stage";

// What one side alone does: its own registry, disk, pointer and programs.
bool ofOneSide(TextView line) {
  for (const TextView beginning : {u"setting ", u"FileTimes.", u"pointer ", u"pending events",
                                   u"attributes of ", u"delete ", u"start "}) {
    if (startsWith(line, beginning)) return true;
  }
  return false;
}

// The Save-As dialog's request cannot be read off the window.
std::vector<Text> inCommon(const std::vector<Text>& lines, const Text& installed,
                           const Text& installedInFakes) {
  std::vector<Text> result;
  for (const auto& line : lines) {
    if (ofOneSide(line)) continue;
    result.push_back(startsWith(line, u"save-as dialog") ? Text{u"save-as dialog"}
                                                         : replaceAll(line, installed, installedInFakes));
  }
  return result;
}

std::string contentOf(const Text& path) {
  const HANDLE file = CreateFileW(wide(path), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  std::string content(4096, '\0');
  DWORD read = 0;
  ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
  CloseHandle(file);
  content.resize(read);
  return content;
}

// The disk's files, in the words of filesBelow(): names in lower case, by letter.
void listFiles(const Text& folder, const Text& beginning, std::vector<Text>& files) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(wide(folder + u"*"), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const Text name{view(found.cFileName)};
    if (name == u"." || name == u"..") continue;
    const Text path = folder + name;
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      listFiles(path + u"\\", fill(u"{}{}/", beginning, name), files);
    } else {
      FakeLetters letters;
      files.push_back(described(letters.lower(beginning + name),
                                (found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0, contentOf(path)));
    }
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

Outcome playOnComponent(const Scenario& scenario, const Failing& failing, bool withMailHelper) {
  const TemporaryFolder folder{folderName};
  const Text path = folder.path() + u"\\";
  FakePlatform fakes;
  ComWorld world{fakes, withMailHelper};
  for (const auto& [key, value] : settingsOf(scenario, path, fakes.paths)) world.set(key, value);
  Desktop desktop{fakes.record, path, scenario.answers};
  world.create();
  const Text installed = ComWorld::libraryFolder();
  Outcome outcome;
  {
    ComponentStage stage{world, path};
    Scenario later = scenario;
    later.set = [&](Stage& given) {
      if (scenario.set) scenario.set(given);
      fail(fakes, failing);
    };
    play(later, stage);
    outcome.items = stage.itemsNow();
  }
  outcome.lines = inCommon(fakes.record.lines(), installed, fakes.installationFolder());
  outcome.calls = fakes.record.calls();
  listFiles(path, u"", outcome.files);
  std::sort(outcome.files.begin(), outcome.files.end());
  for (const auto& key : settingsWritten) outcome.settings.emplace_back(key, world.setting(key));
  return outcome;
}

}  // namespace

void ComponentStage::file(TextView name, bool readOnly) {
  FakeStage::file(name, readOnly);
  const Text path = saveFolder + Text{name};
  writeToDisk(world, path);
  if (readOnly) SetFileAttributesW(wide(path), FILE_ATTRIBUTE_READONLY);
}

void ComponentStage::start() {
  calling(u"CEStartup", [&] { return com_.start(); });
  openExplorer();
}

void ComponentStage::stop() {
  calling(u"CEShutdown", [&] { return com_.stop(); });
}

void ComponentStage::openExplorer() {
  calling(u"CEExplorerOpen", [&] { return com_.openExplorer(); });
}

void ComponentStage::closeExplorer() {
  calling(u"CEExplorerClose", [&] {
    LONG result = -1;
    check(com_.module->CEExplorerClose(nullptr, &result));
    return result;
  });
}

void ComponentStage::message(TextView text) {
  calling(u"CESendMessage", [&] {
    LONG result = -1;
    check(com_.module->CESendMessage(Bstr{text}.get(), &result));
    return result;
  });
}

void ComponentStage::arrived(Mail mail, DefaultFolder folder) {
  calling(u"CEItemEvent", [&] { return com_.itemAdded(item(mail), folder); });
}

void ComponentStage::button() {
  calling(u"CEButtonAction", [&] { return com_.button(); });
}

void ComponentStage::hotkey() {
  calling(u"CEHotkeyAction", [&] {
    LONG result = -1;
    check(com_.module->CEHotkeyAction(VARIANT{}, &result));
    return result;
  });
}

void ComponentStage::open(Mail mail) {
  calling(u"CEInspectorOpen", [&] { return com_.openInspector(item(mail)); });
}

BothOutcomes playOnBoth(const Scenario& scenario, const Failing& failing, bool withMailHelper) {
  BothOutcomes both;
  both.component = playOnComponent(scenario, failing, withMailHelper);
  Text saveFolder;
  {
    const TemporaryFolder folder{folderName};
    saveFolder = folder.path() + u"\\";
  }
  both.core = playOnCore(scenario, PathRules::windows(), saveFolder, failing);
  both.core.lines = inCommon(both.core.lines, u"?", u"?");
  return both;
}

}  // namespace quillfile::windows
