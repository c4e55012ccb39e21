#include "tests/scenarios/items.h"

namespace quillfile {

namespace {

using Settings = std::vector<std::pair<Text, Text>>;

// The attachments a.pdf (1 byte) and b.xls (2 bytes) of one item.
Scenario with(std::string name, Settings settings, std::vector<Text> files,
              const ItemData& item = plainMail) {
  return {.name = std::move(name),
          .settings = std::move(settings),
          .set = one(item, {pdf, xls}),
          .files = std::move(files)};
}

const std::vector<Text> both{u"a.pdf", u"b.xls"};

// One filter alone.
Scenario filtered(std::string name, TextView filter, TextView pattern, std::vector<Text> files,
                  const ItemData& item = plainMail) {
  return with(
      std::move(name),
      {{u"SaveAllAttachments", u"0"}, {fill(u"{}Enabled", filter), u"1"}, {Text{filter}, Text{pattern}}},
      std::move(files), item);
}

const ItemData exchangeMail{.subject = u"Invoices",
                            .senderType = u"EX",
                            .senderAddress = u"/o=x",
                            .smtpAddress = u"lovelace@example.com"};

// The mail itself is saved, in the format of that number, its attachments are not.
Scenario mailSaved(TextView format, std::vector<Text> files) {
  return with("mail_saved_as_" + toUtf8(format),
              {{u"SaveEmailsWanted", u"1"},
               {u"SaveEmailsAs1", Text{format}},
               {u"AutomaticRename", u"1"},
               {u"SaveAttachmentsWanted", u"0"}},
              std::move(files));
}

}  // namespace

std::vector<Scenario> optionScenarios() {
  return {
      with("without_removal", {{u"RemoveAttachment", u"0"}}, both),
      with("without_links", {{u"AddURL", u"0"}}, both),
      with("without_removal_and_links", {{u"RemoveAttachment", u"0"}, {u"AddURL", u"0"}}, both),
      with("marked_read", {{u"PostProcess", u"0"}}, both),
      with("item_removed", {{u"PostProcess", u"2"}}, both),
      with("files_made_read_only", {{u"ReadWrite", u"1"}}, both),
      with("files_made_writable", {{u"ReadWrite", u"2"}}, both),
      with("read_write_that_is_no_number", {{u"ReadWrite", u"soon"}}, both),
      with("folders_of_the_client", {{u"ImitateOutlookFolders", u"1"}}, {u"Inbox/a.pdf", u"Inbox/b.xls"}),
      with("without_a_paperclip", {{u"RetainPaperclip", u"0"}}, both),
      with("errors_shown", {{u"ErrorPrompt", u"1"}}, both),
      with("renamed_by_every_keyword",
           {{u"AutomaticRename", u"1"},
            {u"AutomaticRenameKeywords",
             u"<attachment name> <subject> <sender name> <sender address> <received date>"}},
           {u"a Invoices Ada Lovelace ada@example.com 3-4-2009 2-05-00 PM.pdf",
            u"b Invoices Ada Lovelace ada@example.com 3-4-2009 2-05-00 PM.xls"}),
      with("renamed_to_one_name", {{u"AutomaticRename", u"1"}, {u"AutomaticRenameKeywords", u"<subject>"}},
           {u"Invoices.pdf", u"Invoices.xls"}),
      with("excluded_by_a_pattern", {{u"ExclusionList", u"*.xls"}}, {u"a.pdf"}),
      with("excluded_by_several", {{u"ExclusionList", u"x;a.pdf;*.xls"}}, {}),
      with("no_filter_is_on", {{u"SaveAllAttachments", u"0"}}, {}),
      filtered("subject_filter", u"SubjectLine", u"invoi", both),
      filtered("subject_filter_without_a_match", u"SubjectLine", u"lunch", {}),
      filtered("sender_filter", u"EmailFrom", u"ada", both),
      filtered("sender_filter_by_address", u"EmailFrom", u"*@example.com", both),
      filtered("exchange_sender_filter", u"EmailFrom", u"lovelace@", both, exchangeMail),
      filtered("attachment_name_filter", u"AttachmentName", u".xls", {u"b.xls"}),
      filtered("attachment_size_filter", u"AttachmentSize", u"1", both),
      filtered("attachment_size_filter_of_zero", u"AttachmentSize", u"0", {}),
      with("mail_saved_too",
           {{u"SaveEmailsWanted", u"1"}, {u"SaveEmailsAs1", u"2"}, {u"SaveEmailsAs2", u"3"}},
           {u"Invoices.eml", u"Invoices.txt", u"a.pdf", u"b.xls"}),
      mailSaved(u"0", {u"Invoices.msg"}),
      mailSaved(u"1", {u"Invoices.html"}),
      mailSaved(u"2", {u"Invoices.txt"}),
      mailSaved(u"3", {u"Invoices.eml"}),
      mailSaved(u"4", {u"Invoices.tnef"}),
      mailSaved(u"5", {}),
      with("program_run", {{u"ExecuteWanted", u"1"}, {u"ExecuteCommandLine", u"{program} \"%1\""}}, both),
      with("program_missing", {{u"ExecuteWanted", u"1"}, {u"ExecuteCommandLine", u"C:\\missing\\x.exe %1"}},
           both),
  };
}

}  // namespace quillfile
