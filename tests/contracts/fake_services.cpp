// The fakes as a host of the contract suites.
#include "tests/contracts/host_services.h"
#include "tests/fakes/fake_platform.h"

namespace quillfile {

namespace {

class FakeServicesHost final : public HostServices {
 public:
  explicit FakeServicesHost(const PathRules& rules) : world_{rules}, folder_{world_.path(u"C:\\Contract\\")} {
    world_.files.addFolder(folder_);
  }

  ServicePorts ports() override {
    return {.files = world_.files,
            .times = world_.files,
            .settings = world_.settings,
            .dates = world_.dates,
            .letters = world_.letters,
            .clock = world_.clock,
            .programs = world_.programs,
            .user = world_.user,
            .dialogs = world_.dialogs,
            .paths = world_.paths};
  }

  Text folder() override { return folder_; }
  Text file(TextView name) override {
    const Text path = folder_ + Text{name};
    world_.files.add(path).lastWrite = 1;
    return path;
  }
  FileTimes::FileTime lastWrite(TextView path) override {
    const auto* file = world_.files.find(path);
    return file ? file->lastWrite : 0;
  }
  std::shared_ptr<void> hold(TextView path, int milliseconds) override {
    auto& file = *world_.files.find(path);
    file.locked = true;
    if (milliseconds > 0) world_.user.whilePending = [&file] { file.locked = false; };
    return {&file, [](FakeFile* held) { held->locked = false; }};
  }

  void userAnswers(Answer answer) override { world_.user.answers = {answer}; }
  void userAnswersPrompt(std::int32_t answer) override { world_.dialogs.promptAnswers = {answer}; }
  void userTakes(std::optional<Text> name) override {
    const auto path = [&](const Text& chosen) {
      return folder_ + (chosen.empty() ? Text{u"a.pdf"} : chosen);
    };
    world_.dialogs.chosenPaths = {name ? std::optional{path(*name)} : std::nullopt};
  }
  Text seen() override { return world_.record.lines().back(); }

 private:
  FakePlatform world_;
  Text folder_;
};

}  // namespace

std::vector<ContractHost> fakeHosts() {
  return {{"FakeWindows", [] { return std::make_unique<FakeServicesHost>(PathRules::windows()); }},
          {"FakePosix", [] { return std::make_unique<FakeServicesHost>(PathRules::posix()); }}};
}

}  // namespace quillfile
