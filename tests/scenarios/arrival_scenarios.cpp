#include "tests/scenarios/items.h"

namespace quillfile {

namespace {

// One item with two attachments is added to a folder.
Scenario added(std::string name, DefaultFolder folder, std::vector<std::pair<Text, Text>> settings,
               std::vector<Text> files, const ItemData& item = plainMail) {
  return {.name = std::move(name),
          .settings = std::move(settings),
          .set =
              [=](Stage& stage) {
                stage.add(item, {pdf, xls}, folder);
              },
          .play = [=](Stage& stage) { stage.arrived(0, folder); },
          .files = std::move(files)};
}

const std::vector<Text> both{u"a.pdf", u"b.xls"};
const std::vector<Text> all{u"One.a", u"One.b", u"Three.a", u"Three.b", u"Two.a", u"Two.b"};

// Three items whose two attachments each were saved are deleted, one after the other.
Scenario deleted(std::string name, std::deque<std::int32_t> prompts, std::vector<Text> files,
                 const Text& format = u"TEXT") {
  return {.name = std::move(name),
          .set =
              [format](Stage& stage) {
                for (const TextView subject : {u"One", u"Two", u"Three"}) {
                  const Text a = fill(u"{}.a", subject), b = fill(u"{}.b", subject);
                  stage.file(a), stage.file(b);
                  stage.add(notedMail(stage, subject, format, {a, b}), {}, DefaultFolder::deleted_items);
                }
              },
          .play =
              [](Stage& stage) {
                stage.show(DefaultFolder::deleted_items);
                stage.select({0, 1, 2});
                for (Stage::Mail mail = 0; mail < 3; ++mail)
                  stage.arrived(mail, DefaultFolder::deleted_items);
              },
          .answers = {.prompts = std::move(prompts)},
          .files = std::move(files)};
}

}  // namespace

std::vector<Scenario> arrivalScenarios() {
  constexpr auto inbox = DefaultFolder::inbox, sent = DefaultFolder::sent_items;
  return {
      added("new_item", inbox, {{u"AutomaticMode", u"1"}}, both),
      added("new_item_into_the_clients_folders", inbox,
            {{u"AutomaticMode", u"1"}, {u"ImitateOutlookFolders", u"1"}}, {u"Inbox/a.pdf", u"Inbox/b.xls"}),
      added("new_item_automatic_off", inbox, {}, {}),
      added("new_html_item", inbox, {{u"AutomaticMode", u"1"}}, both, htmlMail),
      added("new_item_with_the_name_question_on", inbox,
            {{u"AutomaticMode", u"1"}, {u"OptionalRenameWanted", u"1"}}, both),
      added("sent_item", sent, {}, {}),
      added("sent_item_with_removal", sent, {{u"SendRemoveAttachments", u"1"}}, both),
      added("sent_item_with_deletion", sent, {{u"SendDeleteAttachments", u"1"}}, {}),
      added(
          "sent_item_with_deletion_from_a_monitored_folder", sent,
          {{u"SendDeleteAttachments", u"1"}, {u"AutomaticMode", u"1"}, {u"FolderEntryId1", u"Sent Items-id"}},
          {}, htmlMail),
      deleted("deleted_each_answered_no", {1, 1, 1, 1, 1, 1}, all),
      deleted("deleted_no_to_all", {2, 2, 2}, all),
      deleted("deleted_each_answered_yes", {3, 3, 3, 3, 3, 3}, {}),
      deleted("deleted_yes_to_all", {4, 4, 4}, {}),
      deleted("deleted_yes_to_all_html", {4, 4, 4}, {}, u"HTML"),
      deleted("deleted_yes_to_all_rtf", {4, 4, 4}, {}, u"RTF"),
      // A No lets an earlier Yes for the same mail stand.
      deleted("deleted_yes_then_no", {3, 1, 1, 3, 2}, {u"Three.a", u"Three.b", u"Two.a"}),
      deleted("deleted_closed_without_an_answer", {}, all),
  };
}

}  // namespace quillfile
