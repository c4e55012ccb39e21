#include "tests/windows/fakes/memory_watch.h"

#include <objbase.h>

#include <vector>

namespace quillfile::windows {

MallocSpy::MallocSpy() { CoRegisterMallocSpy(this); }
MallocSpy::~MallocSpy() { CoRevokeMallocSpy(); }

HRESULT MallocSpy::QueryInterface(REFIID id, void** object) {
  const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IMallocSpy);
  *object = known ? this : nullptr;
  return known ? S_OK : E_NOINTERFACE;
}

void* MallocSpy::PostAlloc(void* block) {
  if (block != nullptr) live_.insert(block), ++allocated_;
  return block;
}

void* MallocSpy::PreFree(void* block, BOOL) {
  live_.erase(block);
  return block;
}

SIZE_T MallocSpy::PreRealloc(void* block, SIZE_T bytes, void** changed, BOOL) {
  live_.erase(block);
  *changed = block;
  return bytes;
}

void* MallocSpy::PostRealloc(void* block, BOOL) { return PostAlloc(block); }

HeapUse heapUse() {
  std::vector<HANDLE> heaps(256);
  heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  HeapUse use;
  for (const HANDLE heap : heaps) {
    use.sound = HeapValidate(heap, 0, nullptr) && use.sound;
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
      ++use.blocks;
      use.bytes += entry.cbData;
    }
    HeapUnlock(heap);
  }
  return use;
}

}  // namespace quillfile::windows
