#include "tests/scenarios/items.h"

namespace quillfile {

namespace {

// Two attachments are saved, removed and linked.
Scenario saved(std::string name, const ItemData& item, std::vector<std::pair<Text, Text>> settings = {}) {
  return {.name = std::move(name),
          .settings = std::move(settings),
          .set = one(item, {pdf, xls}),
          .files = {u"a.pdf", u"b.xls"}};
}

const std::vector<std::pair<Text, Text>> atTheTop{{u"LinkLocation", u"Top"}};

// A file "a.pdf" was saved earlier, and cannot be written.
Scenario overReadOnly(std::string name, Answers answers, std::vector<Text> files) {
  return {.name = std::move(name),
          .set =
              [](Stage& stage) {
                stage.file(u"a.pdf", true);
                stage.add(plainMail, {pdf, xls});
              },
          .answers = std::move(answers),
          .files = std::move(files)};
}

void threeMails(Stage& stage) {
  for (const TextView subject : {u"One", u"Two", u"Three"}) {
    stage.add({.subject = Text{subject}},
              {{.fileName = fill(u"{}.txt", subject), .displayName = Text{subject}}});
  }
}

}  // namespace

std::vector<Scenario> savingScenarios() {
  return {
      saved("text", plainMail),
      saved("text_link_at_the_top", plainMail, atTheTop),
      saved("html", htmlMail),
      saved("html_link_at_the_top", htmlMail, atTheTop),
      saved("html_without_a_body", {.subject = u"Invoices", .format = u"HTML"}),
      saved("rtf", rtfMail),
      saved("rtf_that_is_none",
            {.subject = u"Invoices", .format = u"RTF", .body = u"abc", .rtfBody = u"abc"}),
      saved("post", {.subject = u"Invoices", .type = u"PostItem"}),
      {.name = "meeting", .set = one({.subject = u"Invoices", .type = u"MeetingItem"}, {pdf})},
      {.name = "appointment",
       .set = one({.subject = u"Invoices", .type = u"AppointmentItem"}, {pdf}),
       .files = {}},
      {.name = "nothing_selected"},
      {.name = "hotkey",
       .set = one(plainMail, {pdf}),
       .play =
           [](Stage& stage) {
             stage.select({0});
             stage.hotkey();
           },
       .files = {u"a.pdf"}},
      {.name = "odd_attachments",
       .set = one(plainMail,
                  {{.fileName = u"a.bin", .displayName = u"a.bin", .type = AttachmentType::ole},
                   {.fileName = u"", .displayName = u"Fwd lunch", .type = AttachmentType::embedded_item},
                   {.fileName = u"a#b?c&d.txt", .displayName = u"x"},
                   {.fileName = u"Paperclip.ico", .displayName = u"x"},
                   {.fileName = u"\u4E2D\u6587 \U0001F4CE.pdf", .displayName = u"x"}}),
       .files = {u"Fwd lunch.txt", u"a-b-c-d.txt", u"\u4E2D\u6587 \U0001F4CE.pdf"}},
      {.name = "same_name_three_times", .set = one(plainMail, {pdf, pdf, pdf}), .files = {u"a.pdf"}},
      {.name = "same_name_three_times_numbered",
       .settings = {{u"AutomaticRename", u"1"}},
       .set = one(plainMail, {pdf, pdf, pdf}),
       .files = {u"a-1.pdf", u"a-2.pdf", u"a.pdf"}},
      {.name = "a_file_that_was_there",
       .set =
           [](Stage& stage) {
             stage.file(u"a.pdf");
             stage.add(plainMail, {pdf});
           },
       .files = {u"a.pdf"}},
      {.name = "a_file_that_was_there_numbered",
       .settings = {{u"AutomaticRename", u"1"}},
       .set =
           [](Stage& stage) {
             stage.file(u"a.pdf");
             stage.add(plainMail, {pdf});
           },
       .files = {u"a-1.pdf", u"a.pdf"}},
      overReadOnly("a_read_only_file_and_another_name", {.boxes = {Answer::yes}, .fileNames = {u"c.pdf"}},
                   {u"a.pdf", u"b.xls", u"c.pdf"}),
      overReadOnly("a_read_only_file_and_no_other_name", {.boxes = {Answer::yes}}, {u"a.pdf", u"b.xls"}),
      overReadOnly("a_read_only_file_kept", {.boxes = {Answer::no}}, {u"a.pdf", u"b.xls"}),
      overReadOnly("a_read_only_file_cancelled", {.boxes = {Answer::cancel}}, {u"a.pdf", u"b.xls"}),
      {.name = "save_as_another_name",
       .settings = {{u"OptionalRenameWanted", u"1"}},
       .set = one(plainMail, {pdf}),
       .answers = {.fileNames = {u"other.pdf"}},
       .files = {u"other.pdf"}},
      {.name = "save_as_cancelled",
       .settings = {{u"OptionalRenameWanted", u"1"}},
       .set = one(plainMail, {pdf, xls})},
      {.name = "three_selected_last_first",
       .set = threeMails,
       .files = {u"One.txt", u"Three.txt", u"Two.txt"}},
      {.name = "selected_and_saved_again",
       .set = one(plainMail, {pdf}),
       .play =
           [](Stage& stage) {
             stage.select({0});
             stage.button();
             stage.button();
           },
       .files = {u"a.pdf"}},
      {.name = "refreshed_button_and_hotkey",
       .settings = {{u"EnableButton", u"1"}, {u"HotkeyEnabled", u"1"}, {u"OldMods", u"4"}},
       .play =
           [](Stage& stage) {
             stage.message(u"RefreshButton");
             stage.message(u"RefreshHotkey");
             stage.message(u"refreshhotkey");
             stage.closeExplorer();
           }},
  };
}

}  // namespace quillfile
