// What the process holds: blocks of the COM allocator (every BSTR is one), blocks and bytes of all heaps.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <cstdint>
#include <unordered_set>

namespace quillfile::windows {

// Counts the COM allocator's live blocks while it lives. Strings are among them where OANOCACHE is set.
class MallocSpy final : public IMallocSpy {
 public:
  MallocSpy();
  ~MallocSpy();
  MallocSpy(const MallocSpy&) = delete;
  MallocSpy& operator=(const MallocSpy&) = delete;

  // Of the blocks that were allocated since this was made.
  std::size_t live() const { return live_.size(); }
  std::uint64_t allocated() const { return allocated_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }  // the owner's
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T bytes) override { return bytes; }
  void* STDMETHODCALLTYPE PostAlloc(void* block) override;
  void* STDMETHODCALLTYPE PreFree(void* block, BOOL spied) override;
  void STDMETHODCALLTYPE PostFree(BOOL) override {}
  SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T bytes, void** changed, BOOL spied) override;
  void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL spied) override;
  void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
  SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T bytes, BOOL) override { return bytes; }
  void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
  int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int known) override { return known; }
  void STDMETHODCALLTYPE PreHeapMinimize() override {}
  void STDMETHODCALLTYPE PostHeapMinimize() override {}

 private:
  std::unordered_set<void*> live_;
  std::uint64_t allocated_ = 0;
};

struct HeapUse {
  std::int64_t blocks = 0, bytes = 0;  // in use, of all heaps of the process
  bool sound = true;                   // every heap's own structures are
};
HeapUse heapUse();

}  // namespace quillfile::windows
