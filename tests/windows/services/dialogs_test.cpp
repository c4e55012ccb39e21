#include "hosts/windows/services/dialogs.h"

#include <gtest/gtest.h>

#include "hosts/windows/services/delete_prompt_ids.h"
#include "hosts/windows/services/user.h"
#include "tests/windows/services/answering.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {
namespace {

constexpr int messageText = 0xFFFF;  // of a message box
constexpr int nameField = 0x47C;     // of the Save-As dialog

TEST(MessageBox, ItShowsTextAndTitleAndGivesTheAnswer) {
  struct Row {
    Buttons buttons;
    int press;
    Answer answer;
  };
  for (const auto& row : {Row{Buttons::ok, IDOK, Answer::ok}, Row{Buttons::yes_no_cancel, IDYES, Answer::yes},
                          Row{Buttons::yes_no_cancel, IDNO, Answer::no},
                          Row{Buttons::yes_no_cancel, IDCANCEL, Answer::cancel}}) {
    Text shown;
    Answering user{u"Quillfile", [&](HWND window) {
                     shown = Answering::textOf(window, messageText);
                     Answering::press(window, row.press);
                   }};
    EXPECT_EQ(
        DesktopUser{}.messageBox(u"Processing complete.  1 attachment removed.", u"Quillfile", row.buttons),
        row.answer);
    EXPECT_TRUE(user.found());
    EXPECT_EQ(shown, u"Processing complete.  1 attachment removed.");
  }
}

DeletePrompt prompt() {
  return {
      .path = u"C:\\Saved\\a & b.pdf",
      .caption = u"Delete prompt",
      .message = u"An attachment was saved to: C:\\Saved\\a & b.pdf\r\nWould you like to delete this file?",
      .yes = u"Yes",
      .yesToAll = u"Yes to All",
      .no = u"No",
      .noToAll = u"No to All"};
}

TEST(DeletePromptDialog, EachButtonGivesItsAnswer) {
  struct Row {
    int press;
    std::int32_t answer;
  };
  for (const auto& row :
       {Row{CMD_NO, 1}, Row{CMD_NO_TO_ALL, 2}, Row{CMD_YES, 3}, Row{CMD_YES_TO_ALL, 4}, Row{IDCANCEL, 0}}) {
    Answering user{u"Delete prompt", [&](HWND window) { Answering::press(window, row.press); }};
    EXPECT_EQ(DesktopDialogs{}.show(prompt()), row.answer);
    EXPECT_TRUE(user.found());
  }
}

TEST(DeletePromptDialog, ItShowsTheTextsThatItIsGiven) {
  Text message, yes, yesToAll, no, noToAll;
  Answering user{u"Delete prompt", [&](HWND window) {
                   message = Answering::textOf(window, LBL_WINDOW_MESSAGE);
                   yes = Answering::textOf(window, CMD_YES);
                   yesToAll = Answering::textOf(window, CMD_YES_TO_ALL);
                   no = Answering::textOf(window, CMD_NO);
                   noToAll = Answering::textOf(window, CMD_NO_TO_ALL);
                   Answering::press(window, CMD_NO);
                 }};
  DesktopDialogs{}.show(prompt());
  EXPECT_TRUE(user.found());
  EXPECT_EQ(message, prompt().message);
  EXPECT_EQ(yes, u"Yes");
  EXPECT_EQ(yesToAll, u"Yes to All");
  EXPECT_EQ(no, u"No");
  EXPECT_EQ(noToAll, u"No to All");
}

// The key goes to the control that has the focus, as the keyboard's would.
void type(HWND window, WPARAM key) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof thread;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread);
  PostMessageW(thread.hwndFocus, WM_KEYDOWN, key, 0);
}

TEST(DeletePromptDialog, TheReturnKeyIsTheCarefulAnswerAndEscapeIsNone) {
  struct Row {
    WPARAM key;
    std::int32_t answer;
  };
  for (const auto& row : {Row{VK_RETURN, 1}, Row{VK_ESCAPE, 0}}) {
    Answering user{u"Delete prompt", [&](HWND window) { type(window, row.key); }};
    EXPECT_EQ(DesktopDialogs{}.show(prompt()), row.answer);
    EXPECT_TRUE(user.found());
  }
}

SaveAsRequest request(const TemporaryFolder& folder) {
  return {.fileName = u"a.pdf",
          .initialFolder = folder.path(),
          .defaultExtension = u"pdf",
          .title = u"Quillfile",
          .filter = u"All Files (*.*)|*.*",
          .flags = 2};
}

TEST(SaveAsDialog, TheProposedNameIsTakenInTheInitialFolder) {
  TemporaryFolder folder;
  Answering user{u"Quillfile", [&](HWND window) { Answering::press(window, IDOK); }};
  EXPECT_EQ(DesktopDialogs{}.show(request(folder)), folder / u"a.pdf");
  EXPECT_TRUE(user.found());
}

TEST(SaveAsDialog, AnotherNameGetsTheDefaultExtension) {
  TemporaryFolder folder;
  Answering user{u"Quillfile", [&](HWND window) {
                   SendDlgItemMessageW(window, nameField, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"other"));
                   Answering::press(window, IDOK);
                 }};
  EXPECT_EQ(DesktopDialogs{}.show(request(folder)), folder / u"other.pdf");
  EXPECT_TRUE(user.found());
}

TEST(SaveAsDialog, CancellingIsNone) {
  TemporaryFolder folder;
  Answering user{u"Quillfile", [&](HWND window) { Answering::press(window, IDCANCEL); }};
  EXPECT_EQ(DesktopDialogs{}.show(request(folder)), std::nullopt);
  EXPECT_TRUE(user.found());
}

TEST(SaveAsDialog, TheClientsOwnFolderStaysWhereItWas) {
  wchar_t before[MAX_PATH], after[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, before);
  TemporaryFolder folder;
  Answering user{u"Quillfile", [&](HWND window) { Answering::press(window, IDOK); }};
  DesktopDialogs{}.show(request(folder));
  GetCurrentDirectoryW(MAX_PATH, after);
  EXPECT_EQ(view(after), view(before));
}

}  // namespace
}  // namespace quillfile::windows
