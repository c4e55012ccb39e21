// Damages a heap in the way that is named, so that the heap checks can be seen to notice: damage_heap
// overflow|use-after-free|double-free|nothing
#include <windows.h>

#include <cstdio>
#include <string_view>

int main(int argc, char** argv) {
  const std::string_view which = argc > 1 ? argv[1] : "nothing";
  const HANDLE heap = GetProcessHeap();
  auto* block = static_cast<volatile char*>(HeapAlloc(heap, 0, 24));
  if (which == "overflow") block[24] = 1;
  HeapFree(heap, 0, const_cast<char*>(block));
  if (which == "use-after-free") block[4] = 1;
  if (which == "double-free") HeapFree(heap, 0, const_cast<char*>(block));
  HeapValidate(heap, 0, nullptr);
  std::printf("done: %s\n", argc > 1 ? argv[1] : "nothing");
}
