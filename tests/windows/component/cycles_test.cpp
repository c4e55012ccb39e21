// The whole cycle a thousand times, without growth; and how often the client is called.
#include <gtest/gtest.h>

#include <windows.h>

#include <psapi.h>

#include <cstdio>

#include "tests/windows/fakes/com_world.h"
#include "tests/windows/fakes/memory_watch.h"
#include "tests/windows/services/temporary_folder.h"

namespace quillfile::windows {
namespace {

struct Usage {
  std::int64_t memory = 0;  // bytes of the process's own
  DWORD handles = 0;
  long objects = 0;
};

Usage usage() {
  Usage now;
  PROCESS_MEMORY_COUNTERS_EX counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                       sizeof counters);
  now.memory = static_cast<std::int64_t>(counters.PrivateUsage);
  GetProcessHandleCount(GetCurrentProcess(), &now.handles);
  now.objects = liveObjects;
  return now;
}

// Starts, opens, selects, watches, saves, answers and stops.
void cycle(const TemporaryFolder& folder) {
  FakePlatform fakes;
  ComWorld world{fakes};
  world.set(u"SaveAllAttachments", u"1");
  world.set(u"SavePath", folder.path() + u"\\");
  world.set(u"RemoveAttachment", u"1");
  world.set(u"AddURL", u"1");
  world.set(u"AutomaticMode", u"1");
  fakes.files.addFolder(folder.path());
  world.start();
  world.openExplorer();
  const auto item = fakes.addItem({.subject = u"Invoices"});
  item->attach({.fileName = u"a.pdf", .displayName = u"a.pdf"});
  fakes.explorer->select({item});
  world.openInspector(item);
  world.itemAdded(item, DefaultFolder::inbox);
  item->raiseRespond(Response::reply);
  world.stop();
  EXPECT_EQ(item->attached.size(), 1u) << "the paperclip alone";
  DeleteFileW(wide(folder / u"a.pdf"));
}

TEST(Cycles, AThousandLeaveNothingBehind) {
  const TemporaryFolder folder;
  const MallocSpy spy;
  for (int i = 0; i < 100; ++i) cycle(folder);
  const Usage before = usage();
  const HeapUse heapsBefore = heapUse();
  const auto blocksBefore = spy.live();
  for (int i = 0; i < 1000; ++i) cycle(folder);
  const auto blocksAfter = spy.live();
  const HeapUse heapsAfter = heapUse();
  const Usage after = usage();

  EXPECT_EQ(after.objects, before.objects);
  EXPECT_EQ(after.handles, before.handles);
  EXPECT_EQ(blocksAfter, blocksBefore) << "blocks of the COM allocator, of " << spy.allocated();
  EXPECT_GT(spy.allocated(), 100'000u) << "the strings went past the spy: is OANOCACHE set?";
  EXPECT_LT(heapsAfter.blocks - heapsBefore.blocks, 100) << "a block each tenth cycle would show";
  EXPECT_TRUE(heapsAfter.sound);
  EXPECT_LT(after.memory - before.memory, 256 * 1024) << "a leak of 262 bytes a cycle would show";
  std::printf("growth: %lld bytes of the process, %lld heap blocks of %lld bytes, %lld of %llu COM blocks\n",
              after.memory - before.memory, heapsAfter.blocks - heapsBefore.blocks,
              heapsAfter.bytes - heapsBefore.bytes, static_cast<long long>(blocksAfter - blocksBefore),
              static_cast<unsigned long long>(spy.allocated()));
}

// The calls to the client that saving one item with so many attachments costs.
int callsToTheClient(int attachments) {
  const TemporaryFolder folder;
  FakePlatform fakes;
  ComWorld world{fakes};
  world.set(u"SaveAllAttachments", u"1");
  world.set(u"SavePath", folder.path() + u"\\");
  world.set(u"RemoveAttachment", u"1");
  world.set(u"AddURL", u"1");
  world.set(u"AutomaticMode", u"1");
  fakes.files.addFolder(folder.path());
  world.start();
  world.openExplorer();
  const auto item = fakes.addItem({.subject = u"Invoices"});
  for (int i = 0; i < attachments; ++i) item->attach({.fileName = fill(u"{}.pdf", i), .displayName = u"x"});
  world.calls.clear();
  world.itemAdded(item, DefaultFolder::inbox);
  int total = 0;
  for (const auto& [call, times] : world.calls.calls()) {
    for (const TextView type : {u"MailItem.", u"Attachments.", u"Attachment.", u"SafeMailItem."}) {
      if (startsWith(call, type)) total += times;
    }
  }
  world.stop();
  return total;
}

TEST(Calls, EachFurtherAttachmentCostsTheClientTheSame) {
  const int one = callsToTheClient(1), two = callsToTheClient(2), five = callsToTheClient(5);
  EXPECT_EQ(five - two, 3 * (two - one));
  EXPECT_EQ(two - one, 19);
}

}  // namespace
}  // namespace quillfile::windows
