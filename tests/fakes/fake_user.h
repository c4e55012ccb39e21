// The user, with scripted answers. Without a script the answers are the careful ones: OK, Cancel, no answer.
#pragma once

#include <deque>
#include <functional>

#include "core/platform/user_interface.h"
#include "tests/fakes/fake_system.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

class FakeUser : public UserInterface {
 public:
  FakeUser(Recorder& record, FakeClock& clock) : record_(record), clock_(clock) {}

  std::deque<Answer> answers;  // to the message boxes that ask, in turn
  // What happens while pending events are processed; by default a second passes.
  std::function<void()> whilePending = [this] { ++clock_.now; };

  Answer messageBox(TextView text, TextView title, Buttons buttons) override {
    record_.asked(u"UserInterface.messageBox");
    record_.did(fill(buttons == Buttons::ok ? u"message box {}: {}" : u"question {}: {}", title, text));
    if (buttons == Buttons::ok) return Answer::ok;
    return next(answers, Answer::cancel);
  }
  void setPointer(Pointer pointer) override {
    record_.asked(u"UserInterface.setPointer");
    record_.did(fill(u"pointer {}", static_cast<std::int32_t>(pointer)));
  }
  void processPendingEvents() override {
    record_.asked(u"UserInterface.processPendingEvents");
    record_.did(u"pending events");
    whilePending();
  }

  template <class T>
  static T next(std::deque<T>& script, T otherwise) {
    if (script.empty()) return otherwise;
    T answer = std::move(script.front());
    script.pop_front();
    return answer;
  }

 private:
  Recorder& record_;
  FakeClock& clock_;
};

class FakeDialogs : public Dialogs {
 public:
  explicit FakeDialogs(Recorder& record) : record_(record) {}

  std::deque<std::int32_t> promptAnswers;       // to frmYesNoPrompt, in turn; 0 without one
  std::deque<std::optional<Text>> chosenPaths;  // to the Save-As dialog, in turn; cancelled without one
  std::vector<DeletePrompt> prompts;            // as they were shown
  std::vector<SaveAsRequest> requests;

  std::int32_t show(const DeletePrompt& prompt) override {
    record_.asked(u"Dialogs.showDeletePrompt");
    prompts.push_back(prompt);
    record_.did(fill(u"prompt {}", prompt.message));
    return FakeUser::next(promptAnswers, 0);
  }
  std::optional<Text> show(const SaveAsRequest& request) override {
    record_.asked(u"Dialogs.showSaveAs");
    requests.push_back(request);
    record_.did(fill(u"save-as dialog {}: name {}, folder {}, extension {}, filter {}, flags {}",
                     request.title, request.fileName, request.initialFolder, request.defaultExtension,
                     request.filter, request.flags));
    return FakeUser::next(chosenPaths, std::optional<Text>{});
  }

 private:
  Recorder& record_;
};

}  // namespace quillfile
