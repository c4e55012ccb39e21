// What every host's message boxes and forms keep, with a user in front of them.
#include "tests/contracts/contract.h"

namespace quillfile {
namespace {

using DialogsContract = Contract;
FOR_EVERY_HOST(DialogsContract);

Text onOneLine(TextView text) { return replaceAll(replaceAll(text, u"\r\n", u" "), u"\n", u" "); }

TEST_P(DialogsContract, AQuestionGivesTheUsersAnswer) {
  for (const auto answer : {Answer::yes, Answer::no, Answer::cancel}) {
    host->userAnswers(answer);
    EXPECT_EQ(ports.user.messageBox(u"May it be replaced?", u"Quillfile", Buttons::yes_no_cancel), answer);
    EXPECT_NE(host->seen().find(u"May it be replaced?"), Text::npos) << toUtf8(host->seen());
  }
}

DeletePrompt prompt() {
  return {.path = u"a & b.pdf",
          .caption = u"Quillfile",
          .message = u"An attachment was saved to: a & b.pdf\r\nWould you like to delete this file?",
          .yes = u"Yes",
          .yesToAll = u"Yes to All",
          .no = u"No",
          .noToAll = u"No to All"};
}

TEST_P(DialogsContract, EachAnswerToTheDeletePromptHasItsNumber) {
  for (std::int32_t answer = 0; answer <= 4; ++answer) {
    host->userAnswersPrompt(answer);
    EXPECT_EQ(ports.dialogs.show(prompt()), answer);
    EXPECT_NE(onOneLine(host->seen()).find(onOneLine(prompt().message)), Text::npos) << toUtf8(host->seen());
  }
}

class SaveAsContract : public Contract {
 protected:
  SaveAsRequest request(TextView name) {
    return {.fileName = Text{name},
            .initialFolder = host->folder(),
            .defaultExtension = u"pdf",
            .title = u"Quillfile",
            .filter = u"All Files (*.*)|*.*",
            .flags = 2};
  }
};
FOR_EVERY_HOST(SaveAsContract);

TEST_P(SaveAsContract, TheProposedNameIsTakenInTheInitialFolder) {
  host->userTakes(u"");
  EXPECT_EQ(ports.dialogs.show(request(u"a.pdf")), host->folder() + u"a.pdf");
}

TEST_P(SaveAsContract, AnotherNameIsTakenInTheInitialFolder) {
  host->userTakes(u"b c.pdf");
  EXPECT_EQ(ports.dialogs.show(request(u"a.pdf")), host->folder() + u"b c.pdf");
}

TEST_P(SaveAsContract, CancellingIsNone) {
  host->userTakes(std::nullopt);
  EXPECT_EQ(ports.dialogs.show(request(u"a.pdf")), std::nullopt);
}

}  // namespace
}  // namespace quillfile
