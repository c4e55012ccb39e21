#include "tests/windows/scenarios/scenarios.h"

namespace quillfile::windows {

namespace {

using Settings = std::vector<std::pair<Text, Text>>;

const ItemData text{.subject = u"Invoices", .body = u"See the file.\r\n"};
const ItemData html{
    .subject = u"Invoices", .format = u"HTML", .htmlBody = u"<html><body>See the file.</body></html>"};
const ItemData rtf{.subject = u"Invoices", .format = u"RTF", .body = u"abc", .rtfBody = u"{\\rtf1 abc}"};

// One selected item with attachments.
auto selected(const ItemData& data, const std::vector<AttachmentData>& attachments) {
  return [=](Stage& stage) {
    const auto item = stage.world.addItem(data);
    for (const auto& attachment : attachments) item->attach(attachment);
    stage.world.explorer->selected = std::vector<Ref<Item>>{item};
  };
}

const AttachmentData pdf{.fileName = u"a.pdf", .displayName = u"a.pdf", .content = "a"};
const AttachmentData xls{.fileName = u"b.xls", .displayName = u"b.xls", .content = "bb"};

// An item that was added to a folder.
auto added(DefaultFolder folder) {
  return [=](Stage& stage, Driver& driver) {
    driver.itemAdded(stage.world.folder(folder)->items.front(), folder);
  };
}
auto lyingIn(DefaultFolder folder, const ItemData& data) {
  return [=](Stage& stage) { stage.world.addItem(data, folder)->attach(pdf).attach(xls); };
}

Scenario with(std::string name, Settings settings, const ItemData& data = text) {
  return {.name = std::move(name), .settings = std::move(settings), .act = selected(data, {pdf, xls})};
}

}  // namespace

std::vector<Scenario> saveScenarios() {
  std::vector<Scenario> all{
      with("text", {}),
      with("text_link_at_the_top", {{u"LinkLocation", u"Top"}}),
      with("html", {}, html),
      with("html_link_at_the_top", {{u"LinkLocation", u"Top"}}, html),
      with("html_without_a_body", {}, {.subject = u"Invoices", .format = u"HTML"}),
      with("rtf", {}, rtf),
      with("rtf_that_is_none", {},
           {.subject = u"Invoices", .format = u"RTF", .body = u"abc", .rtfBody = u"abc"}),
      with("without_removal", {{u"RemoveAttachment", u"0"}}),
      with("without_links", {{u"AddURL", u"0"}}),
      with("marked_read", {{u"PostProcess", u"0"}}),
      with("item_removed", {{u"PostProcess", u"2"}}),
      with("files_made_read_only", {{u"ReadWrite", u"1"}}),
      with("files_made_writable", {{u"ReadWrite", u"2"}}),
      with("outlooks_folders", {{u"ImitateOutlookFolders", u"1"}}),
      with("renamed", {{u"AutomaticRename", u"1"},
                       {u"AutomaticRenameKeywords", u"<attachment name> <subject> <received date>"}}),
      with("excluded", {{u"ExclusionList", u"*.xls"}}),
      with("without_a_paperclip", {{u"RetainPaperclip", u"0"}}),
      with("no_filter_is_on", {{u"SaveAllAttachments", u"0"}}),
      with("subject_filter",
           {{u"SaveAllAttachments", u"0"}, {u"SubjectLineEnabled", u"1"}, {u"SubjectLine", u"invoi"}}),
      with("sender_filter",
           {{u"SaveAllAttachments", u"0"}, {u"EmailFromEnabled", u"1"}, {u"EmailFrom", u"ada"}}),
      with("exchange_sender_filter",
           {{u"SaveAllAttachments", u"0"}, {u"EmailFromEnabled", u"1"}, {u"EmailFrom", u"lovelace@"}},
           {.subject = u"Invoices",
            .senderType = u"EX",
            .senderAddress = u"/o=x",
            .smtpAddress = u"lovelace@example.com"}),
      with("attachment_name_filter",
           {{u"SaveAllAttachments", u"0"}, {u"AttachmentNameEnabled", u"1"}, {u"AttachmentName", u".xls"}}),
      with("attachment_size_filter",
           {{u"SaveAllAttachments", u"0"}, {u"AttachmentSizeEnabled", u"1"}, {u"AttachmentSize", u"1"}}),
      with("mail_saved_too",
           {{u"SaveEmailsWanted", u"1"}, {u"SaveEmailsAs1", u"2"}, {u"SaveEmailsAs2", u"3"}}),
      with("program_run", {{u"ExecuteWanted", u"1"},
                           {u"ExecuteCommandLine", u"C:\\windows\\system32\\cmd.exe /c rem \"%1\""}}),
      with("program_missing", {{u"ExecuteWanted", u"1"}, {u"ExecuteCommandLine", u"C:\\missing\\x.exe %1"}}),
      with("save_path_is_no_number_of_settings", {{u"ReadWrite", u"soon"}}),
      with("post", {}, {.subject = u"Invoices", .type = u"PostItem"}),
      with("meeting", {}, {.subject = u"Invoices", .type = u"MeetingItem"}),
      with("appointment", {}, {.subject = u"Invoices", .type = u"AppointmentItem"}),
      {.name = "nothing_selected"},
      {.name = "hotkey",
       .act = selected(text, {pdf}),
       .play = [](Stage&, Driver& driver) { driver.hotkey(); }},
      {.name = "odd_attachments",
       .act = selected(
           text, {{.fileName = u"a.bin", .displayName = u"a.bin", .type = AttachmentType::ole},
                  {.fileName = u"", .displayName = u"Fwd: lunch", .type = AttachmentType::embedded_item},
                  {.fileName = u"a#b?c&d.txt", .displayName = u"x"},
                  {.fileName = u"Paperclip.ico", .displayName = u"x"},
                  {.fileName = u"\u4E2D\u6587 \U0001F4CE.pdf", .displayName = u"x"}})},
      {.name = "same_name_three_times", .act = selected(text, {pdf, pdf, pdf})},
      {.name = "a_file_that_was_there",
       .act =
           [](Stage& stage) {
             stage.file(u"a.pdf", 32);
             selected(text, {pdf})(stage);
           }},
      {.name = "a_read_only_file_replaced",
       .act =
           [](Stage& stage) {
             stage.file(u"a.pdf", 33);
             selected(text, {pdf, xls})(stage);
           },
       .answers = {.boxes = {Answer::yes}, .prompts = {}, .paths = {}}},
      {.name = "a_read_only_file_kept",
       .act =
           [](Stage& stage) {
             stage.file(u"a.pdf", 33);
             selected(text, {pdf, xls})(stage);
           },
       .answers = {.boxes = {Answer::no}, .prompts = {}, .paths = {}}},
      {.name = "a_read_only_file_cancelled",
       .act =
           [](Stage& stage) {
             stage.file(u"a.pdf", 33);
             selected(text, {pdf, xls})(stage);
           },
       .answers = {.boxes = {Answer::cancel}, .prompts = {}, .paths = {}}},
      {.name = "save_as_another_name",
       .settings = {{u"OptionalRenameWanted", u"1"}},
       .act = selected(text, {pdf}),
       .answers = {.boxes = {}, .prompts = {}, .paths = {u"other.pdf"}}},
      {.name = "save_as_cancelled",
       .settings = {{u"OptionalRenameWanted", u"1"}},
       .act = selected(text, {pdf, xls})},
      {.name = "three_selected_last_first",
       .act =
           [](Stage& stage) {
             std::vector<Ref<Item>> items;
             for (const TextView subject : {u"One", u"Two", u"Three"}) {
               const auto item = stage.world.addItem({.subject = Text{subject}});
               item->attach({.fileName = fill(u"{}.txt", subject), .displayName = Text{subject}});
               items.push_back(item);
             }
             stage.world.explorer->selected = items;
           }},
      {.name = "new_item",
       .settings = {{u"AutomaticMode", u"1"}, {u"ImitateOutlookFolders", u"1"}},
       .act = lyingIn(DefaultFolder::inbox, text),
       .play = added(DefaultFolder::inbox)},
      {.name = "new_item_automatic_off",
       .act = lyingIn(DefaultFolder::inbox, text),
       .play = added(DefaultFolder::inbox)},
      {.name = "sent_item_with_removal",
       .settings = {{u"SendRemoveAttachments", u"1"}},
       .act = lyingIn(DefaultFolder::sent_items, text),
       .play = added(DefaultFolder::sent_items)},
      {.name = "sent_item_with_deletion_from_a_monitored_folder",
       .settings = {{u"SendDeleteAttachments", u"1"},
                    {u"AutomaticMode", u"1"},
                    {u"FolderEntryId1", u"Sent Items-id"}},
       .act = lyingIn(DefaultFolder::sent_items, html),
       .play = added(DefaultFolder::sent_items)},
      {.name = "refreshed_button_and_hotkey",
       .settings = {{u"EnableButton", u"1"}, {u"HotkeyEnabled", u"1"}, {u"OldMods", u"4"}},
       .play =
           [](Stage&, Driver& driver) {
             driver.message(u"RefreshButton");
             driver.message(u"RefreshHotkey");
             driver.message(u"refreshhotkey");
             driver.closeExplorer();
           }},
  };
  for (const TextView format : {u"0", u"1", u"2", u"3", u"4", u"5"}) {
    all.push_back(with("mail_saved_as_" + toUtf8(format), {{u"SaveEmailsWanted", u"1"},
                                                           {u"SaveEmailsAs1", Text{format}},
                                                           {u"AutomaticRename", u"1"},
                                                           {u"SaveAttachmentsWanted", u"0"}}));
  }
  return all;
}

}  // namespace quillfile::windows
