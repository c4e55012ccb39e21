#include "tests/windows/scenarios/scenarios.h"

namespace quillfile::windows {

namespace {

// The text of a link note to a saved file.
Text note(const Stage& stage, TextView file) {
  return fill(u"Attachment saved to <file:///{}{}>\r\n", stage.folder, file);
}

void notedFiles(Stage& stage, std::vector<Text> names) {
  for (const auto& name : names) stage.file(name, 32);
}

// A mail whose attachments were saved as files that are there.
std::shared_ptr<FakeItem> saved(Stage& stage, const Text& subject, const Text& format,
                                std::vector<Text> files, DefaultFolder folder = DefaultFolder::inbox) {
  ItemData data{.subject = subject, .format = format, .body = u"Hello\r\n"};
  data.htmlBody = u"<html><body>Hello";
  data.rtfBody = u"{\\rtf1 Hello";
  for (const auto& file : files) {
    const Text link = fill(u"file:///{}{}", stage.folder, file);
    data.body += note(stage, file);
    data.htmlBody += fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link, link);
    data.rtfBody += fill(u"\\par\r\nAttachment saved to <{}>\\par", replaceAll(link, u"\\", u"\\\\"));
  }
  data.htmlBody += u"</body></html>";
  data.rtfBody += u"}";
  notedFiles(stage, files);
  return stage.world.addItem(data, folder);
}

void note(Stage& stage, TextView what, bool cancelled) {
  stage.world.record.did(fill(u"{}: {}", what, cancelled ? TextView{u"cancelled"} : TextView{u"goes on"}));
}

constexpr Response responses[] = {Response::forward, Response::reply, Response::reply_all};

// The user selects the first item of the Inbox and answers it in each way.
void answerSelected(Stage& stage, Driver&) {
  const auto item = stage.world.folder(DefaultFolder::inbox)->items.front();
  stage.world.explorer->select({item});
  for (const auto response : responses) note(stage, u"answer", item->raiseRespond(response));
}

// The user opens the first item of the Inbox and answers it in each way.
void answerOpened(Stage& stage, Driver& driver) {
  const auto item = stage.world.folder(DefaultFolder::inbox)->items.front();
  driver.openInspector(item);
  for (const auto response : responses) note(stage, u"answer", item->raiseRespond(response));
}

Scenario answered(const std::string& name, const Text& format, void (*play)(Stage&, Driver&),
                  std::vector<std::pair<Text, Text>> settings = {}) {
  return {.name = name,
          .settings = std::move(settings),
          .act =
              [format](Stage& stage) {
                saved(stage, u"Invoices", format, {u"a.pdf", u"b.xls"});
              },
          .play = play};
}

Scenario deleted(const std::string& name, std::deque<std::int32_t> prompts, const Text& format = u"TEXT") {
  return {.name = name,
          .act =
              [format](Stage& stage) {
                std::vector<Ref<Item>> items;
                for (const TextView subject : {u"One", u"Two", u"Three"}) {
                  items.push_back(saved(stage, Text{subject}, format,
                                        {fill(u"{}.a", subject), fill(u"{}.b", subject)},
                                        DefaultFolder::deleted_items));
                }
                stage.world.explorer->selected = items;
              },
          .play =
              [](Stage& stage, Driver& driver) {
                const auto items = stage.world.folder(DefaultFolder::deleted_items)->items;
                for (const auto& item : items) driver.itemAdded(item, DefaultFolder::deleted_items);
              },
          .answers = {.boxes = {}, .prompts = std::move(prompts), .paths = {}}};
}

// Opens more items of a type than there are slots, closes one, opens another; each is written, then sent.
void openEleven(Stage& stage, Driver& driver, TextView type) {
  std::vector<std::shared_ptr<FakeItem>> items;
  for (std::int32_t number = 1; number <= 12; ++number) {
    items.push_back(stage.world.addItem(
        {.subject = fill(u"{} {}", type, number), .type = Text{type}, .saved = number % 2 == 0}));
    if (number == 12) note(stage, u"close", items[2]->raiseClose());
    driver.openInspector(items.back());
  }
  for (const auto& item : items) {
    note(stage, u"write", item->raiseWrite());
    note(stage, u"reply", item->raiseRespond(Response::reply));
    note(stage, u"send", item->raiseSend());
    note(stage, u"close", item->raiseClose());
  }
}

}  // namespace

