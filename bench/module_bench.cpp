// The parts that every attachment goes through beside its bytes: a name, the settings, the module's own
// procedure.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "hosts/mailbox/services/save_folder.h"
#include "hosts/mailbox/services/settings_file.h"
#include "tests/core/saving/saving.h"

namespace {

using namespace quillfile;
namespace fs = std::filesystem;

// A folder of its own below the one that the benchmark runs in.
class Folder {
 public:
  Folder() {
    std::string pattern = "module_bench.XXXXXX";
    path_ = fs::absolute(mkdtemp(pattern.data()));
  }
  ~Folder() { fs::remove_all(path_); }
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

// Names for files that are all called the same, in a folder where none of them is yet: 20,000 in one run.
void equalNames(benchmark::State& state) {
  const Folder folder;
  for (auto _ : state) {
    mailbox::SaveFolder names{folder.path().string()};
    for (std::int64_t i = 0; i < state.range(0); ++i)
      benchmark::DoNotOptimize(names.takeFreeName("image001", ".png"));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(equalNames)->Arg(20'000)->Unit(benchmark::kMillisecond);

// The same where as many files of that name are on disk: the first name of a run, which has to find its
// number.
void firstNameAmongEqualOnes(benchmark::State& state) {
  const Folder folder;
  for (std::int64_t i = 0; i < state.range(0); ++i)
    std::ofstream{folder.path() / (i == 0 ? "image001.png" : "image001-" + std::to_string(i) + ".png")};
  for (auto _ : state) {
    mailbox::SaveFolder names{folder.path().string()};
    benchmark::DoNotOptimize(names.takeFreeName("image001", ".png"));
  }
}
BENCHMARK(firstNameAmongEqualOnes)->Arg(20'000)->Unit(benchmark::kMillisecond);

// A setting of a file that has not changed since it was read last.
void settingRead(benchmark::State& state) {
  const Folder folder;
  const auto path = folder.path() / "settings.ini";
  {
    std::ofstream file{path};
    file << "[Quillfile]\n";
    for (int i = 0; i < 60; ++i) file << "Key" << i << "=value " << i << "\n";
  }
  fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours{1});
  mailbox::SettingsFile settings{path.string()};
  for (auto _ : state) benchmark::DoNotOptimize(settings.read(u"Corvane", u"Quillfile", u"Key59"));
}
BENCHMARK(settingRead);

// SaveAttachment over the recording platform, link and removal on; the item is made anew outside the clock.
void saveAttachment(benchmark::State& state) {
  FakePlatform world{PathRules::posix()};
  world.log.isWanted = false;
  world.files.addFolder(u"/Saved/");
  Saving saving{world};
  for (auto _ : state) {
    state.PauseTiming();
    auto item =
        std::make_shared<FakeItem>(world.record, world.files, ItemData{.subject = u"A", .body = u"hello"});
    item->attach({.fileName = u"a.pdf"});
    const auto attachment = item->attachments()->item(1);
    world.files.erase(u"/Saved/a.pdf");
    world.record.clear();
    state.ResumeTiming();
    const auto result =
        saving.routines.SaveAttachment(item, attachment, {.addLink = true, .remove = true}, u"/Saved/");
    if (result != SaveResult::saved) state.SkipWithError("not saved");
  }
}
BENCHMARK(saveAttachment);

}  // namespace
