// What the module itself costs for one item, over the fakes of the tests: everything but mail client and
// disk.
#include <benchmark/benchmark.h>

#include "core/module/module.h"
#include "tests/fakes/fake_platform.h"

namespace quillfile {
namespace {

// The new item's attachments are saved, removed and linked.
void saveItem(benchmark::State& state) {
  FakePlatform world;
  for (const auto& [key, value] : {std::pair{u"SaveAllAttachments", u"1"},
                                   {u"SavePath", u"C:\\Saved\\"},
                                   {u"RemoveAttachment", u"1"},
                                   {u"AddURL", u"1"},
                                   {u"AutomaticMode", u"1"},
                                   {u"PostProcess", u"1"}})
    world.settings.set(key, value);
  world.files.addFolder(u"C:\\Saved");
  world.log.isWanted = state.range(1) != 0;
  Module module{world.platform()};
  module.api().CEStartup(world.host);
  module.api().CEExplorerOpen(world.explorer);
  const auto& inbox = world.folder(DefaultFolder::inbox);
  for ([[maybe_unused]] auto unused : state) {
    state.PauseTiming();
    inbox->items.clear();
    world.record.clear();
    const auto item =
        world.addItem({.subject = u"Invoices", .format = u"HTML", .htmlBody = u"<body>x</body>"});
    for (int i = 0; i < state.range(0); ++i) item->attach({.fileName = fill(u"{}.pdf", i)});
    state.ResumeTiming();
    module.api().CEItemEvent(1, item, inbox->id(), inbox->store());
    state.PauseTiming();
    for (int i = 0; i < state.range(0); ++i) world.files.erase(fill(u"C:\\Saved\\{}.pdf", i));
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(saveItem)
    ->ArgNames({"attachments", "trace"})
    ->ArgsProduct({{1, 5}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillfile
