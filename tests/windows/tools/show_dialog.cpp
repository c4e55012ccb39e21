// Shows one of the module's windows for a while, to be looked at: show_dialog prompt|save-as|box|question
#include <cstdlib>
#include <string_view>
#include <thread>

#include "hosts/windows/services/dialogs.h"
#include "hosts/windows/services/user.h"

using namespace quillfile;
using namespace quillfile::windows;

int main(int argc, char** argv) {
  const std::string_view which = argc > 1 ? argv[1] : "prompt";
  std::thread{[] {
    std::this_thread::sleep_for(std::chrono::seconds(8));
    std::_Exit(0);
  }}.detach();
  if (which == "box") {
    DesktopUser{}.messageBox(u"Processing complete.  2 attachments removed.", u"Quillfile", Buttons::ok);
  } else if (which == "question") {
    DesktopUser{}.messageBox(
        u"Warning: A file with the same name ('report.pdf') already exists and is read-only.\r\n"
        u"Would you like to rename the file?",
        u"Quillfile", Buttons::yes_no_cancel);
  } else if (which == "save-as") {
    DesktopDialogs{}.show(SaveAsRequest{.fileName = u"report.pdf",
                                        .initialFolder = u"C:\\users\\Public\\Documents",
                                        .defaultExtension = u"pdf",
                                        .title = u"Quillfile",
                                        .filter = u"All Files (*.*)|*.*",
                                        .flags = 2});
  } else {
    DesktopDialogs{}.show(DeletePrompt{
        .path = {},
        .caption = u"Quillfile",
        .message =
            u"An attachment was saved to: C:\\Users\\Ada\\Documents\\Saved Attachments\\Inbox\\report.pdf\r\n"
            u"Would you like to delete this file?",
        .yes = u"Yes",
        .yesToAll = u"Yes to All",
        .no = u"No",
        .noToAll = u"No to All"});
  }
}
