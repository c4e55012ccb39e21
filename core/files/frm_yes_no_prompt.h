// frmYesNoPrompt: asks whether a saved file is to be deleted; Yes, Yes to All, No, No to All.
#pragma once

#include "core/platform/engine.h"
#include "core/platform/user_interface.h"

namespace quillfile {

class frmYesNoPrompt {
 public:
  static constexpr std::int32_t ResponseNo = 1;
  static constexpr std::int32_t ResponseNoToAll = 2;
  static constexpr std::int32_t ResponseYes = 3;
  static constexpr std::int32_t ResponseYesToAll = 4;

  frmYesNoPrompt(EngineServices& services, Dialogs& dialogs) : services_(services), dialogs_(dialogs) {}

  Ref<LanguageStrings> LangStrings;  // the form's texts; Nothing: the English ones stay
  Text FileToBeDeletedPath;

  void Show();                                         // modal. Throws Failure
  std::int32_t Response() const { return response_; }  // one of the four; 0 before any button is pressed

 private:
  DeletePrompt loaded();

  EngineServices& services_;
  Dialogs& dialogs_;
  std::int32_t response_ = 0;
};

}  // namespace quillfile
