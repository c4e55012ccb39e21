// The table of settings: every key of the module's section with its kind, its default, its first-run value
// and its meaning. It is the one truth: readers take their defaults from it, and a host lists it.
#pragma once

#include <cstddef>
#include <iterator>
#include <optional>

#include "core/platform/path_rules.h"
#include "core/text/text.h"

namespace quillfile {

// All values are stored as texts. A flag is a number that is on when it is not 0.
enum class SettingKind { flag, number, text };

struct Setting {
  TextView key;
  SettingKind kind = SettingKind::text;
  TextView byDefault = {};                // what a reader gets when the key is absent
  std::optional<TextView> firstRun = {};  // what the first start writes; none: it leaves the key absent
  TextView meaning;
  TextView PathRules::*systemDefault = nullptr;  // the default, where each system has its own
  bool numbered = false;                         // the stem of keys that end in a number from 1

  constexpr TextView defaultUnder(const PathRules& paths) const {
    return systemDefault ? paths.*systemDefault : byDefault;
  }
};

// In the order in which a person would want to read them.
inline constexpr Setting settingsTable[] = {
    {.key = u"SavePath",
     .meaning = u"folder for saved attachments, with a separator at its end",
     .systemDefault = &PathRules::root},
    {.key = u"AutomaticMode",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .meaning = u"process new items in the monitored folders"},
    {.key = u"PostProcess",
     .kind = SettingKind::number,
     .byDefault = u"0",
     .firstRun = u"1",
     .meaning = u"what becomes of a processed item: 0 marked read, 1 kept unread, 2 deleted"},
    {.key = u"AutomaticRename",
     .kind = SettingKind::flag,
     .byDefault = u"1",
     .firstRun = u"1",
     .meaning = u"rename saved files by keywords, and number a taken name"},
    {.key = u"AutomaticRenameKeywords",
     .byDefault = u"<attachment name>",
     .meaning = u"pattern for renaming: <received date>, <sender name>, <sender address>, <subject>, "
                u"<attachment name>"},
    {.key = u"RetainPaperclip",
     .kind = SettingKind::flag,
     .byDefault = u"1",
     .firstRun = u"1",
     .meaning = u"keep the paperclip mark on an item whose attachments were removed"},
    {.key = u"OptionalRenameWanted",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"0",
     .meaning = u"ask for each file's name when saving by hand"},
    {.key = u"ExclusionList", .meaning = u"names of attachments that are never saved, separated by \";\""},
    {.key = u"SendDeleteAttachments",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"0",
     .meaning = u"delete the attachments of sent items after saving them"},
    {.key = u"SendRemoveAttachments",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"0",
     .meaning = u"remove the attachments of sent items and leave links"},
    {.key = u"ReadWrite",
     .kind = SettingKind::number,
     .byDefault = u"0",
     .meaning = u"read-only state of saved files: 0 left alone, 1 read-only, 2 writable"},
    {.key = u"AddURL",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"1",
     .meaning = u"write a link to each saved file into the item's body"},
    {.key = u"ErrorPrompt",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"1",
     .meaning = u"show errors to the user"},
    {.key = u"ImitateOutlookFolders",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"1",
     .meaning = u"save into the item's folder path below the save folder"},
    {.key = u"RemoveAttachment",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"1",
     .meaning = u"remove saved attachments from the item"},
    {.key = u"EmailFrom",
     .byDefault = u"Not Found",
     .firstRun = u"",
     .meaning = u"sender filter: pattern for the sender's name or address"},
    {.key = u"EmailFromEnabled",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"0",
     .meaning = u"sender filter on"},
    {.key = u"AttachmentName",
     .byDefault = u"Not Found",
     .firstRun = u"",
     .meaning = u"attachment-name filter: pattern for the name"},
    {.key = u"AttachmentNameEnabled",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"0",
     .meaning = u"attachment-name filter on"},
    {.key = u"SubjectLine",
     .byDefault = u"Not Found",
     .firstRun = u"",
     .meaning = u"subject filter: pattern for the subject"},
    {.key = u"SubjectLineEnabled",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"0",
     .meaning = u"subject filter on"},
    {.key = u"AttachmentSize",
     .kind = SettingKind::number,
     .byDefault = u"0",
     .meaning = u"attachment-size filter: smaller attachments pass, in kilobytes"},
    {.key = u"AttachmentSizeEnabled",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .meaning = u"attachment-size filter on"},
    {.key = u"SaveAllAttachments",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .firstRun = u"1",
     .meaning = u"save every attachment, not only those that pass the filters"},
    {.key = u"LinkLocation",
     .byDefault = u"Bottom",
     .meaning = u"where links stand in the body: Bottom, or anything else for the top"},
    {.key = u"AutomaticReattachWanted",
     .kind = SettingKind::flag,
     .byDefault = u"1",
     .meaning = u"attach saved files again when forwarding, take links out when replying"},
    {.key = u"SaveAttachmentsWanted",
     .kind = SettingKind::flag,
     .byDefault = u"1",
     .meaning = u"save attachments at all"},
    {.key = u"SaveEmailsWanted",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .meaning = u"save the e-mail itself as a file too"},
    {.key = u"SaveEmailsAs1",
     .kind = SettingKind::number,
     .byDefault = u"0",
     .meaning = u"first format for saving e-mails: 0 .msg, 1 .html, 2 .txt, 3 .eml, 4 .tnef"},
    {.key = u"SaveEmailsAs2",
     .kind = SettingKind::number,
     .byDefault = u"5",
     .meaning = u"second format for saving e-mails, like the first; 5 none"},
    {.key = u"ExecuteWanted",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .meaning = u"run a program on each saved file"},
    {.key = u"ExecuteOn",
     .kind = SettingKind::number,
     .byDefault = u"1",
     .meaning = u"what the program is run on: 0 e-mails, 1 attachments, 2 both"},
    {.key = u"ExecuteCommandLine", .meaning = u"the program's command line; %1 is the saved file"},
    {.key = u"EnableButton",
     .kind = SettingKind::flag,
     .byDefault = u"1",
     .meaning = u"show the toolbar button"},
    {.key = u"HotkeyEnabled", .kind = SettingKind::flag, .byDefault = u"0", .meaning = u"hotkey on"},
    {.key = u"HotkeyMods",
     .kind = SettingKind::number,
     .byDefault = u"0",
     .meaning = u"hotkey: modifier bits"},
    {.key = u"HotkeyValue",
     .kind = SettingKind::number,
     .byDefault = u"114",
     .meaning = u"hotkey: virtual-key code (114 is F3)"},
    {.key = u"OldMods",
     .kind = SettingKind::number,
     .byDefault = u"0",
     .meaning = u"modifier bits of the hotkey to unregister"},
    {.key = u"OldValue",
     .kind = SettingKind::number,
     .byDefault = u"114",
     .meaning = u"virtual-key code of the hotkey to unregister"},
    {.key = u"ButtonClicked",
     .kind = SettingKind::flag,
     .byDefault = u"0",
     .meaning = u"1 while items are being saved by hand; set by the module"},
    {.key = u"SaveAsMRUPath", .meaning = u"folder last chosen for a file; set by the module"},
    {.key = u"FolderCount",
     .kind = SettingKind::number,
     .byDefault = u"1",
     .firstRun = u"1",
     .meaning = u"number of monitored folders"},
    {.key = u"FolderName", .meaning = u"display name of monitored folder n", .numbered = true},
    {.key = u"FolderEntryId",
     .byDefault = u"1",
     .meaning = u"EntryID of monitored folder n",
     .numbered = true},
    {.key = u"FolderStoreId", .meaning = u"StoreID of monitored folder n", .numbered = true},
};

// The row of a key, numbered ones by their stem; the table's size when there is none.
constexpr std::size_t settingRow(TextView key) {
  std::size_t row = 0;
  while (row < std::size(settingsTable) && settingsTable[row].key != key) ++row;
  return row;
}

}  // namespace quillfile
