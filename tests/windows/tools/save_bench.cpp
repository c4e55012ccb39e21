// What one item costs on the registered component with the fakes behind real automation objects: the median
// and the best of so many runs, in microseconds. bench/item_save_bench.cpp measures the same item without
// COM.
#include <algorithm>
#include <chrono>
#include <cstdio>

#include "tests/windows/fakes/com_world.h"
#include "tests/windows/services/temporary_folder.h"

using namespace quillfile;
using namespace quillfile::windows;

namespace {

constexpr int runs = 500;

void measure(int attachments) {
  const TemporaryFolder folder;
  FakePlatform fakes;
  fakes.files.addFolder(folder.path());
  ComWorld world{fakes};
  for (const auto& [key, value] : {std::pair{u"SaveAllAttachments", u"1"},
                                   {u"RemoveAttachment", u"1"},
                                   {u"AddURL", u"1"},
                                   {u"AutomaticMode", u"1"},
                                   {u"PostProcess", u"1"}})
    world.set(key, value);
  world.set(u"SavePath", folder.path() + u"\\");
  world.start();
  world.openExplorer();
  std::vector<double> times;
  int calls = 0;
  for (int run = 0; run < runs; ++run) {
    const auto item =
        fakes.addItem({.subject = u"Invoices", .format = u"HTML", .htmlBody = u"<body>x</body>"});
    for (int i = 0; i < attachments; ++i) item->attach({.fileName = fill(u"{}.pdf", i)});
    fakes.record.clear();
    world.calls.clear();
    const auto start = std::chrono::steady_clock::now();
    world.itemAdded(item, DefaultFolder::inbox);
    times.push_back(
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    calls = world.calls.total();
    for (int i = 0; i < attachments; ++i) DeleteFileW(wide(folder / fill(u"{}.pdf", i)));
  }
  world.stop();
  std::sort(times.begin(), times.end());
  std::printf("%d attachments: median %.0f us, best %.0f us, %d calls by COM\n", attachments, times[runs / 2],
              times.front(), calls);
}

}  // namespace

int main() {
  if (FAILED(CoInitialize(nullptr))) return 1;
  for (const int attachments : {1, 5}) measure(attachments);
  CoUninitialize();
}
