// FakePlatform: a whole world for the module, in memory, that records what is asked of it in one transcript.
//
//   FakePlatform world{PathRules::windows()};
//   auto mail = world.addItem({.subject = u"Invoices"});          // into the Inbox
//   mail->attach({.fileName = u"a.pdf"});
//   world.explorer->select({mail});
//   ... Room room{world.platform()} ...
//   expectTranscript(world.record.lines(), {u"trace ...", u"Invoices: save", ...});
#pragma once

#include <memory>
#include <utility>

#include "core/platform/platform.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/fake_files.h"
#include "tests/fakes/fake_item.h"
#include "tests/fakes/fake_mail_helper.h"
#include "tests/fakes/fake_outlook.h"
#include "tests/fakes/fake_settings.h"
#include "tests/fakes/fake_system.h"
#include "tests/fakes/fake_user.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

class FakePlatform {
 public:
  explicit FakePlatform(const PathRules& rules = PathRules::windows())
      : paths(rules),
        files(record, paths),
        services(record, files, paths.drives ? u"C:\\Users\\Ada\\Documents\\" : u"/home/ada/Documents/") {
    const auto add = [&](DefaultFolder which, TextView name) {
      auto folder = std::make_shared<FakeFolder>(record, Text{name}, Text{name});
      application->session->folders[which] = folder;
      host->known.push_back(folder);
    };
    add(DefaultFolder::inbox, u"Inbox");
    add(DefaultFolder::drafts, u"Drafts");
    add(DefaultFolder::sent_items, u"Sent Items");
    add(DefaultFolder::deleted_items, u"Deleted Items");
    add(DefaultFolder::outbox, u"Outbox");
    application->explorer = explorer = std::make_shared<FakeExplorer>(record, folder(DefaultFolder::inbox));
    files.add(fill(u"{}{}Paperclip.ico", installationFolder(), paths.separator), "paperclip");
  }

  Platform platform() {
    return {.services = services,
            .utilities = utilities,
            .log = log,
            .mailHelper = mailHelper,
            .settings = settings,
            .files = files,
            .linkedFiles = files,
            .fileTimes = files,
            .dates = dates,
            .letters = letters,
            .clock = clock,
            .programs = programs,
            .user = user,
            .dialogs = dialogs,
            .paths = paths,
            .installationFolder = installationFolder()};
  }

  Text installationFolder() const {
    return paths.drives ? u"C:\\Program Files\\Quillfile" : u"/usr/share/quillfile";
  }

  // A path of Windows' as the rules have it: "C:\Saved\a.pdf" is "/Saved/a.pdf" where there are no drives.
  Text path(TextView windowsPath) const {
    if (paths.drives) return Text{windowsPath};
    return replaceAll(startsWith(windowsPath, u"C:") ? windowsPath.substr(2) : windowsPath, u"\\", u"/");
  }

  const std::shared_ptr<FakeFolder>& folder(DefaultFolder which) {
    return application->session->folders.at(which);
  }

  // A new item at the end of a folder, the Inbox unless another is given.
  std::shared_ptr<FakeItem> addItem(ItemData data, DefaultFolder where = DefaultFolder::inbox) {
    auto item = std::make_shared<FakeItem>(record, files, std::move(data));
    item->home = folder(where).get();
    item->responsesHome = folder(DefaultFolder::drafts).get();
    if (item->data.saved) item->home->items.push_back(item);
    return item;
  }

  std::shared_ptr<FakeInspector> openInspector(Ref<Item> item) {
    return std::make_shared<FakeInspector>(record, std::move(item));
  }

  Recorder record;
  PathRules paths;
  FakeFiles files;
  FakeServices services;
  FakeUtilities utilities{record, files};
  FakeLog log{record};
  FakeSettings settings{record};
  FakeMailHelper mailHelper{record};
  FakeDates dates{record};
  FakeLetters letters;
  FakeClock clock;
  FakePrograms programs{record};
  FakeUser user{record, clock};
  FakeDialogs dialogs{record};
  std::shared_ptr<FakeApplication> application = std::make_shared<FakeApplication>(record);
  std::shared_ptr<FakeExplorer> explorer;  // the active one, showing the Inbox
  std::shared_ptr<FakeModuleHost> host = std::make_shared<FakeModuleHost>(record, application);
};

}  // namespace quillfile
