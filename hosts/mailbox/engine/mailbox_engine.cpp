#include "hosts/mailbox/engine/mailbox_engine.h"

#include "core/module/procedure.h"
#include "core/platform/failure.h"
#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/engine/trash.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/file_system.h"
#include "hosts/mailbox/services/text_match.h"

namespace quillfile::mailbox {
namespace {

class Collection : public ModuleCollection {};

// A folder's shown name as a component of a path: it may not lead out of the folder that it stands in.
TextView safeComponent(const Text& name) {
  return name.empty() || name == u"." || name == u".." ? TextView(u"-") : name;
}

std::int32_t number(const std::optional<Text>& value, std::int32_t otherwise) {
  try {
    return value ? std::stoi(toUtf8(*value)) : otherwise;
  } catch (const std::exception&) {
    return otherwise;
  }
}

}  // namespace

Text cleanFileName(TextView text) {
  Text kept;
  for (const char16_t unit : text) {
    if (unit >= 0x20 && TextView(u"\\/:*?\"<>|").find(unit) == TextView::npos) kept += unit;
  }
  return mime::cleanName(kept);
}

void MailboxEngine::endOfEvent() {
  parts_.client->endOfEvent();
  if (discarded_.empty()) {
    parts_.batch.eventEnded();
    return;
  }
  parts_.batch.commit();
  for (const std::string& path : std::exchange(discarded_, {})) {
    try {
      giveUp(path);
    } catch (const Failure& failure) {
      reportError(failure.description, 0, u"Quillfile.DiscardSavedFile");
    }
  }
}

void MailboxEngine::giveUp(const std::string& path) {
  moveToTrash(path);
  parts_.report.deletedFiles.push_back(path);
}

void MailboxEngine::watchFolder(TextView entryId, TextView) { watched_.insert(toUtf8(entryId)); }

void MailboxEngine::watchMonitoredFolders(TextView application, TextView section) {
  const auto count = number(parts_.settings.read(application, section, u"FolderCount"), 1);
  for (std::int32_t n = 1; n <= count; ++n) {
    const auto id = parts_.settings.read(application, section, fill(u"FolderEntryId{}", n));
    const auto store = parts_.settings.read(application, section, fill(u"FolderStoreId{}", n));
    if (id) watchFolder(*id, store.value_or(u""));
  }
}

Ref<Folder> MailboxEngine::findFolder(TextView entryId, TextView) {
  const auto folder = parts_.store.folder(toUtf8(entryId));
  return folder ? parts_.client->folder(folder) : nullptr;
}

Text MailboxEngine::folderPath(const Ref<Folder>& folder) {
  const auto mailboxFolder = std::dynamic_pointer_cast<MailboxFolder>(folder);
  if (!mailboxFolder) return {};
  Text path;
  for (const Text& component : split(fromUtf8(mailboxFolder->folder()->path()), u'/')) {
    if (!path.empty()) path += u'/';
    path += safeComponent(component);
  }
  return path;
}

Ref<ModuleCollection> MailboxEngine::prepareModuleCollection(TextView) {
  return std::make_shared<Collection>();
}

Text MailboxEngine::specialFolderPath(std::int32_t) { return fromUtf8(documentsFolder() + "/"); }

void MailboxEngine::ensureFolder(TextView path) {
  if (!createFolderPath(path)) throw failure("Could not create the folder " + toUtf8(path));
}

Text MailboxEngine::expandPath(TextView path) { return fromUtf8(mailbox::expandPath(toUtf8(path))); }

void MailboxEngine::reportError(TextView message, std::int32_t level, TextView source) {
  parts_.trace.writeError(level, source, message);
  parts_.report.error(message, level, source);
}

std::int32_t MailboxEngine::matchText(TextView text, TextView pattern) {
  return mailbox::matchText(parts_.letters, text, pattern) ? 1 : 0;
}

Text MailboxEngine::cleanFileName(TextView text) { return mailbox::cleanFileName(text); }

// Who asks means to save there. A file that another process puts under the name meanwhile would else count as
// one that may be replaced.
bool MailboxEngine::fileExists(TextView path) {
  bool claimed = false;
  ignoringErrors([&] { claimed = parts_.batch.files().claim(toUtf8(path)); });
  return !claimed && parts_.files.fileListed(path);
}

bool MailboxEngine::createFolderPath(TextView path) { return parts_.batch.files().makeFolder(toUtf8(path)); }

void MailboxEngine::deleteFile(TextView path) {
  parts_.batch.commit();
  giveUp(toUtf8(path));
}

void MailboxEngine::discardSavedFile(TextView path) { discarded_.push_back(toUtf8(path)); }

}  // namespace quillfile::mailbox
