#include "core/files/frm_yes_no_prompt.h"

namespace quillfile {
namespace {

// The form's localised texts by number, in the order in which they are loaded.
struct LocalisedText {
  std::int32_t number;
  Text DeletePrompt::*control;
};
constexpr LocalisedText localisedTexts[] = {
    {175, &DeletePrompt::caption},  {176, &DeletePrompt::message}, {177, &DeletePrompt::yes},
    {178, &DeletePrompt::yesToAll}, {179, &DeletePrompt::no},      {180, &DeletePrompt::noToAll},
};

}  // namespace

void frmYesNoPrompt::Show() {
  response_ = 0;
  response_ = dialogs_.show(loaded());
}

DeletePrompt frmYesNoPrompt::loaded() {
  DeletePrompt prompt{
      .path = FileToBeDeletedPath,
      .caption = u"Quillfile",
      .message =
          fill(u"An attachment was saved to: {}\r\nWould you like to delete this file?", FileToBeDeletedPath),
      .yes = u"Yes",
      .yesToAll = u"Yes to All",
      .no = u"No",
      .noToAll = u"No to All"};
  services_.prepareForm(prompt.form);
  if (!LangStrings) return prompt;
  for (const auto& [number, control] : localisedTexts)
    if (auto text = LangStrings->text(number)) prompt.*control = *std::move(text);
  return prompt;
}

}  // namespace quillfile
