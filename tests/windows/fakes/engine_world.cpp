#include "tests/windows/fakes/engine_world.h"

#include <gtest/gtest.h>

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"
#include "hosts/windows/services/registry_settings.h"

namespace quillfile::windows {

namespace {

const wchar_t* const settingsKey = L"Software\\VB and VBA Program Settings\\QuillfileWineTests";

void makeFolders(const Text& path) {
  for (Position slash = find(path, u"\\", 4); slash != 0; slash = find(path, u"\\", slash + 1)) {
    CreateDirectoryW(wide(Text{left(path, slash - 1)}), nullptr);
  }
  CreateDirectoryW(wide(path), nullptr);
}

bool isFile(const Text& path) {
  const DWORD found = GetFileAttributesW(wide(path));
  return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

Text without(Text text, TextView characters) {
  std::erase_if(text, [&](char16_t unit) { return characters.find(unit) != TextView::npos; });
  return text;
}

}  // namespace

EngineWorld::EngineWorld(bool withMailHelper) {
  RegDeleteTreeW(HKEY_CURRENT_USER, settingsKey);
  makeHost();
  classes_.offer(u"Corvane.EngineServices", [this] { return makeServices(); });
  classes_.offer(u"Corvane.EngineLog", [this] { return makeLog(); });
  if (withMailHelper) {
    classes_.offer(u"TSOutlook.TSSafeMailItem", [this] { return makeSafeItem(); });
    classes_.offer(u"TSOutlook.TSMAPIUtils", [this] { return makeMapiUtilities(); });
  }
}

EngineWorld::~EngineWorld() {
  module = {};
  RegDeleteTreeW(HKEY_CURRENT_USER, settingsKey);
}

void EngineWorld::set(TextView key, TextView value) {
  RegistrySettings{}.write(applicationName, u"Quillfile", key, value);
}

Text EngineWorld::setting(TextView key) {
  return RegistrySettings{}.read(applicationName, u"Quillfile", key).value_or(u"");
}

void EngineWorld::create() {
  module = Object::create(u"Quillfile.CQuillfile").ptr().as<::IModuleAPI>();
  if (!module) windows::raise(E_NOINTERFACE);
}

LONG EngineWorld::start() {
  if (!module) create();
  IDispatch* engine = host.get();
  LONG result = -1;
  check(module->CEStartup(&engine, &result));
  return result;
}

LONG EngineWorld::openExplorer() {
  LONG result = -1;
  check(module->CEExplorerOpen(outlook.explorer.get(), &result));
  return result;
}

LONG EngineWorld::stop() {
  LONG result = -1;
  check(module->CEShutdown(&result));
  return result;
}

void EngineWorld::makeHost() {
  host = fake(recorder, u"ModuleHost");
  host->on(u"Application", [this](const Call&) { return variant(outlook.application); });
  // Each of these is noted with its texts and numbers; the explorer is not.
  for (const Text name : {u"AddButton", u"RemoveButton", u"RegisterHotkey", u"UnregisterHotkey",
                          u"WatchFolder", u"WatchMonitoredFolders"}) {
    host->on(name, [this, name](const Call& call) {
      Text line = name;
      for (std::size_t i = 0; i < call.count(); ++i) {
        if (call.raw(i).vt != VT_DISPATCH) line.append(u" ").append(call[i].text());
      }
      asked.push_back(line);
      return Variant{};
    });
  }
  host->on(u"FindFolder", [this](const Call& call) {
    for (const int number : {3, 4, 5, 6, 16}) {
      if (call[0].text() == OutlookWorld::entryIdOf(number)) return variant(outlook.folder(number));
    }
    return Variant{static_cast<IDispatch*>(nullptr)};
  });
  host->on(u"FolderPath", [this](const Call&) { return Variant{folderPath}; });
}

Fake EngineWorld::makeServices() {
  const Fake made = fake(recorder, u"EngineServices");
  const Fake utilities = makeUtilities();
  const Fake strings = fake(recorder, u"LanguageStrings");
  strings->on(u"Text", [](const Call&) { return Variant{u""}; });
  made->set(u"SettingsApplicationName", applicationName)
      .on(u"PrepareModuleCollection",
          [this](const Call& call) {
            *call.raw(0).ppdispVal = Ptr<IDispatch>{fake(recorder, u"Collection").get()}.detach();
            asked.push_back(fill(u"PrepareModuleCollection {}", call[1].text()));
            return Variant{};
          })
      .on(u"SpecialFolderPath", [this](const Call&) { return Variant{documents}; })
      .on(u"EnsureFolder", [](const Call& call) { return makeFolders(call[0].text()), Variant{}; })
      .on(u"ExpandPath", [](const Call& call) { return call[0]; })
      .on(u"ReportError",
          [this](const Call& call) {
            errors.push_back(fill(u"{} {}: {}", call[1].number(), call[2].text(), call[0].text()));
            return Variant{};
          })
      .on(u"PrepareForm", [](const Call&) { return Variant{}; })
      .set(u"LanguageStrings", variant(strings))
      .set(u"Utilities", variant(utilities));
  return made;
}

Fake EngineWorld::makeUtilities() {
  const Fake made = fake(recorder, u"EngineUtilities");
  made->on(
          u"MatchText",
          [](const Call& call) { return Variant{call[0].text().find(call[1].text()) != Text::npos ? 1 : 0}; })
      .on(u"CleanFileName", [](const Call& call) { return Variant{without(call[0].text(), u"\\/:*?\"<>|")}; })
      .on(u"FileExists", [](const Call& call) { return Variant{isFile(call[0].text())}; })
      .on(u"CreateFolderPath",
          [](const Call& call) {
            makeFolders(call[0].text());
            return Variant{GetFileAttributesW(wide(call[0].text())) != INVALID_FILE_ATTRIBUTES};
          })
      .on(u"DeleteFile",
          [this](const Call& call) {
            asked.push_back(fill(u"DeleteFile {}", call[0].text()));
            DeleteFileW(wide(call[0].text()));
            return Variant{};
          })
      .on(u"DiscardSavedFile",
          [this](const Call& call) {
            return asked.push_back(fill(u"DiscardSavedFile {}", call[0].text())), Variant{};
          })
      .on(u"BodyFormat", [this](const Call& call) {
        const Object item{call[0].object()};
        for (const int folder : {0, 3, 4, 5, 6, 16}) {
          for (const auto* known : outlook.itemsIn(folder)) {
            if (known->object.get() == item.get()) return Variant{known->state->format};
          }
        }
        // A wrapper: it knows the item.
        for (const auto* known : outlook.itemsIn(6)) {
          if (item.typeName() == u"SafeMailItem" && item.get(u"Subject").text() == known->state->subject) {
            return Variant{known->state->format};
          }
        }
        return Variant{u"TEXT"};
      });
  return made;
}

Fake EngineWorld::makeLog() {
  ++logsMade;
  const Fake made = fake(recorder, u"EngineLog");
  made->on(u"Write", [this](const Call& call) {
    EXPECT_EQ(call[0].text(), u"Quillfile");
    EXPECT_EQ(call[3].number(), 0);
    trace.push_back(fill(u"{}: {}", call[1].text(), call[2].text()));
    return Variant{};
  });
  return made;
}

Fake EngineWorld::makeSafeItem() {
  const Fake made = fake(recorder, u"SafeMailItem");
  const auto item = std::make_shared<Object>();
  made->onPut(u"Item", [item](const Variant& value) { *item = value.object(); });
  for (const Text name : {u"Subject", u"SenderName", u"Sender", u"SenderEmailAddress", u"Attachments",
                          u"Body", u"HTMLBody", u"RTFBody"}) {
    made->on(name, [item, name](const Call&) { return item->get(name); });
  }
  for (const Text name : {u"Body", u"HTMLBody", u"RTFBody"}) {
    made->onPut(name, [item, name](const Variant& value) { item->put(name, value); });
  }
  made->on(u"Save", [item](const Call&) { return item->run(u"Save"), Variant{}; })
      .on(u"SaveAs", [item](const Call& call) { return item->run(u"SaveAs", call[0], call[1]), Variant{}; });
  return made;
}

Fake EngineWorld::makeMapiUtilities() {
  const Fake made = fake(recorder, u"MAPIUtils");
  made->on(u"CleanUp", [this](const Call&) { return asked.push_back(u"CleanUp"), Variant{}; })
      .on(u"GetSMTPAddress", [](const Call& call) {
        return Object{Object{call[0].object()}.call(u"GetExchangeUser").object()}.get(u"PrimarySmtpAddress");
      });
  return made;
}

}  // namespace quillfile::windows
