// The services of the mailbox host, for the contract suites.
#include <sys/stat.h>

#include "hosts/mailbox/engine/host_user.h"
#include "hosts/mailbox/services/batch.h"
#include "hosts/mailbox/services/clock.h"
#include "hosts/mailbox/services/dates.h"
#include "hosts/mailbox/services/file_system.h"
#include "hosts/mailbox/services/file_times.h"
#include "hosts/mailbox/services/letters.h"
#include "hosts/mailbox/services/programs.h"
#include "hosts/mailbox/services/settings_file.h"
#include "tests/contracts/host_services.h"
#include "tests/mailbox/support/scripted_terminal.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {

namespace {

constexpr FileTimes::FileTime unixEpoch = 116'444'736'000'000'000, second = 10'000'000;

class MailboxServices final : public HostServices {
 public:
  MailboxServices() { std::filesystem::create_directory(root_ / "files"); }

  ServicePorts ports() override {
    return {.files = files_,
            .times = times_,
            .settings = settings_,
            .dates = dates_,
            .letters = letters_,
            .clock = clock_,
            .programs = programs_,
            .user = user_,
            .dialogs = user_,
            .paths = PathRules::posix()};
  }

  Text folder() override { return fromUtf8(root_ / "files/"); }
  Text file(TextView name) override {
    const Text path = folder() + Text{name};
    writeFile(toUtf8(path), "content");
    return path;
  }
  FileTimes::FileTime lastWrite(TextView path) override {
    struct stat status {};
    if (::stat(toUtf8(path).c_str(), &status) != 0) return 0;
    return unixEpoch + static_cast<FileTimes::FileTime>(status.st_mtim.tv_sec) * second +
           static_cast<FileTimes::FileTime>(status.st_mtim.tv_nsec) / 100;
  }
  std::shared_ptr<void> hold(TextView, int) override { return nullptr; }

  void userAnswers(Answer answer) override {
    typesKeys(answer == Answer::yes ? "y" : answer == Answer::no ? "n" : "c");
  }
  void userAnswersPrompt(std::int32_t answer) override {
    constexpr const char* keys[] = {"", "n", "o", "y", "a"};
    typesKeys(keys[answer]);
  }
  void userTakes(std::optional<Text> name) override { terminal_.lines = {name ? toUtf8(*name) : "-"}; }
  Text seen() override { return fromUtf8(terminal_.shown); }

 private:
  void typesKeys(const char* keys) {
    terminal_.shown.clear();
    terminal_.keys = keys;
  }

  TemporaryFolder root_;
  RunReport report_{RunReport::Listeners{}};
  Batch batch_{report_};
  HostFileSystem files_{batch_.files()};
  HostFileTimes times_{batch_.files()};
  SettingsFile settings_{root_ / "settings.ini"};
  LocaleDates dates_{DateWords::of("")};
  UnicodeLetters letters_;
  WallClock clock_;
  HostPrograms programs_{nullptr};
  ScriptedTerminal terminal_;
  Progress progress_{terminal_, false};
  Prompts prompts_{terminal_, std::nullopt,
                   [](const std::string& path) { return std::filesystem::exists(path); }};
  HostUser user_{prompts_, progress_, report_};
};

}  // namespace
}  // namespace quillfile::mailbox

namespace quillfile {

std::vector<ContractHost> contractHosts() {
  return {{"Mailbox", [] { return std::make_unique<mailbox::MailboxServices>(); }}};
}

}  // namespace quillfile