std::vector<Scenario> itemScenarios() {
  std::vector<Scenario> all{
      answered("text_answered_from_the_explorer", u"TEXT", answerSelected),
      answered("html_answered_from_the_explorer", u"HTML", answerSelected),
      answered("rtf_answered_from_the_explorer", u"RTF", answerSelected),
      answered("text_answered_from_a_slot", u"TEXT", answerOpened),
      answered("html_answered_from_a_slot", u"HTML", answerOpened),
      answered("rtf_answered_from_a_slot", u"RTF", answerOpened),
      answered("answered_with_reattaching_off", u"TEXT", answerOpened, {{u"AutomaticReattachWanted", u"0"}}),
      {.name = "answered_in_the_outbox",
       .act = [](Stage& stage) { saved(stage, u"Invoices", u"TEXT", {u"a.pdf"}); },
       .play =
           [](Stage& stage, Driver& driver) {
             stage.world.explorer->folder = stage.world.folder(DefaultFolder::outbox);
             answerOpened(stage, driver);
             answerSelected(stage, driver);
           }},
      {.name = "linked_file_that_is_gone",
       .act =
           [](Stage& stage) {
             stage.world.addItem({.subject = u"Invoices", .body = note(stage, u"missing.pdf")});
           },
       .play = answerOpened},
      {.name = "selection_of_every_type",
       .play =
           [](Stage& stage, Driver&) {
             for (const TextView type :
                  {u"MailItem", u"PostItem", u"MeetingItem", u"ReportItem", u"ContactItem"}) {
               const auto item = stage.world.addItem({.subject = Text{type}, .type = Text{type}});
               stage.world.explorer->select({item});
               note(stage, u"forward", item->raiseRespond(Response::forward));
             }
             stage.world.explorer->select({});
             stage.world.explorer->selected.reset();
             stage.world.explorer->listeners.raise(
                 [](ExplorerEvents& events) { events.onSelectionChange(); });
           }},
      {.name = "another_explorer_takes_the_place",
       .act = [](Stage& stage) { saved(stage, u"Invoices", u"TEXT", {u"a.pdf"}); },
       .play =
           [](Stage& stage, Driver& driver) {
             driver.openExplorer();
             answerSelected(stage, driver);
           }},
      {.name = "three_selected_are_forwarded",
       .play =
           [](Stage& stage, Driver&) {
             const auto one = saved(stage, u"One", u"TEXT", {u"1.pdf"});
             const auto two = stage.world.addItem({.subject = u"Two", .type = u"AppointmentItem"});
             const auto three = saved(stage, u"Three", u"HTML", {u"3.pdf"});
             stage.world.explorer->select({one, two, three});
             note(stage, u"forward", one->raiseRespond(Response::forward));
             note(stage, u"reply to all", one->raiseRespond(Response::reply_all));
           }},
      deleted("deleted_each_answered_no", {1, 1, 1, 1, 1, 1}),
      deleted("deleted_no_to_all", {2, 3, 3}),
      deleted("deleted_each_answered_yes", {3, 3, 3, 3, 3, 3}),
      deleted("deleted_yes_to_all", {4}),
      deleted("deleted_yes_to_all_html", {4}, u"HTML"),
      deleted("deleted_yes_then_no", {3, 1, 1, 3, 2}),
      deleted("deleted_closed_without_an_answer", {}),
  };
  for (const TextView type : {u"MailItem", u"PostItem", u"MeetingItem", u"ReportItem"}) {
    all.push_back({.name = "twelve_opened_" + toUtf8(type),
                   .play = [type](Stage& stage, Driver& driver) { openEleven(stage, driver, type); }});
  }
  return all;
}

}  // namespace quillfile::windows
