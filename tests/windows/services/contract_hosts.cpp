// The services of the Windows host, for the contract suites; the fakes stand beside them.
#include "hosts/windows/services/dates.h"
#include "hosts/windows/services/delete_prompt_ids.h"
#include "hosts/windows/services/dialogs.h"
#include "hosts/windows/services/file_times.h"
#include "hosts/windows/services/files.h"
#include "hosts/windows/services/letters.h"
#include "hosts/windows/services/registry_settings.h"
#include "hosts/windows/services/system.h"
#include "hosts/windows/services/user.h"
#include "tests/contracts/host_services.h"
#include "tests/windows/services/answering.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {

namespace {

constexpr int messageText = 0xFFFF;  // of a message box
constexpr int nameField = 0x47C;     // of the Save-As dialog

class WindowsServices final : public HostServices {
 public:
  WindowsServices() { forgetSettings(); }
  ~WindowsServices() override { forgetSettings(); }

  ServicePorts ports() override {
    return {.files = files_,
            .times = times_,
            .settings = settings_,
            .dates = dates_,
            .letters = letters_,
            .clock = clock_,
            .programs = programs_,
            .user = desktop_,
            .dialogs = dialogs_,
            .paths = PathRules::windows()};
  }

  Text folder() override { return folder_.path() + u"\\"; }
  Text file(TextView name) override { return folder_.file(name); }
  FileTimes::FileTime lastWrite(TextView path) override {
    WIN32_FILE_ATTRIBUTE_DATA found;
    if (!GetFileAttributesExW(wide(Text{path}), GetFileExInfoStandard, &found)) return 0;
    return std::bit_cast<FileTimes::FileTime>(found.ftLastWriteTime);
  }
  std::shared_ptr<void> hold(TextView path, int milliseconds) override {
    const HANDLE file = CreateFileW(wide(Text{path}), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (milliseconds == 0) return {file, [](void* held) { CloseHandle(held); }};
    auto* letsGo = new std::thread{[=] {
      Sleep(static_cast<DWORD>(milliseconds));
      CloseHandle(file);
    }};
    return {letsGo, [](std::thread* thread) {
              thread->join();
              delete thread;
            }};
  }

  void userAnswers(Answer answer) override {
    const int button = answer == Answer::yes ? IDYES : answer == Answer::no ? IDNO : IDCANCEL;
    user_ = std::make_unique<Answering>(u"Quillfile", [=, this](HWND window) {
      seen_ = Answering::textOf(window, messageText);
      Answering::press(window, button);
    });
  }
  void userAnswersPrompt(std::int32_t answer) override {
    user_ = std::make_unique<Answering>(u"Quillfile", [=, this](HWND window) {
      seen_ = Answering::textOf(window, LBL_WINDOW_MESSAGE);
      Answering::press(window, answer == 0 ? IDCANCEL : CMD_NO + answer - 1);
    });
  }
  void userTakes(std::optional<Text> name) override {
    user_ = std::make_unique<Answering>(u"Quillfile", [=](HWND window) {
      Text chosen = name.value_or(u"");
      if (!chosen.empty())
        SendDlgItemMessageW(window, nameField, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(wide(chosen)));
      Answering::press(window, name ? IDOK : IDCANCEL);
    });
  }
  Text seen() override {
    user_.reset();  // joined
    return seen_;
  }

 private:
  static void forgetSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\Corvane");
  }

  TemporaryFolder folder_;
  DiskFiles files_;
  DiskFileTimes times_;
  RegistrySettings settings_;
  LocaleDates dates_;
  SystemLetters letters_;
  SystemClock clock_;
  SystemPrograms programs_;
  DesktopUser desktop_;
  DesktopDialogs dialogs_;
  std::unique_ptr<Answering> user_;
  Text seen_;
};

}  // namespace
}  // namespace quillfile::windows

namespace quillfile {

std::vector<ContractHost> contractHosts() {
  auto hosts = fakeHosts();
  hosts.push_back({"Windows", [] { return std::make_unique<windows::WindowsServices>(); }});
  return hosts;
}

}  // namespace quillfile
