#include "core/settings/first_run.h"

#include "core/module/procedure.h"

namespace quillfile {
namespace {

// The values are the table's; the order is the one in which they are written.
constexpr SettingKey beforeSavePath[] = {
    u"FolderCount",           u"SaveAllAttachments", u"SubjectLineEnabled", u"SubjectLine",
    u"AttachmentNameEnabled", u"AttachmentName",     u"EmailFromEnabled",   u"EmailFrom"};
constexpr SettingKey afterSavePath[] = {u"RemoveAttachment",      u"AddURL",
                                        u"RetainPaperclip",       u"PostProcess",
                                        u"ImitateOutlookFolders", u"AutomaticRename",
                                        u"ErrorPrompt",           u"OptionalRenameWanted",
                                        u"SendDeleteAttachments", u"SendRemoveAttachments"};

void writeInbox(const Settings& settings, Folder& inbox) {
  settings.write(u"FolderName", 1, inbox.name());
  settings.write(u"FolderEntryId", 1, inbox.entryId());
  settings.write(u"FolderStoreId", 1, inbox.storeId());
}

void writeSavePath(const Settings& settings, EngineServices& services, const PathRules& paths) {
  const Text path = fill(u"{}Saved Attachments{}", services.specialFolderPath(0), paths.separator);
  services.ensureFolder(path);
  settings.write(u"SavePath", path);
}

}  // namespace

void EnsureSettings(const Settings& settings, EngineServices& services, const PathRules& paths,
                    const Ref<Application>& outlookApp) {
  procedure(services, {.name = u".EnsureSettings", .wording = wording::atLine}, [&](Step& at) {
    at(1);
    const auto nameSpace = held(outlookApp).nameSpace();
    at(2);
    if (settings.stored(u"SaveAllAttachments").value_or(u"Not Found") != u"Not Found") return;
    at(3);
    writeInbox(settings, held(held(nameSpace).defaultFolder(DefaultFolder::inbox)));
    at(4);
    for (const auto key : beforeSavePath) settings.write(key, key->firstRun.value());
    at(5);
    writeSavePath(settings, services, paths);
    at(6);
    for (const auto key : afterSavePath) settings.write(key, key->firstRun.value());
  });
}

}  // namespace quillfile
