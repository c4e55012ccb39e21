#include "tests/windows/fakes/com_world.h"

#include <gtest/gtest.h>

#include "hosts/windows/com/bstr.h"
#include "hosts/windows/com/failure.h"
#include "hosts/windows/services/registry_settings.h"

namespace quillfile::windows {

namespace {

const wchar_t* const settingsKey = L"Software\\VB and VBA Program Settings\\Corvane";

// The folders that the fake has made, on the disk too.
void makeOnDisk(const Text& path) {
  for (Position slash = find(path, u"\\", 4); slash != 0; slash = find(path, u"\\", slash + 1)) {
    CreateDirectoryW(wide(Text{left(path, slash - 1)}), nullptr);
  }
  CreateDirectoryW(wide(path), nullptr);
}

}  // namespace

ComWorld::ComWorld(FakePlatform& world, bool withMailHelper) : fakes(world) {
  RegDeleteTreeW(HKEY_CURRENT_USER, settingsKey);
  makeHost();
  classes_.offer(u"Corvane.EngineServices", [this] { return makeServices(); });
  classes_.offer(u"Corvane.EngineLog", [this] { return makeLog(); });
  if (withMailHelper) {
    classes_.offer(u"TSOutlook.TSSafeMailItem", [this] { return makeSafeItem(); });
    classes_.offer(u"TSOutlook.TSMAPIUtils", [this] { return makeMapiUtilities(); });
  }
}

ComWorld::~ComWorld() {
  module = {};
  RegDeleteTreeW(HKEY_CURRENT_USER, settingsKey);
}

void ComWorld::set(TextView key, TextView value) {
  RegistrySettings{}.write(fakes.services.applicationName, u"Quillfile", key, value);
}

std::optional<Text> ComWorld::setting(TextView key) const {
  return RegistrySettings{}.read(fakes.services.applicationName, u"Quillfile", key);
}

void ComWorld::create() {
  module = Object::create(u"Quillfile.CQuillfile").ptr().as<::IModuleAPI>();
  if (!module) windows::raise(E_NOINTERFACE);
  fakes.files.add(libraryFolder() + u"\\Paperclip.ico");
}

Text ComWorld::libraryFolder() {
  Text path(MAX_PATH, u'\0');
  path.resize(GetModuleFileNameW(GetModuleHandleW(L"quillfile.dll"), wide(path), MAX_PATH));
  return Text{left(path, findLast(path, u"\\") - 1)};
}

LONG ComWorld::start() {
  if (!module) create();
  IDispatch* engine = host.get();
  LONG result = -1;
  check(module->CEStartup(&engine, &result));
  return result;
}

LONG ComWorld::openExplorer() {
  LONG result = -1;
  check(module->CEExplorerOpen(outlook.explorer(fakes.explorer).object().get(), &result));
  return result;
}

LONG ComWorld::stop() {
  LONG result = -1;
  check(module->CEShutdown(&result));
  return result;
}

LONG ComWorld::button() {
  LONG result = -1;
  check(module->CEButtonAction(1, VARIANT{}, &result));
  return result;
}

LONG ComWorld::itemAdded(const Ref<Item>& item, DefaultFolder folder) {
  LONG result = -1;
  const Variant store{fakes.folder(folder)->store()};
  check(module->CEItemEvent(1, outlook.item(item).object().get(), VARIANT{},
                            Bstr{fakes.folder(folder)->id()}.get(), store.raw(), &result));
  return result;
}

LONG ComWorld::openInspector(const Ref<Item>& item) {
  LONG result = -1;
  check(module->CEInspectorOpen(outlook.inspector(fakes.openInspector(item)).object().get(), &result));
  return result;
}

void ComWorld::makeHost() {
  host = fake(calls, u"ModuleHost");
  auto* engine = fakes.host.get();
  host->on(u"Application",
           [this, engine](const Call&) {
             return outlook.application(std::dynamic_pointer_cast<FakeApplication>(engine->application()));
           })
      .on(u"AddButton",
          [this, engine](const Call& call) {
            engine->addButton(outlook.explorerOf(call[0].object().get()), call[1].text());
            return Variant{};
          })
      .on(u"RemoveButton",
          [engine](const Call& call) { return engine->removeButton(call[0].text()), Variant{}; })
      .on(u"RegisterHotkey",
          [engine](const Call& call) {
            return engine->registerHotkey(call[0].number(), call[1].number()), Variant{};
          })
      .on(u"UnregisterHotkey",
          [engine](const Call& call) {
            return engine->unregisterHotkey(call[0].number(), call[1].number()), Variant{};
          })
      .on(u"WatchFolder",
          [engine](const Call& call) {
            return engine->watchFolder(call[0].text(), call[1].text()), Variant{};
          })
      .on(u"WatchMonitoredFolders",
          [engine](const Call& call) {
            return engine->watchMonitoredFolders(call[0].text(), call[1].text()), Variant{};
          })
      .on(u"FindFolder",
          [this, engine](const Call& call) {
            return outlook.folder(engine->findFolder(call[0].text(), call[1].text()));
          })
      .on(u"FolderPath", [this, engine](const Call& call) {
        return Variant{engine->folderPath(outlook.folderOf(call[0].object().get()))};
      });
}

Fake ComWorld::makeServices() {
  auto& services = fakes.services;
  const Fake utilities = makeUtilities();
  const Fake made = fake(calls, u"EngineServices");
  made->on(u"SettingsApplicationName",
           [&](const Call&) { return Variant{services.settingsApplicationName()}; })
      .on(u"PrepareModuleCollection",
          [this, &services](const Call& call) {
            services.prepareModuleCollection(call[1].text());
            *call.raw(0).ppdispVal = Ptr<IDispatch>{fake(calls, u"Collection").get()}.detach();
            return Variant{};
          })
      .on(u"SpecialFolderPath",
          [&](const Call& call) { return Variant{services.specialFolderPath(call[0].number())}; })
      .on(u"EnsureFolder",
          [&](const Call& call) {
            services.ensureFolder(call[0].text());
            makeOnDisk(call[0].text());
            return Variant{};
          })
      .on(u"ExpandPath", [&](const Call& call) { return Variant{services.expandPath(call[0].text())}; })
      .on(u"ReportError",
          [&](const Call& call) {
            services.reportError(call[0].text(), call[1].number(), call[2].text());
            return Variant{};
          })
      .on(u"LanguageStrings",
          [this, &services](const Call&) {
            const auto strings = services.languageStrings();
            if (!strings) return Variant{static_cast<IDispatch*>(nullptr)};
            const Fake table = fake(calls, u"LanguageStrings");
            table->on(u"Text", [strings](const Call& call) {
              return Variant{strings->text(call[0].number()).value_or(u"")};
            });
            return variant(table);
          })
      .on(u"PrepareForm", [&](const Call& call) { return services.prepareForm(call[0].text()), Variant{}; })
      .set(u"Utilities", variant(utilities));
  return made;
}

Fake ComWorld::makeUtilities() {
  auto& utilities = fakes.utilities;
  const Fake made = fake(calls, u"EngineUtilities");
  made->on(u"MatchText",
           [&](const Call& call) { return Variant{utilities.matchText(call[0].text(), call[1].text())}; })
      .on(u"CleanFileName",
          [&](const Call& call) { return Variant{utilities.cleanFileName(call[0].text())}; })
      .on(u"FileExists", [&](const Call& call) { return Variant{utilities.fileExists(call[0].text())}; })
      .on(u"CreateFolderPath",
          [&](const Call& call) {
            const bool created = utilities.createFolderPath(call[0].text());
            if (created) makeOnDisk(call[0].text());
            return Variant{created};
          })
      .on(u"DeleteFile",
          [&](const Call& call) {
            utilities.deleteFile(call[0].text());
            DeleteFileW(wide(call[0].text()));
            return Variant{};
          })
      .on(u"DiscardSavedFile",
          [&](const Call& call) {
            utilities.discardSavedFile(call[0].text());
            DeleteFileW(wide(call[0].text()));
            return Variant{};
          })
      .on(u"BodyFormat", [this](const Call& call) {
        const Ptr<IDispatch> object = call[0].object();
        if (const auto item = outlook.itemOf(object.get())) return Variant{fakes.mailHelper.bodyFormat(item)};
        fakes.record.asked(u"MailHelper.bodyFormat");  // a wrapper, which knows its item's format
        return Object{object}.get(u"Format");
      });
  return made;
}

Fake ComWorld::makeLog() {
  ++logsMade;
  const Fake made = fake(calls, u"EngineLog");
  made->on(u"Write", [this](const Call& call) {
    fakes.log.write(call[0].text(), call[1].text(), call[2].text(), call[3].number());
    return Variant{};
  });
  return made;
}

Fake ComWorld::makeSafeItem() {
  const Fake made = fake(calls, u"SafeMailItem");
  const auto safe = std::make_shared<Ref<SafeItem>>();
  const auto format = std::make_shared<Text>();
  made->onPut(u"Item", [this, safe, format](const Variant& value) {
    const auto item = outlook.itemOf(value.object().get());
    if (!item) throw Failure{E_INVALIDARG, u"That is no item"};
    *safe = fakes.mailHelper.wrap(item);
    *format = std::dynamic_pointer_cast<FakeItem>(item)->data.format;
  });
  made->on(u"Format", [format](const Call&) { return Variant{*format}; })
      .on(u"Subject", [safe](const Call&) { return Variant{held(*safe).subject()}; })
      .on(u"SenderName", [safe](const Call&) { return Variant{held(*safe).senderName()}; })
      .on(u"Sender", [this, safe](const Call&) { return outlook.addressEntry(held(*safe).sender()); })
      .on(u"SenderEmailAddress", [safe](const Call&) { return Variant{held(*safe).senderEmailAddress()}; })
      .on(u"Attachments",
          [this, safe](const Call&) { return outlook.attachments(held(*safe).attachments()); })
      .on(u"Save", [safe](const Call&) { return held(*safe).save(), Variant{}; })
      .on(u"SaveAs", [this, safe](const Call& call) {
        held(*safe).saveAs(call[0].text(), static_cast<SaveAsType>(call[1].number()));
        writeToDisk(fakes, call[0].text());
        return Variant{};
      });
  struct Row {
    const char16_t* name;
    BodyKind kind;
  };
  for (const auto& row :
       {Row{u"Body", BodyKind::plain}, Row{u"HTMLBody", BodyKind::html}, Row{u"RTFBody", BodyKind::rtf}}) {
    made->on(row.name, [safe, kind = row.kind](const Call&) { return Variant{held(*safe).body(kind)}; })
        .onPut(row.name,
               [safe, kind = row.kind](const Variant& value) { held(*safe).setBody(kind, value.text()); });
  }
  return made;
}

Fake ComWorld::makeMapiUtilities() {
  const Fake made = fake(calls, u"MAPIUtils");
  made->on(u"CleanUp", [this](const Call&) { return fakes.mailHelper.cleanUp(), Variant{}; })
      .on(u"GetSMTPAddress", [this](const Call& call) {
        return Variant{fakes.mailHelper.smtpAddress(outlook.addressEntryOf(call[0].object().get()))};
      });
  return made;
}

}  // namespace quillfile::windows
