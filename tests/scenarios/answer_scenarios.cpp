#include "tests/scenarios/items.h"

namespace quillfile {

namespace {

constexpr Doing answers[] = {Doing::forward, Doing::reply, Doing::reply_all};

void answerInEachWay(Stage& stage, Stage::Mail mail) {
  for (const auto answer : answers) stage.does(mail, answer);
}
void answerSelected(Stage& stage) {
  stage.select({0});
  answerInEachWay(stage, 0);
}
void answerOpened(Stage& stage) {
  stage.open(0);
  answerInEachWay(stage, 0);
}

// A mail whose attachments were saved as files that are there.
auto savedMail(const Text& format, std::vector<Text> files) {
  return [=](Stage& stage) {
    for (const auto& file : files) stage.file(file);
    stage.add(notedMail(stage, u"Invoices", format, files));
  };
}

Scenario answered(std::string name, const Text& format, void (*play)(Stage&),
                  std::vector<std::pair<Text, Text>> settings = {}) {
  return {.name = std::move(name),
          .settings = std::move(settings),
          .set = savedMail(format, {u"a.pdf", u"b.xls"}),
          .play = play,
          .files = {u"a.pdf", u"b.xls"}};
}

// Opens more items of a type than there are slots, closes one, opens another; each is written, answered, sent
// and closed.
void openTwelve(Stage& stage, TextView type) {
  for (std::int32_t number = 1; number <= 12; ++number) {
    const auto mail =
        stage.add({.subject = fill(u"{} {}", type, number), .type = Text{type}, .saved = number % 2 == 0});
    if (number == 12) stage.does(2, Doing::close);
    stage.open(mail);
  }
  for (Stage::Mail mail = 0; mail < 12; ++mail)
    for (const auto doing : {Doing::write, Doing::reply, Doing::send, Doing::close}) stage.does(mail, doing);
}

}  // namespace

std::vector<Scenario> answerScenarios() {
  std::vector<Scenario> all{
      answered("text_answered_from_the_explorer", u"TEXT", answerSelected),
      answered("html_answered_from_the_explorer", u"HTML", answerSelected),
      answered("rtf_answered_from_the_explorer", u"RTF", answerSelected),
      answered("text_answered_from_a_slot", u"TEXT", answerOpened),
      answered("html_answered_from_a_slot", u"HTML", answerOpened),
      answered("rtf_answered_from_a_slot", u"RTF", answerOpened),
      answered("answered_with_reattaching_off", u"TEXT", answerOpened, {{u"AutomaticReattachWanted", u"0"}}),
      {.name = "answered_without_links", .set = one(plainMail, {pdf}), .play = answerOpened},
      {.name = "answered_in_the_outbox",
       .set = savedMail(u"TEXT", {u"a.pdf"}),
       .play =
           [](Stage& stage) {
             stage.show(DefaultFolder::outbox);
             answerOpened(stage);
             answerSelected(stage);
           },
       .files = {u"a.pdf"}},
      {.name = "linked_file_that_is_gone",
       .set = [](Stage& stage) { stage.add(notedMail(stage, u"Invoices", u"TEXT", {u"missing.pdf"})); },
       .play = answerOpened},
      {.name = "selection_of_every_type",
       .play =
           [](Stage& stage) {
             for (const TextView type :
                  {u"MailItem", u"PostItem", u"MeetingItem", u"ReportItem", u"ContactItem"}) {
               const auto mail = stage.add({.subject = Text{type}, .type = Text{type}});
               stage.select({mail});
               stage.does(mail, Doing::forward);
             }
             stage.select({});
             stage.selectNothing();
           }},
      {.name = "another_explorer_takes_the_place",
       .set = savedMail(u"TEXT", {u"a.pdf"}),
       .play =
           [](Stage& stage) {
             stage.openExplorer();
             answerSelected(stage);
           },
       .files = {u"a.pdf"}},
      {.name = "three_selected_are_forwarded",
       .set =
           [](Stage& stage) {
             savedMail(u"TEXT", {u"1.pdf"})(stage);
             stage.add({.subject = u"Two", .type = u"AppointmentItem"});
             savedMail(u"HTML", {u"3.pdf"})(stage);
           },
       .play =
           [](Stage& stage) {
             stage.select({0, 1, 2});
             stage.does(0, Doing::forward);
             stage.does(0, Doing::reply_all);
           },
       .files = {u"1.pdf", u"3.pdf"}},
      {.name = "saved_then_answered",
       .set = one(plainMail, {pdf, xls}),
       .play =
           [](Stage& stage) {
             stage.select({0});
             stage.button();
             answerInEachWay(stage, 0);
           },
       .files = {u"a.pdf", u"b.xls"}},
  };
  for (const TextView type : {u"MailItem", u"PostItem", u"MeetingItem", u"ReportItem"}) {
    all.push_back(
        {.name = "twelve_opened_" + toUtf8(type), .play = [type](Stage& stage) { openTwelve(stage, type); }});
  }
  return all;
}

}  // namespace quillfile
